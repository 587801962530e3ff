// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/http/Exchange.h>

#include <localservices/HttpServer.h>

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using LocalServices::HttpServer;
using ZyBase::Exchange;

// Has the signals of a request.
class StoppableRequest : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void SignalStopRequest();
    void SignalRequestTimeout();
    void SignalRequestCancel();
};

class TestExchange : public QObject
{
    Q_OBJECT

private:
    const HttpServer m_server;

private Q_SLOTS:
    void getsWithoutBody()
    {
        Exchange exchange(QNetworkRequest(m_server.url(QStringLiteral("/bytes/100"))));
        exchange.wait();
        QVERIFY(!exchange.hasTimedOut());
        QCOMPARE(exchange.error(), QNetworkReply::NoError);
        QCOMPARE(exchange.statusCode(), 200);
        QCOMPARE(exchange.readAll(), HttpServer::content(100));
    }

    void postsBody()
    {
        QNetworkRequest request(m_server.url(QStringLiteral("/echo")));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text/plain"));
        Exchange exchange(request, QByteArrayLiteral("a body"));
        exchange.wait();
        QCOMPARE(exchange.readAll(), QByteArrayLiteral("a body"));
    }

    void reportsStatusAndError()
    {
        Exchange exchange(QNetworkRequest(m_server.url(QStringLiteral("/status/404"))));
        exchange.wait();
        QVERIFY(!exchange.hasTimedOut());
        QCOMPARE(exchange.error(), QNetworkReply::ContentNotFoundError);
        QCOMPARE(exchange.statusCode(), 404);
    }

    void leavesResultOfAnswerToCaller()
    {
        StoppableRequest request;
        QSignalSpy timeouts(&request, &StoppableRequest::SignalRequestTimeout);
        QSignalSpy cancels(&request, &StoppableRequest::SignalRequestCancel);
        Exchange exchange(QNetworkRequest(m_server.url(QStringLiteral("/bytes/100"))));
        QVERIFY(waitForAnswer(exchange, request));
        QCOMPARE(timeouts.size() + cancels.size(), 0);
    }

    void emitsCancelIfStopped()
    {
        StoppableRequest request;
        QSignalSpy timeouts(&request, &StoppableRequest::SignalRequestTimeout);
        QSignalSpy cancels(&request, &StoppableRequest::SignalRequestCancel);
        Exchange exchange(QNetworkRequest(m_server.url(QStringLiteral("/never"))));
        QTimer::singleShot(0, &request, &StoppableRequest::SignalStopRequest);
        QVERIFY(!waitForAnswer(exchange, request));
        QCOMPARE(timeouts.size(), 0);
        QCOMPARE(cancels.size(), 1);
        QVERIFY(!exchange.hasTimedOut());
    }
};

QTEST_GUILESS_MAIN(TestExchange)

#include "tst_exchange.moc"
