// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/appenderskeleton.h>

#include "errorstream.h"

#include <log4qt/loggingevent.h>

#include <QScopedValueRollback>

namespace Log4Qt {
inline namespace zy {

Appender::Appender(QObject *parent)
    : QObject(parent)
{
}

Appender::~Appender() = default;

AppenderSkeleton::AppenderSkeleton(QObject *parent)
    : Appender(parent)
{
}

AppenderSkeleton::~AppenderSkeleton() = default;

LayoutSharedPtr AppenderSkeleton::layout() const
{
    const Lock lock(m_mutex);
    return m_layout;
}

QString AppenderSkeleton::name() const
{
    const Lock lock(m_mutex);
    return m_name;
}

Level AppenderSkeleton::threshold() const
{
    const Lock lock(m_mutex);
    return m_threshold;
}

bool AppenderSkeleton::isActive() const
{
    const Lock lock(m_mutex);
    return m_active;
}

bool AppenderSkeleton::isClosed() const
{
    const Lock lock(m_mutex);
    return m_closed;
}

void AppenderSkeleton::setLayout(const LayoutSharedPtr &layout)
{
    const Lock lock(m_mutex);
    m_layout = layout;
}

void AppenderSkeleton::setName(const QString &name)
{
    const Lock lock(m_mutex);
    m_name = name;
}

void AppenderSkeleton::setThreshold(Level level)
{
    const Lock lock(m_mutex);
    m_threshold = level;
}

bool AppenderSkeleton::isAsSevereAsThreshold(Level level) const
{
    const Lock lock(m_mutex);
    return level >= m_threshold;
}

void AppenderSkeleton::activateOptions()
{
    const Lock lock(m_mutex);
    m_active = true;
    m_closed = false;
}

void AppenderSkeleton::close()
{
    const Lock lock(m_mutex);
    m_active = false;
    m_closed = true;
}

void AppenderSkeleton::doAppend(const LoggingEvent &event)
{
    const Lock lock(m_mutex);
    if (m_appending)
        return;
    const QScopedValueRollback<bool> appending(m_appending, true);
    if (checkEntryConditions() && event.level() >= m_threshold)
        append(event);
}

bool AppenderSkeleton::checkEntryConditions() const
{
    if (!m_active) {
        reportError(QStringLiteral("appender '%1' is not active: the event is dropped").arg(m_name));
        return false;
    }
    if (requiresLayout() && !m_layout) {
        reportError(QStringLiteral("appender '%1' has no layout: the event is dropped").arg(m_name));
        return false;
    }
    return true;
}

} // namespace zy
} // namespace Log4Qt
