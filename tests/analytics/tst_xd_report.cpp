// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ReporterTest.h"

#include "HostProcess.h"
#include "Utf8.h"
#include "Waiting.h"

#include <ZyBase/analytics/CXdReport.h>
#include <ZyBase/analytics/SigningSecret.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QPointer>
#include <QRegularExpression>

#include <sys/time.h>

#include <algorithm>
#include <ctime>
#include <utility>

using LocalServices::StatisticsBackend;
using ZyBase::CHttpPostRequest;

namespace {

using Reporter = WatchedReporter<CXdReport>;

thread_local int clockReadings = -1; // not counted if negative

} // namespace

// Called by Qt instead of the C library's function, because symbols of the program come first. While readings
// are counted, each is a second later than the one before.
extern "C" __attribute__((visibility("default"))) int gettimeofday(timeval *time, void *) noexcept
{
    timespec now {};
    clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    if (clockReadings >= 0)
        time->tv_sec += clockReadings++;
    return 0;
}

class TestXdReport : public ReporterTest
{
    Q_OBJECT

private:
    bool usesProxy() const override { return false; }
    std::unique_ptr<ReporterWatcher> createReporter(const QUrl &server) override
    {
        auto reporter = std::make_unique<Reporter>();
        init(*reporter, server.isEmpty() ? backend().url() : server);
        return reporter;
    }
    void start(ReporterWatcher &reporter) override { report(static_cast<Reporter &>(reporter)); }
    int recorded() override { return backend().records().size(); }
    std::unique_ptr<QObject> createObject(QObject *parent) override
    {
        return std::make_unique<CXdReport>(parent);
    }

    static void init(CXdReport &reporter, const QUrl &url)
    {
        reporter.InitData(url.toString(), utf8("device"), utf8("reader"), utf8("1.2.3"), utf8("store"));
    }
    static void report(CXdReport &reporter) { reporter.ReportXdData(utf8("update"), utf8("end")); }
    static void start(CXdReport &reporter, const QUrl &url)
    {
        init(reporter, url);
        report(reporter);
    }
    const StatisticsBackend &backend() { return network().statistics(); }

    // Sends one record and waits until the request has ended.
    Record send(const QString &action = utf8("update"), const QString &status = utf8("end"),
                const QString &qd = utf8("store"))
    {
        const int before = backend().records().size();
        Reporter reporter;
        reporter.InitData(backend().url().toString(), utf8("device"), utf8("reader"), utf8("1.2.3"), qd);
        reporter.ReportXdData(action, status);
        return reporter.waitForAll() ? backend().records().value(before) : Record();
    }

private Q_SLOTS:
    void usesSecretOf32AsciiCharacters()
    {
        const QByteArray secret(ZyBase::pszSigningSecret);
        QCOMPARE(secret.size(), 32);
        QVERIFY(std::all_of(secret.begin(), secret.end(), [](char c) { return c > ' ' && c < 127; }));
    }

    void sendsValidRecord()
    {
        const Record record = send();
        QCOMPARE(backend().records().size(), 1);
        QCOMPARE(record.problems, QStringList());
    }

    void isRejectedByBackendWithAnotherSecret()
    {
        const StatisticsBackend other(QByteArray(32, 'x'));
        Reporter reporter;
        start(reporter, other.url());
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QCOMPARE(other.records().size(), 1);
        QCOMPARE(other.records().first().problems, QStringList {utf8("sign")});
    }

    void sendsCompactBody()
    {
        const QByteArray body = send().request.body;
        const QRegularExpression day(QStringLiteral("\"day\":\"[^\"]*\""));
        QCOMPARE(QString::fromUtf8(body).replace(day, QStringLiteral("\"day\":\"D\"")),
                 utf8("{\"action\":\"update\",\"day\":\"D\",\"device_id\":\"device\",\"os\":\"linux\","
                      "\"product\":\"reader\",\"qd\":\"store\",\"status\":\"end\",\"version\":\"1.2.3\"}"));
    }

