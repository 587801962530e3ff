// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "appender.h"

#include <QList>
#include <QString>

#include <mutex>

namespace Log4Qt {
inline namespace zy {

/** A list of appenders, in the order in which they were attached. Any thread. */
class LOG4QT_EXPORT AppenderAttachable
{
public:
    AppenderAttachable();
    virtual ~AppenderAttachable();

    /** Attaches @p appender; a null one and one that is attached already are ignored. */
    virtual void addAppender(const AppenderSharedPtr &appender);

    /** All appenders, as they are at the call. */
    QList<AppenderSharedPtr> appenders() const;

    /** The first appender of that name; null without one. */
    AppenderSharedPtr appender(const QString &name) const;
    bool isAttached(const AppenderSharedPtr &appender) const;

    virtual void removeAllAppenders();
    void removeAppender(const AppenderSharedPtr &appender);

    /** Removes the first appender of that name. */
    void removeAppender(const QString &name);

private:
    Q_DISABLE_COPY(AppenderAttachable)

    mutable std::mutex m_appendersMutex;
    QList<AppenderSharedPtr> m_appenders;
};

} // namespace zy
} // namespace Log4Qt
