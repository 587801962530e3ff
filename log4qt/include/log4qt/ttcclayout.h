// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "layout.h"

#include <memory>
#include <mutex>

namespace Log4Qt {
inline namespace zy {

class TimestampFormat;

/**
 * One line an event: time, "[thread]", level padded to five, logger's name, diagnostic context,
 * "-", message. What is switched off leaves no blank; an empty context does.
 */
class LOG4QT_EXPORT TTCCLayout : public Layout
{
    Q_OBJECT

public:
    enum DateFormat {
        NONE, ///< no time
        ISO8601, ///< 2026-11-20 07:37:57.106
        ABSOLUTE, ///< 07:37:57.106
        DATE, ///< 20 Nov 2026 07:37:57.106
        RELATIVE ///< milliseconds since the process began to log
    };

    explicit TTCCLayout(QObject *parent = nullptr);
    ~TTCCLayout() override;

    bool categoryPrefixing() const;
    bool contextPrinting() const;
    QString dateFormat() const;
    bool threadPrinting() const;

    void setCategoryPrefixing(bool categoryPrefixing);
    void setContextPrinting(bool contextPrinting);

    /** One of the words of DateFormat, or a QDateTime pattern; local time. Default "RELATIVE". */
    void setDateFormat(const QString &dateFormat);
    void setDateFormat(DateFormat dateFormat);
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
