// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Waiting.h"

#include <localservices/HttpServer.h>
#include <localservices/Proxy.h>

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QSslConfiguration>
#include <QSslError>
#include <QTest>

using namespace std::chrono_literals;

using LocalServices::Authority;
using LocalServices::HttpServer;
using LocalServices::Proxy;

namespace {

constexpr int timeoutMs = 120000;
const QString fixedHost = QStringLiteral("service.example.org");

QUrl fixedUrl(const QString &scheme, const QString &path)
{
    return QUrl(QStringLiteral("%1://%2%3").arg(scheme, fixedHost, path));
}

} // namespace

class TestLocalProxy : public QObject
{
    Q_OBJECT

private:
    using Reply = std::unique_ptr<QNetworkReply>;

    Reply send(const QUrl &url, const QByteArray &body = QByteArray(), quint16 port = 0)
    {
        m_manager = std::make_unique<QNetworkAccessManager>();
        m_manager->setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"),
                                          port ? port : m_proxy.port()));
        QNetworkRequest request(url);
        QSslConfiguration configuration = request.sslConfiguration();
        configuration.setCaCertificates(QSslCertificate::fromData(m_authority.certificate()));
        request.setSslConfiguration(configuration);
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text/plain"));
        return Reply(m_manager->post(request, body));
    }

    // Runs an event loop. QTest::qWaitFor() sleeps 10 ms between two rounds, and an upload of 1 MB needs 60
    // of them.
    static bool waitFor(const Reply &reply)
    {
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        return reply->isFinished() || finished.wait(timeoutMs);
    }

    Authority m_authority;
    HttpServer m_server;
    Proxy m_proxy {m_authority};
    std::unique_ptr<QNetworkAccessManager> m_manager;

