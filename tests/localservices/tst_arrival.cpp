// SPDX-License-Identifier: LGPL-2.1-or-later

#include <Arrival.h>

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using LocalServices::GaCollector;
using LocalServices::StatisticsBackend;

namespace {

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

GaCollector::Event eventWith(const QStringList &problems)
{
    return {{"POST", "/mp/collect?measurement_id=a&api_secret=b", {{"Host", "h"}}, "{}"},
            parsed("{\"events\":[{\"name\":\"open_file\",\"params\":"
                   "{\"event_category\":\"file\",\"event_label\":\"pdf\"}}]}"),
            problems};
}

StatisticsBackend::Record recordWith(const QStringList &problems)
{
    return {{"POST", "/report?sign=a&timestamp=1", {}, "{}"},
            "a",
            1,
            parsed("{\"action\":\"install\",\"status\":\"end\"}"),
            problems};
}

} // namespace

// The results of the collectors' validation, as shown to developers of applications.
class TestArrival : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void describesEventByNameCategoryAndLabel()
    {
        const Arrival arrival = Arrival::of(eventWith({}));
        QCOMPARE(arrival.kind, QStringLiteral("event"));
        QCOMPARE(arrival.name, QStringLiteral("open_file"));
        QCOMPARE(arrival.detail, QStringLiteral("file · pdf"));
        QCOMPARE(arrival.signature, QString());
        QCOMPARE(arrival.problems, QStringList());
        QVERIFY(arrival.isGood());
        QCOMPARE(arrival.request.body, QByteArray("{}"));
    }

    void joinsEventsOfOneRequest()
    {
        GaCollector::Event two = eventWith({});
        two.body =
            parsed("{\"events\":[{\"name\":\"a\",\"params\":{\"event_label\":\"x\"}},{\"name\":\"b\"}]}");
        QCOMPARE(Arrival::of(two).name, QStringLiteral("a · b"));
        QCOMPARE(Arrival::of(two).detail, QStringLiteral("x"));
    }

    void describesRecordByActionAndStatus()
    {
        const Arrival arrival = Arrival::of(recordWith({}));
        QCOMPARE(arrival.kind, QStringLiteral("record"));
        QCOMPARE(arrival.name, QStringLiteral("install"));
        QCOMPARE(arrival.detail, QStringLiteral("end"));
        QCOMPARE(arrival.signature, QStringLiteral("good"));
        QVERIFY(arrival.isGood());
    }

    void setsTimeInUtc()
    {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const Arrival arrival = Arrival::of(eventWith({}));
        QVERIFY(arrival.time.endsWith(QLatin1Char('Z')));
        const QDateTime time = QDateTime::fromString(arrival.time, Qt::ISODateWithMs);
        QVERIFY(time >= before && time <= QDateTime::currentDateTimeUtc());
    }

    void reportsMostImportantSignatureProblem_data()
    {
        QTest::addColumn<QStringList>("problems");
        QTest::addColumn<QString>("signature");
        const QString sign = QStringLiteral("sign");
        const QString timestamp = QStringLiteral("timestamp");
        const QString query = QStringLiteral("query");
        QTest::newRow("none") << QStringList {QStringLiteral("day")} << QStringLiteral("good");
        QTest::newRow("sign") << QStringList {sign}
                              << QStringLiteral("bad: it does not match the secret, time stamp and body");
        QTest::newRow("timestamp") << QStringList {timestamp}
                                   << QStringLiteral("bad: the time stamp is more than 300 seconds from now");
        QTest::newRow("both") << QStringList {timestamp, sign}
                              << QStringLiteral("bad: it does not match the secret, time stamp and body");
        QTest::newRow("missing key") << QStringList {
            QStringLiteral("query: sign is missing"), timestamp,
            sign} << QStringLiteral("bad: the query does not end with sign and timestamp: sign is missing");
        QTest::newRow("query") << QStringList {query, timestamp, sign}
                               << QStringLiteral("bad: the query does not end with sign and timestamp");
    }
    void reportsMostImportantSignatureProblem()
    {
        QFETCH(QStringList, problems);
        const Arrival arrival = Arrival::of(recordWith(problems));
        QTEST(arrival.signature, "signature");
        QCOMPARE(arrival.isGood(), false);
        QCOMPARE(arrival.problems.isEmpty(), arrival.signature != QLatin1String("good"));
    }

    void describesEachProblemInOneSentence_data()
    {
        QTest::addColumn<bool>("isEvent");
        for (const char *problem :
             {"method", "measurement_id", "api_secret", "query", "Content-Type", "size", "keys", "client_id",
              "user_id", "events", "event", "name", "params", "param", "value"})
            QTest::addRow("event, %s", problem) << true;
        for (const char *problem : {"method", "Content-Type", "keys", "value", "day"})
            QTest::addRow("record, %s", problem) << false;
    }
    void describesEachProblemInOneSentence()
    {
        QFETCH(bool, isEvent);
        const QString problem = QString::fromLatin1(QTest::currentDataTag()).section(QStringLiteral(", "), 1);
        const Arrival arrival =
            isEvent ? Arrival::of(eventWith({problem})) : Arrival::of(recordWith({problem}));
        QCOMPARE(arrival.problems.size(), 1);
        QVERIFY2(arrival.problems.first().endsWith(QLatin1Char('.')), qPrintable(arrival.problems.first()));
        QVERIFY(!arrival.isGood());
    }

    void namesViolationAfterSentence()
    {
        QCOMPARE(Arrival::of(eventWith({QStringLiteral("value: event_label: a")})).problems,
                 QStringList {QStringLiteral(
                     "A param's value is not a string of at most 100 characters: event_label: a.")});
    }

    void keepsUnknownProblem()
    {
        const Arrival arrival = Arrival::of(recordWith({QStringLiteral("news")}));
        QCOMPARE(arrival.problems, QStringList {QStringLiteral("news")});
        QVERIFY(!arrival.isGood());
    }

    void reportsRepeatedProblemOnce()
    {
        const QString name = QStringLiteral("name");
        QCOMPARE(Arrival::of(eventWith({name, name})).problems.size(), 1);
    }

    void writesAllFieldsToJson()
    {
        Arrival arrival = Arrival::of(eventWith({QStringLiteral("news")}));
        arrival.id = 7;
        arrival.time = QStringLiteral("2026-11-20T17:05:09.123Z");
        QCOMPARE(
            arrival.toJson(),
            parsed("{\"id\":7,\"kind\":\"event\",\"time\":\"2026-11-20T17:05:09.123Z\","
                   "\"name\":\"open_file\",\"detail\":\"file · pdf\",\"method\":\"POST\","
                   "\"target\":\"/mp/collect?measurement_id=a&api_secret=b\",\"headers\":[[\"Host\",\"h\"]],"
                   "\"body\":\"{}\",\"signature\":\"\",\"problems\":[\"news\"],\"good\":false}"));
    }
};

QTEST_GUILESS_MAIN(TestArrival)
#include "tst_arrival.moc"
