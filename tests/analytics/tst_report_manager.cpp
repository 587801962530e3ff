// SPDX-License-Identifier: LGPL-2.1-or-later

#include "AnalyticsTest.h"

#include "Files.h"
#include "Utf8.h"
#include "Waiting.h"

#include <ZyBase/analytics/CGaReportManager.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QTemporaryDir>

using ZyBase::CGaReportManager;

namespace {

using Catalogue = QMap<QString, QJsonObject>;

// The fields, which follow those of QObject.
struct Fields
{
    Catalogue catalogue;
    CGaReport ga;
    CXdReport xd;
};
Fields &fieldsOf(CGaReportManager *manager)
{
    return *reinterpret_cast<Fields *>(reinterpret_cast<char *>(manager) + sizeof(QObject));
}

} // namespace

class TestReportManager : public AnalyticsTest
{
    Q_OBJECT

private:
    static CGaReportManager *manager() { return CGaReportManager::getInstance(nullptr); }
    static int runningEvents() { return fieldsOf(manager()).ga.children().size(); }
    static int runningRecords() { return fieldsOf(manager()).xd.children().size(); }

    QString write(const QByteArray &content, const char *name = "events.json")
    {
        const QString path = m_directory->filePath(QString::fromLatin1(name));
        return writeFile(path, content) ? path : QString();
    }
    void load(const QByteArray &content)
    {
        manager()->InitGaData(write(content), utf8("client"), utf8("G-1"), utf8("secret"));
    }
    void loadTwoEvents()
    {
        load("[{\"event_key\": \"open\", \"event_name\": \"open_file\", \"event_category\": \"file\","
             "  \"event_label\": \"pdf\"},"
             " {\"event_key\": \"print\", \"event_name\": \"print_file\", \"event_category\": \"device\","
             "  \"event_label\": \"\"}]");
    }

    void startEvent()
    {
        startEvents([] { manager()->SendGaReport(utf8("open"), QStringLiteral(""), false); });
    }

    // Returns "name/category/label" of each received event.
    QStringList received()
    {
        QStringList texts;
        const QList<GaCollector::Event> events = network().collector().events();
        for (const GaCollector::Event &event : events) {
            const QJsonObject sent = event.body.value(QStringLiteral("events")).toArray().at(0).toObject();
            const QJsonObject params = sent.value(QStringLiteral("params")).toObject();
            texts << sent.value(QStringLiteral("name")).toString() + QLatin1Char('/')
                         + params.value(QStringLiteral("event_category")).toString() + QLatin1Char('/')
                         + params.value(QStringLiteral("event_label")).toString();
        }
        return texts;
    }

    // Whether neither a synchronous nor an asynchronous call sends an event.
    bool sendsNothing(const QString &key, const QString &label = QString())
    {
        const int before = received().size();
        manager()->SendGaReport(key, label, false);
        const bool isIdle = runningEvents() == 0;
        manager()->SendGaReport(key, label, true);
        return isIdle && received().size() == before;
    }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init()
    {
        AnalyticsTest::init();
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(!CGaReportManager::s_instance);
    }
    void cleanup()
    {
        if (CGaReportManager::s_instance) {
            QTRY_VERIFY_WITH_TIMEOUT(
                (CGaReportManager::ReleaseReport(), runningEvents() + runningRecords() == 0), longestWaitMs);
            delete CGaReportManager::s_instance;
            CGaReportManager::s_instance = nullptr;
        }
        AnalyticsTest::cleanup();
    }

    void createsNoInstanceForRelease()
    {
        CGaReportManager::ReleaseReport();
        QVERIFY(!CGaReportManager::s_instance);
    }

    void usesFirstParent()
    {
        QObject first;
        QObject second;
        CGaReportManager *const instance = CGaReportManager::getInstance(&first);
        QCOMPARE(CGaReportManager::s_instance, instance);
        QCOMPARE(CGaReportManager::getInstance(&second), instance);
        QCOMPARE(CGaReportManager::getInstance(nullptr), instance);
        QCOMPARE(instance->parent(), &first);
        instance->setParent(nullptr);
    }

    void keepsPointerAfterParentDeletesInstance()
    {
        auto parent = std::make_unique<QObject>();
        CGaReportManager *const instance = CGaReportManager::getInstance(parent.get());
        const QPointer<CGaReportManager> guard(instance);
        parent.reset();
        QVERIFY(guard.isNull());
        QCOMPARE(CGaReportManager::s_instance, instance);
        CGaReportManager::s_instance = nullptr;
    }

