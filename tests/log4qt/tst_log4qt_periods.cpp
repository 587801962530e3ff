// SPDX-License-Identifier: LGPL-2.1-or-later

#include "rolloverperiod.h"
#include "secondwatch.h"

#include <log4qt/dailyrollingfileappender.h>

#include <QSet>
#include <QTest>

using Log4Qt::DailyRollingFileAppender;
using Log4Qt::RollOverPeriod;
using Log4Qt::SecondWatch;

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
    void returnsPeriodOfPattern_data()
    {
        using Appender = DailyRollingFileAppender;
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QDateTime>("start");
        QTest::addColumn<QDateTime>("next");
        QTest::addColumn<QString>("suffix");
        // The time is Wednesday, 18 November 2026, 15:42:31.
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
        QTest::newRow("custom, by hours") << "'_'hh" << at(2026, 11, 18, 15) << at(2026, 11, 18, 16) << "_15";
        QTest::newRow("custom, by months") << "'.'MMMM" << at(2026, 11, 1) << at(2026, 12, 1) << ".November";
    }
    void returnsPeriodOfPattern()
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
        // The period ends before its next one starts.
        QCOMPARE(period.start(next.addMSecs(-1)), start);
        QCOMPARE(period.start(next), next);
    }

    void endsMonthAfterLastDay_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QDateTime>("next");
        QTest::newRow("31 days") << at(2026, 1, 31, 23) << at(2026, 2, 1);
        QTest::newRow("28 days") << at(2026, 2, 28, 23) << at(2026, 3, 1);
        QTest::newRow("29 days") << at(2028, 2, 29, 23) << at(2028, 3, 1);
        QTest::newRow("end of the year") << at(2026, 12, 31, 23) << at(2027, 1, 1);
    }
    void endsMonthAfterLastDay()
    {
        QFETCH(QDateTime, now);
        QFETCH(QDateTime, next);
        QCOMPARE(RollOverPeriod(patternOf(DailyRollingFileAppender::MONTHLY_ROLLOVER)).next(now), next);
    }

    void numbersWeeksByIsoYear_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QString>("suffix");
        QTest::newRow("first week of 2024") << at(2024, 1, 1) << ".2024-01";
        QTest::newRow("last week of 2024") << at(2024, 12, 29, 23) << ".2024-52";
        QTest::newRow("2025 begins in 2024") << at(2024, 12, 30) << ".2025-01";
        QTest::newRow("same week in 2025") << at(2025, 1, 5, 23) << ".2025-01";
        QTest::newRow("2020 ends in 2021") << at(2021, 1, 3, 23) << ".2020-53";
        QTest::newRow("first week of 2021") << at(2021, 1, 4) << ".2021-01";
    }
    void numbersWeeksByIsoYear()
    {
        QFETCH(QDateTime, now);
        QFETCH(QString, suffix);
        QCOMPARE(RollOverPeriod(patternOf(DailyRollingFileAppender::WEEKLY_ROLLOVER)).suffix(now), suffix);
    }

    void returnsNewSuffixForEveryWeek()
    {
        const RollOverPeriod period(patternOf(DailyRollingFileAppender::WEEKLY_ROLLOVER));
        QSet<QString> suffixes;
        constexpr int weeks = 1461; // 28 years
        QDateTime week = at(2000, 1, 3);
        for (int i = 0; i < weeks; ++i) {
            suffixes << period.suffix(week);
            week = period.next(week);
        }
        QCOMPARE(suffixes.size(), weeks);
    }

    void rejectsPatternWithoutPeriod_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::newRow("empty") << "";
        QTest::newRow("quoted") << "'.log'";
        QTest::newRow("years are too long") << "'.'yyyy";
    }
    void rejectsPatternWithoutPeriod()
    {
        QFETCH(QString, pattern);
        QVERIFY(!RollOverPeriod(pattern).isValid());
    }

    void turnsWithSecondAndZone()
    {
        SecondWatch watch;
        QVERIFY(watch.turned(5500, "UTC0"));
        QVERIFY(!watch.turned(5000, "UTC0"));
        QVERIFY(!watch.turned(5999, "UTC0"));
        QVERIFY(watch.turned(6000, "UTC0"));
        QVERIFY(watch.turned(5999, "UTC0"));
        QVERIFY(watch.turned(5999, "JST-9"));
        QVERIFY(watch.turned(5999, QByteArray("")));
        QVERIFY(watch.turned(5999, QByteArray()));
        QVERIFY(!watch.turned(5999, QByteArray()));
        QCOMPARE(watch.sinceSecond(5999), quint64(999));
    }
};

QTEST_GUILESS_MAIN(TestLog4QtPeriods)

#include "tst_log4qt_periods.moc"
