// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Collectors.h"

#include "Files.h"
#include "MessageCapture.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/analytics/SigningSecret.h>
#include <localservices/StatisticsBackend.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QTemporaryDir>

using LocalServices::GaCollector;
using LocalServices::StatisticsBackend;
using ZyBase::CGaReportManager;

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

using Catalogue = QMap<QString, QJsonObject>;

// The fields, as they lie in the manager behind those of QObject.
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

class TestReportManager : public QObject
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
        manager()->InitGaData(write(content), text("client"), text("G-1"), text("secret"));
    }
    void loadTwoEvents()
    {
        load("[{\"event_key\": \"open\", \"event_name\": \"open_file\", \"event_category\": \"file\","
             "  \"event_label\": \"pdf\"},"
             " {\"event_key\": \"print\", \"event_name\": \"print_file\", \"event_category\": \"device\","
             "  \"event_label\": \"\"}]");
    }

    // What arrived: name, category and label of each event.
    QStringList received()
    {
        QStringList texts;
        const QList<GaCollector::Event> events = m_collectors->ga().events();
        for (const GaCollector::Event &event : events) {
            const QJsonObject sent = event.body.value(QStringLiteral("events")).toArray().at(0).toObject();
            const QJsonObject params = sent.value(QStringLiteral("params")).toObject();
            texts << sent.value(QStringLiteral("name")).toString() + QLatin1Char('/')
                         + params.value(QStringLiteral("event_category")).toString() + QLatin1Char('/')
                         + params.value(QStringLiteral("event_label")).toString();
        }
        return texts;
    }

    // Whether nothing went out: neither waiting nor in the background.
    bool sendsNothing(const QString &key, const QString &label = QString())
    {
        const int before = received().size();
        manager()->SendGaReport(key, label, false);
        const bool isIdle = runningEvents() == 0;
        manager()->SendGaReport(key, label, true);
        return isIdle && received().size() == before;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<Collectors> m_collectors;
    std::unique_ptr<StatisticsBackend> m_backend;

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_collectors = std::make_unique<Collectors>();
        m_backend = std::make_unique<StatisticsBackend>(szSigningSecret);
        QVERIFY(!CGaReportManager::s_instance);
    }
    void cleanup()
    {
        if (CGaReportManager::s_instance) {
            QTRY_VERIFY((CGaReportManager::ReleaseReport(), runningEvents() + runningRecords() == 0));
            delete CGaReportManager::s_instance;
            CGaReportManager::s_instance = nullptr;
        }
        m_backend.reset();
        m_collectors.reset();
    }

    void releaseBeforeTheFirstInstanceMakesNone()
    {
        CGaReportManager::ReleaseReport();
        QVERIFY(!CGaReportManager::s_instance);
    }

    void firstParentCounts()
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

    void instanceGoesWithItsParentAndStaysSet()
    {
        auto parent = std::make_unique<QObject>();
        CGaReportManager *const instance = CGaReportManager::getInstance(parent.get());
        const QPointer<CGaReportManager> guard(instance);
        parent.reset();
        QVERIFY(guard.isNull());
        QCOMPARE(CGaReportManager::s_instance, instance);
        CGaReportManager::s_instance = nullptr;
    }

    void instanceWithoutAParentHasNone() { QCOMPARE(manager()->parent(), nullptr); }

    void fieldsStandInTheirOrder()
    {
        QCOMPARE(sizeof(CGaReportManager),
                 sizeof(QObject) + sizeof(Catalogue) + sizeof(CGaReport) + sizeof(CXdReport));
        loadTwoEvents();
        const Fields &fields = fieldsOf(manager());
        QCOMPARE(fields.catalogue.keys(), QStringList({text("open"), text("print")}));
        QCOMPARE(fields.ga.metaObject(), &CGaReport::staticMetaObject);
        QCOMPARE(fields.xd.metaObject(), &CXdReport::staticMetaObject);
        QCOMPARE(fields.ga.parent(), nullptr);
        QCOMPARE(fields.xd.parent(), nullptr);
        QCOMPARE(ownMethods(CGaReportManager::staticMetaObject), QStringList());
    }

    void partsGoInReverseOrder()
    {
        QStringList gone;
        CGaReportManager *const instance = manager();
        connect(&fieldsOf(instance).ga, &QObject::destroyed, this, [&] { gone << text("ga"); });
        connect(&fieldsOf(instance).xd, &QObject::destroyed, this, [&] { gone << text("xd"); });
        delete instance;
        CGaReportManager::s_instance = nullptr;
        QCOMPARE(gone, QStringList({text("xd"), text("ga")}));
    }

    void eventGoesOutByItsKey_data()
    {
        QTest::addColumn<bool>("sync");
        QTest::newRow("waiting") << true;
        QTest::newRow("in the background") << false;
    }
    void eventGoesOutByItsKey()
    {
        QFETCH(bool, sync);
        loadTwoEvents();
        manager()->SendGaReport(text("open"), QStringLiteral(""), sync);
        QCOMPARE(runningEvents(), sync ? 0 : 1);
        if (sync)
            QCOMPARE(received().size(), 1);
        QTRY_COMPARE(runningEvents(), 0);
        QCOMPARE(received(), QStringList {text("open_file/file/pdf")});
        const GaCollector::Event event = m_collectors->ga().events().first();
        QCOMPARE(event.problems, QStringList());
        QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-1&api_secret=secret"));
        QCOMPARE(event.body.value(QStringLiteral("client_id")).toString(), text("client"));
    }

    void unknownKeySendsNothing()
    {
        QVERIFY(sendsNothing(text("open"))); // before any catalogue
        loadTwoEvents();
        QVERIFY(sendsNothing(text("close"), text("label")));
        QVERIFY(sendsNothing(QString(), text("label")));
        QCOMPARE(manager()->GetGaData(text("close")), QJsonObject());
    }

    void keysAreMatchedExactly_data()
    {
        QTest::addColumn<QString>("key");
        for (const char *key : {"Open", "open ", " open", "ope", "open.", "öpen"})
            QTest::newRow(key) << text(key);
    }
    void keysAreMatchedExactly()
    {
        QFETCH(QString, key);
        load("[{\"event_key\": \"open\", \"event_name\": \"n\", \"event_category\": \"c\","
             " \"event_label\": \"l\"},"
             " {\"event_key\": \"o\xcc\x88pen\", \"event_name\": \"n\", \"event_category\": \"c\"}]");
        QVERIFY(manager()->GetGaData(key).isEmpty());
        QVERIFY(sendsNothing(key));
    }

    void labelOfTheCallReplacesThatOfTheCatalogue()
    {
        loadTwoEvents();
        const QJsonObject before = manager()->GetGaData(text("open"));
        manager()->SendGaReport(text("open"), text("say \"epub\"\n😀"), true);
        QCOMPARE(received(), QStringList {text("open_file/file/say \"epub\"\n😀")});
        QCOMPARE(manager()->GetGaData(text("open")), before);
        manager()->SendGaReport(text("open"), QString(), true);
        QCOMPARE(received().last(), text("open_file/file/pdf"));
    }

    void emptyLabelWantsOneOfTheCall()
    {
        loadTwoEvents();
        QVERIFY(sendsNothing(text("print"), QStringLiteral("")));
        QVERIFY(sendsNothing(text("print"), QString()));
        manager()->SendGaReport(text("print"), text("laser"), true);
        QCOMPARE(received(), QStringList {text("print_file/device/laser")});
    }

    void eventWithAnEmptyPartIsNotSent_data()
    {
        QTest::addColumn<QByteArray>("parts");
        QTest::newRow("no name") << QByteArray("\"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("empty name") << QByteArray(
            "\"event_name\": \"\", \"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("number for a name")
            << QByteArray("\"event_name\": 7, \"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("null for a name")
            << QByteArray("\"event_name\": null, \"event_category\": \"c\", \"event_label\": \"l\"");
        QTest::newRow("no category") << QByteArray("\"event_name\": \"n\", \"event_label\": \"l\"");
        QTest::newRow("empty category")
            << QByteArray("\"event_name\": \"n\", \"event_category\": \"\", \"event_label\": \"l\"");
        QTest::newRow("boolean for a category")
            << QByteArray("\"event_name\": \"n\", \"event_category\": true, \"event_label\": \"l\"");
        QTest::newRow("object for a category")
            << QByteArray("\"event_name\": \"n\", \"event_category\": {}, \"event_label\": \"l\"");
        QTest::newRow("other case") << QByteArray(
            "\"Event_Name\": \"n\", \"event_category\": \"c\", \"event_label\": \"l\"");
    }
    void eventWithAnEmptyPartIsNotSent()
    {
        QFETCH(QByteArray, parts);
        load("[{\"event_key\": \"k\", " + parts + "}]");
        QVERIFY(!manager()->GetGaData(text("k")).isEmpty());
        QVERIFY(sendsNothing(text("k")));
        QVERIFY(sendsNothing(text("k"), text("label")));
    }

    void labelThatIsNoTextIsEmpty()
    {
        load("[{\"event_key\": \"k\", \"event_name\": \"n\", \"event_category\": \"c\","
             " \"event_label\": 5}]");
        QVERIFY(sendsNothing(text("k")));
        manager()->SendGaReport(text("k"), text("l"), true);
        QCOMPARE(received(), QStringList {text("n/c/l")});
    }

    void objectIsKeptWhole()
    {
        load("[{\"event_key\": \"k\", \"event_name\": \"n\", \"other\": [1, {\"x\": null}]}]");
        const QJsonObject expected = QJsonDocument::fromJson("{\"event_key\": \"k\", \"event_name\": \"n\","
                                                             " \"other\": [1, {\"x\": null}]}")
                                         .object();
        QCOMPARE(manager()->GetGaData(text("k")), expected);
        QJsonObject copy = manager()->GetGaData(text("k"));
        copy.insert(text("event_name"), text("changed"));
        QCOMPARE(manager()->GetGaData(text("k")), expected);
    }

    void laterObjectOfAKeyCounts()
    {
        load("[{\"event_key\": \"k\", \"event_name\": \"first\"}, {\"event_key\": \"other\", \"a\": 1},"
             " {\"event_key\": \"k\", \"event_name\": \"second\"}]");
        QCOMPARE(manager()->GetGaData(text("k")).value(text("event_name")).toString(), text("second"));
        load("[{\"event_key\": \"k\", \"event_name\": \"third\"}]");
        QCOMPARE(manager()->GetGaData(text("k")).value(text("event_name")).toString(), text("third"));
        QVERIFY(!manager()->GetGaData(text("other")).isEmpty());
    }

    void eventWithoutAKeyHasTheEmptyOne_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::newRow("none") << QByteArray("");
        QTest::newRow("empty") << QByteArray("\"event_key\": \"\",");
        QTest::newRow("number") << QByteArray("\"event_key\": 7,");
        QTest::newRow("null") << QByteArray("\"event_key\": null,");
        QTest::newRow("array") << QByteArray("\"event_key\": [\"k\"],");
    }
    void eventWithoutAKeyHasTheEmptyOne()
    {
        QFETCH(QByteArray, key);
        load("[{\"event_key\": \"k\", \"x\": 1}, {" + key
             + "\"event_name\": \"n\", \"event_category\": \"c\", \"event_label\": \"l\"}]");
        QCOMPARE(fieldsOf(manager()).catalogue.keys(), QStringList({QString(), text("k")}));
        manager()->SendGaReport(QStringLiteral(""), QStringLiteral(""), true);
        manager()->SendGaReport(QString(), QString(), true);
        QCOMPARE(received(), QStringList({text("n/c/l"), text("n/c/l")}));
    }

    void elementThatIsNoEventEmptiesTheEmptyKey_data()
    {
        QTest::addColumn<QByteArray>("element");
        for (const char *element : {"{}", "7", "\"text\"", "null", "true", "[]", "[{\"event_key\": \"k\"}]"})
            QTest::newRow(element) << QByteArray(element);
    }
    void elementThatIsNoEventEmptiesTheEmptyKey()
    {
        QFETCH(QByteArray, element);
        load("[{\"event_name\": \"n\", \"event_category\": \"c\", \"event_label\": \"l\"}, " + element + "]");
        QCOMPARE(fieldsOf(manager()).catalogue.keys(), QStringList {QString()});
        QCOMPARE(manager()->GetGaData(QString()), QJsonObject());
        QVERIFY(sendsNothing(QString(), text("label")));
    }

    void fileThatGivesNothingLeavesTheCatalogue_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("missing") << QByteArray();
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("object") << QByteArray("{\"event_key\": \"k\", \"event_name\": \"n\"}");
        QTest::newRow("cut") << QByteArray("[{\"event_key\": \"k\"}, {\"event_key\"");
        QTest::newRow("no JSON") << QByteArray("hello");
        QTest::newRow("empty array") << QByteArray("[]");
        QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0]\0", 6);
    }
    void fileThatGivesNothingLeavesTheCatalogue()
    {
        QFETCH(QByteArray, content);
        loadTwoEvents();
        const MessageCapture messages;
        const QString path =
            content.isNull() ? m_directory->filePath(text("missing.json")) : write(content, "bad.json");
        manager()->InitGaData(path, text("other"), text("G-2"), text("hidden"));
        QCOMPARE(fieldsOf(manager()).catalogue.keys(), QStringList({text("open"), text("print")}));
        // The identifiers are set all the same.
        manager()->SendGaReport(text("open"), QString(), true);
        QCOMPARE(received().size(), 1);
        const GaCollector::Event event = m_collectors->ga().events().first();
        QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-2&api_secret=hidden"));
        QCOMPARE(event.body.value(QStringLiteral("client_id")).toString(), text("other"));
        QVERIFY(messages.messages().isEmpty());
    }

    void secondCatalogueAddsToTheFirst()
    {
        loadTwoEvents();
        manager()->InitGaData(write("[{\"event_key\": \"close\", \"event_name\": \"close_file\","
                                    " \"event_category\": \"file\", \"event_label\": \"x\"}]",
                                    "more.json"),
                              text("second"), text("G-2"), text("S2"));
        manager()->SendGaReport(text("close"), QString(), true);
        manager()->SendGaReport(text("open"), QString(), true);
        QCOMPARE(received(), QStringList({text("close_file/file/x"), text("open_file/file/pdf")}));
        const QList<GaCollector::Event> events = m_collectors->ga().events();
        for (const GaCollector::Event &event : events)
            QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-2&api_secret=S2"));
    }

    void hugeCatalogueIsKeptWhole()
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
        manager()->SendGaReport(text("key_99999"), QString(), true);
        QCOMPARE(received(), QStringList {text("n99999/c/l")});
    }

    void recordCarriesWhatWasSet()
    {
        manager()->InitXdData(m_backend->url().toString(), text("device"), text("reader"), text("1.2.3"),
                              text("store"));
        manager()->SendXdReport(text("payment_completed"), text("none"));
        QCOMPARE(runningRecords(), 1);
        QTRY_COMPARE(runningRecords(), 0);
        QCOMPARE(m_backend->records().size(), 1);
        const StatisticsBackend::Record record = m_backend->records().first();
        QCOMPARE(record.problems, QStringList());
        QJsonObject body = record.body;
        body.remove(text("day"));
        const QJsonObject expected =
            QJsonDocument::fromJson("{\"action\": \"payment_completed\", \"status\": \"none\","
                                    " \"device_id\": \"device\", \"product\": \"reader\","
                                    " \"version\": \"1.2.3\", \"qd\": \"store\", \"os\": \"linux\"}")
                .object();
        QCOMPARE(body, expected);
    }

    void recordBeforeItsAddressIsLost()
    {
        manager()->SendXdReport(text("install"), text("start"));
        QCOMPARE(runningRecords(), 1);
        QTRY_COMPARE(runningRecords(), 0);
    }

    void stopsAreForOneCollectorEach()
    {
        const SilentServer silent;
        m_collectors->leadTo(silent.url());
        loadTwoEvents();
        manager()->InitXdData(silent.url().toString(), {}, {}, {}, {});
        for (int i = 0; i < 3; ++i) {
            manager()->SendGaReport(text("open"), QString(), false);
            manager()->SendXdReport(text("crash"), text("end"));
        }
        QTRY_COMPARE(silent.requests().size(), 6);
        manager()->StopGaReport();
        QTRY_COMPARE_WITH_TIMEOUT(runningEvents(), 0, 5000);
        QCOMPARE(runningRecords(), 3);
        manager()->SendGaReport(text("open"), QString(), false);
        QTRY_COMPARE(silent.requests().size(), 7);
        manager()->StopXdReport();
        QTRY_COMPARE_WITH_TIMEOUT(runningRecords(), 0, 5000);
        QCOMPARE(runningEvents(), 1);
    }

    void releaseStopsBothAndDeletesNothing()
    {
        const SilentServer silent;
        m_collectors->leadTo(silent.url());
        loadTwoEvents();
        CGaReportManager *const instance = manager();
        instance->InitXdData(silent.url().toString(), {}, {}, {}, {});
        instance->SendGaReport(text("open"), QString(), false);
        instance->SendXdReport(text("crash"), text("end"));
        QTRY_COMPARE(silent.requests().size(), 2);
        CGaReportManager::ReleaseReport();
        QCOMPARE(runningEvents(), 1); // nothing ends before the event loop runs
        QCOMPARE(runningRecords(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(runningEvents() + runningRecords(), 0, 5000);

        QCOMPARE(CGaReportManager::s_instance, instance);
        QVERIFY(!instance->GetGaData(text("open")).isEmpty());
        m_collectors->leadTo(m_collectors->ga().url());
        instance->SendGaReport(text("open"), QString(), false);
        QTRY_COMPARE(runningEvents(), 0);
        QCOMPARE(received(), QStringList {text("open_file/file/pdf")});
        instance->SendXdReport(text("crash"), text("end"));
        QTRY_COMPARE(silent.requests().size(), 3);
    }

    void releaseStopsEventsBeforeRecords()
    {
        QStringList stopped;
        const QObject listener;
        Fields &fields = fieldsOf(manager());
        connect(&fields.ga, &CGaReport::SignalStopRequest, &listener, [&] { stopped << text("ga"); });
        connect(&fields.xd, &CXdReport::SignalStopRequest, &listener, [&] { stopped << text("xd"); });
        CGaReportManager::ReleaseReport();
        QCOMPARE(stopped, QStringList({text("ga"), text("xd")}));
    }

    void stopsWithNothingRunningDoNothing()
    {
        manager()->StopGaReport();
        manager()->StopXdReport();
        loadTwoEvents();
        manager()->SendGaReport(text("open"), QString(), false);
        QTRY_COMPARE(runningEvents(), 0);
        QCOMPARE(received().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestReportManager)

#include "tst_report_manager.moc"
