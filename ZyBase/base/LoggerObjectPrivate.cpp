// SPDX-License-Identifier: LGPL-2.1-or-later

#include "LoggerObjectPrivate.h"
#include "LoggerObject.h"

#include <log4qt/dailyrollingfileappender.h>
#include <log4qt/level.h>
#include <log4qt/loggerrepository.h>
#include <log4qt/ttcclayout.h>

#include <QSharedPointer>
#include <QString>

using Log4Qt::DailyRollingFileAppender;
using Log4Qt::Level;
using Log4Qt::TTCCLayout;

LoggerObjectPrivate *LoggerObjectPrivate::s_pLogger = nullptr;

namespace {

TTCCLayout *createLayout()
{
    auto *const pLayout = new TTCCLayout;
    pLayout->setObjectName(QStringLiteral("My Layout"));
    pLayout->setCategoryPrefixing(false);
    pLayout->setThreadPrinting(false);
    pLayout->setDateFormat(QStringLiteral("ISO8601"));
    pLayout->activateOptions();
    return pLayout;
}

DailyRollingFileAppender *createAppender(const QSharedPointer<Log4Qt::Layout> &layout,
                                         const QString &strFilePath)
{
    auto *const pAppender = new DailyRollingFileAppender;
    pAppender->setName(QStringLiteral("My Appender"));
    pAppender->setLayout(layout);
    pAppender->setFile(strFilePath);
    pAppender->setAppendFile(true);
    pAppender->setThreshold(Level(Level::INFO_INT));
    pAppender->setBufferedIo(true);
    pAppender->setDatePattern(DailyRollingFileAppender::MONTHLY_ROLLOVER);
    pAppender->activateOptions();
    return pAppender;
}

// These two are not inlined, so that a call while the log is off sets up no stack frame for them.

Q_NEVER_INLINE LoggerObjectPrivate *createInstance()
{
    return LoggerObjectPrivate::s_pLogger = new LoggerObjectPrivate;
}

using LogFunction = void (Log4Qt::Logger::*)(const QString &) const;

Q_NEVER_INLINE void write(const Log4Qt::Logger *pLogger, LogFunction log, const char *pszMessage)
{
    (pLogger->*log)(QString::fromUtf8(pszMessage));
}

} // namespace

LoggerObjectPrivate *LoggerObjectPrivate::getInstance()
{
    return s_pLogger ? s_pLogger : createInstance();
}

LoggerObjectPrivate::LoggerObjectPrivate()
    : m_pRootLogger(nullptr)
{
}

void LoggerObjectPrivate::InitLogger(const char *pszFileName, const char *pszBaseDir)
{
    m_pRootLogger = Log4Qt::Logger::rootLogger();

    // The event loop deletes both, because log4qt can still use them when their last pointer is destroyed.
    const QSharedPointer<Log4Qt::Layout> layout(createLayout(), &QObject::deleteLater);
    const QString strFilePath =
        QString::fromUtf8(pszBaseDir) + QStringLiteral("/log/") + QString::fromUtf8(pszFileName);
    const QSharedPointer<Log4Qt::Appender> appender(createAppender(layout, strFilePath),
                                                    &QObject::deleteLater);
    m_pRootLogger->addAppender(appender);

    // The appender drops levels below INFO. DEBUG is for the appenders of the application.
    m_pRootLogger->setLevel(Level(Level::DEBUG_INT));
}

void LoggerObjectPrivate::ReleaseLogger()
{
    if (!m_pRootLogger)
        return;
    m_pRootLogger->removeAllAppenders();
    m_pRootLogger->loggerRepository()->shutdown();
    m_pRootLogger = nullptr;
}

void LoggerObjectPrivate::error(const char *pszMessage)
{
    if (m_pRootLogger)
        write(m_pRootLogger, &Log4Qt::Logger::error, pszMessage);
}

void LoggerObjectPrivate::warn(const char *pszMessage)
{
    if (m_pRootLogger)
        write(m_pRootLogger, &Log4Qt::Logger::warn, pszMessage);
}

void LoggerObjectPrivate::info(const char *pszMessage)
{
    if (m_pRootLogger)
        write(m_pRootLogger, &Log4Qt::Logger::info, pszMessage);
}

void LoggerObjectPrivate::debug(const char *pszMessage)
{
    if (m_pRootLogger)
        write(m_pRootLogger, &Log4Qt::Logger::debug, pszMessage);
}

namespace ZyBase {

// These functions are in this source, so that the compiler can inline what they call.

void LoggerObject::InitLogger(const char *pszFileName, const char *pszBaseDir)
{
    LoggerObjectPrivate::getInstance()->InitLogger(pszFileName, pszBaseDir);
}

void LoggerObject::ReleaseLogger()
{
    LoggerObjectPrivate::getInstance()->ReleaseLogger();
}

void LoggerObject::error(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->error(pszMessage);
}

void LoggerObject::warn(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->warn(pszMessage);
}

void LoggerObject::info(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->info(pszMessage);
}

void LoggerObject::debug(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->debug(pszMessage);
}

} // namespace ZyBase
