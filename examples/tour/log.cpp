// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"

#include <ZyBase/base/LoggerObject.h>

#include <log4qt/appenderskeleton.h>
#include <log4qt/logger.h>
#include <log4qt/loggingevent.h>

#include <QFile>

using ZyBase::LoggerObject;

namespace {

// An application's own appender, which gets all messages, those at level DEBUG too.
class MessageAppender : public Log4Qt::AppenderSkeleton
{
public:
    MessageAppender() { activateOptions(); }
    bool requiresLayout() const override { return false; }
    QStringList messages() const { return m_messages; }

protected:
    void append(const Log4Qt::LoggingEvent &event) override { m_messages << event.message(); }

private:
    QStringList m_messages;
};

QStringList readLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeLast();
    return lines;
}

bool endWith(const QStringList &lines, const QStringList &ends)
{
    if (lines.size() != ends.size())
        return false;
    for (int i = 0; i < lines.size(); ++i) {
        if (!lines.at(i).endsWith(ends.at(i)))
            return false;
    }
    return true;
}

} // namespace

void showLog(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("File log"), QStringLiteral("ZyBase/base/LoggerObject.h"));

    LoggerObject::info("before InitLogger()");
    LoggerObject::InitLogger("tour.log", directory.path().toUtf8().constData());
    auto *const keeper = new MessageAppender;
    const Log4Qt::AppenderSharedPtr appender(keeper); // owns it
    Log4Qt::Logger::rootLogger()->addAppender(appender);
    LoggerObject::info("the tour begins");
    LoggerObject::debug("a detail");
    LoggerObject::warn("UTF-8 is kept: Größe 文件");
    LoggerObject::error("100% is no format: %s");
    LoggerObject::ReleaseLogger();
    LoggerObject::info("after ReleaseLogger()");

    const QString path = directory.filePath(QStringLiteral("log/tour.log"));
    const QStringList lines = readLines(path);
    report.line(QStringLiteral("six messages, the file"), directory.relativeFilePath(path));
    report.excerpt(lines);
    report.promise(QStringLiteral("The file has the messages from INFO up while the log was on"),
                   endWith(lines, {QStringLiteral(" INFO   - the tour begins"),
                                   QStringLiteral(" WARN   - UTF-8 is kept: Größe 文件"),
                                   QStringLiteral(" ERROR  - 100% is no format: %s")}));
    report.promise(QStringLiteral("An appender of the application gets the DEBUG message too"),
                   keeper->messages().value(1) == QLatin1String("a detail"));
}
