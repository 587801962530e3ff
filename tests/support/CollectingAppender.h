// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <log4qt/appenderskeleton.h>
#include <log4qt/loggingevent.h>

#include <QStringList>

/** An appender of an application. It stores "LEVEL message" for each event. */
class CollectingAppender : public Log4Qt::AppenderSkeleton
{
public:
    CollectingAppender() { activateOptions(); }
    bool requiresLayout() const override { return false; }
    QStringList lines() const { return m_lines; }

protected:
    void append(const Log4Qt::LoggingEvent &event) override
    {
        m_lines << event.level().toString() + QLatin1Char(' ') + event.message();
    }

private:
    QStringList m_lines;
};
