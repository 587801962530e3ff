// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "layout.h"

#include <memory>
#include <mutex>

namespace Log4Qt {
inline namespace zy {

class TimestampFormat;

/**
 * Formats an event as one line: time, "[thread]", level, logger's name, diagnostic context, "-", message.
 *
 *     2026-11-20 07:37:57.106 [main] INFO  App::Net import - 12 files
 *
 * The level is padded to five characters. A field that is switched off leaves no space; an empty diagnostic
 * context does.
 *
 * **Threads.** format() is thread-safe. The setters are reentrant: make all settings before the layout is
 * used.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT TTCCLayout : public Layout
{
    Q_OBJECT

public:
    /** Usual date formats, in local time. */
    enum DateFormat {
        NONE, ///< no time
        ISO8601, ///< 2026-11-20 07:37:57.106
        ABSOLUTE, ///< 07:37:57.106
        DATE, ///< 20 11 2026 07:37:57.106
        RELATIVE ///< milliseconds since the first use of a logger
    };

    explicit TTCCLayout(QObject *parent = nullptr);
    ~TTCCLayout() override;

    /** Returns true if the logger's name is printed. */
    bool categoryPrefixing() const;

    /** Returns true if the diagnostic context is printed. */
    bool contextPrinting() const;

    /** Returns the date format. */
    QString dateFormat() const;

    /** Returns true if the thread is printed. */
    bool threadPrinting() const;

    /** Sets whether the logger's name is printed. The default is true. */
    void setCategoryPrefixing(bool categoryPrefixing);

    /** Sets whether the diagnostic context is printed. The default is true. */
    void setContextPrinting(bool contextPrinting);

    /**
     * Sets the date format.
     *
     * @param dateFormat name of a DateFormat, or a pattern as for QDateTime::toString(); "RELATIVE" by
     * default. An empty string is treated as "ISO8601".
     */
    void setDateFormat(const QString &dateFormat);

    /** Sets one of the usual date formats. */
    void setDateFormat(DateFormat dateFormat);

    /** Sets whether the thread is printed. The default is true. */
    void setThreadPrinting(bool threadPrinting);

    QString format(const LoggingEvent &event) override;

private:
    void updatePatternFormatter();
    void appendTime(QString *line, const LoggingEvent &event);

    bool m_categoryPrefixing = true;
    bool m_contextPrinting = true;
    bool m_threadPrinting = true;
    QString m_dateFormat;
    std::mutex m_timeMutex;
    std::unique_ptr<TimestampFormat> m_time;
};

} // namespace zy
} // namespace Log4Qt
