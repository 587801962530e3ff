// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QTest>

/** The four results of a geolocation, with their values before the call. */
struct Location
{
    QString country = QStringLiteral("country before");
    QString text = QStringLiteral("location before");
    double latitude = -1.5;
    double longitude = -2.5;

    bool operator==(const Location &other) const
    {
        return country == other.country && text == other.text && latitude == other.latitude
               && longitude == other.longitude;
    }

    /** Calls @p query with the four members and returns its result. */
    bool fill(bool (*query)(QString &, QString &, double &, double &))
    {
        return query(country, text, latitude, longitude);
    }
};
Q_DECLARE_METATYPE(Location)

namespace QTest {
template <> inline char *toString(const Location &location)
{
    return qstrdup(QStringLiteral("(%1 | %2 | %3 | %4)")
                       .arg(location.country, location.text)
                       .arg(location.latitude)
                       .arg(location.longitude)
                       .toUtf8()
                       .constData());
}
} // namespace QTest
