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

#include <QDirIterator>
#include <QPointer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

#include <sys/mman.h>

using namespace Log4Qt;
using ZyBase::LoggerObject;

namespace {

const QString fileName = QStringLiteral("app.log");

QString ownAppenderName()
{
    return QStringLiteral("My Appender");
}

// The lines that LoggerObject logs. An installed log4qt also logs what it does itself.
QStringList messagesOf(const CollectingAppender *appender)
{
    QStringList lines = appender->lines();
    if (!OWN_LOG4QT)
        lines = lines.filter(QRegularExpression(QStringLiteral("^(?!DEBUG (Opened|Closing) file)")));
    return lines;
}

// A message at an address that cannot be read.
class UnreadableMessage
{
public:
    UnreadableMessage()
        : m_page(mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
    }
    ~UnreadableMessage() { munmap(m_page, size); }
    bool isValid() const { return m_page != MAP_FAILED; }
    const char *data() const { return static_cast<const char *>(m_page); }

private:
    Q_DISABLE_COPY(UnreadableMessage)

    static constexpr size_t size = 4096;
    void *const m_page;
};

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
    QStringList linesWithoutTime(const QString &name = fileName) const
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
        // Before the first call, there is no instance.
        QVERIFY(LoggerObjectPrivate::s_pLogger == nullptr);
    }
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }
    void cleanup()
    {
        LoggerObject::ReleaseLogger();
        LoggerRepository *const repository = Logger::rootLogger()->loggerRepository();
        repository->shutdown();
        repository->setThreshold(Level(Level::NULL_INT));
        NDC::clear();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void createsInstanceWithLogOff()
    {
        LoggerObject::info("not logged");
        QVERIFY(LoggerObjectPrivate::s_pLogger != nullptr);
        QCOMPARE(LoggerObjectPrivate::getInstance(), LoggerObjectPrivate::s_pLogger);
        QVERIFY(LoggerObjectPrivate::getInstance()->m_pRootLogger == nullptr);
    }

    void startsWithLogOff()
    {
        const LoggerObjectPrivate object;
        QVERIFY(object.m_pRootLogger == nullptr);
    }

    void writesNothingBeforeInit()
    {
        auto *const appender = new CollectingAppender;
        Logger::rootLogger()->addAppender(AppenderSharedPtr(appender));
        LoggerObject::error("e");
        LoggerObject::warn("w");
        LoggerObject::info("i");
        LoggerObject::debug("d");
        QCOMPARE(messagesOf(appender), QStringList());
        QVERIFY(!QFile::exists(m_directory->filePath(QStringLiteral("log"))));
    }

    void createsFileInLogDirectory()
    {
        initLogger();
        QVERIFY(QFile::exists(m_directory->filePath(QStringLiteral("log/app.log"))));
        QCOMPARE(attachedAppender()->file(), m_directory->path() + QStringLiteral("/log/app.log"));
    }

    void keepsPathUnchanged()
    {
        // Double separators are kept.
        LoggerObject::InitLogger("sub//x.log", (m_directory->path() + QLatin1Char('/')).toUtf8().constData());
        QCOMPARE(attachedAppender()->file(), m_directory->path() + QStringLiteral("//log/sub//x.log"));
    }

    void decodesPathAsUtf8()
    {
        const QString folder = m_directory->filePath(QStringLiteral("配置"));
        QVERIFY(QDir().mkdir(folder));
        LoggerObject::InitLogger("журнал.log", folder.toUtf8().constData());
        LoggerObject::info("x");
        QCOMPARE(readLines(folder + QStringLiteral("/log/журнал.log")).size(), 1);
    }

    void createsEmptyFile()
    {
        initLogger();
        QCOMPARE(QFileInfo(logFile()).size(), qint64(0));
    }

    void usesRootLogger()
    {
        initLogger();
        QCOMPARE(LoggerObjectPrivate::getInstance()->m_pRootLogger, Logger::rootLogger());
    }

    void writesMessageAsLine_data()
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
    void writesMessageAsLine()
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
        // The line is in the file when the call returns.
        QCOMPARE(linesWithoutTime(), QStringList {end});
        const QByteArray content = readFile(logFile());
        QVERIFY(content.endsWith(" - the message\n"));
    }

    void writesLocalTimeFirst()
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

    void passesDebugToOtherAppendersOnly()
    {
        auto *const appender = new CollectingAppender;
        Logger::rootLogger()->addAppender(AppenderSharedPtr(appender));
        initLogger();
        LoggerObject::debug("fine detail");
        LoggerObject::info("news");
        QCOMPARE(messagesOf(appender),
                 QStringList({QStringLiteral("DEBUG fine detail"), QStringLiteral("INFO news")}));
        QCOMPARE(linesWithoutTime(), QStringList {QStringLiteral(" INFO   - news")});
    }

    void writesDiagnosticContext()
    {
        initLogger();
        NDC::push(QStringLiteral("outer"));
        NDC::push(QStringLiteral("inner"));
        LoggerObject::info("two deep");
        NDC::pop();
        LoggerObject::warn("one deep");
        NDC::pop();
        LoggerObject::info("none");
        QCOMPARE(linesWithoutTime(),
                 QStringList({QStringLiteral(" INFO  inner - two deep"),
                              QStringLiteral(" WARN  outer - one deep"), QStringLiteral(" INFO   - none")}));
    }

    void writesMessageUnchanged_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("end");
        QTest::newRow("empty") << QByteArray("") << QByteArray(" INFO   - \n");
        QTest::newRow("null pointer") << QByteArray() << QByteArray(" INFO   - \n");
        QTest::newRow("format characters")
            << QByteArray("100 %s %d %n %1 {}") << QByteArray(" INFO   - 100 %s %d %n %1 {}\n");
        QTest::newRow("spaces at both ends") << QByteArray("  x  ") << QByteArray(" INFO   -   x  \n");
        QTest::newRow("several lines") << QByteArray("a\nb\r\nc") << QByteArray(" INFO   - a\nb\r\nc\n");
        QTest::newRow("UTF-8 of two to four bytes")
            << QByteArray("Größe 文件 😀") << QByteArray(" INFO   - Größe 文件 😀\n");
        QTest::newRow("invalid UTF-8")
            << QByteArray("a\xff\xfe") << QByteArray(" INFO   - a\xef\xbf\xbd\xef\xbf\xbd\n");
        const QByteArray longText(100000, 'x');
        QTest::newRow("100,000 bytes") << longText << " INFO   - " + longText + "\n";
    }
    void writesMessageUnchanged()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, end);
        initLogger();
        LoggerObject::info(message.isNull() ? nullptr : message.constData());
        QCOMPARE(readFile(logFile()).mid(23), end);
    }

    void writesEmptyMessageForNullPointerAtOtherLevels()
    {
        initLogger();
        LoggerObject::warn(nullptr);
        LoggerObject::error(nullptr);
        const QStringList lines = readLines(logFile());
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.first().endsWith(QStringLiteral(" WARN   - ")));
        QVERIFY(lines.last().endsWith(QStringLiteral(" ERROR  - ")));
    }

    void continuesExistingFile()
    {
        QVERIFY(QDir().mkpath(QFileInfo(logFile()).path()));
        QVERIFY(writeFile(logFile(), "from an earlier run\n"));
        initLogger();
        LoggerObject::info("x");
        QCOMPARE(readLines(logFile()).size(), 2);
        QCOMPARE(readLines(logFile()).first(), QStringLiteral("from an earlier run"));
    }

    void writesToBothFilesAfterSecondInit()
    {
        initLogger();
        initLogger(QStringLiteral("second.log"));
        LoggerObject::info("x");
        QCOMPARE(linesWithoutTime().size(), 1);
        QCOMPARE(linesWithoutTime(QStringLiteral("second.log")).size(), 1);
        const QList<AppenderSharedPtr> appenders = Logger::rootLogger()->appenders();
        QCOMPARE(appenders.size(), 2);
        QCOMPARE(appenders.at(0)->name(), ownAppenderName());
        QCOMPARE(appenders.at(1)->name(), ownAppenderName());
    }

    void writesLinesTwiceAfterSecondInitOnSameFile()
    {
        initLogger();
        initLogger();
        LoggerObject::info("x");
        LoggerObject::warn("y");
        QCOMPARE(linesWithoutTime(),
                 QStringList({QStringLiteral(" INFO   - x"), QStringLiteral(" INFO   - x"),
                              QStringLiteral(" WARN   - y"), QStringLiteral(" WARN   - y")}));
    }

    void writesInCodecOfLocale()
    {
        QTextCodec *const original = QTextCodec::codecForLocale();
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
        initLogger();
        LoggerObject::info("Größe");
        LoggerObject::ReleaseLogger();
        QTextCodec::setCodecForLocale(original);
        QCOMPARE(readFile(logFile()).mid(23), QByteArray(" INFO   - Gr\xf6\xdf"
                                                         "e\n"));
    }

    void readsNoMessageWhileOff()
    {
        const UnreadableMessage message;
        QVERIFY(message.isValid());
        LoggerObject::ReleaseLogger();
        LoggerObject::error(message.data());
        LoggerObject::warn(message.data());
        LoggerObject::info(message.data());
        LoggerObject::debug(message.data());
        initLogger();
        LoggerObject::ReleaseLogger();
        LoggerObject::info(message.data());
        QCOMPARE(linesWithoutTime(), QStringList());
    }

    // The log contains only the lines of the application.
    void isUsedByNoOtherSource()
    {
        const QDir sources(QStringLiteral(ZYBASE_SOURCES));
        static const QRegularExpression include(QStringLiteral("#include [<\"](log4qt/|.*LoggerObject)"));
        QDirIterator files(sources.path(), {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                           QDirIterator::Subdirectories);
        int checked = 0;
        while (files.hasNext()) {
            const QString file = sources.relativeFilePath(files.next());
            // The umbrella header includes every public header, for applications.
            if (file.startsWith(QStringLiteral("base/")) || file == QStringLiteral("ZyBase.h"))
                continue;
            ++checked;
            const QString source = QString::fromUtf8(readFile(sources.filePath(file)));
            QVERIFY2(!include.match(source).hasMatch(), qPrintable(file));
        }
        QVERIFY(checked > 20);
    }

    void writesNothingAfterRelease()
    {
        initLogger();
        LoggerObject::info("x");
        LoggerObject::ReleaseLogger();
        LoggerObject::error("late");
        LoggerObject::warn("late");
        LoggerObject::info("late");
        LoggerObject::debug("late");
        QCOMPARE(linesWithoutTime(), QStringList {QStringLiteral(" INFO   - x")});
        QVERIFY(LoggerObjectPrivate::getInstance()->m_pRootLogger == nullptr);
    }

    void keepsInstanceAfterRelease()
    {
        initLogger();
        const LoggerObjectPrivate *const instance = LoggerObjectPrivate::s_pLogger;
        LoggerObject::ReleaseLogger();
        QCOMPARE(LoggerObjectPrivate::s_pLogger, instance);
    }

    void ignoresReleaseWhileOff()
    {
        Logger::rootLogger()->addAppender(AppenderSharedPtr(new CollectingAppender));
        Logger::logger(QStringLiteral("app"))->setLevel(Level(Level::WARN_INT));
        LoggerObject::ReleaseLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 1);
        QCOMPARE(Logger::logger(QStringLiteral("app"))->level().toInt(), int(Level::WARN_INT));

        initLogger();
        LoggerObject::ReleaseLogger();
        Logger::rootLogger()->addAppender(AppenderSharedPtr(new CollectingAppender));
        LoggerObject::ReleaseLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 1);
    }

    void resetsLog4qtAtRelease()
    {
        Logger *const other = Logger::logger(QStringLiteral("app::net"));
        other->setLevel(Level(Level::WARN_INT));
        other->addAppender(AppenderSharedPtr(new CollectingAppender));
        Logger::rootLogger()->addAppender(AppenderSharedPtr(new CollectingAppender));
        initLogger();
        LoggerObject::ReleaseLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 0);
        QCOMPARE(other->appenders().size(), 0);
        QCOMPARE(other->level().toInt(), int(Level::NULL_INT));
    }

    void keepsThresholdOfRepositoryAtRelease()
    {
        initLogger();
        LoggerRepository *const repository = Logger::rootLogger()->loggerRepository();
        repository->setThreshold(Level(Level::WARN_INT));
        LoggerObject::info("too low");
        LoggerObject::ReleaseLogger();
        QCOMPARE(repository->threshold().toInt(), int(Level::WARN_INT));
        QCOMPARE(linesWithoutTime(), QStringList());
    }

    void logsAgainAfterSecondInit()
    {
        initLogger();
        LoggerObject::info("first log");
        const QPointer<Appender> first = Logger::rootLogger()->appender(ownAppenderName()).data();
        LoggerObject::ReleaseLogger();
        initLogger();
        LoggerObject::info("second log");
        QVERIFY(first.data() != attachedAppender());
        QCOMPARE(linesWithoutTime(), QStringList({QStringLiteral(" INFO   - first log"),
                                                  QStringLiteral(" INFO   - second log")}));
    }

    void keepsAppendersOfApplication()
    {
        auto *const appender = new CollectingAppender;
        Logger::rootLogger()->addAppender(AppenderSharedPtr(appender));
        initLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 2);
        QCOMPARE(Logger::rootLogger()->appenders().first().data(), static_cast<Appender *>(appender));
        LoggerObject::info("for both");
        QCOMPARE(messagesOf(appender), QStringList {QStringLiteral("INFO for both")});
        QCOMPARE(linesWithoutTime().size(), 1);
    }

    void attachesOneAppender()
    {
        initLogger();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 1);
    }

    void configuresAppender()
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

    void configuresLayout()
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

    void setsLevelOfRootToDebug()
    {
        Logger::rootLogger()->setLevel(Level(Level::OFF_INT));
        initLogger();
        QCOMPARE(Logger::rootLogger()->level().toInt(), 96);
    }

    void filtersByLevelOfRoot()
    {
        initLogger();
        Logger::rootLogger()->setLevel(Level(Level::ERROR_INT));
        LoggerObject::warn("too low");
        LoggerObject::error("high enough");
        QCOMPARE(linesWithoutTime(), QStringList {QStringLiteral(" ERROR  - high enough")});
    }

    void deletesAppenderAndLayoutInEventLoop()
    {
        initLogger();
        const QPointer<QObject> appender(attachedAppender());
        LayoutSharedPtr lastHolder = attachedAppender()->layout();
        const QPointer<QObject> layout(lastHolder.data());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(appender);
        // It is not deleted at once, because log4qt can be in the middle of a call.
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
