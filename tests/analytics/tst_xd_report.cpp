// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Collectors.h"

#include "HostProcess.h"
#include "ProcessFigures.h"
#include "Utf8.h"

#include <ZyBase/analytics/CXdReport.h>
#include <ZyBase/analytics/SigningSecret.h>
#include <ZyBase/http/CHttpPostRequest.h>
#include <localservices/StatisticsBackend.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QRegularExpression>

#include <algorithm>
#include <ctime>

using LocalServices::Authority;
using LocalServices::HttpServer;
using LocalServices::StatisticsBackend;
using ZyBase::CHttpPostRequest;

namespace {

using Reporter = WatchedReporter<CXdReport>;

} // namespace

class TestXdReport : public QObject
{
    Q_OBJECT

private:
    void start(CXdReport &reporter, const QUrl &url)
    {
        reporter.InitData(url.toString(), utf8("device"), utf8("reader"), utf8("1.2.3"), utf8("store"));
        reporter.ReportXdData(utf8("update"), utf8("end"));
    }

    // Sends one record and waits until it is over.
    StatisticsBackend::Record send(const QString &action = utf8("update"),
                                   const QString &status = utf8("end"), const QString &qd = utf8("store"))
    {
        const int before = m_backend->records().size();
        Reporter reporter;
        reporter.InitData(m_backend->url().toString(), utf8("device"), utf8("reader"), utf8("1.2.3"), qd);
        reporter.ReportXdData(action, status);
        return reporter.waitForAll() ? m_backend->records().value(before) : StatisticsBackend::Record();
    }

    std::unique_ptr<StatisticsBackend> m_backend;

private Q_SLOTS:
    void init() { m_backend = std::make_unique<StatisticsBackend>(ZyBase::pszSigningSecret); }
    void cleanup() { m_backend.reset(); }

    void secretHas32AsciiCharacters()
    {
        const QByteArray secret(ZyBase::pszSigningSecret);
        QCOMPARE(secret.size(), 32);
        QVERIFY(std::all_of(secret.begin(), secret.end(), [](char c) { return c > ' ' && c < 127; }));
    }

    void backendTakesTheRecord()
    {
        const StatisticsBackend::Record record = send();
        QCOMPARE(m_backend->records().size(), 1);
        QCOMPARE(record.problems, QStringList());
    }

    void backendThatKnowsAnotherSecretRefusesIt()
    {
        const StatisticsBackend other(QByteArray(32, 'x'));
        Reporter reporter;
        start(reporter, other.url());
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(other.records().size(), 1);
        QCOMPARE(other.records().first().problems, QStringList {utf8("sign")});
    }

    void bodyIsCompactToTheByte()
    {
        const QByteArray body = send().request.body;
        const QRegularExpression day(QStringLiteral("\"day\":\"[^\"]*\""));
        QCOMPARE(QString::fromUtf8(body).replace(day, QStringLiteral("\"day\":\"D\"")),
                 utf8("{\"action\":\"update\",\"day\":\"D\",\"device_id\":\"device\",\"os\":\"linux\","
                      "\"product\":\"reader\",\"qd\":\"store\",\"status\":\"end\",\"version\":\"1.2.3\"}"));
    }

    void signatureCoversSecretTimeAndBody()
    {
        const StatisticsBackend::Record record = send();
        const QByteArray seconds = QByteArray::number(record.timestamp);
        QCOMPARE(record.request.target, "/report?sign=" + record.signature + "&timestamp=" + seconds);
        const QByteArray secret(ZyBase::pszSigningSecret);
        const QByteArray signedText = secret + "timestamp" + seconds + record.request.body + secret;
        QCOMPARE(record.signature, QCryptographicHash::hash(signedText, QCryptographicHash::Md5).toHex());
    }

    void secretIsNotOnTheWire()
    {
        const HttpServer::Request request = send().request;
        QVERIFY(!request.target.contains(ZyBase::pszSigningSecret));
        QVERIFY(!request.body.contains(ZyBase::pszSigningSecret));
        for (const QPair<QByteArray, QByteArray> &header : request.headers)
            QVERIFY(!header.second.contains(ZyBase::pszSigningSecret));
    }

    void headersAreThoseOfAPostWithoutASession()
    {
        const HttpServer::Request request = send().request;
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QVERIFY(request.header("Cookie").isNull());
    }

