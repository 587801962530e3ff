// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "EightThreads.h"
#include "FakeClock.h"
#include "HostProcess.h"

#include <QProcess>
#include <QTest>

#include <limits>
#include <memory>

using ZyBase::CFileUtils;

namespace {

constexpr qint64 secondsOfDay = 86400;
constexpr const char *firstCallsArgument = "--first-calls";
constexpr int attempts = ZYBASE_SANITIZED ? 10 : 100;
constexpr int timeoutMs = 60000;
const QString utc = QStringLiteral("UTC");

QDateTime moment(const char *isoUtc)
{
    return QDateTime::fromString(QString::fromUtf8(isoUtc) + QLatin1Char('Z'), Qt::ISODate);
}

QString formatted(HostProcess *host, qint64 seconds)
{
    return host->call(QStringLiteral("files.formatOpenTime"), {QString::number(seconds)}).toString();
}

QString formatted(HostProcess *host, const char *isoUtc)
{
    return formatted(host, moment(isoUtc).toSecsSinceEpoch());
}

// Makes the first calls of this process in eight threads.
bool areFirstCallsCorrect()
{
    constexpr long long february3In2001 = 981201600;
    const int correctCalls = sumOfEightThreads([](int) {
        return int(CFileUtils::FormatOpenTime(february3In2001) == QLatin1String("02/03/2001"))
               + int(CFileUtils::CheckFileNameValid(QStringLiteral("a")))
               + int(CFileUtils::CheckFilePathValid(QStringLiteral("C:\\a")));
    });
    return correctCalls == 24;
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

    void returnsTimeForTodayAndDateOtherwise_data()
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
        QTest::newRow("later on the same day") << "2026-11-20T18:30:00"
                                               << "18:30:00";
        QTest::newRow("yesterday") << "2026-11-19T15:04:05"
                                   << "11/19/2026";
        QTest::newRow("last second of yesterday") << "2026-11-19T23:59:59"
                                                  << "11/19/2026";
        QTest::newRow("tomorrow") << "2026-11-21T00:00:00"
                                  << "11/21/2026";
        QTest::newRow("same day last year") << "2025-11-20T15:04:05"
                                            << "11/20/2025";
        QTest::newRow("one digit each") << "2026-03-04T05:06:07"
                                        << "03/04/2026";
        QTest::newRow("far in the future") << "9999-12-31T23:59:59"
                                           << "12/31/9999";
        QTest::newRow("before the epoch") << "1969-12-31T23:59:59"
                                          << "12/31/1969";
    }
    void returnsTimeForTodayAndDateOtherwise()
    {
        QFETCH(QString, moment);
        QFETCH(QString, expected);
        QVERIFY(startAt("2026-11-20T15:04:05", utc));
        QCOMPARE(formatted(m_host.get(), moment.toUtf8().constData()), expected);
    }

    void usesLocalDay_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("epoch");
        QTest::addColumn<QString>("before");
        // At 20:00 UTC it is already the next day in Shanghai.
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
    void usesLocalDay()
    {
        QFETCH(QString, zone);
        QFETCH(QString, now);
        QFETCH(QString, epoch);
        QFETCH(QString, before);
        QVERIFY(startAt("2026-11-20T20:00:00", zone));
        QCOMPARE(formatted(m_host.get(), "2026-11-20T20:00:00"), now);
        QCOMPARE(formatted(m_host.get(), qint64(0)), epoch);
        QCOMPARE(formatted(m_host.get(), "2026-11-20T04:00:00"), before);
    }

    void keepsDayOfFirstCallAfterMidnight()
    {
        QVERIFY(startAt("2026-11-20T23:59:58", utc));
        QCOMPARE(formatted(m_host.get(), "2026-11-20T23:59:58"), QStringLiteral("23:59:58"));
        m_clock->advance(4);
        QCOMPARE(formatted(m_host.get(), "2026-11-21T00:00:02"), QStringLiteral("11/21/2026"));
        QCOMPARE(formatted(m_host.get(), "2026-11-20T23:59:58"), QStringLiteral("23:59:58"));
        m_clock->advance(300 * secondsOfDay);
        QCOMPARE(formatted(m_host.get(), "2026-11-20T08:00:00"), QStringLiteral("08:00:00"));
    }

