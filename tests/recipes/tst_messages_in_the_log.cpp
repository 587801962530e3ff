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

// Without the time, which is 24 characters wide.
QStringList linesOf(const QString &path)
{
    QStringList lines;
    const QStringList all = readLines(path);
    for (const QString &line : all)
        lines << (line.startsWith(QLatin1Char(' ')) ? line : line.mid(24));
    return lines;
}

std::atomic<int> s_passedOn {0};

void countMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++s_passedOn;
}

// A host's own appender that has something to say itself.
class TalkingAppender : public Log4Qt::AppenderSkeleton
{
public:
    TalkingAppender() { activateOptions(); }
    bool requiresLayout() const override { return false; }

protected:
    void append(const Log4Qt::LoggingEvent &) override { qWarning("from within"); }
};

} // namespace

class TestMessagesInTheLog : public QObject
{
    Q_OBJECT

private:
    QString logPath() const { return m_directory->filePath(utf8("log/host.log")); }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void logHoldsWhatWasSaidUntilItIsClosed()
    {
        const RecipeRun run({QStringLiteral(RECIPE), m_directory->path()});
        QCOMPARE(run.exitCode, 0);
        const QStringList expected {
            utf8("INFO   - example.host: before the log is open"),
            utf8("ERROR  - ZIP 文件不存在： \"%1/missing.zip\"").arg(m_directory->path()),
            utf8("WARN   - example.host: from a thread"),
            utf8("    in two lines"),
        };
        QCOMPARE(linesOf(logPath()), expected);
    }

    void terminalStillShowsAllMessages()
    {
        qputenv("LC_ALL", "C.UTF-8");
        const RecipeRun run({QStringLiteral(RECIPE), m_directory->path()});
        for (const char *part : {"before the log is open", "ZIP 文件不存在", "from a thread\nin two lines",
                                 "never in the file", "after the log is closed"})
            QCOMPARE(run.standardError.count(utf8(part)), 1);
        QVERIFY(run.standardError.contains(utf8("Problem opening save file")));
    }

    void fatalMessageIsTheLastLine()
    {
        const pid_t host = fork();
        if (host == 0) {
            constexpr rlimit none {0, 0};
            setrlimit(RLIMIT_CORE, &none);
            std::signal(SIGABRT, SIG_DFL);
            qInstallMessageHandler(countMessage);
            captureMessages();
            openLog(utf8("host.log"), m_directory->path());
            qFatal("the end");
        }
        int status = 0;
        QCOMPARE(waitpid(host, &status, 0), host);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(linesOf(logPath()), QStringList {utf8("ERROR  - the end")});
    }

    void levelsAreThoseOfTheLog()
    {
        const QtMessageHandler previous = qInstallMessageHandler(countMessage);
        captureMessages();
        openLog(utf8("host.log"), m_directory->path());
        qDebug() << "debug";
        qInfo("info %d", 1);
        qWarning("warning\n2026-11-20 07:37:57.106 ERROR  - forged");
        qCritical("critical");
        qCWarning(QLoggingCategory("qt.network.ssl"), "category");
        closeLog();
        qInstallMessageHandler(previous);
        const QStringList expected {utf8("INFO   - info 1"), utf8("WARN   - warning"),
                                    utf8("    2026-11-20 07:37:57.106 ERROR  - forged"),
                                    utf8("ERROR  - critical"), utf8("WARN   - qt.network.ssl: category")};
        QCOMPARE(linesOf(logPath()), expected);
    }

    void formerHandlerIsBackAfterwards()
    {
        s_passedOn = 0;
        const QtMessageHandler previous = qInstallMessageHandler(countMessage);
        captureMessages();
        openLog(utf8("host.log"), m_directory->path());
        qInfo("logged and passed on");
        closeLog();
        qInfo("passed on");
        QVERIFY(qInstallMessageHandler(previous) == countMessage);
        QCOMPARE(s_passedOn.load(), 2);
        QCOMPARE(linesOf(logPath()), QStringList {utf8("INFO   - logged and passed on")});
    }

    // Qt prints it on the standard error stream by itself: a handler needs no guard of its own.
    void messageRaisedWhileOneIsLoggedGoesNoFurther()
    {
        s_passedOn = 0;
        const QtMessageHandler previous = qInstallMessageHandler(countMessage);
        captureMessages();
        openLog(utf8("host.log"), m_directory->path());
        const QSharedPointer<Log4Qt::Appender> appender(new TalkingAppender);
        Log4Qt::Logger::rootLogger()->addAppender(appender);
        qInfo("message");
        closeLog();
        qInstallMessageHandler(previous);
        QCOMPARE(s_passedOn.load(), 1);
        QCOMPARE(linesOf(logPath()), QStringList {utf8("INFO   - message")});
    }

    void threadsThatLogWhileItIsOpenedAndClosedLoseNoWholeLine()
    {
        const QtMessageHandler previous = qInstallMessageHandler(countMessage);
        s_passedOn = 0;
        captureMessages();
        std::atomic<bool> isOver {false};
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&isOver] {
                while (!isOver)
                    qInfo("%s", "a line from a thread");
            });
        const auto passOn = [] { return s_passedOn > 100; };
        QTRY_VERIFY(passOn());
        openLog(utf8("host.log"), m_directory->path());
        s_passedOn = 0;
        QTRY_VERIFY(passOn());
        closeLog();
        s_passedOn = 0;
        QTRY_VERIFY(passOn()); // by the former handler alone
        isOver = true;
        for (std::thread &thread : threads)
            thread.join();
        qInstallMessageHandler(previous);
        const QStringList lines = linesOf(logPath());
        QVERIFY(lines.size() > 200);
        for (const QString &line : lines)
            QCOMPARE(line, utf8("INFO   - a line from a thread"));
    }
};

QTEST_GUILESS_MAIN(TestMessagesInTheLog)

#include "tst_messages_in_the_log.moc"
