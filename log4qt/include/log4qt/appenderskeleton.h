// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "appender.h"
#include "level.h"

#include <mutex>

namespace Log4Qt {
inline namespace zy {

/**
 * The common part of all appenders: name, layout, threshold, life cycle, and the lock that makes
 * doAppend() safe for any number of threads.
 */
class LOG4QT_EXPORT AppenderSkeleton : public Appender
{
    Q_OBJECT

public:
    explicit AppenderSkeleton(QObject *parent = nullptr);
    ~AppenderSkeleton() override;

    LayoutSharedPtr layout() const override;
    QString name() const override;
    Level threshold() const;
    bool isActive() const;
    bool isClosed() const;

    void setLayout(const LayoutSharedPtr &layout) override;
    void setName(const QString &name) override;

    /** Events below @p level are dropped; NULL_INT lets all pass. */
    void setThreshold(Level level);

    bool isAsSevereAsThreshold(Level level) const;

    /** To be called when all settings are made: the appender takes events from here on. */
    virtual void activateOptions();
    void close() override;

    /**
     * Writes @p event unless it is below the threshold. Holds the appender's lock to the end, so
     * lines never interleave; an event that is raised while this thread is appending is dropped.
     * An appender that is not active says so on the standard error stream and drops the event.
     */
    void doAppend(const LoggingEvent &event) override;

protected:
    /** Writes @p event; called under the lock, after all checks. */
    virtual void append(const LoggingEvent &event) = 0;

    /** Tells whether events can be taken; says on the standard error stream why not. */
    virtual bool checkEntryConditions() const;

    using Lock = std::lock_guard<std::recursive_mutex>;
    mutable std::recursive_mutex m_mutex;

private:
    bool m_active = false;
    bool m_closed = false;
    bool m_appending = false;
    LayoutSharedPtr m_layout;
    QString m_name;
    Level m_threshold;
};

} // namespace zy
} // namespace Log4Qt
