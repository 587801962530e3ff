// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"

#include <log4qt/dailyrollingfileappender.h>
#include <log4qt/fileappender.h>
#include <log4qt/loggingevent.h>
#include <log4qt/ttcclayout.h>

#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QTextStream>

#include <unistd.h>

using namespace Log4Qt;

namespace {

// Writes the message only.
class PlainLayout : public Layout
{
public:
    QString format(const LoggingEvent &event) override { return event.message() + QLatin1Char('\n'); }
};

// Redirects the standard error stream to a file until it is destroyed.
class ErrorStreamCapture
{
public:
    ErrorStreamCapture()
        : m_original(dup(STDERR_FILENO))
    {
        if (m_file.open())
            dup2(m_file.handle(), STDERR_FILENO);
    }
    ~ErrorStreamCapture()
    {
        dup2(m_original, STDERR_FILENO);
        close(m_original);
    }
    QStringList lines() const { return readLines(m_file.fileName()); }

private:
    Q_DISABLE_COPY(ErrorStreamCapture)

    QTemporaryFile m_file;
    const int m_original;
};

LoggingEvent eventOf(const QString &message)
{
    return LoggingEvent(nullptr, Level(Level::INFO_INT), message);
}

} // namespace

class TestLog4QtAppenders : public QObject
{
    Q_OBJECT

private:
    QString path() const { return m_directory->filePath(QStringLiteral("file.log")); }
    void prepare(FileAppender *appender, Layout *layout = new PlainLayout) const
    {
        appender->setLayout(LayoutSharedPtr(layout));
        appender->setFile(path());
    }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }
    void cleanup() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    void emptiesOrContinuesFile_data()
    {
        QTest::addColumn<bool>("append");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("emptied") << false << QByteArray("new\n");
        QTest::newRow("continued") << true << QByteArray("old\nnew\n");
    }
    void emptiesOrContinuesFile()
    {
        QFETCH(bool, append);
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(path(), "old\n"));
        FileAppender appender;
        QVERIFY(!appender.appendFile());
        prepare(&appender);
        appender.setAppendFile(append);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("new")));
        QCOMPARE(readFile(path()), content);
    }

    void writesLineAtOnce()
    {
        FileAppender appender;
        QVERIFY(appender.immediateFlush());
        prepare(&appender);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("x")));
        QCOMPARE(readFile(path()), QByteArray("x\n"));
    }

    void buffersOnlyIfBothSettingsAllow_data()
    {
        QTest::addColumn<bool>("immediate");
        QTest::addColumn<bool>("buffered");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("immediate, buffered") << true << true << QByteArray("x\n");
        QTest::newRow("immediate, unbuffered") << true << false << QByteArray("x\n");
        QTest::newRow("later, unbuffered") << false << false << QByteArray("x\n");
        QTest::newRow("later, buffered") << false << true << QByteArray("");
    }
    void buffersOnlyIfBothSettingsAllow()
    {
        QFETCH(bool, immediate);
        QFETCH(bool, buffered);
        QFETCH(QByteArray, content);
        FileAppender appender;
        prepare(&appender);
        appender.setImmediateFlush(immediate);
        appender.setBufferedIo(buffered);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("x")));
        QCOMPARE(readFile(path()), content);
        appender.close();
        QCOMPARE(readFile(path()), QByteArray("x\n"));
    }

    void flushesBufferedLinesAfterSwitch()
    {
        FileAppender appender;
        prepare(&appender);
        appender.setImmediateFlush(false);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("held back")));
        appender.setImmediateFlush(true);
        appender.doAppend(eventOf(QStringLiteral("at once")));
        QCOMPARE(readFile(path()), QByteArray("held back\nat once\n"));
    }

    void writesBufferedLinesWhenDeleted()
    {
        auto appender = std::make_unique<FileAppender>();
        prepare(appender.get());
        appender->setImmediateFlush(false);
        appender->activateOptions();
        appender->doAppend(eventOf(QStringLiteral("held back")));
        appender.reset();
        QCOMPARE(readFile(path()), QByteArray("held back\n"));
    }

    void opensOtherFileWhenActivatedAgain()
    {
        FileAppender appender;
        prepare(&appender);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("first")));
        const QString second = m_directory->filePath(QStringLiteral("second.log"));
        appender.setFile(second);
        QCOMPARE(appender.file(), second);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("second")));
        QCOMPARE(readFile(path()), QByteArray("first\n"));
        QCOMPARE(readFile(second), QByteArray("second\n"));
    }

    void writesNothingAfterClose()
    {
        FileAppender appender;
        prepare(&appender);
        appender.activateOptions();
        appender.close();
        appender.doAppend(eventOf(QStringLiteral("late")));
        QCOMPARE(readFile(path()), QByteArray(""));
    }

    void continuesWhenFileCanBeOpenedAgain()
    {
        FileAppender appender;
        prepare(&appender);
        appender.setName(QStringLiteral("name"));
        appender.activateOptions();
        const QString directory = m_directory->filePath(QStringLiteral("missing"));
        const QString file = directory + QStringLiteral("/log/file.log");
        appender.setFile(file);
        const ErrorStreamCapture errors;
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("dropped")));
        const QString error =
            QStringLiteral("log4qt: appender 'name' can't open file '%1': No such file or directory")
                .arg(file);
        QCOMPARE(errors.lines(), QStringList({error, error}));

        QVERIFY(QDir().mkdir(directory));
        appender.doAppend(eventOf(QStringLiteral("first")));
        appender.doAppend(eventOf(QStringLiteral("second")));
        QCOMPARE(readFile(file), QByteArray("first\nsecond\n"));
        QCOMPARE(errors.lines().size(), 2);
    }

    void reportsEventsWithoutDevice()
    {
        class DeviceAppender : public WriterAppender
        {
        protected:
            bool flushDevice() override { return true; }
        };
        DeviceAppender appender;
        appender.setName(QStringLiteral("name"));
        appender.setLayout(LayoutSharedPtr(new PlainLayout));
        appender.activateOptions();
        const ErrorStreamCapture errors;
        appender.doAppend(eventOf(QStringLiteral("dropped")));
        QCOMPARE(errors.lines(), QStringList {QStringLiteral(
                                     "log4qt: appender 'name' has no open file: the event is dropped")});
    }

    void reportsLinesOnFullDisk()
    {
        FileAppender appender;
        prepare(&appender);
        appender.setFile(QStringLiteral("/dev/full"));
        appender.setName(QStringLiteral("full"));
        appender.activateOptions();
        const ErrorStreamCapture errors;
        appender.doAppend(eventOf(QStringLiteral("first")));
        appender.doAppend(eventOf(QStringLiteral("second")));
        const QString error = QStringLiteral("log4qt: appender 'full' can't write: No space left on device");
        QCOMPARE(errors.lines(), QStringList({error, error}));
    }

    void reportsFailedFlush()
    {
        FileAppender appender;
        prepare(&appender);
        appender.setFile(QStringLiteral("/dev/full"));
        appender.setName(QStringLiteral("full"));
        appender.setBufferedIo(true);
        appender.setImmediateFlush(false);
        appender.activateOptions();
        appender.setImmediateFlush(true);
        const ErrorStreamCapture errors;
        appender.doAppend(eventOf(QStringLiteral("buffered")));
        QCOMPARE(errors.lines(), QStringList {QStringLiteral(
                                     "log4qt: appender 'full' can't write: No space left on device")});
    }

    void createsOneMissingDirectoryOnly()
    {
        FileAppender appender;
        prepare(&appender);
        appender.setFile(m_directory->filePath(QStringLiteral("one/file.log")));
        appender.activateOptions();
        QVERIFY(appender.isActive());
        appender.setFile(m_directory->filePath(QStringLiteral("two/levels/file.log")));
        FileAppender second;
        prepare(&second);
        second.setFile(appender.file());
        second.activateOptions();
        QVERIFY(!second.isActive());
        QVERIFY(!QFile::exists(m_directory->filePath(QStringLiteral("two"))));
    }

    void dropsEventsWithoutLayout()
    {
        FileAppender appender;
        appender.setFile(path());
        appender.activateOptions();
        appender.setName(QStringLiteral("name"));
        QVERIFY(appender.requiresLayout());
        const ErrorStreamCapture errors;
        appender.doAppend(eventOf(QStringLiteral("x")));
        QCOMPARE(readFile(path()), QByteArray(""));
        QCOMPARE(errors.lines(),
                 QStringList {QStringLiteral("log4qt: appender 'name' has no layout: the event is dropped")});
    }

    void dropsEventsBeforeActivation()
    {
        FileAppender appender;
        prepare(&appender);
        appender.setName(QStringLiteral("name"));
        const ErrorStreamCapture errors;
        appender.doAppend(eventOf(QStringLiteral("x")));
        QVERIFY(!QFile::exists(path()));
        QCOMPARE(errors.lines(),
                 QStringList {QStringLiteral("log4qt: appender 'name' is not active: the event is dropped")});
    }

    void writesHeaderAndFooterAsLines()
    {
        FileAppender appender;
        auto *const layout = new PlainLayout;
        layout->setHeader(QStringLiteral("<log>"));
        layout->setFooter(QStringLiteral("</log>"));
        prepare(&appender, layout);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("x")));
        QCOMPARE(readFile(path()), QByteArray("<log>\nx\n"));
        appender.close();
        QCOMPARE(readFile(path()), QByteArray("<log>\nx\n</log>\n"));
    }

    void writesBytesOfCodec_data()
    {
        QTest::addColumn<QByteArray>("codec");
        for (const char *name : {"UTF-8", "UTF-16", "UTF-16BE", "ISO-8859-1", "GB18030", "Shift_JIS"})
            QTest::newRow(name) << QByteArray(name);
        QTest::newRow("codec of the locale") << QByteArray();
    }
    // A text stream that is flushed after each line writes the same bytes.
    void writesBytesOfCodec()
    {
        QFETCH(QByteArray, codec);
        QTextCodec *const encoding = codec.isNull() ? nullptr : QTextCodec::codecForName(codec);
        if (!codec.isNull() && !encoding)
            QSKIP("this Qt lacks the codec");
        const QStringList lines {QStringLiteral("plain"),
                                 QStringLiteral("Größe"),
                                 QStringLiteral("日本語 文件"),
                                 QStringLiteral("emoji 😀"),
                                 QString(QChar(0xd800)),
                                 QStringLiteral("a\u0000b"),
                                 QString(QChar(0xdc00)) + QStringLiteral("low first"),
                                 QString(),
                                 QString(20000, QLatin1Char('x'))};
        QFile expected(m_directory->filePath(QStringLiteral("expected")));
        QVERIFY(expected.open(QIODevice::WriteOnly | QIODevice::Text));
        QTextStream stream(&expected);
        if (encoding)
            stream.setCodec(encoding);

        FileAppender appender;
        prepare(&appender);
        appender.setEncoding(encoding);
        QCOMPARE(appender.encoding(), encoding);
        appender.activateOptions();
        for (const QString &line : lines) {
            stream << line << '\n';
            stream.flush();
            appender.doAppend(eventOf(line));
        }
        QCOMPARE(readFile(path()), readFile(expected.fileName()));
    }

    void rejectsPatternWithoutPeriod()
    {
        DailyRollingFileAppender appender;
        prepare(&appender);
        appender.setDatePattern(QStringLiteral("'.log'"));
        appender.setName(QStringLiteral("rolling"));
        const ErrorStreamCapture errors;
        appender.activateOptions();
        QVERIFY(!appender.isActive());
        QVERIFY(!QFile::exists(path()));
        QCOMPARE(errors.lines(), QStringList {QStringLiteral(
                                     "log4qt: appender 'rolling': the date pattern ''.log'' has no period")});
    }

    void opensFileForEveryPeriod_data()
    {
        QTest::addColumn<int>("datePattern");
        QTest::newRow("minute") << int(DailyRollingFileAppender::MINUTELY_ROLLOVER);
        QTest::newRow("hour") << int(DailyRollingFileAppender::HOURLY_ROLLOVER);
        QTest::newRow("half day") << int(DailyRollingFileAppender::HALFDAILY_ROLLOVER);
        QTest::newRow("day") << int(DailyRollingFileAppender::DAILY_ROLLOVER);
        QTest::newRow("week") << int(DailyRollingFileAppender::WEEKLY_ROLLOVER);
        QTest::newRow("month") << int(DailyRollingFileAppender::MONTHLY_ROLLOVER);
    }
    void opensFileForEveryPeriod()
    {
        QFETCH(int, datePattern);
        DailyRollingFileAppender appender;
        prepare(&appender);
        appender.setDatePattern(DailyRollingFileAppender::DatePattern(datePattern));
        appender.activateOptions();
        QVERIFY(appender.isActive());
        QVERIFY(QFile::exists(path()));
    }

    void returnsDailyPatternByDefault()
    {
        QCOMPARE(DailyRollingFileAppender().datePattern(), QStringLiteral("'.'yyyy-MM-dd"));
    }
};

QTEST_GUILESS_MAIN(TestLog4QtAppenders)

#include "tst_log4qt_appenders.moc"
