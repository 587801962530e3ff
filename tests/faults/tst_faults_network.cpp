// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FaultyRelay.h"
#include "FullSweep.h"

#include <AnalyticsTest.h>
#include <Downloads.h>
#include <Files.h>

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QRegularExpression>
#include <QSslConfiguration>

#include <deque>

using LocalServices::Authority;
using LocalServices::Certificate;
using LocalServices::RawServer;
using Fault = FaultyRelay::Fault;

Q_DECLARE_METATYPE(FaultyRelay::Fault)

namespace {

constexpr int limitMs = 30000; // the time limit of a request, and a delay of a busy machine
constexpr int missedAfterMs = 100;

const QByteArray body = QByteArrayLiteral("{\"answer\":\"0123456789\"}");

const QByteArray plainAnswer =
    "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\nContent-Length: "
    + QByteArray::number(body.size()) + "\r\n\r\n" + body;

const QByteArray chunkedAnswer = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n8\r\n" + body.left(8)
                                 + "\r\nf\r\n" + body.mid(8) + "\r\n0\r\n\r\n";

struct NamedFault
{
    Fault fault;
    const char *name;
};

// The first four are the sample.
const QList<NamedFault> faults {{Fault::Close, "closed"},
                                {Fault::Reset, "reset"},
                                {Fault::Pause, "paused"},
                                {Fault::FlipLowBit, "lowest bit changed"},
                                {Fault::FlipHighBit, "highest bit changed"},
                                {Fault::FlipAllBits, "all bits changed"}};

bool changesBytes(Fault fault)
{
    return fault == Fault::FlipLowBit || fault == Fault::FlipHighBit || fault == Fault::FlipAllBits;
}

bool endsConnection(Fault fault)
{
    return fault == Fault::Close || fault == Fault::Reset;
}

// Returns true if the first bytes of an answer end inside its chunks, but not inside the bytes of a chunk. Qt
// can miss the end of a connection there: the request runs until its time limit, a download until it is
// stopped.
bool endsBetweenChunks(const QByteArray &answer, qint64 position)
{
    const QByteArray begin = answer.left(int(position));
    static const QRegularExpression size(QStringLiteral("^[0-9a-f]?\\r?$"));
    return position < answer.size() && answer.contains("chunked") && begin.contains("\r\n\r\n")
           && size.match(QString::fromLatin1(begin.mid(begin.lastIndexOf('\n') + 1))).hasMatch();
}

// Adds the columns "fault" and "step", and a row for each fault. The sample has every n-th byte.
void addFaultRows(const QString &prefix, int sampleStep, const std::function<void(QTestData &)> &addColumns)
{
    const int count = FullSweep::isOn() ? faults.size() : 4;
    for (int i = 0; i < count; ++i) {
        if (!FullSweep::takesNextRow())
            continue;
        QTestData &row = QTest::newRow(qPrintable(prefix + QLatin1String(faults.at(i).name)));
        addColumns(row);
        row << faults.at(i).fault << (FullSweep::isOn() ? 1 : sampleStep);
    }
}

void addFaultColumns()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<int>("step");
}

} // namespace

// The network fails after each byte of an answer.
class TestFaultsNetwork : public QObject
{
    Q_OBJECT

private:
    // Calls the function for every position of a fault until the answer is shorter.
    template <typename Call> void forEachByte(FaultyRelay &relay, Fault fault, int step, Call call)
    {
        for (qint64 position = step / 2;; position += step) {
            relay.set(fault, position);
            QElapsedTimer timer;
            timer.start();
            call(position);
            QVERIFY2(timer.elapsed() < limitMs, qPrintable(QStringLiteral("after %1 bytes").arg(position)));
            if (QTest::currentTestFailed())
                return;
            if (!relay.hasReached())
                break;
            ++m_faults;
        }
        QVERIFY(!QTest::currentTestFailed());
    }

    // Calls any form and returns its outcome. The request is kept, to find a second outcome.
    Outcome outcomeOf(Form form, const QUrl &url)
    {
        if (isSync(form))
            return carryOut(form, url);
        m_requests.emplace_back();
        m_requests.back().start(form, url);
        if (!m_requests.back().waitForAll(limitMs))
            return {};
        return m_requests.back().outcomes().first();
    }
    void verifySingleOutcomes()
    {
        QTest::qWait(20);
        for (const WatchedRequest &request : m_requests)
            QCOMPARE(request.outcomes().size(), 1);
        m_requests.clear();
    }
    void verifyOutcome(Form form, Fault fault, const QUrl &url, qint64 position, bool canBeMissed)
    {
        const Outcome outcome = outcomeOf(form, url);
        const QString where = QStringLiteral("after %1 bytes: %2(%3), status %4")
                                  .arg(position)
                                  .arg(outcome.signal, QString::fromLatin1(outcome.data))
                                  .arg(outcome.status);
        if (fault == Fault::Pause) {
            QVERIFY2(outcome == result(form, body, 200), qPrintable(where));
            return;
        }
        if (changesBytes(fault)) {
            // The answer can be another one, but it is one.
            QVERIFY2(outcome == timedOut || outcome.signal == result(form, {}, 0).signal, qPrintable(where));
            return;
        }
        if (canBeMissed && outcome == timedOut)
            return;
        QVERIFY2(outcome.signal == result(form, {}, 0).signal, qPrintable(where));
        QVERIFY2(body.startsWith(outcome.data), qPrintable(where));
        QVERIFY2(outcome.status == -1 || outcome.status == 200
                     || (outcome.status == 0 && outcome.data.isEmpty()),
                 qPrintable(where));
    }