    void acceptsNullParent() { QCOMPARE(manager()->parent(), nullptr); }

    void keepsFieldsInOrder()
    {
        QCOMPARE(sizeof(CGaReportManager),
                 sizeof(QObject) + sizeof(Catalogue) + sizeof(CGaReport) + sizeof(CXdReport));
        loadTwoEvents();
        const Fields &fields = fieldsOf(manager());
        QCOMPARE(fields.catalogue.keys(), QStringList({utf8("open"), utf8("print")}));
        QCOMPARE(fields.ga.metaObject(), &CGaReport::staticMetaObject);
        QCOMPARE(fields.xd.metaObject(), &CXdReport::staticMetaObject);
        QCOMPARE(fields.ga.parent(), nullptr);
        QCOMPARE(fields.xd.parent(), nullptr);
        QCOMPARE(ownMethods(CGaReportManager::staticMetaObject), QStringList());
    }

    void destroysFieldsInReverseOrder()
    {
        QStringList gone;
        CGaReportManager *const instance = manager();
        connect(&fieldsOf(instance).ga, &QObject::destroyed, this, [&] { gone << utf8("ga"); });
        connect(&fieldsOf(instance).xd, &QObject::destroyed, this, [&] { gone << utf8("xd"); });
        delete instance;
        CGaReportManager::s_instance = nullptr;
        QCOMPARE(gone, QStringList({utf8("xd"), utf8("ga")}));
    }

