// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "appender.h"
#include "level.h"

#include <mutex>

namespace Log4Qt {
inline namespace zy {

/**
 * Base class of appenders, with name, layout, threshold, lock and protection against recursion.
 *
 * A derived class implements append() and requiresLayout():
 *
 * @code
 * class CountingAppender : public Log4Qt::AppenderSkeleton
 * {
 * public:
 *     CountingAppender() { activateOptions(); }
 *     bool requiresLayout() const override { return false; }
 *
 * protected:
 *     void append(const Log4Qt::LoggingEvent &) override { ++m_count; }
 *
 * private:
 *     int m_count = 0;
 * };
 * @endcode
 *
 * **Threads.** All functions are thread-safe. append() runs under the appender's lock, in the thread that
 * logs.
 *
 * **Failures.** An appender that is not active drops each event and writes an error line to the standard
 * error stream.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT AppenderSkeleton : public Appender
{
    Q_OBJECT

public:
    explicit AppenderSkeleton(QObject *parent = nullptr);
    ~AppenderSkeleton() override;

    LayoutSharedPtr layout() const override;
    QString name() const override;

    /** Returns the lowest level that is written; NULL_INT if every level is. */
    Level threshold() const;

    /** Returns true after activateOptions() and before close(). */
    bool isActive() const;

    /** Returns true after close() and before the next activateOptions(). */
    bool isClosed() const;

    void setLayout(const LayoutSharedPtr &layout) override;
    void setName(const QString &name) override;

    /** Sets the lowest level that is written. NULL_INT, the default, accepts every level. */
    void setThreshold(Level level);

    /** Returns true if @p level is at or above the threshold. */
    bool isAsSevereAsThreshold(Level level) const;

    /** Starts the appender. Call it after all settings; events before it are dropped. */
    virtual void activateOptions();

    void close() override;

    /**
     * Writes @p event if its level is at or above the threshold.
     *
     * The appender is locked until the event is written, so lines of several threads never interleave. An
     * event that append() itself logs in the same thread is dropped.
     */
    void doAppend(const LoggingEvent &event) override;

protected:
    /** Writes @p event. Called under the lock, after all checks. */
    virtual void append(const LoggingEvent &event) = 0;

    /** Returns true if events can be written. Otherwise writes the reason to the standard error stream. */
    virtual bool checkEntryConditions() const;

    using Lock = std::lock_guard<std::recursive_mutex>;
    mutable std::recursive_mutex m_mutex;

private:
    friend class WriterAppender; // uses m_layout under the lock

    bool m_active = false;
    bool m_closed = false;
    bool m_appending = false;
    LayoutSharedPtr m_layout;
    QString m_name;
    Level m_threshold;
};

} // namespace zy
} // namespace Log4Qt
