// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QDateTime>
#include <QString>

namespace Log4Qt {
inline namespace zy {

/**
 * The period that a suffix pattern tells apart: from a minute to a month. Times are those of the
 * wall clock, kept as if the wall were in UTC, so that none is missing or there twice.
 */
class RollOverPeriod
{
public:
    enum Length { Never, Minute, Hour, HalfDay, Day, Week, Month };

    /** The shortest period at whose end the text of @p pattern changes; Never where it doesn't. */
    explicit RollOverPeriod(const QString &pattern);

    bool isValid() const { return m_length != Never; }

    /** The first moment of the period that @p time lies in. */
    QDateTime start(const QDateTime &time) const;

    /** The first moment of the period after that. */
    QDateTime next(const QDateTime &time) const;

    /** The suffix of the period that @p time lies in. */
    QString suffix(const QDateTime &time) const;

private:
    QString format(const QDateTime &time) const;

    QString m_pattern;
    Length m_length = Never;
};

} // namespace zy
} // namespace Log4Qt