    void textsAreEscapedBeforeTheyAreSigned_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("empty") << QStringLiteral("") << QByteArray("\"\"");
        QTest::newRow("null") << QString() << QByteArray("\"\"");
        QTest::newRow("quotes") << utf8("say \"hi\"") << QByteArray("\"say \\\"hi\\\"\"");
        QTest::newRow("line feed") << utf8("a\nb") << QByteArray("\"a\\nb\"");
        QTest::newRow("backslash") << utf8("a\\b") << QByteArray("\"a\\\\b\"");
        QTest::newRow("letters") << utf8("Größe 文件") << QByteArray("\"Größe 文件\"");
        QTest::newRow("beyond the BMP") << utf8("😀") << QByteArray("\"😀\"");
        QTest::newRow("half a letter") << QString(QChar(0xd83d)) << QByteArray("\"\\ud83d\"");
        QTest::newRow("ampersand and percent") << utf8("a&b=%1%20") << QByteArray("\"a&b=%1%20\"");
        QTest::newRow("any text") << utf8("no word of ours") << QByteArray("\"no word of ours\"");
    }
    void textsAreEscapedBeforeTheyAreSigned()
    {
        QFETCH(QString, value);
        QFETCH(QByteArray, json);
        const StatisticsBackend::Record record = send(value, value);
        QCOMPARE(record.problems, QStringList());
        QVERIFY(record.request.body.startsWith("{\"action\":" + json + ",\"day\":"));
        QVERIFY(record.request.body.contains(",\"status\":" + json + ",\"version\":"));
    }

    void dayIsLocalTimeOn24Hours()
    {
        // A time zone in which it is between eight and nine in the evening now.
        const QByteArray before = qgetenv("TZ");
        const int offset = 20 - QDateTime::currentDateTimeUtc().time().hour();
        qputenv("TZ", "TST" + QByteArray::number(-offset));
        tzset();
        const StatisticsBackend::Record record = send();
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
        // The time of the day is read before the time stamp is.
        QVERIFY2(day == local(record.timestamp) || day == local(record.timestamp - 1), qPrintable(day));
        QVERIFY(day.mid(11).startsWith(QLatin1String("20:")) || day.mid(11).startsWith(QLatin1String("21:")));
    }

    void timestampIsNow()
    {
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        const StatisticsBackend::Record record = send();
        QVERIFY(record.timestamp >= before && record.timestamp <= QDateTime::currentSecsSinceEpoch());
    }

    void addressTakesTheQueryAsItIs_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("target");
        QTest::newRow("plain") << utf8("/echo") << QByteArray("/echo?sign=");
        QTest::newRow("query") << utf8("/echo?a=1") << QByteArray("/echo?a=1?sign=");
        QTest::newRow("empty query") << utf8("/echo?") << QByteArray("/echo??sign=");
        QTest::newRow("blank") << utf8("/echo/a b") << QByteArray("/echo/a%20b?sign=");
        QTest::newRow("stray percent") << utf8("/echo/100%") << QByteArray("/echo/100%25?sign=");
        QTest::newRow("other letters") << utf8("/echo/文") << QByteArray("/echo/%E6%96%87?sign=");
    }
    void addressTakesTheQueryAsItIs()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, target);
        const HttpServer server;
        Reporter reporter;
        const QString address = server.url(QStringLiteral("/")).toString().chopped(1) + path;
        reporter.InitData(address, utf8("d"), utf8("p"), utf8("v"), utf8("q"));
        reporter.ReportXdData(utf8("a"), utf8("s"));
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(server.requests().size(), 1);
        const QByteArray sent = server.requests().first().target;
        QVERIFY2(sent.startsWith(target), sent.constData());
        QCOMPARE(sent.size(), target.size() + 32 + int(qstrlen("&timestamp=1234567890")));
    }

    void addressWithAFragmentLosesTheSignature()
    {
        const HttpServer server;
        Reporter reporter;
        start(reporter, server.url(QStringLiteral("/echo#part")));
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(server.requests().first().target, QByteArray("/echo"));
    }

    void addressWithAQueryIsTaken()
    {
        Reporter reporter;
        start(reporter, QUrl(m_backend->url().toString() + QStringLiteral("?app=1")));
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(m_backend->records().size(), 1);
        QCOMPARE(m_backend->records().first().problems, QStringList());
    }

    void peerIsNotVerified()
    {
        const StatisticsBackend secure(ZyBase::pszSigningSecret,
                                       Authority::selfSigned(QStringLiteral("other")));
        Reporter reporter;
        start(reporter, secure.url());
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(secure.records().size(), 1);
        QCOMPARE(secure.records().first().problems, QStringList());
    }

    void emptyQdReplacesTheDefault()
    {
        QVERIFY(send(utf8("a"), utf8("s"), QStringLiteral("")).request.body.contains(",\"qd\":\"\","));
    }

    void recordWithoutAnAddressFailsUnseen()
    {
        Reporter reporter;
        reporter.ReportXdData(utf8("a"), utf8("s"));
        QCOMPARE(reporter.started(), 1);
        QCOMPARE(reporter.running(), 1);
        QTRY_COMPARE(reporter.running(), 0);
    }

    void recordsKeepWhatWasSetAtTheirStart()
    {
        Reporter reporter;
        const QString url = m_backend->url().toString();
        reporter.InitData(url, utf8("d1"), utf8("p1"), utf8("v1"), utf8("q1"));
        reporter.ReportXdData(utf8("a"), utf8("s"));
        reporter.InitData(url, utf8("d2"), utf8("p2"), utf8("v2"), utf8("q2"));
        reporter.ReportXdData(utf8("a"), utf8("s"));
        QTRY_COMPARE(reporter.running(), 0);
        QList<QByteArray> bodies;
        const QList<StatisticsBackend::Record> records = m_backend->records();
        for (const StatisticsBackend::Record &record : records)
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

    void equalRecordsOfOneSecondAreBothSent()
    {
        Reporter reporter;
        reporter.InitData(m_backend->url().toString(), utf8("d"), utf8("p"), utf8("v"), utf8("q"));
        // A second may end between the two, but not each time.
        QList<StatisticsBackend::Record> two;
        for (int attempt = 0; attempt < 5; ++attempt) {
            reporter.ReportXdData(utf8("a"), utf8("s"));
            reporter.ReportXdData(utf8("a"), utf8("s"));
            QTRY_COMPARE(reporter.running(), 0);
            two = m_backend->records().mid(2 * attempt);
            QCOMPARE(two.size(), 2);
            if (two.at(0).request.target == two.at(1).request.target)
                break;
        }
        QCOMPARE(two.at(0).request.target, two.at(1).request.target);
        QCOMPARE(two.at(0).request.body, two.at(1).request.body);
        QCOMPARE(two.at(1).problems, QStringList());
    }

    void requestRemovesItself_data()
    {
        QTest::addColumn<QByteArray>("path");
        for (const char *path : {"/echo", "/status/403", "/status/500", "/redirect/302?to=/echo", "/cut/100"})
            QTest::newRow(path) << QByteArray(path);
    }
    void requestRemovesItself()
    {
        QFETCH(QByteArray, path);
        const HttpServer server;
        Reporter reporter;
        for (int i = 0; i < 3; ++i)
            start(reporter, server.url(QString::fromLatin1(path)));
        QCOMPARE(reporter.running(), 3);
        QTRY_COMPARE(reporter.running(), 0);
        QVERIFY(reporter.areRemovedInItsThread());
        QCOMPARE(server.requests().size(), 3);
    }

    void requestToNobodyRemovesItself()
    {
        Reporter reporter;
        start(reporter, deadUrl());
        QCOMPARE(reporter.running(), 1);
        QTRY_COMPARE(reporter.running(), 0);
    }

    void startDoesNotWait()
    {
        const SilentServer server;
        Reporter reporter;
        QElapsedTimer clock;
        clock.start();
        start(reporter, server.url());
        QVERIFY(clock.elapsed() < 5000);
        QCOMPARE(reporter.running(), 1);
    }

    void oneStopEndsAllRequests()
    {
        const SilentServer server;
        Reporter reporter;
        for (int i = 0; i < 20; ++i)
            start(reporter, server.url());
        QCOMPARE(reporter.running(), 20);
        QTRY_COMPARE(server.requests().size(), 20);
        reporter.StopReport();
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, 5000);
        QVERIFY(reporter.areRemovedInItsThread());
    }

    void threadsAreGoneWithTheirRequests()
    {
        Reporter reporter;
        start(reporter, m_backend->url());
        QTRY_COMPARE(reporter.running(), 0);
        const int before = ProcessFigures::threadCount();
        for (int i = 0; i < 30; ++i)
            start(reporter, m_backend->url());
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, 30000);
        QTRY_VERIFY(ProcessFigures::threadCount() <= before);
        QCOMPARE(m_backend->records().size(), 31);
    }

    void stopIsOutBeforeItReturns()
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

    void stopIsASignal()
    {
        CXdReport reporter;
        int stops = 0;
        connect(&reporter, &CXdReport::SignalStopRequest, this, [&] { ++stops; });
        reporter.StopReport();
        QCOMPARE(stops, 1);
    }

    void recordAfterAStopGoesOut()
    {
        Reporter reporter;
        reporter.StopReport();
        start(reporter, m_backend->url());
        QTRY_COMPARE(reporter.running(), 0);
        reporter.StopReport();
        QTest::qWait(10);
        QCOMPARE(m_backend->records().size(), 1);
    }

    void requestIsConnectedBeforeItsStart()
    {
        if (ZYBASE_SANITIZED)
            QSKIP("sanitizers need the address space that is taken away here");
        HostProcess host;
        QVERIFY(host.start());
        QCOMPARE(host.call(QStringLiteral("analytics.startRecordWithoutThreads")),
                 QJsonValue(QJsonArray({true, 1, true})));
        QCOMPARE(host.quit(), 0);
    }

    void parentOwnsTheReporter()
    {
        QObject parent;
        auto *const child = new CXdReport(&parent);
        QCOMPARE(child->parent(), &parent);
        QCOMPARE(CXdReport(nullptr).parent(), nullptr);
    }

    void oneSignalAndNoSlots()
    {
        QCOMPARE(ownMethods(CXdReport::staticMetaObject),
                 QStringList {QStringLiteral("signal SignalStopRequest()")});
    }

    void fieldsStandInTheirOrder()
    {
        QCOMPARE(sizeof(CXdReport), sizeof(QObject) + 5 * sizeof(QString));
        CXdReport reporter;
        const QString *const fields = textFieldsOf(reporter);
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
