// SPDX-License-Identifier: LGPL-2.1-or-later

#include <FakeClock.h>
#include <Files.h>
#include <HostProcess.h>
#include <TemporaryHome.h>
#include <Utf8.h>
#include <localservices/HttpServer.h>

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include <ctime>
#include <memory>

namespace {

// A time of 32 bits ends in 2038, so an application cannot have a later one.
constexpr bool hasLateTimes = sizeof(std::time_t) > 4;

QDateTime moment(const QString &isoUtc)
{
    return QDateTime::fromString(isoUtc + QLatin1Char('Z'), Qt::ISODate);
}

} // namespace

// The clock of the application shows a rare time, or is set back. The local time is UTC.
class TestFaultsClock : public QObject
{
    Q_OBJECT

private:
    bool startAt(const QString &isoUtc, const Sandbox &sandbox = Sandbox())
    {
        m_clock = std::make_unique<FakeClock>(moment(isoUtc));
        m_host = std::make_unique<HostProcess>();
        m_clock->install(m_host.get());
        m_host->setEnvironment(QStringLiteral("TZ"), QStringLiteral("UTC0"));
        return m_host->start(sandbox);
    }
    static void addTimes()
    {
        QTest::addColumn<QString>("now");
        QTest::newRow("leap day") << "2028-02-29T23:59:59";
        QTest::newRow("day after a leap day") << "2028-03-01T00:00:00";
        QTest::newRow("before a leap second") << "2016-12-31T23:59:59";
        QTest::newRow("last second of signed 32 bits") << "2038-01-19T03:14:07";
        QTest::newRow("leap day at the end of a century") << "2000-02-29T23:59:59";
        if (!hasLateTimes)
            return;
        QTest::newRow("no leap day at the end of a century") << "2100-02-28T23:59:59";
        QTest::newRow("first second after signed 32 bits") << "2038-01-19T03:14:08";
        QTest::newRow("first second after unsigned 32 bits") << "2106-02-07T06:28:16";
        QTest::newRow("year 2200") << "2200-06-15T12:00:00";
    }

    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<HostProcess> m_host;

private Q_SLOTS:
    void initTestCase()
    {
        if (!FakeClock::isAvailable())
            QSKIP("faketime is not installed");
    }
    void cleanup()
    {
        if (m_host)
            m_host->quit();
        m_host.reset();
        m_clock.reset();
    }

    void logsTime_data() { addTimes(); }
    void logsTime()
    {
        QFETCH(QString, now);
        const QTemporaryDir directory;
        QVERIFY(startAt(now));
        m_host->call(QStringLiteral("log.init"), {QStringLiteral("app.log"), directory.path()});
        m_host->call(QStringLiteral("log.info"), {QStringLiteral("x")});
        QString expected = now;
        QCOMPARE(readLines(directory.filePath(QStringLiteral("log/app.log"))),
                 QStringList {expected.replace(QLatin1Char('T'), QLatin1Char(' '))
                              + QStringLiteral(".000 INFO   - x")});
    }

