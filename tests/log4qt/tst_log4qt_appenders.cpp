// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"

#include <log4qt/dailyrollingfileappender.h>
#include <log4qt/fileappender.h>
#include <log4qt/loggingevent.h>
#include <log4qt/ttcclayout.h>

#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

using namespace Log4Qt;

namespace {

// Writes the message as it is, with what a file begins and ends with.
class PlainLayout : public Layout
{
public:
    explicit PlainLayout(const QString &header = QString(), const QString &footer = QString())
        : m_header(header)
        , m_footer(footer)
    {
    }
    QString format(const LoggingEvent &event) override { return event.message() + QLatin1Char('\n'); }
    QString header() const override { return m_header; }
    QString footer() const override { return m_footer; }

private:
    QString m_header;
    QString m_footer;
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

    void fileIsEmptiedUnlessItIsToBeContinued_data()
    {
        QTest::addColumn<bool>("append");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("emptied") << false << QByteArray("new\n");
        QTest::newRow("continued") << true << QByteArray("old\nnew\n");
    }
    void fileIsEmptiedUnlessItIsToBeContinued()
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

    void lineIsInTheFileAtOnce()
    {
        FileAppender appender;
        QVERIFY(appender.immediateFlush());
        prepare(&appender);
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("x")));
        QCOMPARE(readFile(path()), QByteArray("x\n"));
    }

    void linesAreHeldBackOnlyWhereBothSettingsAllowIt_data()
    {
        QTest::addColumn<bool>("immediate");
        QTest::addColumn<bool>("buffered");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("immediate, buffered") << true << true << QByteArray("x\n");
        QTest::newRow("immediate, unbuffered") << true << false << QByteArray("x\n");
        QTest::newRow("later, unbuffered") << false << false << QByteArray("x\n");
        QTest::newRow("later, buffered") << false << true << QByteArray("");
    }
    void linesAreHeldBackOnlyWhereBothSettingsAllowIt()
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

    void flushMaySwitchedOnLater()
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

    void deletedAppenderLeavesAllInTheFile()
    {
        auto appender = std::make_unique<FileAppender>();
        prepare(appender.get());
        appender->setImmediateFlush(false);
        appender->activateOptions();
        appender->doAppend(eventOf(QStringLiteral("held back")));
        appender.reset();
        QCOMPARE(readFile(path()), QByteArray("held back\n"));
    }

    void activatingAgainOpensTheOtherFile()
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

    void closedAppenderWritesNoMore()
    {
        FileAppender appender;
        prepare(&appender);
        appender.activateOptions();
        appender.close();
        appender.doAppend(eventOf(QStringLiteral("late")));
        QCOMPARE(readFile(path()), QByteArray(""));
    }

    void oneMissingDirectoryIsMadeAndNoMore()
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

    void appenderWithoutLayoutDropsEvents()
    {
        FileAppender appender;
        appender.setFile(path());
        appender.activateOptions();
        QVERIFY(appender.requiresLayout());
        appender.doAppend(eventOf(QStringLiteral("x")));
        QCOMPARE(readFile(path()), QByteArray(""));
    }

    void headerAndFooterStandAroundTheLines()
    {
        FileAppender appender;
        prepare(&appender, new PlainLayout(QStringLiteral("<log>\n"), QStringLiteral("</log>\n")));
        appender.activateOptions();
        appender.doAppend(eventOf(QStringLiteral("x")));
        QCOMPARE(readFile(path()), QByteArray("<log>\nx\n"));
        appender.close();
        QCOMPARE(readFile(path()), QByteArray("<log>\nx\n</log>\n"));
    }

    void encodingIsTheCodecsOwn_data()
    {
        QTest::addColumn<QByteArray>("codec");
        for (const char *name : {"UTF-8", "UTF-16", "UTF-16BE", "ISO-8859-1", "GB18030", "Shift_JIS"})
            QTest::newRow(name) << QByteArray(name);
        QTest::newRow("of the locale") << QByteArray();
    }
    // The bytes are those of a text stream that is flushed after each line.
    void encodingIsTheCodecsOwn()
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

    void patternWithoutPeriodsActivatesNothing()
    {
        DailyRollingFileAppender appender;
        prepare(&appender);
        appender.setDatePattern(QStringLiteral("'.log'"));
        appender.activateOptions();
        QVERIFY(!appender.isActive());
        QVERIFY(!QFile::exists(path()));
    }

    void rollingAppenderIsDailyByDefault()
    {
        QCOMPARE(DailyRollingFileAppender().datePattern(), QStringLiteral("'.'yyyy-MM-dd"));
    }
};

QTEST_GUILESS_MAIN(TestLog4QtAppenders)

#include "tst_log4qt_appenders.moc"