    void signsSecretTimeAndBody()
    {
        const Record record = send();
        const QByteArray seconds = QByteArray::number(record.timestamp);
        QCOMPARE(record.request.target, "/report?sign=" + record.signature + "&timestamp=" + seconds);
        const QByteArray secret(ZyBase::pszSigningSecret);
        const QByteArray signedBytes = secret + "timestamp" + seconds + record.request.body + secret;
        QCOMPARE(record.signature, QCryptographicHash::hash(signedBytes, QCryptographicHash::Md5).toHex());
    }

    void doesNotSendSecret()
    {
        const HttpServer::Request request = send().request;
        QVERIFY(!request.target.contains(ZyBase::pszSigningSecret));
        QVERIFY(!request.body.contains(ZyBase::pszSigningSecret));
        for (const QPair<QByteArray, QByteArray> &header : request.headers)
            QVERIFY(!header.second.contains(ZyBase::pszSigningSecret));
    }

    void sendsHeadersOfPostWithoutSession()
    {
        const HttpServer::Request request = send().request;
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QVERIFY(request.header("Cookie").isNull());
    }

    void escapesStringsBeforeSigning_data() { addEscapedStrings(); }
    void escapesStringsBeforeSigning()
    {
        QFETCH(QString, value);
        QFETCH(QByteArray, json);
        const Record record = send(value, value);
        QCOMPARE(record.problems, QStringList());
        QVERIFY(record.request.body.startsWith("{\"action\":" + json + ",\"day\":"));
        QVERIFY(record.request.body.contains(",\"status\":" + json + ",\"version\":"));
    }

    void sendsLocalTimeOf24Hours()
    {
        // A time zone in which it is now between 20:00 and 21:00.
        const QByteArray before = qgetenv("TZ");
        const int offset = 20 - QDateTime::currentDateTimeUtc().time().hour();
        qputenv("TZ", "TST" + QByteArray::number(-offset));
        tzset();
        const Record record = send();
        if (before.isNull())
            qunsetenv("TZ");
        else
            qputenv("TZ", before);
        tzset();

        const QString day = record.body.value(QStringLiteral("day")).toString();
        const auto local = [&](qint64 seconds) {
            return QDateTime::fromSecsSinceEpoch(seconds, Qt::OffsetFromUTC, offset * 3600)
                .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        };
        // The day is read before the timestamp.
        QVERIFY2(day == local(record.timestamp) || day == local(record.timestamp - 1), qPrintable(day));
        QVERIFY(day.mid(11).startsWith(QLatin1String("20:")) || day.mid(11).startsWith(QLatin1String("21:")));
    }

