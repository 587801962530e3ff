// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "appender.h"

#include <QList>
#include <QString>

#include <mutex>

namespace Log4Qt {
inline namespace zy {

/**
 * List of appenders, in the order in which they were attached.
 *
 * **Threads.** All functions are thread-safe. **Blocking.** Blocks only while another thread changes the
 * list.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT AppenderAttachable
{
public:
    AppenderAttachable();
    virtual ~AppenderAttachable();

    /** Attaches @p appender. Ignores a null pointer and an appender that is already attached. */
    virtual void addAppender(const AppenderSharedPtr &appender);

    /** Returns a copy of the list. */
    QList<AppenderSharedPtr> appenders() const;

    /** Returns the first appender with the name @p name; null if there is none. */
    AppenderSharedPtr appender(const QString &name) const;

    /** Returns true if @p appender is attached. */
    bool isAttached(const AppenderSharedPtr &appender) const;

    /** Removes all appenders. Another thread can still be writing to one of them. */
    virtual void removeAllAppenders();

    /** Removes @p appender. Does nothing if it is not attached. */
    void removeAppender(const AppenderSharedPtr &appender);

    /** Removes the first appender with the name @p name. Does nothing if there is none. */
    void removeAppender(const QString &name);

private:
    Q_DISABLE_COPY(AppenderAttachable)

    mutable std::mutex m_appendersMutex;
    QList<AppenderSharedPtr> m_appenders;
};

} // namespace zy
} // namespace Log4Qt
