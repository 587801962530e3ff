// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/appenderattachable.h>

#include <algorithm>

namespace Log4Qt {
inline namespace zy {

AppenderAttachable::AppenderAttachable() = default;

AppenderAttachable::~AppenderAttachable() = default;

void AppenderAttachable::addAppender(const AppenderSharedPtr &appender)
{
    const std::lock_guard<std::mutex> lock(m_appendersMutex);
    if (appender && !m_appenders.contains(appender))
        m_appenders.append(appender);
}

QList<AppenderSharedPtr> AppenderAttachable::appenders() const
{
    const std::lock_guard<std::mutex> lock(m_appendersMutex);
    return m_appenders;
}

AppenderSharedPtr AppenderAttachable::appender(const QString &name) const
{
    const QList<AppenderSharedPtr> all = appenders();
    const auto found = std::find_if(all.cbegin(), all.cend(),
                                    [&name](const AppenderSharedPtr &each) { return each->name() == name; });
    return found != all.cend() ? *found : AppenderSharedPtr();
}

bool AppenderAttachable::isAttached(const AppenderSharedPtr &appender) const
{
    return appenders().contains(appender);
}

void AppenderAttachable::removeAllAppenders()
{
    // The pointers are released after the lock, because a custom deleter can log.
    QList<AppenderSharedPtr> dropped;
    const std::lock_guard<std::mutex> lock(m_appendersMutex);
    m_appenders.swap(dropped);
}

void AppenderAttachable::removeAppender(const AppenderSharedPtr &appender)
{
    const std::lock_guard<std::mutex> lock(m_appendersMutex);
    m_appenders.removeOne(appender);
}

void AppenderAttachable::removeAppender(const QString &name)
{
    removeAppender(appender(name));
}

} // namespace zy
} // namespace Log4Qt
