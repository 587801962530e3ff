// SPDX-License-Identifier: LGPL-2.1-or-later

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>
#include <localservices/ReservedPort.h>

#include "ProcessFigures.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>

using LocalServices::Connection;
using LocalServices::HttpServer;
using LocalServices::RawServer;

namespace {

constexpr int timeoutMs = 120000;

// Sends a request and returns what the server sends until it closes the connection.
QByteArray exchange(const QUrl &url, const QByteArray &request)
{
    QTcpSocket socket;
    socket.connectToHost(url.host(), quint16(url.port()));
    socket.write(request);
    while (socket.state() != QAbstractSocket::UnconnectedState && socket.waitForReadyRead(timeoutMs)) {}
    return socket.readAll();
}

} // namespace

// The local servers. The other tests depend on them.
class TestLocalServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsWholeRequest()
    {
        const HttpServer server;
        const QByteArray answer = exchange(
            server.url(QStringLiteral("/")),
            "POST /echo/x?a=%20b HTTP/1.1\r\nHost: h\r\nx-Second: 2\r\nA-Third:  3 \r\nx-second: again\r\n"
            "Content-Length: 4\r\n\r\nbody");
        QVERIFY(answer.startsWith("HTTP/1.1 200 OK\r\n"));
        QVERIFY(answer.endsWith("\r\n\r\nbody"));
        QCOMPARE(server.requests().size(), 1);
        const HttpServer::Request request = server.requests().first();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.target, QByteArray("/echo/x?a=%20b"));
        using Headers = QList<QPair<QByteArray, QByteArray>>;
        QCOMPARE(request.headers, Headers({{"Host", "h"},
                                           {"x-Second", "2"},
                                           {"A-Third", "3"},
                                           {"x-second", "again"},
                                           {"Content-Length", "4"}}));
        QCOMPARE(request.header("a-third"), QByteArray("3"));
        QCOMPARE(request.body, QByteArray("body"));
    }

    void keepsSecondQuestionMarkInQuery()
    {
        const HttpServer server;
        const QByteArray answer =
            exchange(server.url(QStringLiteral("/")), "GET /echo?a=1?b=2?c HTTP/1.1\r\nHost: h?\r\n\r\n");
        QVERIFY(answer.startsWith("HTTP/1.1 200 OK\r\n"));
        QCOMPARE(server.requests().first().target, QByteArray("/echo?a=1?b=2?c"));
        QCOMPARE(server.requests().first().header("Host"), QByteArray("h?"));
    }

    void answersAtAddedPath()
    {
        const HttpServer server({}, {{QStringLiteral("/own"), [](const HttpServer::Request &request) {
                                          return HttpServer::Response {418, request.body + "!"};
                                      }}});
        const QByteArray answer =
            exchange(server.url(QStringLiteral("/")),
                     "POST /own?x HTTP/1.1\r\nHost: h\r\nContent-Length: 4\r\n\r\nbody");
        QVERIFY(answer.startsWith("HTTP/1.1 418 "));
        QVERIFY(answer.endsWith("\r\n\r\nbody!"));
        QCOMPARE(server.requests().size(), 1);
    }

    void recordsRawRequestUnchanged()
    {
        const RawServer server([](Connection &client) { client.write("anything"); });
        const QByteArray request = "POST / HTTP/1.1\r\ncontent-length: 3\r\n\r\nabc";
        QCOMPARE(exchange(server.url(), request), QByteArray("anything"));
        QCOMPARE(server.requests(), QList<QByteArray> {request});
    }

    void endsAtOnceWhileRequestsHang()
    {
        const int threads = ProcessFigures::threadCount();
        const int files = ProcessFigures::openFileCount();
        {
            auto server = std::make_unique<HttpServer>();
            std::vector<std::unique_ptr<QTcpSocket>> clients;
            for (const char *request : {"GET /never HTTP/1.1\r\nHost: h\r\n\r\n",
                                        "GET /drip HTTP/1.1\r\nHost: h\r\n\r\n", "GET /half", ""}) {
                clients.push_back(std::make_unique<QTcpSocket>());
                const QUrl url = server->url(QStringLiteral("/"));
                clients.back()->connectToHost(url.host(), quint16(url.port()));
                clients.back()->write(request);
                QVERIFY(clients.back()->waitForConnected(timeoutMs));
                clients.back()->flush();
            }
            QTRY_COMPARE_WITH_TIMEOUT(server->requests().size(), 2, timeoutMs);
            QTRY_COMPARE_WITH_TIMEOUT(server->openConnections(), 4, timeoutMs);
            QElapsedTimer clock;
            clock.start();
            server.reset();
            QVERIFY(clock.elapsed() < timeoutMs);
        }
        QTRY_COMPARE_WITH_TIMEOUT(ProcessFigures::threadCount(), threads, timeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(ProcessFigures::openFileCount(), files, timeoutMs);
    }

    void dripsWithoutEnd()
    {
        const HttpServer server;
        const QUrl url = server.url(QStringLiteral("/"));
        QTcpSocket socket;
        socket.connectToHost(url.host(), quint16(url.port()));
        socket.write("GET /drip HTTP/1.1\r\nHost: h\r\n\r\n");
        QTRY_VERIFY_WITH_TIMEOUT(socket.peek(10000).count("1\r\n.\r\n") > 5, timeoutMs);
        QCOMPARE(socket.state(), QAbstractSocket::ConnectedState);
    }

    void closesConnectionThatIsNotHttp_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        // A long TLS handshake arrives in parts, the first one without the end of a line.
        QTest::newRow("start of a TLS handshake") << QByteArray("\x16\x03\x01\x06\xa1\x01", 6);
        QTest::newRow("zeros") << QByteArray(1, '\0');
        QTest::newRow("header without a colon") << QByteArray("GET / HTTP/1.1\r\nHost\r\n\r\n");
        QTest::newRow("body of one terabyte")
            << QByteArray("POST /echo HTTP/1.1\r\nContent-Length: 1000000000000\r\n\r\n");
    }
    void closesConnectionThatIsNotHttp()
    {
        QFETCH(QByteArray, bytes);
        const HttpServer server;
        const QUrl url = server.url(QStringLiteral("/"));
        QTcpSocket socket;
        socket.connectToHost(url.host(), quint16(url.port()));
        socket.write(bytes);
        QVERIFY(socket.waitForConnected(timeoutMs));
        QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, timeoutMs);
        QCOMPARE(server.requests().size(), 0);
    }

    void keepsChunkedBodyWhole()
    {
        const HttpServer server;
        const QByteArray answer = exchange(
            server.url(QStringLiteral("/")),
            "POST /echo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nbo\r\n2\r\ndy\r\n0\r\n\r\n");
        QVERIFY(answer.endsWith("\r\n\r\nbody"));
        QCOMPARE(server.requests().first().body, QByteArray("body"));
    }

    void compressesGzipAnswer()
    {
        const HttpServer server;
        const QByteArray answer =
            exchange(server.url(QStringLiteral("/")),
                     "GET /gzip/100000 HTTP/1.1\r\nHost: h\r\nAccept-Encoding: gzip, deflate\r\n\r\n");
        QVERIFY(answer.contains("Content-Encoding: gzip\r\n"));
        QVERIFY(answer.size() < 50000);
    }

    void sendsEmptyBodyForNegativeSize_data()
    {
        QTest::addColumn<QByteArray>("path");
        for (const char *path : {"/bytes/-5", "/chunked/-5", "/cut/-5", "/gzip/-5"})
            QTest::newRow(path) << QByteArray(path);
    }
    void sendsEmptyBodyForNegativeSize()
    {
        QFETCH(QByteArray, path);
        const HttpServer server;
        const QByteArray answer =
            exchange(server.url(QStringLiteral("/")), "GET " + path + " HTTP/1.1\r\nHost: h\r\n\r\n");
        QVERIFY(answer.startsWith("HTTP/1.1 200 OK\r\n"));
        QVERIFY(!answer.contains("Content-Length: -"));
    }

    void sendsChunksWithoutLength()
    {
        const HttpServer server;
        const QByteArray answer =
            exchange(server.url(QStringLiteral("/")), "GET /chunked/100000 HTTP/1.1\r\nHost: h\r\n\r\n");
        QVERIFY(answer.contains("Transfer-Encoding: chunked\r\n"));
        QVERIFY(!answer.contains("Content-Length"));
        QVERIFY(answer.endsWith("\r\n0\r\n\r\n"));
    }

    void reservesPortForServerThatNamesIt()
    {
        const LocalServices::ReservedPort port;
        QTcpSocket refused;
        refused.connectToHost(QHostAddress::LocalHost, port.number());
        QVERIFY(!refused.waitForConnected());
        QCOMPARE(refused.error(), QAbstractSocket::ConnectionRefusedError);
        const LocalServices::Listener server([](LocalServices::Connection &) {}, {}, port.number());
        QVERIFY(server.isListening());
        QTcpSocket accepted;
        accepted.connectToHost(QHostAddress::LocalHost, port.number());
        QVERIFY(accepted.waitForConnected());
    }

    void repeatsContentAfterPrimeLength()
    {
        const QByteArray content = HttpServer::content(200000);
        QCOMPARE(content.size(), 200000);
        for (int i = 0; i < content.size(); ++i)
            QCOMPARE(int(quint8(content.at(i))), i % 251);
    }
};

QTEST_GUILESS_MAIN(TestLocalServices)

#include "tst_local_services.moc"