private Q_SLOTS:
    void init() { m_proxy.route(fixedHost, m_server.url(QStringLiteral("/"))); }

    void routesNameToServer_data()
    {
        QTest::addColumn<QString>("scheme");
        QTest::addColumn<QString>("line");
        QTest::newRow("absolute form")
            << QStringLiteral("http") << QStringLiteral("POST http://%1/echo/x?a=%20b HTTP/1.1");
        QTest::newRow("CONNECT") << QStringLiteral("https") << QStringLiteral("CONNECT %1:443 HTTP/1.1");
    }
    void routesNameToServer()
    {
        QFETCH(QString, scheme);
        QFETCH(QString, line);
        const Reply reply = send(fixedUrl(scheme, QStringLiteral("/echo/x?a=%20b")), "body");
        QVERIFY(waitFor(reply));
        QCOMPARE(reply->readAll(), QByteArray("body"));
        const HttpServer::Request request = m_server.requests().last();
        QCOMPARE(request.target, QByteArray("/echo/x?a=%20b"));
        QCOMPARE(request.header("Host"), fixedHost.toLatin1());
        QVERIFY(request.header("Proxy-Connection").isNull());
        QCOMPARE(m_proxy.requestLines().last(), line.replace(QLatin1String("%1"), fixedHost));
    }

    void transfersLargeBodies_data()
    {
        QTest::addColumn<QString>("scheme");
        QTest::newRow("absolute form") << QStringLiteral("http");
        QTest::newRow("CONNECT") << QStringLiteral("https");
    }
    void transfersLargeBodies()
    {
        QFETCH(QString, scheme);
        const Reply reply =
            send(fixedUrl(scheme, QStringLiteral("/bytes/5000000")), QByteArray(1000000, 'x'));
        QVERIFY(waitFor(reply));
        QCOMPARE(reply->readAll(), HttpServer::content(5000000));
        QCOMPARE(m_server.requests().last().body.size(), 1000000);
    }

    void issuesCertificateForRequestedName()
    {
        const Reply reply = send(fixedUrl(QStringLiteral("https"), QStringLiteral("/echo")));
        QVERIFY(waitFor(reply));
        QCOMPARE(reply->error(), QNetworkReply::NoError);
        QCOMPARE(reply->sslConfiguration().peerCertificate().subjectInfo(QSslCertificate::CommonName),
                 QStringList {fixedHost});
    }

    void usesCertificateOfCaller()
    {
        Proxy other([this](const QString &) { return m_authority.issue(QStringLiteral("other.example")); });
        other.routeAll(m_server.url(QStringLiteral("/")));
        const Reply reply =
            send(fixedUrl(QStringLiteral("https"), QStringLiteral("/echo")), {}, other.port());
        QVERIFY(waitFor(reply));
        QCOMPARE(reply->error(), QNetworkReply::SslHandshakeFailedError);
    }

    void routesNamesToDifferentServers()
    {
        const HttpServer second;
        m_proxy.route(QStringLiteral("Second.example.org"), second.url(QStringLiteral("/")));
        QVERIFY(waitFor(send(QUrl(QStringLiteral("https://second.example.org/echo")))));
        QCOMPARE(second.requests().size(), 1);
        const HttpServer third;
        m_proxy.routeAll(third.url(QStringLiteral("/")));
        QVERIFY(waitFor(send(QUrl(QStringLiteral("http://third.example.org/echo")))));
        QCOMPARE(third.requests().size(), 1);
        QCOMPARE(second.requests().size(), 1);
    }

    void holdsRequestsBackDuringPause()
    {
        const int linesBefore = m_proxy.requestLines().size();
        const int requestsBefore = m_server.requests().size();
        std::unique_lock<std::mutex> pause = m_proxy.pause();
        const Reply reply = send(fixedUrl(QStringLiteral("http"), QStringLiteral("/echo")));
        QTRY_COMPARE_WITH_TIMEOUT(m_proxy.requestLines().size(), linesBefore + 1, timeoutMs);
        QVERIFY(staysTrueFor(20ms, [&] { return m_server.requests().size() == requestsBefore; }));
        pause.unlock();
        QVERIFY(waitFor(reply));
        QCOMPARE(reply->error(), QNetworkReply::NoError);
    }

    void rejectsNameWithoutRoute()
    {
        const Proxy proxy(m_authority);
        const Reply reply = send(fixedUrl(QStringLiteral("http"), QStringLiteral("/echo")), {}, proxy.port());
        QVERIFY(waitFor(reply));
        QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 502);
    }

    void passesLoopbackOn()
    {
        const HttpServer secure(m_authority.issue(QStringLiteral("127.0.0.1")));
        QVERIFY(waitFor(send(secure.url(QStringLiteral("/echo")))));
        QCOMPARE(secure.requests().size(), 1);
        const HttpServer plain;
        QVERIFY(waitFor(send(plain.url(QStringLiteral("/echo")))));
        QCOMPARE(plain.requests().size(), 1);
    }

    void closesServerConnectionWhenClientCloses_data() { transfersLargeBodies_data(); }
    void closesServerConnectionWhenClientCloses()
    {
        QFETCH(QString, scheme);
        // The proxy connects before it has the request. Qt keeps the connection of a request that it has not
        // sent yet.
        const int before = m_server.requests().size();
        Reply reply = send(fixedUrl(scheme, QStringLiteral("/never")));
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), before + 1, timeoutMs);
        reply->abort();
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnections(), 0, timeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_proxy.openConnections(), 0, timeoutMs);
    }

    void endsAtOnceWhileRequestsHang()
    {
        auto proxy = std::make_unique<Proxy>(m_authority);
        proxy->routeAll(m_server.url(QStringLiteral("/")));
        const int before = m_server.requests().size();
        const Reply reply =
            send(fixedUrl(QStringLiteral("https"), QStringLiteral("/never")), {}, proxy->port());
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), before + 1, timeoutMs);
        proxy.reset();
        QVERIFY(waitFor(reply));
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnections(), 0, timeoutMs);
    }
};

QTEST_GUILESS_MAIN(TestLocalProxy)

#include "tst_local_proxy.moc"