    std::deque<WatchedRequest> m_requests;
    int m_faults = 0;

private Q_SLOTS:
    void cleanup()
    {
        m_requests.clear();
        QFile file(QString::fromLocal8Bit(qgetenv("ZYBASE_ALL_FAULTS")));
        if (FullSweep::isOn() && file.open(QIODevice::Append))
            file.write("faults\t" + QByteArray::number(m_faults) + '\n');
        m_faults = 0;
    }

    void requestsHaveOneOutcome_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("isEncrypted");
        addFaultColumns();
        for (const Form form : allForms) {
            const QString name = QString::fromLatin1(nameOf(form));
            addFaultRows(name + QStringLiteral(", whole body: "), 5,
                         [form](QTestData &row) { row << form << plainAnswer << false; });
            addFaultRows(name + QStringLiteral(", chunks: "), 5,
                         [form](QTestData &row) { row << form << chunkedAnswer << false; });
            addFaultRows(name + QStringLiteral(", TLS: "), 173,
                         [form](QTestData &row) { row << form << plainAnswer << true; });
        }
    }
    void requestsHaveOneOutcome()
    {
        QFETCH(Form, form);
        QFETCH(QByteArray, answer);
        QFETCH(bool, isEncrypted);
        QFETCH(Fault, fault);
        QFETCH(int, step);
        const RawServer server([answer](LocalServices::Connection &client) { client.write(answer); },
                               isEncrypted ? Authority::selfSigned(QStringLiteral("127.0.0.1"))
                                           : Certificate());
        FaultyRelay relay(server.url().port());
        QUrl url = server.url();
        url.setPort(relay.port());
        const auto canBeMissed = [&](qint64 position) {
            return endsConnection(fault) && endsBetweenChunks(answer, position);
        };
        forEachByte(relay, fault, step, [&](qint64 position) {
            while (canBeMissed(position) && !FullSweep::isOn())
                relay.set(fault, ++position); // the time limit is ten seconds
            verifyOutcome(form, fault, url, position, canBeMissed(position));
        });
        verifySingleOutcomes();
    }

    void downloadsHaveOneOutcome_data()
    {
        QTest::addColumn<QByteArray>("answer");
        addFaultColumns();
        addFaultRows(QStringLiteral("whole body: "), 3, [](QTestData &row) { row << plainAnswer; });
        addFaultRows(QStringLiteral("chunks: "), 3, [](QTestData &row) { row << chunkedAnswer; });
    }
    void downloadsHaveOneOutcome()
    {
        QFETCH(QByteArray, answer);
        QFETCH(Fault, fault);
        QFETCH(int, step);
        const OutputCapture output;
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("file"));
        const RawAnswer server(answer);
        FaultyRelay relay(server.url().port());
        QUrl url = server.url(QStringLiteral("/file"));
        url.setPort(relay.port());
        forEachByte(relay, fault, step, [&](qint64 position) {
            WatchedDownload download;
            QVERIFY(download.manager()->StartDownload(url, directory.path()));
            if (endsConnection(fault) && endsBetweenChunks(answer, position)) {
                QVERIFY(QTest::qWaitFor([&] { return relay.hasReached(); }));
                if (!QTest::qWaitFor([&] { return !download.outcomes().isEmpty(); }, missedAfterMs))
                    download.manager()->StopDownload();
            }
            QVERIFY(download.waitForOutcomes());
            QTest::qWait(0);
            QCOMPARE(download.outcomes().size(), 1);
            const WatchedDownload::Outcome outcome = download.outcomes().first();
            const QByteArray content = readFile(path);
            const QString where = QStringLiteral("after %1 bytes: %2, %3")
                                      .arg(position)
                                      .arg(outcome.path, QString::fromLatin1(content));
            QVERIFY2(QFile::exists(path) == outcome.success, qPrintable(where));
            QVERIFY2(outcome.path == (outcome.success ? path : QString()), qPrintable(where));
            if (fault == Fault::Pause)
                QVERIFY2(outcome.success && content == body, qPrintable(where));
            if (!changesBytes(fault))
                QVERIFY2(body.startsWith(content), qPrintable(where));
        });
    }

    void eventsHaveOneOutcome_data()
    {
        QTest::addColumn<bool>("waits");
        addFaultColumns();
        addFaultRows(QStringLiteral("waits: "), 173, [](QTestData &row) { row << true; });
        addFaultRows(QStringLiteral("in the background: "), 173, [](QTestData &row) { row << false; });
    }
    void eventsHaveOneOutcome()
    {
        QFETCH(bool, waits);
        QFETCH(Fault, fault);
        QFETCH(int, step);
        LocalServices::FakeNetwork network;
        network.install();
        FaultyRelay relay(network.proxyUrl().port());
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), quint16(relay.port())));
        std::deque<WatchedEvent> events;
        forEachByte(relay, fault, step, [&](qint64 position) {
            const int received = network.collector().events().size();
            bool isDelivered = true;
            if (waits) {
                CGoogleAnalytics analytics;
                isDelivered = sendSync(analytics);
            } else {
                events.emplace_back();
                events.back().start();
                QVERIFY(events.back().waitForAll(limitMs));
                QCOMPARE(events.back().outcomes().size(), 1);
                if (fault == Fault::Pause)
                    QCOMPARE(events.back().outcomes().first().signal, QStringLiteral("SignalRequestResult"));
            }
            const QByteArray where = QByteArray::number(position);
            if (fault == Fault::Pause)
                QVERIFY2(isDelivered && network.collector().events().size() == received + 1,
                         where.constData());
            if (waits && isDelivered)
                QVERIFY2(network.collector().events().size() > received, where.constData());
        });
        QTest::qWait(20);
        for (const WatchedEvent &event : events)
            QCOMPARE(event.outcomes().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestFaultsNetwork)

#include "tst_faults_network.moc"
