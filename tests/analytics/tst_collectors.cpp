// SPDX-License-Identifier: LGPL-2.1-or-later

#include <localservices/GaCollector.h>
#include <localservices/StatisticsBackend.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

#include <memory>

using LocalServices::GaCollector;
using LocalServices::StatisticsBackend;

namespace {

const QByteArray goodEvent = "{\"client_id\": \"c\", \"user_id\": \"c\", \"events\": [{\"name\": \"open\","
                             " \"params\": {\"event_category\": \"file\", \"event_label\": \"pdf\"}}]}";
const QByteArray goodRecord =
    "{\"action\":\"a\",\"day\":\"2026-11-20 17:05:09\",\"device_id\":\"d\",\"os\":\"linux\","
    "\"product\":\"p\",\"qd\":\"q\",\"status\":\"s\",\"version\":\"v\"}";
const QByteArray secret(32, 's');

QByteArray changed(QByteArray content, const QByteArray &before, const QByteArray &after)
{
    return content.replace(before, after);
}

// Returns the status of the answer, or -1 if there is none.
int post(const QUrl &url, const QByteArray &body)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    const std::unique_ptr<QNetworkReply> reply(manager.post(request, body));
    if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 20000))
        return -1;
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

QUrl withQuery(const QUrl &url, const QByteArray &query)
{
    return QUrl(url.toString() + QString::fromLatin1(query));
}

} // namespace

// The servers that record events and records report their errors. Other tests depend on this.
class TestCollectors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsProblemsOfEvent_data()
    {
        QTest::addColumn<QByteArray>("query");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("problem");
        const QByteArray query = "?measurement_id=G-1&api_secret=s";
        const auto row = [&query](const char *name, const QByteArray &body, const QByteArray &problem) {
            QTest::newRow(name) << query << body << QString::fromLatin1(problem);
        };
        const QByteArray longString(101, 'x');
        row("good", goodEvent, "");
        row("not JSON", "hello",
            "keys: client_id is missing keys: events is missing keys: user_id is missing client_id user_id "
            "events");
        row("empty client", changed(goodEvent, "\"client_id\": \"c\"", "\"client_id\": \"\""), "client_id");
        row("no events",
            changed(goodEvent,
                    "[{\"name\": \"open\", \"params\": {\"event_category\": \"file\","
                    " \"event_label\": \"pdf\"}}]",
                    "[]"),
            "events");
        row("space in the name", changed(goodEvent, "open", "open file"), "name: open file");
        row("long name", changed(goodEvent, "open", longString.left(41)), "name: " + longString.left(41));
        row("reserved name", changed(goodEvent, "open", "ga_open"), "name: ga_open");
        row("long label", changed(goodEvent, "pdf", longString), "value: event_label");
        row("label is a number", changed(goodEvent, "\"pdf\"", "7"), "value: event_label");
        row("invalid parameter name", changed(goodEvent, "event_label", "event label"), "param: event label");
        row("additional key", changed(goodEvent, "{\"client_id\"", "{\"a\": 1, \"client_id\""),
            "keys: a is unknown");
        QTest::newRow("empty secret")
            << QByteArray("?measurement_id=G-1&api_secret=") << goodEvent << QStringLiteral("api_secret");
        QTest::newRow("empty measurement identifier")
            << QByteArray("?measurement_id=&api_secret=s") << goodEvent << QStringLiteral("measurement_id");
        QTest::newRow("additional key in the query")
            << query + "&a=1" << goodEvent << QStringLiteral("query");
    }
    void reportsProblemsOfEvent()
    {
        QFETCH(QByteArray, query);
        QFETCH(QByteArray, body);
        QFETCH(QString, problem);
        const GaCollector collector;
        QCOMPARE(post(withQuery(collector.url(), query), body), 204);
        QCOMPARE(collector.events().size(), 1);
        QCOMPARE(collector.events().first().problems.join(QLatin1Char(' ')), problem);
    }

    void reportsProblemsOfRecord_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("signedBody");
        QTest::addColumn<int>("age");
        QTest::addColumn<QString>("problem");
        const auto row = [](const char *name, const QByteArray &body, int age, const char *problem) {
            QTest::newRow(name) << body << body << age << QString::fromLatin1(problem);
        };
        row("good", goodRecord, 0, "");
        row("four minutes old", goodRecord, 240, "");
        row("an hour old", goodRecord, 3600, "timestamp");
        row("in the future", goodRecord, -3600, "timestamp");
        row("missing key", changed(goodRecord, "\"qd\":\"q\",", ""), 0, "keys: qd is missing");
        row("additional key", changed(goodRecord, "\"qd\"", "\"b\":\"\",\"qd\""), 0, "keys: b is unknown");
        row("value is a number", changed(goodRecord, "\"q\"", "7"), 0, "value: qd");
        row("another date format", changed(goodRecord, "2026-11-20 ", "20.11.2026 "), 0,
            "day: 20.11.2026 17:05:09");
        QTest::newRow("signature of other bytes") << goodRecord << goodRecord + '\n'
                                                  << 0 << QStringLiteral("sign");
    }
    void reportsProblemsOfRecord()
    {
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, signedBody);
        QFETCH(int, age);
        QFETCH(QString, problem);
        const StatisticsBackend backend(secret);
        const QByteArray seconds = QByteArray::number(QDateTime::currentSecsSinceEpoch() - age);
        const QByteArray text = secret + "timestamp" + seconds + signedBody + secret;
        const QByteArray sign = QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
        const QUrl url = withQuery(backend.url(), "?sign=" + sign + "&timestamp=" + seconds);
        QCOMPARE(post(url, body), problem.isEmpty() ? 200 : 403);
        QCOMPARE(backend.records().size(), 1);
        QCOMPARE(backend.records().first().problems.join(QLatin1Char(' ')), problem);
    }

    void rejectsRecordWithoutSignature_data()
    {
        QTest::addColumn<QByteArray>("query");
        QTest::addColumn<QStringList>("problems");
        const QString timestamp = QStringLiteral("timestamp");
        const QString sign = QStringLiteral("sign");
        QTest::newRow("no query") << QByteArray()
                                  << QStringList {QStringLiteral("query: sign is missing"), timestamp, sign};
        QTest::newRow("no time stamp")
            << QByteArray("?sign=x")
            << QStringList {QStringLiteral("query: timestamp is missing"), timestamp, sign};
        QTest::newRow("keys in another order")
            << QByteArray("?timestamp=1&sign=x") << QStringList {QStringLiteral("query"), timestamp, sign};
        QTest::newRow("values of another form")
            << QByteArray("?sign=x&timestamp=now") << QStringList {timestamp, sign};
    }
    void rejectsRecordWithoutSignature()
    {
        QFETCH(QByteArray, query);
        const StatisticsBackend backend(secret);
        QCOMPARE(post(withQuery(backend.url(), query), goodRecord), 403);
        QTEST(backend.records().first().problems, "problems");
    }
};

QTEST_GUILESS_MAIN(TestCollectors)

#include "tst_collectors.moc"
