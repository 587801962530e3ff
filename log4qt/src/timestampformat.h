// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "secondwatch.h"

#include <QString>

namespace Log4Qt {
inline namespace zy {

class LoggingEvent;

/** Formats time stamps in one date format. Reentrant, not thread-safe. */
class TimestampFormat
{
public:
    /** @param dateFormat as for TTCCLayout::setDateFormat() */
    explicit TimestampFormat(const QString &dateFormat);

    /** Appends the local time of @p event to @p text. */
    void append(QString *text, const LoggingEvent &event);

private:
    const bool m_isRelative;
    const QString m_pattern;
    const bool m_endsInMilliseconds;
    SecondWatch m_watch;
    QString m_time;
};

} // namespace zy
} // namespace Log4Qt
