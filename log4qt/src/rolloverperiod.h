// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QDateTime>
#include <QString>

namespace Log4Qt {
inline namespace zy {

/**
 * The period of a suffix pattern: from one minute to one month. Reentrant.
 *
 * Times are wall clock times stored as UTC, so that every wall clock time exists once.
 */
class RollOverPeriod
{
public:
    enum Length { Never, Minute, Hour, HalfDay, Day, Week, Month };

    /** Selects the shortest period after which the suffix of @p pattern changes; Never if it does not. */
    explicit RollOverPeriod(const QString &pattern);

    bool isValid() const { return m_length != Never; }

    /** Returns the first moment of the period that contains @p time. */
    QDateTime start(const QDateTime &time) const;

    /** Returns the first moment of the period after the one that contains @p time. */
    QDateTime next(const QDateTime &time) const;

    /** Returns the suffix of the period that contains @p time. */
    QString suffix(const QDateTime &time) const;

private:
    QString format(const QDateTime &time) const;

    QString m_pattern;
    Length m_length = Never;
};

} // namespace zy
} // namespace Log4Qt