    void usesDayOfFirstCallNotOfProcessStart()
    {
        QVERIFY(startAt("2026-11-20T23:59:58", utc));
        QCOMPARE(m_host->call(QStringLiteral("process.readFile"), {QString()}), QJsonValue());
        m_clock->advance(4);
        QCOMPARE(formatted(m_host.get(), "2026-11-21T00:00:02"), QStringLiteral("00:00:02"));
        QCOMPARE(formatted(m_host.get(), "2026-11-20T23:59:58"), QStringLiteral("11/20/2026"));
    }

    void keepsTodayIfFirstCallIsForAnotherDay()
    {
        QVERIFY(startAt("2026-11-20T12:00:00", utc));
        QCOMPARE(formatted(m_host.get(), "2020-02-29T12:00:00"), QStringLiteral("02/29/2020"));
        QCOMPARE(formatted(m_host.get(), "2026-11-20T11:00:00"), QStringLiteral("11:00:00"));
        QCOMPARE(formatted(m_host.get(), "2020-02-29T12:00:00"), QStringLiteral("02/29/2020"));
    }

    void usesDaylightSavingTimeOfGivenTime()
    {
        QVERIFY(startAt("2026-03-29T12:00:00", QStringLiteral("Europe/Berlin")));
        QCOMPARE(formatted(m_host.get(), "2026-03-29T00:59:59"), QStringLiteral("01:59:59"));
        QCOMPARE(formatted(m_host.get(), "2026-03-29T01:00:00"), QStringLiteral("03:00:00"));
    }

    void keepsFormatInEveryLocale_data()
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
        // Qt uses the digits of the system's locale.
        QTest::newRow("Egyptian") << "ar_EG.UTF-8"
                                  << "١٥:٠٤:٠٥"
                                  << "٠١/٠٢/٢٠٢٦";
    }
    void keepsFormatInEveryLocale()
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
        QCOMPARE(formatted(m_host.get(), "2026-11-20T15:04:05"), time);
        QCOMPARE(formatted(m_host.get(), "2026-01-02T15:04:05"), date);
    }

    void returnsAnotherDateOutsideRangeOfQt()
    {
        // Qt counts milliseconds in 64 bits, which overflow. The result is never empty.
        QVERIFY(startAt("2026-11-20T15:04:05", utc));
        QCOMPARE(formatted(m_host.get(), std::numeric_limits<qint64>::max()), QStringLiteral("12/31/1969"));
        QCOMPARE(formatted(m_host.get(), std::numeric_limits<qint64>::min()), QStringLiteral("01/01/1970"));
        QCOMPARE(formatted(m_host.get(), 9223372036854776LL), QStringLiteral("05/16/-292275056"));
    }

    void isThreadSafeFromFirstCall()
    {
        // The first calls are made once in a process, so each attempt is a new process.
        for (int i = 0; i < attempts; ++i) {
            QProcess process;
            process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            process.start(QCoreApplication::applicationFilePath(), {QLatin1String(firstCallsArgument)});
            QVERIFY(process.waitForFinished(timeoutMs));
            QCOMPARE(process.exitStatus(), QProcess::NormalExit);
            QCOMPARE(process.exitCode(), 0);
        }
    }
};

int main(int argc, char **argv)
{
    // There is no application object here, because it may load Qt's locale data before the first call.
    if (argc == 2 && qstrcmp(argv[1], firstCallsArgument) == 0)
        return areFirstCallsCorrect() ? EXIT_SUCCESS : EXIT_FAILURE;
    const QCoreApplication application(argc, argv);
    TestOpenTime test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_open_time.moc"
