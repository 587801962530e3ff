// SPDX-License-Identifier: 0BSD

#include "MessagesInLog.h"

#include <ZyBase/base/LoggerObject.h>

#include <QMessageLogContext>
#include <QVector>

#include <mutex>

using ZyBase::LoggerObject;

namespace {

struct Message
{
    QtMsgType type;
    QString line;
};

struct Log
{
    enum State { Waiting, Open, Closed };

    std::mutex mutex; // no message is written during InitLogger() and ReleaseLogger()
    State state = Waiting;
    QVector<Message> early;
    QtMessageHandler previous = nullptr;
};

// Never deleted, because Qt sends messages until the process ends.
Log &theLog()
{
    static Log *const log = new Log;
    return *log;
}

// The category "default" is not shown.
QString lineOf(const QMessageLogContext &context, QString text)
{
    text.replace(QLatin1Char('\n'), QStringLiteral("\n    ")); // so that no line looks like a line of the log
    const QString category = QString::fromUtf8(context.category);
    return category == QLatin1String("default") ? text : category + QStringLiteral(": ") + text;
}

void write(const Message &message)
{
    const QByteArray line = message.line.toUtf8();
    switch (message.type) {
    case QtDebugMsg:
        return LoggerObject::debug(line.constData()); // the file takes INFO and above
    case QtInfoMsg:
        return LoggerObject::info(line.constData());
    case QtWarningMsg:
        return LoggerObject::warn(line.constData());
    case QtCriticalMsg:
    case QtFatalMsg: // Qt ends the process afterwards
        return LoggerObject::error(line.constData());
    }
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    Log &log = theLog();
    const Message message {type, lineOf(context, text)};
    {
        const std::lock_guard<std::mutex> lock(log.mutex);
        if (log.state == Log::Open)
            write(message);
        else if (log.state == Log::Waiting)
            log.early.append(message);
    }
    log.previous(type, context, text);
}

} // namespace

void captureMessages()
{
    Log &log = theLog();
    const std::lock_guard<std::mutex> lock(log.mutex);
    log.state = Log::Waiting;
    log.previous = qInstallMessageHandler(handle);
}

void openLog(const QString &fileName, const QString &baseDir)
{
    Log &log = theLog();
    const std::lock_guard<std::mutex> lock(log.mutex);
    LoggerObject::InitLogger(fileName.toUtf8().constData(), baseDir.toUtf8().constData());
    for (const Message &message : qAsConst(log.early))
        write(message);
    log.early.clear();
    log.state = Log::Open;
}

void closeLog()
{
    Log &log = theLog();
    qInstallMessageHandler(log.previous);
    const std::lock_guard<std::mutex> lock(log.mutex);
    LoggerObject::ReleaseLogger();
    log.state = Log::Closed;
}