    void readsClockForDayAndAgainForTimestamp()
    {
        Reporter reporter;
        init(reporter, backend().url());
        clockReadings = 0;
        report(reporter);
        const int readings = std::exchange(clockReadings, -1);
        QTRY_COMPARE_WITH_TIMEOUT(backend().records().size(), 1, longestWaitMs);
        if (readings == 0)
            QSKIP("this Qt does not read the clock with gettimeofday()");
        QCOMPARE(readings, 2);
        const Record record = backend().records().first();
        const QDateTime day = QDateTime::fromString(record.body.value(QStringLiteral("day")).toString(),
                                                    QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        QVERIFY(record.timestamp > day.toSecsSinceEpoch());
    }

    void sendsCurrentTimestamp()
    {
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        const Record record = send();
        QVERIFY(record.timestamp >= before && record.timestamp <= QDateTime::currentSecsSinceEpoch());
    }

    void appendsQueryToAnyAddress_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("target");
        QTest::newRow("plain") << utf8("/echo") << QByteArray("/echo?sign=");
        QTest::newRow("query") << utf8("/echo?a=1") << QByteArray("/echo?a=1?sign=");
        QTest::newRow("empty query") << utf8("/echo?") << QByteArray("/echo??sign=");
        QTest::newRow("space") << utf8("/echo/a b") << QByteArray("/echo/a%20b?sign=");
        QTest::newRow("single percent sign") << utf8("/echo/100%") << QByteArray("/echo/100%25?sign=");
        QTest::newRow("other characters") << utf8("/echo/文") << QByteArray("/echo/%E6%96%87?sign=");
    }
    void appendsQueryToAnyAddress()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, target);
        const HttpServer server;
        Reporter reporter;
        const QString address = server.url(QStringLiteral("/")).toString().chopped(1) + path;
        reporter.InitData(address, utf8("d"), utf8("p"), utf8("v"), utf8("q"));
        reporter.ReportXdData(utf8("a"), utf8("s"));
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QCOMPARE(server.requests().size(), 1);
        const QByteArray sent = server.requests().first().target;
        QVERIFY2(sent.startsWith(target), sent.constData());
        QCOMPARE(sent.size(), target.size() + 32 + int(qstrlen("&timestamp=1234567890")));
    }

    void losesSignatureInAddressWithFragment()
    {
        const HttpServer server;
        Reporter reporter;
        start(reporter, server.url(QStringLiteral("/echo#part")));
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(server.requests().first().target, QByteArray("/echo"));
    }

    void sendsToAddressWithQuery()
    {
        Reporter reporter;
        start(reporter, QUrl(backend().url().toString() + QStringLiteral("?app=1")));
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QCOMPARE(backend().records().size(), 1);
        QCOMPARE(backend().records().first().problems, QStringList());
    }

    void acceptsAnyCertificate()
    {
        const StatisticsBackend secure(ZyBase::pszSigningSecret,
                                       Authority::selfSigned(QStringLiteral("other")));
        Reporter reporter;
        start(reporter, secure.url());
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QCOMPARE(secure.records().size(), 1);
        QCOMPARE(secure.records().first().problems, QStringList());
    }

    void sendsEmptyQd()
    {
        QVERIFY(send(utf8("a"), utf8("s"), QStringLiteral("")).request.body.contains(",\"qd\":\"\","));
    }

    void deletesRequestWithoutAddress()
    {
        Reporter reporter;
        reporter.ReportXdData(utf8("a"), utf8("s"));
        QCOMPARE(reporter.started(), 1);
        QCOMPARE(reporter.running(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
    }

    void sendsValuesSetAtStart()
    {
        Reporter reporter;
        const QString url = backend().url().toString();
        reporter.InitData(url, utf8("d1"), utf8("p1"), utf8("v1"), utf8("q1"));
        reporter.ReportXdData(utf8("a"), utf8("s"));
        reporter.InitData(url, utf8("d2"), utf8("p2"), utf8("v2"), utf8("q2"));
        reporter.ReportXdData(utf8("a"), utf8("s"));
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QList<QByteArray> bodies;
        const QList<Record> records = backend().records();
        for (const Record &record : records)
            bodies << record.request.body;
        std::sort(bodies.begin(), bodies.end(), [](const QByteArray &left, const QByteArray &right) {
            return left.mid(left.indexOf("device_id")) < right.mid(right.indexOf("device_id"));
        });
        QCOMPARE(bodies.size(), 2);
        QVERIFY(
            bodies.at(0).endsWith("\"device_id\":\"d1\",\"os\":\"linux\",\"product\":\"p1\",\"qd\":\"q1\","
                                  "\"status\":\"s\",\"version\":\"v1\"}"));
        QVERIFY(
            bodies.at(1).endsWith("\"device_id\":\"d2\",\"os\":\"linux\",\"product\":\"p2\",\"qd\":\"q2\","
                                  "\"status\":\"s\",\"version\":\"v2\"}"));
    }

    void sendsEqualRecordsOfOneSecond()
    {
        Reporter reporter;
        reporter.InitData(backend().url().toString(), utf8("d"), utf8("p"), utf8("v"), utf8("q"));
        // A second may end between the two, but not in every attempt.
        QList<Record> two;
        for (int attempt = 0; attempt < 5; ++attempt) {
            reporter.ReportXdData(utf8("a"), utf8("s"));
            reporter.ReportXdData(utf8("a"), utf8("s"));
            QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
            two = backend().records().mid(2 * attempt);
            QCOMPARE(two.size(), 2);
            if (two.at(0).request.target == two.at(1).request.target)
                break;
        }
        QCOMPARE(two.at(0).request.target, two.at(1).request.target);
        QCOMPARE(two.at(0).request.body, two.at(1).request.body);
        QCOMPARE(two.at(1).problems, QStringList());
    }

    void deletesRequestIfServerIsDown()
    {
        Reporter reporter;
        const LocalServices::ReservedPort closedPort;
        start(reporter, closedPort.url());
        QCOMPARE(reporter.running(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
    }

    // The functions that delete a request end with the reporter.
    void deletesNoRequestAfterReporter_data()
    {
        QTest::addColumn<bool>("isStopped");
        QTest::newRow("result") << false;
        QTest::newRow("cancelled") << true;
    }
    void deletesNoRequestAfterReporter()
    {
        QFETCH(bool, isStopped);
        const SlowServer slow;
        const SilentServer silent;
        auto reporter = std::make_unique<CXdReport>();
        start(*reporter, isStopped ? silent.url() : slow.url());
        const QPointer<CHttpPostRequest> request = reporter->findChild<CHttpPostRequest *>();
        QVERIFY(!request.isNull());
        int outcomes = 0;
        const auto count = [&outcomes] { ++outcomes; };
        connect(request, &CHttpPostRequest::SignalRequestResult, this, count);
        connect(request, &CHttpPostRequest::SignalRequestCancel, this, count);
        request->setParent(nullptr);
        reporter.reset();
        QTRY_VERIFY_WITH_TIMEOUT((isStopped ? Q_EMIT request->SignalStopRequest() : void(), outcomes == 1),
                                 longestWaitMs);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!request.isNull());
        delete request;
    }

    void stopsRequestsBeforeReturning()
    {
        const SilentServer server;
        Reporter reporter;
        start(reporter, server.url());
        int stops = 0;
        const QObject listener;
        auto *const request = qobject_cast<CHttpPostRequest *>(reporter.children().value(0));
        QVERIFY(request != nullptr);
        connect(request, &CHttpPostRequest::SignalStopRequest, &listener, [&] { ++stops; });
        reporter.StopReport();
        QCOMPARE(stops, 1);
    }

    void connectsRequestBeforeStart()
    {
        if (ZYBASE_SANITIZED || ZYBASE_EMULATED)
            QSKIP("sanitizers need the address space that this test removes, and emulators do not remove it");
        HostProcess host;
        QVERIFY(host.start());
        QCOMPARE(host.call(QStringLiteral("analytics.startRecordWithoutThreads")),
                 QJsonValue(QJsonArray({true, 1, true})));
        QCOMPARE(host.quit(), 0);
    }

    void keepsFieldsInOrder()
    {
        QCOMPARE(sizeof(CXdReport), sizeof(QObject) + 5 * sizeof(QString));
        CXdReport reporter;
        const QString *const fields = stringFieldsOf(reporter);
        for (int i = 0; i < 4; ++i)
            QVERIFY(isEmptyNotNull(fields[i]));
        QCOMPARE(fields[4], utf8("home"));
        reporter.InitData(utf8("1"), utf8("2"), utf8("3"), utf8("4"), utf8("5"));
        for (int i = 0; i < 5; ++i)
            QCOMPARE(fields[i], QString::number(i + 1));
    }
};

QTEST_GUILESS_MAIN(TestXdReport)

#include "tst_xd_report.moc"
