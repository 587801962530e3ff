// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/base/LoggerObject.h>

#include "Files.h"
#include "MessagesInLog.h"
#include "RecipeRun.h"
#include "Utf8.h"

#include <log4qt/appenderskeleton.h>
#include <log4qt/logger.h>
#include <log4qt/loggingevent.h>

#include <QDebug>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Returns the lines without the time, which has 24 characters.
QStringList linesOf(const QString &path)
{
    QStringList lines;
    const QStringList all = readLines(path);
    for (const QString &line : all)
        lines << (line.startsWith(QLatin1Char(' ')) ? line : line.mid(24));
    return lines;
}

std::atomic<int> handledMessages {0};

void countMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++handledMessages;
}

// An appender that sends a message itself.
class SendingAppender : public Log4Qt::AppenderSkeleton
{
public:
    SendingAppender() { activateOptions(); }
    bool requiresLayout() const override { return false; }

protected:
    void append(const Log4Qt::LoggingEvent &) override { qWarning("from within"); }
};

} // namespace

class TestMessagesInTheLog : public QObject
{
    Q_OBJECT

private:
    QString logPath() const { return m_directory->filePath(utf8("log/messages.log")); }

    void openCapturedLog() const
    {
        captureMessages();
        openLog(utf8("messages.log"), m_directory->path());
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    QtMessageHandler m_handler = nullptr;

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_directory->path())); // for the recipe
        handledMessages = 0;
        m_handler = qInstallMessageHandler(countMessage);
    }
    void cleanup() { qInstallMessageHandler(m_handler); }

    void logsMessagesUntilClosed()
    {
        const QString base = m_directory->filePath(utf8("example/messages"));
        const RecipeRun run({QStringLiteral(RECIPE)});
        QCOMPARE(run.exitCode, 0);
        const QStringList expected {
            utf8("INFO   - example.application: before the log is open"),
            utf8("ERROR  - ZIP 文件不存在： \"%1/missing.zip\"").arg(base),
            utf8("WARN   - example.application: from a thread"),
            utf8("    in two lines"),
        };
        QCOMPARE(linesOf(base + utf8("/log/messages.log")), expected);
    }

    void keepsMessagesOnStandardError()
    {
        qputenv("LC_ALL", "C.UTF-8");
        const RecipeRun run({QStringLiteral(RECIPE)});
        for (const char *part : {"before the log is open", "ZIP 文件不存在", "from a thread\nin two lines",
                                 "never in the file", "after the log is closed"})
            QCOMPARE(run.standardError.count(utf8(part)), 1);
        QVERIFY(run.standardError.contains(utf8("Problem opening save file")));
    }

    void logsFatalMessage()
    {
        const pid_t child = fork();
        if (child == 0) {
            constexpr rlimit none {0, 0};
            setrlimit(RLIMIT_CORE, &none);
            std::signal(SIGABRT, SIG_DFL);
            openCapturedLog();
            qFatal("the end");
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(linesOf(logPath()), QStringList {utf8("ERROR  - the end")});
    }

    void logsLevelsAndCategories()
    {
        openCapturedLog();
        qDebug() << "debug";
        qInfo("info %d", 1);
        qWarning("warning\n2026-11-20 07:37:57.106 ERROR  - forged");
        qCritical("critical");
        qCWarning(QLoggingCategory("qt.network.ssl"), "category");
        closeLog();
        const QStringList expected {utf8("INFO   - info 1"), utf8("WARN   - warning"),
                                    utf8("    2026-11-20 07:37:57.106 ERROR  - forged"),
                                    utf8("ERROR  - critical"), utf8("WARN   - qt.network.ssl: category")};
        QCOMPARE(linesOf(logPath()), expected);
    }

    void restoresPreviousHandler()
    {
        openCapturedLog();
        qInfo("logged and handled");
        closeLog();
        qInfo("handled");
        QVERIFY(qInstallMessageHandler(countMessage) == countMessage);
        QCOMPARE(handledMessages.load(), 2);
        QCOMPARE(linesOf(logPath()), QStringList {utf8("INFO   - logged and handled")});
    }

    // Qt prints such a message on the standard error stream, so a handler needs no guard.
    void ignoresMessageSentWhileLogging()
    {
        openCapturedLog();
        const Log4Qt::AppenderSharedPtr appender(new SendingAppender);
        Log4Qt::Logger::rootLogger()->addAppender(appender);
        qInfo("message");
        closeLog();
        QCOMPARE(handledMessages.load(), 1);
        QCOMPARE(linesOf(logPath()), QStringList {utf8("INFO   - message")});
    }

    void logsWholeLinesFromThreads()
    {
        captureMessages();
        std::atomic<bool> isDone {false};
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&isDone] {
                while (!isDone)
                    qInfo("%s", "a line from a thread");
            });
        const auto areMessagesHandled = [] { return handledMessages > 100; };
        QTRY_VERIFY(areMessagesHandled());
        openLog(utf8("messages.log"), m_directory->path());
        handledMessages = 0;
        QTRY_VERIFY(areMessagesHandled());
        closeLog();
        handledMessages = 0;
        QTRY_VERIFY(areMessagesHandled()); // by the previous handler alone
        isDone = true;
        for (std::thread &thread : threads)
            thread.join();
        const QStringList lines = linesOf(logPath());
        QVERIFY(lines.size() > 200);
        for (const QString &line : lines)
            QCOMPARE(line, utf8("INFO   - a line from a thread"));
    }
};

QTEST_GUILESS_MAIN(TestMessagesInTheLog)

#include "tst_messages_in_the_log.moc"