    void startsLogFileOfMonth_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("finished");
        QTest::newRow("after a leap day") << "2028-02-29T23:59:59"
                                          << "2028-03-01T00:00:01"
                                          << "app.log.2028-02";
        QTest::newRow("after a leap second") << "2016-12-31T23:59:59"
                                             << "2017-01-01T00:00:01"
                                             << "app.log.2016-12";
        QTest::newRow("the clock was wrong by years") << "2000-01-01T00:00:05"
                                                      << "2026-11-20T12:00:00"
                                                      << "app.log.2000-01";
        if (!hasLateTimes)
            return;
        QTest::newRow("after signed 32 bits") << "2038-01-19T03:14:07"
                                              << "2038-02-01T00:00:01"
                                              << "app.log.2038-01";
        QTest::newRow("after unsigned 32 bits") << "2106-02-07T06:28:15"
                                                << "2106-03-01T00:00:01"
                                                << "app.log.2106-02";
    }
    void startsLogFileOfMonth()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        QFETCH(QString, finished);
        const QTemporaryDir directory;
        QVERIFY(startAt(before));
        m_host->call(QStringLiteral("log.init"), {QStringLiteral("app.log"), directory.path()});
        m_host->call(QStringLiteral("log.info"), {QStringLiteral("before")});
        m_clock->set(moment(after));
        m_host->call(QStringLiteral("log.info"), {QStringLiteral("after")});
        const QDir log(directory.filePath(QStringLiteral("log")));
        QCOMPARE(log.entryList(QDir::Files, QDir::Name), QStringList({QStringLiteral("app.log"), finished}));
        QCOMPARE(readLines(log.filePath(finished)).size(), 1);
        QCOMPARE(readLines(log.filePath(QStringLiteral("app.log"))).size(), 1);
    }

    // All lines stay, in the order in which they were written.
    void keepsLogFileIfClockIsSetBack_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QString>("time");
        QTest::newRow("a repeated second") << -1 << "2026-12-01 00:00:00.000";
        QTest::newRow("into the earlier month") << -2 << "2026-11-30 23:59:59.000";
        QTest::newRow("a day") << -86400 << "2026-11-30 00:00:01.000";
        QTest::newRow("a year") << -365 * 86400 << "2025-12-01 00:00:01.000";
    }
    void keepsLogFileIfClockIsSetBack()
    {
        QFETCH(int, seconds);
        QFETCH(QString, time);
        const QTemporaryDir directory;
        QVERIFY(startAt(QStringLiteral("2026-11-30T23:59:59")));
        const auto log = [this](const char *message) {
            m_host->call(QStringLiteral("log.info"), {utf8(message)});
        };
        m_host->call(QStringLiteral("log.init"), {QStringLiteral("app.log"), directory.path()});
        log("november");
        m_clock->advance(2);
        log("december");
        m_clock->advance(seconds);
        log("set back");
        m_clock->advance(-seconds);
        log("december again");
        const QDir folder(directory.filePath(QStringLiteral("log")));
        QCOMPARE(readLines(folder.filePath(QStringLiteral("app.log.2026-11"))),
                 QStringList {QStringLiteral("2026-11-30 23:59:59.000 INFO   - november")});
        QCOMPARE(readLines(folder.filePath(QStringLiteral("app.log"))),
                 QStringList({QStringLiteral("2026-12-01 00:00:01.000 INFO   - december"),
                              time + QStringLiteral(" INFO   - set back"),
                              QStringLiteral("2026-12-01 00:00:01.000 INFO   - december again")}));
        QCOMPARE(folder.entryList(QDir::Files).size(), 2);
    }

    void formatsOpenTime_data() { addTimes(); }
    void formatsOpenTime()
    {
        QFETCH(QString, now);
        QVERIFY(startAt(now));
        const QDateTime time = moment(now);
        const auto formatted = [this](const QDateTime &opened) {
            return m_host
                ->call(QStringLiteral("files.formatOpenTime"), {QString::number(opened.toSecsSinceEpoch())})
                .toString();
        };
        QCOMPARE(formatted(time), time.toString(QStringLiteral("HH:mm:ss")));
        const QDateTime yesterday = time.addDays(-1);
        QCOMPARE(formatted(yesterday), yesterday.toString(QStringLiteral("MM/dd/yyyy")));
        // A file that seems to be opened tomorrow.
        m_clock->advance(-86400);
        QCOMPARE(formatted(time), time.toString(QStringLiteral("HH:mm:ss")));
    }

    void sendsTimeOfRecord_data() { addTimes(); }
    void sendsTimeOfRecord()
    {
        QFETCH(QString, now);
        const LocalServices::HttpServer server;
        QVERIFY(startAt(now));
        const QJsonObject outcome =
            m_host->call(QStringLiteral("requests.record"), {server.url(QStringLiteral("/echo")).toString()})
                .toObject();
        QCOMPARE(outcome.value(QStringLiteral("remaining")).toInt(-1), 0);
        QCOMPARE(server.requests().size(), 1);
        const LocalServices::HttpServer::Request request = server.requests().first();
        QCOMPARE(request.queryValue("timestamp"), QString::number(moment(now).toSecsSinceEpoch()));
        QCOMPARE(QJsonDocument::fromJson(request.body).object().value(QStringLiteral("day")).toString(),
                 moment(now).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
    }

    // The machine has no other identifier than the time.
    void createsIdentifierFromTime_data() { addTimes(); }
    void createsIdentifierFromTime()
    {
        if (!Sandbox::hasNetwork(QString::fromLatin1("")))
            QSKIP("sandboxes are not available");
        QFETCH(QString, now);
        const TemporaryHome home;
        const QString empty = home.filePath(QStringLiteral("empty"));
        QVERIFY(writeFile(empty, QByteArray()));
        Sandbox sandbox;
        for (const char *path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
            if (QFile::exists(QLatin1String(path)))
                sandbox.replace(QLatin1String(path), empty);
        }
        sandbox.ownNetwork(QString::fromLatin1(""));
        QVERIFY(startAt(now, sandbox));
        const auto identifier = [this] {
            const QJsonArray results = m_host
                                           ->call(QStringLiteral("identity.pcid"),
                                                  {QStringLiteral("maker/"), QStringLiteral("reader"), 1})
                                           .toArray();
            return results.first().toString();
        };
        const QString first = identifier();
        static const QRegularExpression digest(QStringLiteral("^[0-9a-f]{32}$"));
        QVERIFY2(digest.match(first).hasMatch(), qPrintable(first));
        m_clock->advance(-86400);
        QCOMPARE(identifier(), first);
    }
};

QTEST_GUILESS_MAIN(TestFaultsClock)

#include "tst_faults_clock.moc"
