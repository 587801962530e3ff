// SPDX-License-Identifier: LGPL-2.1-or-later

#include "rolloverperiod.h"

#include <log4qt/dailyrollingfileappender.h>

#include <QTest>

using Log4Qt::DailyRollingFileAppender;
using Log4Qt::RollOverPeriod;

namespace {

QDateTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
}

QString patternOf(DailyRollingFileAppender::DatePattern datePattern)
{
    DailyRollingFileAppender appender;
    appender.setDatePattern(datePattern);
    return appender.datePattern();
}

} // namespace

class TestLog4QtPeriods : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPatternHasItsPeriod_data()
    {
        using Appender = DailyRollingFileAppender;
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QDateTime>("start");
        QTest::addColumn<QDateTime>("next");
        QTest::addColumn<QString>("suffix");
        // Seen from Wednesday, 18 November 2026, 15:42:31.
        QTest::newRow("minutely") << patternOf(Appender::MINUTELY_ROLLOVER) << at(2026, 11, 18, 15, 42)
                                  << at(2026, 11, 18, 15, 43) << ".2026-11-18-15-42";
        QTest::newRow("hourly") << patternOf(Appender::HOURLY_ROLLOVER) << at(2026, 11, 18, 15)
                                << at(2026, 11, 18, 16) << ".2026-11-18-15";
        QTest::newRow("twice a day") << patternOf(Appender::HALFDAILY_ROLLOVER) << at(2026, 11, 18, 12)
                                     << at(2026, 11, 19) << ".2026-11-18-pm";
        QTest::newRow("daily") << patternOf(Appender::DAILY_ROLLOVER) << at(2026, 11, 18) << at(2026, 11, 19)
                               << ".2026-11-18";
        QTest::newRow("weekly") << patternOf(Appender::WEEKLY_ROLLOVER) << at(2026, 11, 16)
                                << at(2026, 11, 23) << ".2026-47";
        QTest::newRow("monthly") << patternOf(Appender::MONTHLY_ROLLOVER) << at(2026, 11, 1)
                                 << at(2026, 12, 1) << ".2026-11";
        QTest::newRow("a host's own for hours")
            << "'_'hh" << at(2026, 11, 18, 15) << at(2026, 11, 18, 16) << "_15";
        QTest::newRow("a host's own for months")
            << "'.'MMMM" << at(2026, 11, 1) << at(2026, 12, 1) << ".November";
    }
    void everyPatternHasItsPeriod()
    {
        QFETCH(QString, pattern);
        QFETCH(QDateTime, start);
        QFETCH(QDateTime, next);
        QFETCH(QString, suffix);
        const RollOverPeriod period(pattern);
        const QDateTime now = at(2026, 11, 18, 15, 42, 31);
        QVERIFY(period.isValid());
        QCOMPARE(period.start(now), start);
        QCOMPARE(period.next(now), next);
        QCOMPARE(period.suffix(now), suffix);
        // The last moment still belongs to it, the next does not.
        QCOMPARE(period.start(next.addMSecs(-1)), start);
        QCOMPARE(period.start(next), next);
    }

    void monthsEndWithTheirLastDay_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QDateTime>("next");
        QTest::newRow("31 days") << at(2026, 1, 31, 23) << at(2026, 2, 1);
        QTest::newRow("28 days") << at(2026, 2, 28, 23) << at(2026, 3, 1);
        QTest::newRow("29 days") << at(2028, 2, 29, 23) << at(2028, 3, 1);
        QTest::newRow("end of the year") << at(2026, 12, 31, 23) << at(2027, 1, 1);
    }
    void monthsEndWithTheirLastDay()
    {
        QFETCH(QDateTime, now);
        QFETCH(QDateTime, next);
        QCOMPARE(RollOverPeriod(patternOf(DailyRollingFileAppender::MONTHLY_ROLLOVER)).next(now), next);
    }

    void patternThatNeverChangesIsNone_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::newRow("empty") << "";
        QTest::newRow("quoted") << "'.log'";
        QTest::newRow("years are too long") << "'.'yyyy";
    }
    void patternThatNeverChangesIsNone()
    {
        QFETCH(QString, pattern);
        QVERIFY(!RollOverPeriod(pattern).isValid());
    }
};

QTEST_GUILESS_MAIN(TestLog4QtPeriods)

#include "tst_log4qt_periods.moc"
