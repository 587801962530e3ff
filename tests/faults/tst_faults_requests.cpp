// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Sweep.h"

#include <Files.h>
#include <localservices/FakeNetwork.h>
#include <localservices/HttpServer.h>

#include <QDir>

using Faults::Kind;

namespace {

constexpr int requestLimitMs = 30000; // the time limit of a request, and a delay of a busy machine
constexpr int downloadBytes = 100000;

const QString answered = QStringLiteral("answer");
const QString notAnswered = QStringLiteral("no answer");
const QString timedOut = QStringLiteral("timeout");
const QString notStarted = QStringLiteral("exception");

QString describe(const QJsonValue &answer, const QString &expected)
{
    const QJsonObject outcome = answer.toObject();
    const QString data = outcome.value(QStringLiteral("data")).toString();
    if (outcome.contains(QStringLiteral("exception")))
        return notStarted;
    if (outcome.value(QStringLiteral("returned")) == QJsonValue(false))
        return data == QLatin1String("unchanged") ? timedOut : QStringLiteral("false, and the data changed");
    const QString names = outcome.value(QStringLiteral("signals")).toString();
    if (outcome.contains(QStringLiteral("signals")) && names != QLatin1String("result"))
        return names.isEmpty() ? QStringLiteral("no signal") : names;
    if (data.isEmpty())
        return notAnswered;
    return data == expected ? answered : QStringLiteral("other data: ") + data;
}

QString describeEvent(const QJsonValue &answer)
{
    const QJsonObject outcome = answer.toObject();
    if (outcome.contains(QStringLiteral("exception")))
        return notStarted;
    if (outcome.contains(QStringLiteral("returned")))
        return outcome.value(QStringLiteral("returned")).toBool() ? answered : notAnswered;
    const QString names = outcome.value(QStringLiteral("signals")).toString();
    return names == QLatin1String("result") ? answered : QStringLiteral("signals: ") + names;
}

QString describeReport(const QJsonValue &answer)
{
    const QJsonObject outcome = answer.toObject();
    if (outcome.contains(QStringLiteral("exception")))
        return notStarted;
    return QStringLiteral("%1 requests left").arg(outcome.value(QStringLiteral("remaining")).toInt());
}

} // namespace

// Requests, reports and downloads, if a system call fails.
class TestFaultsRequests : public QObject
{
    Q_OBJECT

private:
    Operation requestOf(const QString &form, const LocalServices::HttpServer &server) const
    {
        const QUrl url = server.url(QStringLiteral("/echo"));
        Operation operation;
        operation.name =
            form + (url.scheme() == QLatin1String("https") ? QStringLiteral(" with TLS") : QString());
        operation.command = QStringLiteral("requests.request");
        operation.arguments = {form, url.toString()};
        const bool isPost = form.startsWith(QLatin1String("StartRequest"));
        const QString expected = isPost ? QStringLiteral("{\"key\":\"value\"}") : url.path();
        operation.prepare = [](FaultHost &) {};
        operation.outcome = [expected](const QJsonValue &answer) { return describe(answer, expected); };
        operation.success = answered;
        operation.promised = QStringList {notAnswered, timedOut, notStarted};
        operation.limitMs = requestLimitMs;
        operation.onlyFirst = {Kind::Thread};
        return operation;
    }
    Operation sendEvent(bool waits) const
    {
        Operation operation;
        operation.name =
            waits ? QStringLiteral("event that waits") : QStringLiteral("event in the background");
        operation.command = QStringLiteral("requests.event");
        operation.arguments = {waits};
        operation.prepare = [](FaultHost &) {};
        operation.outcome = describeEvent;
        operation.success = answered;
        operation.promised = QStringList {notAnswered, notStarted, QStringLiteral("signals: timeout")};
        operation.limitMs = requestLimitMs;
        operation.onlyFirst = {Kind::Thread};
        operation.setUp = [this](FaultHost &host) { useNetwork(host); };
        return operation;
    }
    Operation report() const
    {
        Operation operation = sendEvent(false);
        operation.name = QStringLiteral("report of an event");
        operation.command = QStringLiteral("requests.report");
        operation.outcome = describeReport;
        operation.success = QStringLiteral("0 requests left");
        // A request that ends before the reporter has connected it is not deleted.
        operation.rare = QStringLiteral("1 requests left");
        operation.promised = QStringList {notStarted};
        return operation;
    }
    Operation record() const
    {
        Operation operation = report();
        operation.name = QStringLiteral("record");
        operation.command = QStringLiteral("requests.record");
        operation.rare.clear();
        operation.arguments = {m_network->statistics().url().toString()};
        operation.setUp = [](FaultHost &) {};
        return operation;
    }
    Operation download() const
    {
        const QString directory = m_directory.path();
        const QString file = m_directory.filePath(QStringLiteral("file"));
        const QByteArray content = LocalServices::HttpServer::content(downloadBytes);
        Operation operation;
        operation.name = QStringLiteral("download");
        operation.command = QStringLiteral("http.download");
        operation.arguments = {m_server->url(QStringLiteral("/bytes/%1/file").arg(downloadBytes)).toString(),
                               directory, false};
        operation.prepare = [=](FaultHost &) { writeFile(file, "old"); };
        operation.outcome = [=](const QJsonValue &answer) {
            const QByteArray stored = readFile(file);
            const QString state = !QFile::exists(file)             ? QStringLiteral("no file")
                                  : stored == content              ? QStringLiteral("whole file")
                                  : stored == QByteArray("old")    ? QStringLiteral("old file")
                                  : content.startsWith(stored)     ? QStringLiteral("cut file")
                                  : stored.size() < content.size() ? QStringLiteral("file without a part")
                                                                   : QStringLiteral("wrong file");
            const QString signal = !answer.isArray()                 ? QStringLiteral("not started, ")
                                   : answer.toArray().at(0).toBool() ? QStringLiteral("success, ")
                                                                     : QStringLiteral("failure, ");
            return signal + state;
        };
        operation.success = QStringLiteral("success, whole file");
        operation.promised =
            QStringList {QStringLiteral("not started, no file"), QStringLiteral("not started, old file"),
                         QStringLiteral("failure, no file"), QStringLiteral("success, cut file"),
                         QStringLiteral("success, file without a part")};
        return operation;
    }
    void useNetwork(FaultHost &host) const
    {
        QVERIFY(
            host.call(QStringLiteral("requests.useProxy"),
                      {m_network->proxyUrl().port(), m_directory.filePath(QStringLiteral("authority.pem"))})
                .toBool());
    }

