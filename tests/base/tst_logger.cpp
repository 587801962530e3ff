// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/base/LoggerObject.h>
#include <ZyBase/base/LoggerObjectPrivate.h>

#include "CollectingAppender.h"
#include "Files.h"

#include <log4qt/dailyrollingfileappender.h>
#include <log4qt/logger.h>
#include <log4qt/loggerrepository.h>
#include <log4qt/ndc.h>
#include <log4qt/ttcclayout.h>

#include <QPointer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Log4Qt;
using ZyBase::LoggerObject;

namespace {

const QString fileName = QStringLiteral("app.log");

QString ownAppenderName()
{
    return QStringLiteral("My Appender");
}

DailyRollingFileAppender *attachedAppender()
{
    return dynamic_cast<DailyRollingFileAppender *>(Logger::rootLogger()->appender(ownAppenderName()).data());
}

} // namespace

class TestLogger : public QObject
{
    Q_OBJECT

private:
    void initLogger(const QString &name = fileName)
    {
        LoggerObject::InitLogger(name.toUtf8().constData(), m_directory->path().toUtf8().constData());
    }
    QString logFile(const QString &name = fileName) const
    {
        return m_directory->filePath(QStringLiteral("log/") + name);
    }
    // The lines without their time stamps, which have a fixed length.
    QStringList texts(const QString &name = fileName) const
    {
        QStringList lines = readLines(logFile(name));
        for (QString &line : lines)
            line.remove(0, QStringLiteral("2026-11-20 07:37:57.106").size());
        return lines;
    }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void initTestCase()
    {
        // Before the first call there is no instance.
        QVERIFY(LoggerObjectPrivate::s_pLogger == nullptr);
    }
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }
    void cleanup()
    {
        LoggerObject::ReleaseLogger();
        Logger::rootLogger()->loggerRepository()->shutdown();
        NDC::clear();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void firstCallMakesTheInstanceWithTheLogOff()
    {
        LoggerObject::info("nobody hears this");
        QVERIFY(LoggerObjectPrivate::s_pLogger != nullptr);
        QCOMPARE(LoggerObjectPrivate::getInstance(), LoggerObjectPrivate::s_pLogger);
        QVERIFY(LoggerObjectPrivate::getInstance()->m_pRootLogger == nullptr);
    }

    void newWorkingObjectIsOff()
    {
        const LoggerObjectPrivate object;
        QVERIFY(object.m_pRootLogger == nullptr);
    }

    void messagesBeforeInitWriteNothing()
    {
        const auto host = new CollectingAppender;
        Logger::rootLogger()->addAppender(AppenderSharedPtr(host));
        LoggerObject::error("e");
        LoggerObject::warn("w");
        LoggerObject::info("i");
        LoggerObject::debug("d");
        QCOMPARE(host->lines(), QStringList());
        QVERIFY(!QFile::exists(m_directory->filePath(QStringLiteral("log"))));
    }

    void fileLiesBelowBaseDirectoryInLog()
    {
        initLogger();
        QVERIFY(QFile::exists(m_directory->filePath(QStringLiteral("log/app.log"))));
        QCOMPARE(attachedAppender()->file(), m_directory->path() + QStringLiteral("/log/app.log"));
    }

    void pathIsPutTogetherAsGiven()
    {
        // No separator is cleaned away.
        LoggerObject::InitLogger("sub//x.log", (m_directory->path() + QLatin1Char('/')).toUtf8().constData());
        QCOMPARE(attachedAppender()->file(), m_directory->path() + QStringLiteral("//log/sub//x.log"));
    }

    void fileAndFolderNamesAreUtf8()
    {
        const QString folder = m_directory->filePath(QStringLiteral("配置"));
        QVERIFY(QDir().mkdir(folder));
        LoggerObject::InitLogger("журнал.log", folder.toUtf8().constData());
        LoggerObject::info("x");
        QCOMPARE(readLines(folder + QStringLiteral("/log/журнал.log")).size(), 1);
    }

    void nothingIsWrittenBeforeTheFirstLine()
    {
        initLogger();
        QCOMPARE(QFileInfo(logFile()).size(), qint64(0));
    }

    void initSwitchesTheLogOnAtTheRootLogger()
    {
        initLogger();
        QCOMPARE(LoggerObjectPrivate::getInstance()->m_pRootLogger, Logger::rootLogger());
    }

    void messageIsOneLineInTheFile_data()
    {
        QTest::addColumn<bool>("viaFacade");
        QTest::addColumn<QString>("level");
        QTest::addColumn<QString>("end");
        for (const bool viaFacade : {true, false}) {
            const char *const by = viaFacade ? "facade" : "working object";
            QTest::addRow("%s: error", by) << viaFacade << "error"
                                           << " ERROR  - the message";
            QTest::addRow("%s: warn", by) << viaFacade << "warn"
                                          << " WARN   - the message";
            QTest::addRow("%s: info", by) << viaFacade << "info"
                                          << " INFO   - the message";
        }
    }
    void messageIsOneLineInTheFile()
    {
        QFETCH(bool, viaFacade);
        QFETCH(QString, level);
        QFETCH(QString, end);
        initLogger();
        auto *const object = LoggerObjectPrivate::getInstance();
        const char *const message = "the message";
        if (level == QLatin1String("error"))
            viaFacade ? LoggerObject::error(message) : object->error(message);
        else if (level == QLatin1String("warn"))
            viaFacade ? LoggerObject::warn(message) : object->warn(message);
        else
            viaFacade ? LoggerObject::info(message) : object->info(message);
        // It is in the file when the call returns.
        QCOMPARE(texts(), QStringList {end});
        const QByteArray content = readFile(logFile());
        QVERIFY(content.endsWith(" - the message\n"));
    }

    void lineBeginsWithTheLocalTime()
    {
        initLogger();
        const QDateTime before = QDateTime::currentDateTime();
        LoggerObject::info("x");
        const QDateTime after = QDateTime::currentDateTime();
        const QString line = readLines(logFile()).value(0);
        static const QRegularExpression form(
            QStringLiteral(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} INFO   - x$)"));
        QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
        const QDateTime stamp =
            QDateTime::fromString(line.left(23), QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
        QVERIFY(before <= stamp);
        QVERIFY(stamp <= after);
    }

    void debugReachesLog4qtButNotTheFile()
    {
        const auto host = new CollectingAppender;
        Logger::rootLogger()->addAppender(AppenderSharedPtr(host));
        initLogger();
        LoggerObject::debug("fine detail");
        LoggerObject::info("news");
        QCOMPARE(host->lines(),
                 QStringList({QStringLiteral("DEBUG fine detail"), QStringLiteral("INFO news")}));
        QCOMPARE(texts(), QStringList {QStringLiteral(" INFO   - news")});
    }

    void diagnosticContextStandsInTheLine()
    {
        initLogger();
        NDC::push(QStringLiteral("outer"));
        NDC::push(QStringLiteral("inner"));
        LoggerObject::info("two deep");
        NDC::pop();
        LoggerObject::warn("one deep");
        NDC::pop();
        LoggerObject::info("none");
        QCOMPARE(texts(),
                 QStringList({QStringLiteral(" INFO  inner - two deep"),
                              QStringLiteral(" WARN  outer - one deep"), QStringLiteral(" INFO   - none")}));
    }

    void textIsTakenAsItIs_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("end");
        QTest::newRow("empty") << QByteArray("") << QByteArray(" INFO   - \n");
        QTest::newRow("null pointer") << QByteArray() << QByteArray(" INFO   - \n");
        QTest::newRow("format characters")
            << QByteArray("100 %s %d %n %1 {}") << QByteArray(" INFO   - 100 %s %d %n %1 {}\n");
        QTest::newRow("blanks at both ends") << QByteArray("  x  ") << QByteArray(" INFO   -   x  \n");
        QTest::newRow("several lines") << QByteArray("a\nb\r\nc") << QByteArray(" INFO   - a\nb\r\nc\n");
        QTest::newRow("UTF-8 of two to four bytes")
            << QByteArray("Größe 文件 😀") << QByteArray(" INFO   - Größe 文件 😀\n");
        QTest::newRow("invalid UTF-8")
            << QByteArray("a\xff\xfe") << QByteArray(" INFO   - a\xef\xbf\xbd\xef\xbf\xbd\n");
        const QByteArray longText(100000, 'x');
        QTest::newRow("100,000 bytes") << longText << " INFO   - " + longText + "\n";
    }
    void textIsTakenAsItIs()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, end);
        initLogger();
        LoggerObject::info(message.isNull() ? nullptr : message.constData());
        QCOMPARE(readFile(logFile()).mid(23), end);
    }

    void existingLogIsContinued()
    {
        QVERIFY(QDir().mkpath(QFileInfo(logFile()).path()));
        QVERIFY(writeFile(logFile(), "from an earlier run\n"));
        initLogger();
        LoggerObject::info("x");
        QCOMPARE(readLines(logFile()).size(), 2);
        QCOMPARE(readLines(logFile()).first(), QStringLiteral("from an earlier run"));
    }

    void secondInitWithoutReleaseWritesToBothFiles()
    {
        initLogger();
        initLogger(QStringLiteral("second.log"));
        LoggerObject::info("x");
        QCOMPARE(texts().size(), 1);
        QCOMPARE(texts(QStringLiteral("second.log")).size(), 1);
        const QList<AppenderSharedPtr> appenders = Logger::rootLogger()->appenders();
        QCOMPARE(appenders.size(), 2);
        QCOMPARE(appenders.at(0)->name(), ownAppenderName());
        QCOMPARE(appenders.at(1)->name(), ownAppenderName());
    }

    void secondInitOnTheSameFileWritesEveryLineTwice()
    {
        initLogger();
        initLogger();
        LoggerObject::info("x");
        LoggerObject::warn("y");
        QCOMPARE(texts(), QStringList({QStringLiteral(" INFO   - x"), QStringLiteral(" INFO   - x"),
                                       QStringLiteral(" WARN   - y"), QStringLiteral(" WARN   - y")}));
    }

    void releaseEndsTheLog()
    {
        initLogger();
        LoggerObject::info("x");
        LoggerObject::ReleaseLogger();
        LoggerObject::error("late");
        LoggerObject::warn("late");
        LoggerObject::info("late");
        LoggerObject::debug("late");
        QCOMPARE(texts(), QStringList {QStringLiteral(" INFO   - x")});
        QVERIFY(LoggerObjectPrivate::getInstance()->m_pRootLogger == nullptr);
    }

    void releaseKeepsTheInstance()
    {
        initLogger();
        const LoggerObjectPrivate *const instance = LoggerObjectPrivate::s_pLogger;
        LoggerObject::ReleaseLogger();
        QCOMPARE(LoggerObjectPrivate::s_pLogger, instance);
    }

    void releaseWhileOffDoesNothing()
    {
        Logger::rootLogger()->addAppender(AppenderSharedPtr(new CollectingAppender));
        Logger::logger(QStringLiteral("host"))->setLevel(Level(Level::WARN_INT));
        LoggerObject::ReleaseLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 1);
        QCOMPARE(Logger::logger(QStringLiteral("host"))->level().toInt(), int(Level::WARN_INT));

        initLogger();
        LoggerObject::ReleaseLogger();
        Logger::rootLogger()->addAppender(AppenderSharedPtr(new CollectingAppender));
        LoggerObject::ReleaseLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 1);
    }

    void releaseResetsAllOfLog4qt()
    {
        Logger *const other = Logger::logger(QStringLiteral("host::net"));
        other->setLevel(Level(Level::WARN_INT));
        other->addAppender(AppenderSharedPtr(new CollectingAppender));
        Logger::rootLogger()->addAppender(AppenderSharedPtr(new CollectingAppender));
        initLogger();
        LoggerObject::ReleaseLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 0);
        QCOMPARE(other->appenders().size(), 0);
        QCOMPARE(other->level().toInt(), int(Level::NULL_INT));
    }

    void initAfterReleaseLogsAgain()
    {
        initLogger();
        LoggerObject::info("first life");
        const QPointer<Appender> first = Logger::rootLogger()->appender(ownAppenderName()).data();
        LoggerObject::ReleaseLogger();
        initLogger();
        LoggerObject::info("second life");
        QVERIFY(first.data() != attachedAppender());
        QCOMPARE(texts(), QStringList({QStringLiteral(" INFO   - first life"),
                                       QStringLiteral(" INFO   - second life")}));
    }

    void hostsOwnAppendersAreLeftAlone()
    {
        const auto host = new CollectingAppender;
        Logger::rootLogger()->addAppender(AppenderSharedPtr(host));
        initLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 2);
        QCOMPARE(Logger::rootLogger()->appenders().first().data(), static_cast<Appender *>(host));
        LoggerObject::info("for both");
        QCOMPARE(host->lines(), QStringList {QStringLiteral("INFO for both")});
        QCOMPARE(texts().size(), 1);
    }

    void noOtherAppenderIsAttached()
    {
        initLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 1);
    }

    void appenderHasItsSettings()
    {
        initLogger();
        const DailyRollingFileAppender *const appender = attachedAppender();
        QVERIFY(appender);
        QCOMPARE(appender->name(), ownAppenderName());
        QCOMPARE(appender->threshold().toInt(), 128);
        QVERIFY(appender->appendFile());
        QVERIFY(appender->bufferedIo());
        QVERIFY(appender->immediateFlush());
        QVERIFY(appender->encoding() == nullptr);
        QCOMPARE(appender->datePattern(), QStringLiteral("'.'yyyy-MM"));
        QVERIFY(appender->isActive());
        QVERIFY(appender->parent() == nullptr);
    }

    void layoutHasItsSettings()
    {
        initLogger();
        const LayoutSharedPtr shared = attachedAppender()->layout();
        const auto *const layout = dynamic_cast<TTCCLayout *>(shared.data());
        QVERIFY(layout);
        QCOMPARE(layout->objectName(), QStringLiteral("My Layout"));
        QVERIFY(!layout->categoryPrefixing());
        QVERIFY(!layout->threadPrinting());
        QVERIFY(layout->contextPrinting());
        QCOMPARE(layout->dateFormat(), QStringLiteral("ISO8601"));
        QVERIFY(layout->parent() == nullptr);
    }

    void initSetsTheRootLevelToDebug()
    {
        Logger::rootLogger()->setLevel(Level(Level::OFF_INT));
        initLogger();
        QCOMPARE(Logger::rootLogger()->level().toInt(), 96);
    }

    void raisedRootLevelSilencesTheLog()
    {
        initLogger();
        Logger::rootLogger()->setLevel(Level(Level::ERROR_INT));
        LoggerObject::warn("too low");
        LoggerObject::error("high enough");
        QCOMPARE(texts(), QStringList {QStringLiteral(" ERROR  - high enough")});
    }

    void appenderAndLayoutGoWithTheEventLoop()
    {
        initLogger();
        const QPointer<QObject> appender(attachedAppender());
        LayoutSharedPtr lastHolder = attachedAppender()->layout();
        const QPointer<QObject> layout(lastHolder.data());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(appender);
        // Never at once: log4qt may be in the middle of a call.
        LoggerObject::ReleaseLogger();
        QVERIFY(appender);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!appender);
        lastHolder.reset();
        QVERIFY(layout);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!layout);
    }
};

QTEST_GUILESS_MAIN(TestLogger)

#include "tst_logger.moc"
