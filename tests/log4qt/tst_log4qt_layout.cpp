// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/logger.h>
#include <log4qt/loggingevent.h>
#include <log4qt/ndc.h>
#include <log4qt/ttcclayout.h>

#include <QDateTime>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>
#include <QThread>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

using namespace Log4Qt;

namespace {

// 2026-11-20 07:37:57.106 in UTC.
constexpr qint64 moment = 1795160277106;

LoggingEvent eventOf(qint64 timeStamp = moment, const QString &message = QStringLiteral("hello"))
{
    return LoggingEvent(Logger::logger(QStringLiteral("app::net")), Level(Level::INFO_INT), message,
                        timeStamp);
}

void setZone(const QByteArray &zone)
{
    qputenv("TZ", zone);
}

} // namespace

class TestLog4QtLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QThread::currentThread()->setObjectName(QStringLiteral("main")); }
    void init() { setZone("UTC0"); }
    void cleanup() { NDC::clear(); }

    void printsFieldsInOrder_data()
    {
        QTest::addColumn<bool>("thread");
        QTest::addColumn<bool>("category");
        QTest::addColumn<bool>("context");
        QTest::addColumn<QString>("line");
        QTest::newRow("all") << true << true << true << " [main] INFO  app::net ctx - hello\n";
        QTest::newRow("no thread") << false << true << true << " INFO  app::net ctx - hello\n";
        QTest::newRow("no category") << true << false << true << " [main] INFO  ctx - hello\n";
        QTest::newRow("no context") << true << true << false << " [main] INFO  app::net - hello\n";
        QTest::newRow("none") << false << false << false << " INFO  - hello\n";
    }
    void printsFieldsInOrder()
    {
        QFETCH(bool, thread);
        QFETCH(bool, category);
        QFETCH(bool, context);
        QFETCH(QString, line);
        NDC::push(QStringLiteral("ctx"));
        TTCCLayout layout;
        QVERIFY(layout.threadPrinting() && layout.categoryPrefixing() && layout.contextPrinting());
        layout.setDateFormat(TTCCLayout::NONE);
        layout.setThreadPrinting(thread);
        layout.setCategoryPrefixing(category);
        layout.setContextPrinting(context);
        QCOMPARE(layout.format(eventOf()), line);
    }

    void padsLevelToFiveCharacters_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("line");
        QTest::newRow("info") << int(Level::INFO_INT) << " INFO   - x\n";
        QTest::newRow("error") << int(Level::ERROR_INT) << " ERROR  - x\n";
        QTest::newRow("off") << int(Level::OFF_INT) << " OFF    - x\n";
    }
    void padsLevelToFiveCharacters()
    {
        QFETCH(int, level);
        QFETCH(QString, line);
        TTCCLayout layout;
        layout.setDateFormat(TTCCLayout::NONE);
        layout.setThreadPrinting(false);
        layout.setCategoryPrefixing(false);
        QCOMPARE(layout.format(
                     LoggingEvent(nullptr, Level(static_cast<Level::Value>(level)), QStringLiteral("x"))),
                 line);
    }

    void keepsSpacesOfEmptyFields()
    {
        TTCCLayout layout;
        layout.setDateFormat(TTCCLayout::ISO8601);
        layout.setThreadPrinting(false);
        layout.setCategoryPrefixing(false);
        QCOMPARE(layout.format(eventOf(moment, QString())),
                 QStringLiteral("2026-11-20 07:37:57.106 INFO   - \n"));
    }

    void acceptsDateFormatByNameAndNumber_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("time");
        QTest::newRow("NONE") << int(TTCCLayout::NONE) << "NONE"
                              << "";
        QTest::newRow("ISO8601") << int(TTCCLayout::ISO8601) << "ISO8601"
                                 << "2026-11-20 07:37:57.106";
        QTest::newRow("ABSOLUTE") << int(TTCCLayout::ABSOLUTE) << "ABSOLUTE"
                                  << "07:37:57.106";
        QTest::newRow("DATE") << int(TTCCLayout::DATE) << "DATE"
                              << "20 11 2026 07:37:57.106";
    }
    void acceptsDateFormatByNameAndNumber()
    {
        QFETCH(int, number);
        QFETCH(QString, word);
        QFETCH(QString, time);
        TTCCLayout layout;
        layout.setDateFormat(static_cast<TTCCLayout::DateFormat>(number));
        QCOMPARE(layout.dateFormat(), word);
        const QString byNumber = layout.format(eventOf());
        layout.setDateFormat(word);
        QCOMPARE(layout.format(eventOf()), byNumber);
        QVERIFY2(byNumber.startsWith(time + QStringLiteral(" [")), qPrintable(byNumber));
    }

    void printsTimeSinceStart()
    {
        TTCCLayout layout;
        QCOMPARE(layout.dateFormat(), QStringLiteral("RELATIVE"));
        QVERIFY(
            layout.format(eventOf(LoggingEvent::startTime() + 1234)).startsWith(QStringLiteral("1234 [")));
        layout.setDateFormat(TTCCLayout::ISO8601);
        layout.setDateFormat(TTCCLayout::RELATIVE);
        QVERIFY(layout.format(eventOf(LoggingEvent::startTime())).startsWith(QStringLiteral("0 [")));
    }

    void limitsRelativeTimeToItsType()
    {
        using Limits = std::numeric_limits<qint64>;
        TTCCLayout layout;
        for (const qint64 time :
             {Limits::min(), Limits::min() + 1, LoggingEvent::startTime() + Limits::min()}) {
            QVERIFY(layout.format(eventOf(time)).startsWith(QStringLiteral("-9223372036854775808 [")));
        }
        const QString latest = QString::number(Limits::max() - LoggingEvent::startTime());
        QVERIFY(layout.format(eventOf(Limits::max())).startsWith(latest + QStringLiteral(" [")));
    }

    void printsNoTimeIfQtHasNone()
    {
        setZone("America/New_York");
        const qint64 earliest = std::numeric_limits<qint64>::min();
        if (QDateTime::fromMSecsSinceEpoch(earliest).isValid())
            QSKIP("Qt has a date for the earliest time in this time zone");
        TTCCLayout layout;
        layout.setDateFormat(TTCCLayout::ISO8601);
        for (const qint64 time : {earliest, earliest + 1, earliest + 2}) // in one second
            QVERIFY(layout.format(eventOf(time)).startsWith(QStringLiteral(" [main]")));
        QVERIFY(layout.format(eventOf()).startsWith(QStringLiteral("2026-11-20 02:37:57.106 [main]")));
    }

    void printsIso8601ForEmptyFormat()
    {
        TTCCLayout layout;
        layout.setDateFormat(QString());
        QVERIFY(layout.format(eventOf()).startsWith(QStringLiteral("2026-11-20 07:37:57.106 [")));
    }

    void printsTimesAround1970_data()
    {
        QTest::addColumn<qint64>("time");
        QTest::addColumn<QString>("expected");
        QTest::newRow("start of 1970") << qint64(0) << "1970-01-01 00:00:00.000";
        QTest::newRow("one millisecond before") << qint64(-1) << "1969-12-31 23:59:59.999";
        QTest::newRow("one second before") << qint64(-1000) << "1969-12-31 23:59:59.000";
        QTest::newRow("1.5 seconds before") << qint64(-1500) << "1969-12-31 23:59:58.500";
        QTest::newRow("1900") << qint64(-2208988800000) + 7 << "1900-01-01 00:00:00.007";
    }
    void printsTimesAround1970()
    {
        QFETCH(qint64, time);
        QFETCH(QString, expected);
        const QString pattern = QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz");
        QCOMPARE(QDateTime::fromMSecsSinceEpoch(time).toString(pattern), expected);
        for (const bool hasZone : {true, false}) {
            if (!hasZone)
                qunsetenv("TZ");
            TTCCLayout layout;
            layout.setDateFormat(TTCCLayout::ISO8601);
            // The first event of a layout, and events in the seconds around it.
            for (const qint64 next : {time, time + 1000, time, time - 999, time, qint64(0), time}) {
                const QString line = layout.format(eventOf(next));
                const QString start = QDateTime::fromMSecsSinceEpoch(next).toString(pattern);
                QVERIFY2(line.startsWith(start + QStringLiteral(" [")), qPrintable(line));
            }
        }
    }

    void printsPatternAsQt_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::newRow("no milliseconds") << "yyyy/MM/dd hh:mm";
        QTest::newRow("milliseconds in the middle") << "hh:mm:ss.zzz yyyy";
        QTest::newRow("milliseconds alone") << "zzz";
        QTest::newRow("milliseconds without leading zeros") << "ss.z";
        QTest::newRow("milliseconds twice") << "zzz ss.zzz";
        QTest::newRow("quoted characters") << "hh 'zzz'";
        QTest::newRow("unfinished quote") << "hh 'zzz";
        QTest::newRow("half of the day") << "hh:mm AP ss.zzz";
        QTest::newRow("zone") << "hh:mm:ss t";
    }
    void printsPatternAsQt()
    {
        QFETCH(QString, pattern);
        TTCCLayout layout;
        layout.setDateFormat(pattern);
        for (const qint64 time :
             {moment, moment + 1, moment - 100, moment + 999, moment + 12 * 3600 * 1000}) {
            const QString expected = QDateTime::fromMSecsSinceEpoch(time).toString(pattern);
            QVERIFY2(layout.format(eventOf(time)).startsWith(expected + QStringLiteral(" [")),
                     qPrintable(expected));
        }
    }

    // The layout converts once per second; every line must have the time that a conversion of its own
    // returns.
    void printsLocalTimeAsQt_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::newRow("UTC") << QByteArray("UTC0");
        QTest::newRow("with summer time") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3");
        QTest::newRow("southern") << QByteArray("AEST-10AEDT,M10.1.0,M4.1.0/3");
        QTest::newRow("half hours") << QByteArray("IST-5:30");
        QTest::newRow("west") << QByteArray("PST8PDT,M3.2.0,M11.1.0");
    }
    void printsLocalTimeAsQt()
    {
        QFETCH(QByteArray, zone);
        setZone(zone);
        TTCCLayout layout;
        layout.setDateFormat(TTCCLayout::ISO8601);
        QRandomGenerator random(20261120);
        constexpr qint64 years = qint64(20) * 366 * 24 * 3600 * 1000;
        for (int i = 0; i < 2000; ++i) {
            const qint64 start = moment + qint64(random.bounded(double(years))) - years / 2;
            // Forwards and backwards over the end of a second.
            for (const qint64 time : {start, start + 1, start + 999, start}) {
                const QString expected =
                    QDateTime::fromMSecsSinceEpoch(time).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
                QCOMPARE(layout.format(eventOf(time)).left(expected.size()), expected);
            }
        }
    }

    void printsLocalTimeAtOffsetChanges()
    {
        setZone("CET-1CEST,M3.5.0,M10.5.0/3");
        TTCCLayout layout;
        layout.setDateFormat(TTCCLayout::ISO8601);
        const qint64 toWinter = QDateTime(QDate(2026, 10, 25), QTime(1, 0), Qt::UTC).toMSecsSinceEpoch();
        QVERIFY(layout.format(eventOf(toWinter - 1)).startsWith(QStringLiteral("2026-10-25 02:59:59.999 ")));
        QVERIFY(layout.format(eventOf(toWinter)).startsWith(QStringLiteral("2026-10-25 02:00:00.000 ")));
        const qint64 toSummer = QDateTime(QDate(2026, 3, 29), QTime(1, 0), Qt::UTC).toMSecsSinceEpoch();
        QVERIFY(layout.format(eventOf(toSummer - 1)).startsWith(QStringLiteral("2026-03-29 01:59:59.999 ")));
        QVERIFY(layout.format(eventOf(toSummer)).startsWith(QStringLiteral("2026-03-29 03:00:00.000 ")));
    }

    void printsNewZoneAfterChangeOfTz()
    {
        TTCCLayout layout;
        layout.setDateFormat(TTCCLayout::ABSOLUTE);
        QVERIFY(layout.format(eventOf()).startsWith(QStringLiteral("07:37:57.106 ")));
        setZone("JST-9");
        QVERIFY(layout.format(eventOf()).startsWith(QStringLiteral("16:37:57.106 ")));
        setZone("");
        QVERIFY(layout.format(eventOf()).startsWith(QStringLiteral("07:37:57.106 ")));
    }

    void formatsOnSeveralThreads()
    {
        TTCCLayout layout;
        layout.setDateFormat(TTCCLayout::ISO8601);
        std::atomic<int> wrong {0};
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&layout, &wrong, thread] {
                for (int i = 0; i < 2000; ++i) {
                    const qint64 time = moment + thread * 60000 + i * 7;
                    const QString expected = QDateTime::fromMSecsSinceEpoch(time, Qt::UTC)
                                                 .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
                    wrong += !layout.format(eventOf(time)).startsWith(expected);
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(wrong.load(), 0);
    }

    void returnsEmptyHeaderAndFooter()
    {
        const TTCCLayout layout;
        QVERIFY(layout.header().isEmpty());
        QVERIFY(layout.footer().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLog4QtLayout)

#include "tst_log4qt_layout.moc"
