// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ArrivalStore.h>

#include "Files.h"
#include "Utf8.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <algorithm>
#include <set>
#include <thread>
#include <vector>

namespace {

constexpr int many = 100000;

Arrival arrival(const QString &name)
{
    Arrival result;
    result.kind = Arrival::record();
    result.time = QStringLiteral("2026-11-20T17:05:09.123Z");
    result.name = name;
    return result;
}

Arrival fullArrival()
{
    Arrival result = arrival(QStringLiteral("größe"));
    result.detail = QStringLiteral("a'; DROP TABLE arrivals; --");
    // Not UTF-8, and with a NUL byte inside.
    result.request = {"POST",
                      "/report?sign=1&timestamp=2",
                      {{"X-Second", "2"}, {"A-Third", "\xe4"}, {"X-Second", ""}},
                      QByteArray("\xff\x00{}", 4)};
    result.signature = QStringLiteral("bad: \"why\"");
    result.problems = QStringList {QStringLiteral("one"), QStringLiteral("two\nlines")};
    return result;
}

QStringList names(const QList<Arrival> &arrivals)
{
    QStringList result;
    for (const Arrival &each : arrivals)
        result << each.name;
    return result;
}

} // namespace

class TestArrivalStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void returnsAllFieldsOfArrival()
    {
        ArrivalStore store(path());
        QCOMPARE(store.error(), QString());
        compareToFull(store);
    }

    void keepsArrivalsAfterRestart()
    {
        {
            ArrivalStore store(path());
            QCOMPARE(store.add(fullArrival()), 1);
        }
        const ArrivalStore store(path());
        const QList<Arrival> arrivals = store.find({0, many});
        QCOMPARE(arrivals.size(), 1);
        QCOMPARE(arrivals.first().toJson(), withId(fullArrival(), 1).toJson());
        QCOMPARE(arrivals.first().request.body, fullArrival().request.body);
        QCOMPARE(store.lastId(), 1);
    }

    void keepsEmptyStringsAndBody()
    {
        ArrivalStore store(path());
        QVERIFY(store.add(arrival(QString())) > 0);
        QCOMPARE(store.find({0, many}).value(0).request.body, QByteArray());
    }

    void keepsLargeBody()
    {
        Arrival large = arrival(QStringLiteral("large"));
        large.request.body = QByteArray(20 * 1024 * 1024, 'x');
        ArrivalStore store(path());
        QVERIFY(store.add(large) > 0);
        QCOMPARE(store.find({0, many}).value(0).request.body, large.request.body);
    }

    void returnsNewestAfterIdInOrder()
    {
        ArrivalStore store(path());
        for (const char *name : {"a", "b", "c", "d"})
            store.add(arrival(QLatin1String(name)));
        const auto list = [](const char *text) { return QString::fromLatin1(text).split(QLatin1Char(' ')); };
        QCOMPARE(names(store.find({0, many})), list("a b c d"));
        QCOMPARE(names(store.find({2, many})), list("c d"));
        QCOMPARE(names(store.find({0, 2})), list("c d"));
        QCOMPARE(names(store.find({4, many})), QStringList());
        QCOMPARE(names(store.find({0, many, 3})), list("a b"));
        QCOMPARE(names(store.find({0, 1, 3})), list("b"));
        QCOMPARE(store.lastId(), 4);
    }

    void selectsByKindAndText_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("found");
        const auto row = [](const char *kind, const char *text, const char *found) {
            QTest::addRow("%s %s", kind, text) << utf8(kind) << utf8(text) << utf8(found);
        };
        row("", "", "plain event wrong unsigned");
        row("event", "", "event wrong");
        row("record", "", "plain unsigned");
        row("problem", "", "wrong unsigned");
        row("", "EVEN", "event wrong");
        row("record", "even", "");
        row("", "100%_", "plain");
        row("", "x-header", "event");
        row("", "café", "unsigned");
        row("", "two problems", "wrong");
        row("", "nothing", "");
    }
    void selectsByKindAndText()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        ArrivalStore store(path());
        Arrival plain = arrival(QStringLiteral("plain"));
        plain.detail = QStringLiteral("100%_");
        Arrival event = arrival(QStringLiteral("event"));
        event.kind = Arrival::event();
        event.request.headers = {{"X-Header", "a"}};
        Arrival wrong = arrival(QStringLiteral("wrong"));
        wrong.kind = Arrival::event();
        wrong.problems = QStringList {QStringLiteral("One of two problems of this event")};
        Arrival unsignedRecord = arrival(QStringLiteral("unsigned"));
        unsignedRecord.signature = QStringLiteral("bad: no");
        unsignedRecord.request.body = "a café";
        for (const Arrival &each : {plain, event, wrong, unsignedRecord})
            store.add(each);
        ArrivalQuery query;
        query.kind = kind;
        query.text = text;
        QTEST(names(store.find(query)).join(QLatin1Char(' ')), "found");
    }

    void replacesArrivalsWithClearedEntry()
    {
        ArrivalStore store(path());
        store.add(arrival(QStringLiteral("a")));
        store.add(arrival(QStringLiteral("b")));
        store.clear();
        const QList<Arrival> arrivals = store.find({0, many});
        QCOMPARE(arrivals.size(), 1);
        QCOMPARE(arrivals.first().kind, QStringLiteral("cleared"));
        QCOMPARE(arrivals.first().id, 3);
        QVERIFY(QDateTime::fromString(arrivals.first().time, Qt::ISODateWithMs).isValid());
        QCOMPARE(store.find({2, many}).size(), 1);
    }

    void neverReusesIds()
    {
        {
            ArrivalStore store(path());
            store.add(arrival(QStringLiteral("a")));
            store.clear();
            store.clear();
        }
        ArrivalStore store(path());
        QCOMPARE(store.lastId(), 3);
        QCOMPARE(store.add(arrival(QStringLiteral("b"))), 4);
    }

    void returnsZeroIdIfEmpty()
    {
        const ArrivalStore store(path());
        QCOMPARE(store.lastId(), 0);
        QCOMPARE(store.find({0, many}).size(), 0);
    }

    void keepsConcurrentArrivals()
    {
        constexpr int threadCount = 8;
        constexpr int perThread = 50;
        ArrivalStore store(path());
        std::vector<std::thread> threads;
        threads.reserve(threadCount);
        std::vector<std::vector<qint64>> ids(threadCount);
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([&store, &mine = ids.at(size_t(i)), i] {
                for (int j = 0; j < perThread; ++j) {
                    mine.push_back(store.add(arrival(QStringLiteral("%1-%2").arg(i).arg(j))));
                    store.find({mine.back() - 1, many});
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        std::set<qint64> distinct;
        for (const std::vector<qint64> &mine : ids) {
            QVERIFY(std::is_sorted(mine.begin(), mine.end()));
            distinct.insert(mine.begin(), mine.end());
        }
        QCOMPARE(int(distinct.size()), threadCount * perThread);
        QCOMPARE(distinct.count(0), size_t(0));
        QStringList kept = names(store.find({0, many}));
        QCOMPARE(kept.removeDuplicates(), 0);
        QCOMPARE(kept.size(), threadCount * perThread);
    }

    void writesWhileAnotherProgramReads()
    {
        ArrivalStore store(path());
        const ArrivalStore reader(path());
        store.add(arrival(QStringLiteral("a")));
        QCOMPARE(names(reader.find({0, many})), QStringList {QStringLiteral("a")});
        QVERIFY(store.add(arrival(QStringLiteral("b"))) > 0);
    }

    void reportsFileThatIsNoDatabase()
    {
        QVERIFY(writeFile(path(), QByteArray(4096, 'x')));
        ArrivalStore store(path());
        QVERIFY(!store.error().isEmpty());
        QCOMPARE(store.add(arrival(QStringLiteral("a"))), 0);
        store.clear();
        QCOMPARE(readFile(path()), QByteArray(4096, 'x'));
    }

    void returnsZeroIdAfterFailedWrite()
    {
        ArrivalStore store(path());
        QCOMPARE(store.add(arrival(QStringLiteral("a"))), 1);
        sqlite3 *other = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(path()).constData(), &other), SQLITE_OK);
        QCOMPARE(sqlite3_exec(other, "DROP TABLE arrivals", nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(other);
        QCOMPARE(store.add(arrival(QStringLiteral("b"))), 0);
        QCOMPARE(store.find({0, many}).size(), 0);
    }

    void reportsMissingDirectory()
    {
        const ArrivalStore store(m_directory->filePath(QStringLiteral("missing/arrivals.sqlite")));
        QVERIFY(!store.error().isEmpty());
        QCOMPARE(store.lastId(), 0);
    }

private:
    QString path() const { return m_directory->filePath(QStringLiteral("arrivals.sqlite")); }

    static Arrival withId(Arrival arrival, qint64 id)
    {
        arrival.id = id;
        return arrival;
    }

    static void compareToFull(ArrivalStore &store)
    {
        QCOMPARE(store.add(fullArrival()), 1);
        const Arrival back = store.find({0, many}).value(0);
        QCOMPARE(back.id, 1);
        QCOMPARE(back.kind, fullArrival().kind);
        QCOMPARE(back.time, fullArrival().time);
        QCOMPARE(back.name, fullArrival().name);
        QCOMPARE(back.detail, fullArrival().detail);
        QCOMPARE(back.request.method, fullArrival().request.method);
        QCOMPARE(back.request.target, fullArrival().request.target);
        QCOMPARE(back.request.headers, fullArrival().request.headers);
        QCOMPARE(back.request.body, fullArrival().request.body);
        QCOMPARE(back.signature, fullArrival().signature);
        QCOMPARE(back.problems, fullArrival().problems);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(TestArrivalStore)
#include "tst_arrival_store.moc"
