// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "FakeClock.h"
#include "HostProcess.h"

#include <QTest>

#include <atomic>
#include <limits>
#include <thread>

using ZyBase::CFileUtils;

namespace {

constexpr qint64 day = 86400;
const QString utc = QStringLiteral("UTC");

QDateTime moment(const char *isoUtc)
{
    return QDateTime::fromString(QString::fromUtf8(isoUtc) + QLatin1Char('Z'), Qt::ISODate);
}

QString shown(HostProcess *host, qint64 seconds)
{
    return host->call(QStringLiteral("files.formatOpenTime"), {QString::number(seconds)}).toString();
}

QString shown(HostProcess *host, const char *isoUtc)
{
    return shown(host, moment(isoUtc).toSecsSinceEpoch());
}

} // namespace

class TestOpenTime : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<HostProcess> m_host;

    bool startAt(const char *isoUtc, const QString &zone)
    {
        m_clock = std::make_unique<FakeClock>(moment(isoUtc));
        m_host = std::make_unique<HostProcess>();
        m_clock->install(m_host.get());
        m_host->setEnvironment(QStringLiteral("TZ"), zone);
        return m_host->start();
    }

private Q_SLOTS:
    void init()
    {
        if (!FakeClock::isAvailable())
            QSKIP("faketime is not installed");
    }
    void cleanup()
    {
        m_host.reset();
        m_clock.reset();
    }

    void momentOfTodayIsAClockTime_data()
    {
        QTest::addColumn<QString>("moment");
        QTest::addColumn<QString>("expected");
        QTest::newRow("now") << "2026-11-20T15:04:05"
                             << "15:04:05";
        QTest::newRow("leading zeros") << "2026-11-20T01:02:03"
                                       << "01:02:03";
        QTest::newRow("first second") << "2026-11-20T00:00:00"
                                      << "00:00:00";
        QTest::newRow("last second") << "2026-11-20T23:59:59"
                                     << "23:59:59";
        QTest::newRow("later today") << "2026-11-20T18:30:00"
                                     << "18:30:00";
        QTest::newRow("yesterday") << "2026-11-19T15:04:05"
                                   << "11/19/2026";
        QTest::newRow("a second before today") << "2026-11-19T23:59:59"
                                               << "11/19/2026";
        QTest::newRow("tomorrow") << "2026-11-21T00:00:00"
                                  << "11/21/2026";
        QTest::newRow("same day last year") << "2025-11-20T15:04:05"
                                            << "11/20/2025";
        QTest::newRow("one digit each") << "2026-03-04T05:06:07"
                                        << "03/04/2026";
        QTest::newRow("far ahead") << "9999-12-31T23:59:59"
                                   << "12/31/9999";
        QTest::newRow("before the epoch") << "1969-12-31T23:59:59"
                                          << "12/31/1969";
    }
    void momentOfTodayIsAClockTime()
    {
        QFETCH(QString, moment);
        QFETCH(QString, expected);
        QVERIFY(startAt("2026-11-20T15:04:05", utc));
        QCOMPARE(shown(m_host.get(), moment.toUtf8().constData()), expected);
    }

    void todayIsTheLocalDay_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("epoch");
        QTest::addColumn<QString>("before");
        // At 20:00 UTC it is the next day in Shanghai already.
        QTest::newRow("UTC") << "UTC"
                             << "20:00:00"
                             << "01/01/1970"
                             << "04:00:00";
        QTest::newRow("Shanghai") << "Asia/Shanghai"
                                  << "04:00:00"
                                  << "01/01/1970"
                                  << "11/20/2026";
        QTest::newRow("New York") << "America/New_York"
                                  << "15:00:00"
                                  << "12/31/1969"
                                  << "11/19/2026";
        QTest::newRow("Kathmandu") << "Asia/Kathmandu"
                                   << "01:45:00"
                                   << "01/01/1970"
                                   << "11/20/2026";
        QTest::newRow("Kiritimati") << "Pacific/Kiritimati"
                                    << "10:00:00"
                                    << "12/31/1969"
                                    << "11/20/2026";
    }
    void todayIsTheLocalDay()
    {
        QFETCH(QString, zone);
        QFETCH(QString, now);
        QFETCH(QString, epoch);
        QFETCH(QString, before);
        QVERIFY(startAt("2026-11-20T20:00:00", zone));
        QCOMPARE(shown(m_host.get(), "2026-11-20T20:00:00"), now);
        QCOMPARE(shown(m_host.get(), qint64(0)), epoch);
        QCOMPARE(shown(m_host.get(), "2026-11-20T04:00:00"), before);
    }

    void dayOfTheFirstCallStaysTodayOverMidnight()
    {
        QVERIFY(startAt("2026-11-20T23:59:58", utc));
        QCOMPARE(shown(m_host.get(), "2026-11-20T23:59:58"), QStringLiteral("23:59:58"));
        m_clock->advance(4);
        QCOMPARE(shown(m_host.get(), "2026-11-21T00:00:02"), QStringLiteral("11/21/2026"));
        QCOMPARE(shown(m_host.get(), "2026-11-20T23:59:58"), QStringLiteral("23:59:58"));
        m_clock->advance(300 * day);
        QCOMPARE(shown(m_host.get(), "2026-11-20T08:00:00"), QStringLiteral("08:00:00"));
    }

    void todayIsTakenAtTheFirstCallAndNotAtTheStart()
    {
        QVERIFY(startAt("2026-11-20T23:59:58", utc));
        QCOMPARE(m_host->call(QStringLiteral("process.readFile"), {QString()}), QJsonValue());
        m_clock->advance(4);
        QCOMPARE(shown(m_host.get(), "2026-11-21T00:00:02"), QStringLiteral("00:00:02"));
        QCOMPARE(shown(m_host.get(), "2026-11-20T23:59:58"), QStringLiteral("11/20/2026"));
    }

    void firstCallWithAMomentOfAnotherDayKeepsTodayAllTheSame()
    {
        QVERIFY(startAt("2026-11-20T12:00:00", utc));
        QCOMPARE(shown(m_host.get(), "2020-02-29T12:00:00"), QStringLiteral("02/29/2020"));
        QCOMPARE(shown(m_host.get(), "2026-11-20T11:00:00"), QStringLiteral("11:00:00"));
        QCOMPARE(shown(m_host.get(), "2020-02-29T12:00:00"), QStringLiteral("02/29/2020"));
    }

    void daylightSavingTimeIsThatOfTheMoment()
    {
        QVERIFY(startAt("2026-03-29T12:00:00", QStringLiteral("Europe/Berlin")));
        QCOMPARE(shown(m_host.get(), "2026-03-29T00:59:59"), QStringLiteral("01:59:59"));
        QCOMPARE(shown(m_host.get(), "2026-03-29T01:00:00"), QStringLiteral("03:00:00"));
    }

    void orderAndMarksAreTheSameInEveryLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("date");
        QTest::newRow("C") << "C"
                           << "15:04:05"
                           << "01/02/2026";
        QTest::newRow("Chinese") << "zh_CN.UTF-8"
                                 << "15:04:05"
                                 << "01/02/2026";
        QTest::newRow("German") << "de_DE.UTF-8"
                                << "15:04:05"
                                << "01/02/2026";
        // The digits are Qt's choice, from the system's locale.
        QTest::newRow("Egyptian") << "ar_EG.UTF-8"
                                  << "١٥:٠٤:٠٥"
                                  << "٠١/٠٢/٢٠٢٦";
    }
    void orderAndMarksAreTheSameInEveryLocale()
    {
        QFETCH(QString, locale);
        QFETCH(QString, time);
        QFETCH(QString, date);
        m_clock = std::make_unique<FakeClock>(moment("2026-11-20T15:04:05"));
        m_host = std::make_unique<HostProcess>();
        m_clock->install(m_host.get());
        m_host->setEnvironment(QStringLiteral("TZ"), utc);
        m_host->setEnvironment(QStringLiteral("LC_ALL"), locale);
        QVERIFY(m_host->start());
        QCOMPARE(shown(m_host.get(), "2026-11-20T15:04:05"), time);
        QCOMPARE(shown(m_host.get(), "2026-01-02T15:04:05"), date);
    }

    void momentBeyondQtsRangeComesRoundToAnother()
    {
        // Qt counts milliseconds in 64 bits and wraps: there is always some text.
        QVERIFY(startAt("2026-11-20T15:04:05", utc));
        QCOMPARE(shown(m_host.get(), std::numeric_limits<qint64>::max()), QStringLiteral("12/31/1969"));
        QCOMPARE(shown(m_host.get(), std::numeric_limits<qint64>::min()), QStringLiteral("01/01/1970"));
        QCOMPARE(shown(m_host.get(), 9223372036854776LL), QStringLiteral("05/16/-292275056"));
    }

    void concurrentFirstCallsAgree()
    {
        // Qt's own first use of the locale is for one thread.
        QVERIFY(!QDateTime::currentDateTime().toString(QStringLiteral("MM/dd/yyyy")).isEmpty());
        std::vector<std::thread> threads;
        std::atomic<int> good {0};
        const qint64 longAgo = moment("2001-02-03T12:00:00").toSecsSinceEpoch();
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&] {
                good += CFileUtils::FormatOpenTime(longAgo) == QLatin1String("02/03/2001");
                good += CFileUtils::CheckFileNameValid(QStringLiteral("a"));
                good += CFileUtils::CheckFilePathValid(QStringLiteral("C:\\a"));
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(good.load(), 24);
    }
};

QTEST_GUILESS_MAIN(TestOpenTime)

#include "tst_open_time.moc"
