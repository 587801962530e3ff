// SPDX-License-Identifier: 0BSD

#pragma once

#include <log4qt/appenderskeleton.h>
#include <log4qt/loggingevent.h>

#include <QMutex>
#include <QStringList>

/**
 * Keeps the messages of warnings and errors, for an application that shows them. Attach it to log4qt's root
 * logger, which the library's log uses. Compiles with every log4qt that the library can be built with.
 */
class WarningsAppender : public Log4Qt::AppenderSkeleton
{
public:
    WarningsAppender()
    {
        setThreshold(Log4Qt::Level(Log4Qt::Level::WARN_INT));
        activateOptions();
    }
    bool requiresLayout() const override { return false; }

    QStringList texts() const
    {
        const QMutexLocker lock(&m_textsMutex);
        return m_texts;
    }

protected:
    void append(const Log4Qt::LoggingEvent &event) override // on the thread that logs
    {
        const QMutexLocker lock(&m_textsMutex);
        m_texts << event.message();
    }

private:
    mutable QMutex m_textsMutex;
    QStringList m_texts;
};
