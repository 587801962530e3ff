// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "secondwatch.h"

#include <QString>

namespace Log4Qt {
inline namespace zy {

class LoggingEvent;

/** Writes time stamps in one format, as TTCCLayout::setDateFormat() takes it. Not safe for threads. */
class TimestampFormat
{
public:
    explicit TimestampFormat(const QString &dateFormat);

    /** Appends the time of @p event to @p text. */
    void append(QString *text, const LoggingEvent &event);

private:
    void appendMilliseconds(QString *text, qint64 timeStamp) const;

    const bool m_isRelative;
    QString m_pattern;
    bool m_endsInMilliseconds = false;
    SecondWatch m_watch;
    QString m_second;
};

} // namespace zy
} // namespace Log4Qt