    void sendsEventOfKey_data()
    {
        QTest::addColumn<bool>("sync");
        QTest::newRow("synchronous") << true;
        QTest::newRow("asynchronous") << false;
    }
    void sendsEventOfKey()
    {
        QFETCH(bool, sync);
        loadTwoEvents();
        if (sync)
            manager()->SendGaReport(utf8("open"), QStringLiteral(""), true);
        else
            startEvent();
        QCOMPARE(runningEvents(), sync ? 0 : 1);
        if (sync)
            QCOMPARE(received().size(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(runningEvents(), 0, longestWaitMs);
        QCOMPARE(received(), QStringList {utf8("open_file/file/pdf")});
        const GaCollector::Event event = network().collector().events().first();
        QCOMPARE(event.problems, QStringList());
        QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-1&api_secret=secret"));
        QCOMPARE(event.body.value(QStringLiteral("client_id")).toString(), utf8("client"));
    }

    void sendsNothingForUnknownKey()
    {
        QVERIFY(sendsNothing(utf8("open"))); // without a catalogue
        loadTwoEvents();
        QVERIFY(sendsNothing(utf8("close"), utf8("label")));
        QVERIFY(sendsNothing(QString(), utf8("label")));
        QCOMPARE(manager()->GetGaData(utf8("close")), QJsonObject());
    }

    void matchesKeysExactly_data()
    {
        QTest::addColumn<QString>("key");
        for (const char *key : {"Open", "open ", " open", "ope", "open.", "öpen"})
            QTest::newRow(key) << utf8(key);
    }
    void matchesKeysExactly()
    {
        QFETCH(QString, key);
        load("[{\"event_key\": \"open\", \"event_name\": \"n\", \"event_category\": \"c\","
             " \"event_label\": \"l\"},"
             " {\"event_key\": \"o\xcc\x88pen\", \"event_name\": \"n\", \"event_category\": \"c\"}]");
        QVERIFY(manager()->GetGaData(key).isEmpty());
        QVERIFY(sendsNothing(key));
    }

    void prefersLabelOfCall()
    {
        loadTwoEvents();
        const QJsonObject before = manager()->GetGaData(utf8("open"));
        manager()->SendGaReport(utf8("open"), utf8("say \"epub\"\n😀"), true);
        QCOMPARE(received(), QStringList {utf8("open_file/file/say \"epub\"\n😀")});
        QCOMPARE(manager()->GetGaData(utf8("open")), before);
        manager()->SendGaReport(utf8("open"), utf8(" "), true);
        QCOMPARE(received().last(), utf8("open_file/file/ "));
        manager()->SendGaReport(utf8("open"), QString(), true);
        QCOMPARE(received().last(), utf8("open_file/file/pdf"));
    }

    void requiresLabelOfCallIfLabelIsEmpty()
    {
        loadTwoEvents();
        QVERIFY(sendsNothing(utf8("print"), QStringLiteral("")));
        QVERIFY(sendsNothing(utf8("print"), QString()));
        manager()->SendGaReport(utf8("print"), utf8("laser"), true);
        QCOMPARE(received(), QStringList {utf8("print_file/device/laser")});
    }

    void doesNotSendIncompleteEvent_data()
    {
        QTest::addColumn<QByteArray>("parts");
        QTest::newRow("no name") << QByteArray("\"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("empty name") << QByteArray(
            "\"event_name\": \"\", \"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("name is a number")
            << QByteArray("\"event_name\": 7, \"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("name is null")
            << QByteArray("\"event_name\": null, \"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("no category") << QByteArray("\"event_name\": \"n\", \"event_label\": \"l\"");
        QTest::newRow("empty category")
            << QByteArray("\"event_name\": \"n\", \"event_category\": \"\", \"event_label\": \"l\"");
        QTest::newRow("category is a boolean")
            << QByteArray("\"event_name\": \"n\", \"event_category\": true, \"event_label\": \"l\"");
        QTest::newRow("category is an object")
            << QByteArray("\"event_name\": \"n\", \"event_category\": {}, \"event_label\": \"l\"");
        QTest::newRow("other case") << QByteArray(
            "\"Event_Name\": \"n\", \"event_category\": \"c\", \"event_label\": \"l\"");
    }
    void doesNotSendIncompleteEvent()
    {
        QFETCH(QByteArray, parts);
        load("[{\"event_key\": \"k\", " + parts + "}]");
        QVERIFY(!manager()->GetGaData(utf8("k")).isEmpty());
        QVERIFY(sendsNothing(utf8("k")));
        QVERIFY(sendsNothing(utf8("k"), utf8("label")));
    }

    void treatsOtherTypeOfLabelAsEmpty()
    {
        load("[{\"event_key\": \"k\", \"event_name\": \"n\", \"event_category\": \"c\","
             " \"event_label\": 5}]");
        QVERIFY(sendsNothing(utf8("k")));
        manager()->SendGaReport(utf8("k"), utf8("l"), true);
        QCOMPARE(received(), QStringList {utf8("n/c/l")});
    }

    void keepsWholeObject()
    {
        load("[{\"event_key\": \"k\", \"event_name\": \"n\", \"other\": [1, {\"x\": null}]}]");
        const QJsonObject expected = QJsonDocument::fromJson("{\"event_key\": \"k\", \"event_name\": \"n\","
                                                             " \"other\": [1, {\"x\": null}]}")
                                         .object();
        QCOMPARE(manager()->GetGaData(utf8("k")), expected);
        QJsonObject copy = manager()->GetGaData(utf8("k"));
        copy.insert(utf8("event_name"), utf8("changed"));
        QCOMPARE(manager()->GetGaData(utf8("k")), expected);
    }

    void usesLastObjectOfKey()
    {
        load("[{\"event_key\": \"k\", \"event_name\": \"first\"}, {\"event_key\": \"other\", \"a\": 1},"
             " {\"event_key\": \"k\", \"event_name\": \"second\"}]");
        QCOMPARE(manager()->GetGaData(utf8("k")).value(utf8("event_name")).toString(), utf8("second"));
        load("[{\"event_key\": \"k\", \"event_name\": \"third\"}]");
        QCOMPARE(manager()->GetGaData(utf8("k")).value(utf8("event_name")).toString(), utf8("third"));
        QVERIFY(!manager()->GetGaData(utf8("other")).isEmpty());
    }

    void usesEmptyKeyForMissingKey_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::newRow("missing") << QByteArray("");
        QTest::newRow("empty") << QByteArray("\"event_key\": \"\",");
        QTest::newRow("number") << QByteArray("\"event_key\": 7,");
        QTest::newRow("null") << QByteArray("\"event_key\": null,");
        QTest::newRow("array") << QByteArray("\"event_key\": [\"k\"],");
    }
    void usesEmptyKeyForMissingKey()
    {
        QFETCH(QByteArray, key);
        load("[{\"event_key\": \"k\", \"x\": 1}, {" + key
             + "\"event_name\": \"n\", \"event_category\": \"c\", \"event_label\": \"l\"}]");
        QCOMPARE(fieldsOf(manager()).catalogue.keys(), QStringList({QString(), utf8("k")}));
        manager()->SendGaReport(QStringLiteral(""), QStringLiteral(""), true);
        manager()->SendGaReport(QString(), QString(), true);
        QCOMPARE(received(), QStringList({utf8("n/c/l"), utf8("n/c/l")}));
    }

    void clearsEmptyKeyForInvalidElement_data()
    {
        QTest::addColumn<QByteArray>("element");
        for (const char *element : {"{}", "7", "\"text\"", "null", "true", "[]", "[{\"event_key\": \"k\"}]"})
            QTest::newRow(element) << QByteArray(element);
    }
    void clearsEmptyKeyForInvalidElement()
    {
        QFETCH(QByteArray, element);
        load("[{\"event_name\": \"n\", \"event_category\": \"c\", \"event_label\": \"l\"}, " + element + "]");
        QCOMPARE(fieldsOf(manager()).catalogue.keys(), QStringList {QString()});
        QCOMPARE(manager()->GetGaData(QString()), QJsonObject());
        QVERIFY(sendsNothing(QString(), utf8("label")));
    }

    void keepsCatalogueAfterInvalidFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("missing") << QByteArray();
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("object") << QByteArray("{\"event_key\": \"k\", \"event_name\": \"n\"}");
        QTest::newRow("truncated") << QByteArray("[{\"event_key\": \"k\"}, {\"event_key\"");
        QTest::newRow("not JSON") << QByteArray("hello");
        QTest::newRow("empty array") << QByteArray("[]");
        QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0]\0", 6);
    }
    void keepsCatalogueAfterInvalidFile()
    {
        QFETCH(QByteArray, content);
        loadTwoEvents();
        const QString path =
            content.isNull() ? m_directory->filePath(utf8("missing.json")) : write(content, "bad.json");
        manager()->InitGaData(path, utf8("other"), utf8("G-2"), utf8("hidden"));
        QCOMPARE(fieldsOf(manager()).catalogue.keys(), QStringList({utf8("open"), utf8("print")}));
        // The identifiers are set nevertheless.
        manager()->SendGaReport(utf8("open"), QString(), true);
        QCOMPARE(received().size(), 1);
        const GaCollector::Event event = network().collector().events().first();
        QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-2&api_secret=hidden"));
        QCOMPARE(event.body.value(QStringLiteral("client_id")).toString(), utf8("other"));
    }

    void addsSecondCatalogue()
    {
        loadTwoEvents();
        manager()->InitGaData(write("[{\"event_key\": \"close\", \"event_name\": \"close_file\","
                                    " \"event_category\": \"file\", \"event_label\": \"x\"}]",
                                    "more.json"),
                              utf8("second"), utf8("G-2"), utf8("S2"));
        manager()->SendGaReport(utf8("close"), QString(), true);
        manager()->SendGaReport(utf8("open"), QString(), true);
        QCOMPARE(received(), QStringList({utf8("close_file/file/x"), utf8("open_file/file/pdf")}));
        const QList<GaCollector::Event> events = network().collector().events();
        for (const GaCollector::Event &event : events)
            QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-2&api_secret=S2"));
    }

    void keepsHugeCatalogue()
    {
        constexpr int count = 100000;
        QByteArray content("[");
        for (int i = 0; i < count; ++i) {
            const QByteArray number = QByteArray::number(i);
            content += (i ? ",{\"event_key\":\"key_" : "{\"event_key\":\"key_") + number
                       + "\",\"event_name\":\"n" + number
                       + "\",\"event_category\":\"c\",\"event_label\":\"l\"}";
        }
        load(content + "]");
        QCOMPARE(fieldsOf(manager()).catalogue.size(), count);
        for (int i = 0; i < count; ++i) {
            const QJsonObject event = manager()->GetGaData(QStringLiteral("key_%1").arg(i));
            QCOMPARE(event.value(QLatin1String("event_name")).toString(), QStringLiteral("n%1").arg(i));
        }
        manager()->SendGaReport(utf8("key_99999"), QString(), true);
        QCOMPARE(received(), QStringList {utf8("n99999/c/l")});
    }

    void sendsRecordWithInitialValues()
    {
        manager()->InitXdData(network().statistics().url().toString(), utf8("device"), utf8("reader"),
                              utf8("1.2.3"), utf8("store"));
        manager()->SendXdReport(utf8("payment_completed"), utf8("none"));
        QCOMPARE(runningRecords(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(runningRecords(), 0, longestWaitMs);
        QCOMPARE(network().statistics().records().size(), 1);
        const Record record = network().statistics().records().first();
        QCOMPARE(record.problems, QStringList());
        QJsonObject body = record.body;
        body.remove(utf8("day"));
        const QJsonObject expected =
            QJsonDocument::fromJson("{\"action\": \"payment_completed\", \"status\": \"none\","
                                    " \"device_id\": \"device\", \"product\": \"reader\","
                                    " \"version\": \"1.2.3\", \"qd\": \"store\", \"os\": \"linux\"}")
                .object();
        QCOMPARE(body, expected);
    }

    void dropsRecordWithoutAddress()
    {
        manager()->SendXdReport(utf8("install"), utf8("start"));
        QCOMPARE(runningRecords(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(runningRecords(), 0, longestWaitMs);
    }

    void stopsEventsAndRecordsSeparately()
    {
        const SilentServer silent;
        routeEvents(silent.url());
        loadTwoEvents();
        manager()->InitXdData(silent.url().toString(), {}, {}, {}, {});
        for (int i = 0; i < 3; ++i) {
            startEvent();
            manager()->SendXdReport(utf8("crash"), utf8("end"));
        }
        QTRY_COMPARE_WITH_TIMEOUT(silent.requests().size(), 6, longestWaitMs);
        manager()->StopGaReport();
        QTRY_COMPARE_WITH_TIMEOUT(runningEvents(), 0, beforeTimeLimitMs);
        QCOMPARE(runningRecords(), 3);
        startEvent();
        QTRY_COMPARE_WITH_TIMEOUT(silent.requests().size(), 7, longestWaitMs);
        manager()->StopXdReport();
        QTRY_COMPARE_WITH_TIMEOUT(runningRecords(), 0, beforeTimeLimitMs);
        QCOMPARE(runningEvents(), 1);
    }

    void stopsBothAndDeletesNothingOnRelease()
    {
        const SilentServer silent;
        routeEvents(silent.url());
        loadTwoEvents();
        CGaReportManager *const instance = manager();
        instance->InitXdData(silent.url().toString(), {}, {}, {}, {});
        startEvent();
        instance->SendXdReport(utf8("crash"), utf8("end"));
        QTRY_COMPARE_WITH_TIMEOUT(silent.requests().size(), 2, longestWaitMs);
        CGaReportManager::ReleaseReport();
        QCOMPARE(runningEvents(), 1); // requests end in the event loop
        QCOMPARE(runningRecords(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(runningEvents() + runningRecords(), 0, beforeTimeLimitMs);

        QCOMPARE(CGaReportManager::s_instance, instance);
        QVERIFY(!instance->GetGaData(utf8("open")).isEmpty());
        routeEvents(network().collector().url());
        startEvent();
        QTRY_COMPARE_WITH_TIMEOUT(runningEvents(), 0, longestWaitMs);
        QCOMPARE(received(), QStringList {utf8("open_file/file/pdf")});
        instance->SendXdReport(utf8("crash"), utf8("end"));
        QTRY_COMPARE_WITH_TIMEOUT(silent.requests().size(), 3, longestWaitMs);
    }

    void stopsEventsBeforeRecordsOnRelease()
    {
        QStringList stopped;
        const QObject listener;
        Fields &fields = fieldsOf(manager());
        connect(&fields.ga, &CGaReport::SignalStopRequest, &listener, [&] { stopped << utf8("ga"); });
        connect(&fields.xd, &CXdReport::SignalStopRequest, &listener, [&] { stopped << utf8("xd"); });
        CGaReportManager::ReleaseReport();
        QCOMPARE(stopped, QStringList({utf8("ga"), utf8("xd")}));
    }

    void ignoresStopWithoutRequest()
    {
        manager()->StopGaReport();
        manager()->StopXdReport();
        loadTwoEvents();
        startEvent();
        QTRY_COMPARE_WITH_TIMEOUT(runningEvents(), 0, longestWaitMs);
        QCOMPARE(received().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestReportManager)

#include "tst_report_manager.moc"