    const QTemporaryDir m_directory;
    std::unique_ptr<LocalServices::FakeNetwork> m_network;
    std::unique_ptr<LocalServices::HttpServer> m_server;
    std::unique_ptr<LocalServices::HttpServer> m_tlsServer;
    std::unique_ptr<Sweep> m_sweep;

private Q_SLOTS:
    void initTestCase()
    {
        const QString reason = Sweep::reasonToSkip();
        if (!reason.isEmpty())
            QSKIP(qPrintable(reason));
        m_network = std::make_unique<LocalServices::FakeNetwork>();
        m_server = std::make_unique<LocalServices::HttpServer>();
        m_tlsServer = std::make_unique<LocalServices::HttpServer>(
            LocalServices::Authority::selfSigned(QStringLiteral("127.0.0.1")));
        QVERIFY(writeFile(m_directory.filePath(QStringLiteral("authority.pem")),
                          m_network->authority().certificate()));

        QList<Operation> operations;
        for (const char *form : {"StartRequestSync", "StartRequestAsync", "StartGetRequest",
                                 "StartGetRequestSync", "StartGetRequestAndStatusCode"})
            operations << requestOf(QString::fromLatin1(form), *m_server);
        operations << requestOf(QStringLiteral("StartGetRequestSync"), *m_tlsServer) << sendEvent(true)
                   << sendEvent(false) << report() << record() << download();
        m_sweep.reset(new Sweep(
            operations,
            {{QStringLiteral("^(Start[A-Za-z]*Sync|event that|download).*, thread"),
              QStringLiteral("Qt does not notice that its network thread was not created, and waits for it")},
             {QStringLiteral(", pipe: .*, and each later one"),
              QStringLiteral("GLib, which Qt's event loop uses, ends the process")},
             {QStringLiteral("^download, send: [^hi]"),
              QStringLiteral("Qt reports no end of the request, and a download has no time limit")}}));
    }
    void cleanupTestCase() { m_sweep.reset(); }

    void keepsItsPromises_data()
    {
        if (m_sweep)
            m_sweep->addRows({Kind::Open, Kind::Read, Kind::Write, Kind::Receive, Kind::Send, Kind::Close,
                              Kind::Remove, Kind::Stat, Kind::Descriptor, Kind::Socket, Kind::Connect,
                              Kind::Poll, Kind::Thread});
    }
    void keepsItsPromises() { m_sweep->testRow(); }
};

QTEST_GUILESS_MAIN(TestFaultsRequests)

#include "tst_faults_requests.moc"
