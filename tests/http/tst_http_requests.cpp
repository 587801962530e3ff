// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include "Headers.h"
#include "OutputCapture.h"
#include "Waiting.h"

#include <localservices/HttpServer.h>

#include <QJsonArray>
#include <QMetaMethod>
#include <QPointer>
#include <QTimer>

#include <thread>

using LocalServices::HttpServer;
using ZyBase::CHttpPostRequest;
using namespace std::chrono_literals;

namespace {

const QJsonObject object {{QStringLiteral("name"), QStringLiteral("Größe 文件")},
                          {QStringLiteral("b"), QJsonArray {1, true, QJsonValue::Null}},
                          {QStringLiteral("A"), 1.5}};
const QByteArray objectJson = "{\"A\":1.5,\"b\":[1,true,null],\"name\":\"Größe 文件\"}";

const QByteArray browser = "Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 (KHTML, like Gecko) "
                           "Chrome/60.0.3100.0 Safari/537.36";
const QByteArray userAgentOfQt = "Mozilla/5.0";

bool isPost(Form form)
{
    return form == Form::PostSync || form == Form::PostAsync;
}

} // namespace

// What the five forms send, and what they report.
class TestHttpRequests : public QObject
{
    Q_OBJECT

private:
    // The only request to the server.
    HttpServer::Request onlyRequest() const
    {
        const QList<HttpServer::Request> requests = m_server->requests();
        return requests.size() == 1 ? requests.first() : HttpServer::Request();
    }
    QUrl url(const QByteArray &path) const { return m_server->url(QString::fromLatin1(path)); }

    std::unique_ptr<HttpServer> m_server;

private Q_SLOTS:
    void init() { m_server = std::make_unique<HttpServer>(); }
    void cleanup() { m_server.reset(); }

    void hasNoState() { QCOMPARE(sizeof(CHttpPostRequest), sizeof(QObject)); }

    void keepsParent()
    {
        QObject parent;
        const auto *const request = new CHttpPostRequest(&parent);
        QCOMPARE(request->parent(), &parent);
    }

    void keepsSignalsInOrder()
    {
        const QMetaObject &meta = CHttpPostRequest::staticMetaObject;
        QList<QByteArray> signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Signal);
            signatures << meta.method(i).methodSignature();
        }
        QCOMPARE(signatures, QList<QByteArray>({"SignalRequestTimeout()", "SignalRequestCancel()",
                                                "SignalStopRequest()", "SignalRequestResult(QByteArray)",
                                                "SignalRequestResultAndStatusCode(QByteArray,int)"}));
    }

    // Applications can read them from the meta-object.
    void keepsParameterNames()
    {
        const QMetaObject &meta = CHttpPostRequest::staticMetaObject;
        QList<QList<QByteArray>> names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << meta.method(i).parameterNames();
        QCOMPARE(names, QList<QList<QByteArray>>({{}, {}, {}, {"data"}, {"data", "nStatusCode"}}));
    }

    void sendsMethodAndTarget_data() { addForms(allForms); }
    void sendsMethodAndTarget()
    {
        QFETCH(Form, form);
        carryOut(form, url("/echo/a%20b?x=%C3%A4&y=1+2#fragment"));
        QCOMPARE(onlyRequest().method, isPost(form) ? QByteArray("POST") : QByteArray("GET"));
        QCOMPARE(onlyRequest().target, QByteArray("/echo/a%20b?x=%C3%A4&y=1+2"));
    }

    void sendsCompactJson_data() { addForms(allForms); }
    void sendsCompactJson()
    {
        QFETCH(Form, form);
        carryOut(form, url("/echo"), QString(), object);
        QCOMPARE(onlyRequest().body, isPost(form) ? objectJson : QByteArray());
    }

    void sendsEmptyObjectAsTwoBytes_data() { addForms({Form::PostSync, Form::PostAsync}); }
    void sendsEmptyObjectAsTwoBytes()
    {
        QFETCH(Form, form);
        QCOMPARE(carryOut(form, url("/echo")).data, QByteArray("{}"));
        QCOMPARE(onlyRequest().header("Content-Length"), QByteArray("2"));
    }

    void sendsContentType_data() { addForms(allForms); }
    void sendsContentType()
    {
        QFETCH(Form, form);
        carryOut(form, url("/echo"));
        QCOMPARE(onlyRequest().header("Content-Type"),
                 form == Form::GetSync ? QByteArray() : QByteArray("application/json"));
    }

    void sendsUserAgent_data() { addForms(allForms); }
    void sendsUserAgent()
    {
        QFETCH(Form, form);
        carryOut(form, url("/echo"));
        QCOMPARE(onlyRequest().header("User-Agent"), form == Form::GetSync ? browser : userAgentOfQt);
    }

    void sendsNoOtherHeader_data() { addForms(allForms); }
    void sendsNoOtherHeader()
    {
        QFETCH(Form, form);
        carryOut(form, url("/echo"), QStringLiteral("s"));
        Headers expected = headersOfQt(m_server->url(QString()));
        if (form == Form::GetSync)
            expected.insert("User-Agent", browser);
        else
            expected.insert("Content-Type", "application/json");
        if (isPost(form))
            expected.insert("Content-Length", "2");
        if (!isSync(form))
            expected.insert("Cookie", "sessionid=s");
        QCOMPARE(headersOf(onlyRequest()), expected);
    }

    void sendsSessionAsCookie_data() { addForms(asyncForms); }
    void sendsSessionAsCookie()
    {
        QFETCH(Form, form);
        carryOut(form, url("/echo"), QStringLiteral("abc-123"));
        QCOMPARE(onlyRequest().header("Cookie"), QByteArray("sessionid=abc-123"));
    }

    void sendsNoCookieForEmptySession_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QString>("session");
        for (const Form form : asyncForms) {
            QTest::addRow("%s, empty", nameOf(form)) << form << QStringLiteral("");
            QTest::addRow("%s, null", nameOf(form)) << form << QString();
        }
    }
    void sendsNoCookieForEmptySession()
    {
        QFETCH(Form, form);
        QFETCH(QString, session);
        carryOut(form, url("/echo"), session);
        QVERIFY(!headersOf(onlyRequest()).contains("Cookie"));
    }

    void encodesSessionAsLatin1_data()
    {
        QTest::addColumn<QString>("session");
        QTest::addColumn<QByteArray>("cookie");
        QTest::newRow("Latin-1") << QStringLiteral("é") << QByteArray("sessionid=\xe9");
        QTest::newRow("beyond Latin-1") << QStringLiteral("a文b") << QByteArray("sessionid=a?b");
        QTest::newRow("spaces and separators")
            << QStringLiteral("a b; c=d") << QByteArray("sessionid=a b; c=d");
    }
    void encodesSessionAsLatin1()
    {
        QFETCH(QString, session);
        QFETCH(QByteArray, cookie);
        carryOut(Form::Get, url("/echo"), session);
        QCOMPARE(onlyRequest().header("Cookie"), cookie);
    }

    void reportsAnswer_data() { addForms(allForms); }
    void reportsAnswer()
    {
        QFETCH(Form, form);
        const QByteArray expected = isPost(form) ? objectJson : QByteArray("/echo?x");
        QCOMPARE(carryOut(form, url("/echo?x"), QString(), object), result(form, expected, 200));
    }

    void reportsAnyStatusWithBody_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<int>("status");
        for (const Form form : allForms) {
            for (const int status : {200, 201, 202, 204, 205, 206, 207, 300, 304, 305, 306, 400, 401, 403,
                                     404, 405, 407, 409, 410, 418, 429, 500, 501, 502, 503, 504, 599})
                QTest::addRow("%s, %d", nameOf(form), status) << form << status;
        }
    }
    void reportsAnyStatusWithBody()
    {
        QFETCH(Form, form);
        QFETCH(int, status);
        const QByteArray number = QByteArray::number(status);
        const QByteArray body = status == 204 || status == 304 ? QByteArray() : "status " + number;
        QCOMPARE(carryOut(form, url("/status/" + number)), result(form, body, status));
    }

    void doesNotFollowRedirect_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("isRelative");
        for (const Form form : allForms) {
            for (const int status : {301, 302, 303, 307, 308}) {
                QTest::addRow("%s, %d, relative", nameOf(form), status) << form << status << true;
                QTest::addRow("%s, %d, absolute", nameOf(form), status) << form << status << false;
            }
        }
    }
    void doesNotFollowRedirect()
    {
        QFETCH(Form, form);
        QFETCH(int, status);
        QFETCH(bool, isRelative);
        const QByteArray target = isRelative ? QByteArray("/echo") : url("/echo").toEncoded();
        const QByteArray path = "/redirect/" + QByteArray::number(status) + "?to=" + target;
        QCOMPARE(carryOut(form, url(path)), result(form, "moved", status));
        QCOMPARE(m_server->requests().size(), 1);
    }

    void doesNotRepeatRequest_data() { addForms(allForms); }
    void doesNotRepeatRequest()
    {
        QFETCH(Form, form);
        carryOut(form, url("/status/503"));
        QCOMPARE(m_server->requests().size(), 1);
    }

    void reportsChunkedAndCompressedAnswers_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QByteArray>("path");
        for (const Form form : allForms) {
            for (const char *path : {"/bytes/", "/chunked/", "/gzip/"}) {
                for (const char *size : {"0", "1", "300000"})
                    QTest::addRow("%s %s%s", nameOf(form), path, size) << form << QByteArray(path) + size;
            }
        }
    }
    void reportsChunkedAndCompressedAnswers()
    {
        QFETCH(Form, form);
        QFETCH(QByteArray, path);
        const int size = path.mid(path.lastIndexOf('/') + 1).toInt();
        QCOMPARE(carryOut(form, url(path)), result(form, HttpServer::content(size), 200));
    }

    void reportsTruncatedAnswer_data() { addForms(allForms); }
    void reportsTruncatedAnswer()
    {
        QFETCH(Form, form);
        QCOMPARE(carryOut(form, url("/cut/1000")), result(form, HttpServer::content(500), 200));
    }

    void emitsOneOutcome_data() { addForms(asyncForms); }
    void emitsOneOutcome()
    {
        QFETCH(Form, form);
        WatchedRequest watched;
        watched.start(form, url("/echo"));
        QVERIFY(watched.waitForAll());
        // The connection is closed by the thread, which emits nothing afterwards.
        QTRY_COMPARE_WITH_TIMEOUT(m_server->openConnections(), 0, longestWaitMs);
        QVERIFY(staysTrueFor(50ms, [&] { return watched.outcomes().size() == 1; }));
    }

    void emitsResultInWorkerThread_data() { addForms(asyncForms); }
    void emitsResultInWorkerThread()
    {
        QFETCH(Form, form);
        WatchedRequest watched;
        watched.start(form, url("/echo"));
        QVERIFY(watched.waitForAll());
        QVERIFY(watched.areEmittedInWorkers());
    }

    void copiesArguments_data() { addForms(asyncForms); }
    void copiesArguments()
    {
        QFETCH(Form, form);
        WatchedRequest watched;
        {
            QUrl target = url("/echo/first");
            QString session = QStringLiteral("first");
            QJsonObject body {{QStringLiteral("a"), 1}};
            watched.start(form, target, session, body);
            target = url("/echo/second");
            session.fill(QLatin1Char('x'));
            body.insert(QStringLiteral("a"), 2);
        }
        QVERIFY(watched.waitForAll());
        QCOMPARE(onlyRequest().target, QByteArray("/echo/first"));
        QCOMPARE(onlyRequest().header("Cookie"), QByteArray("sessionid=first"));
        QCOMPARE(onlyRequest().body, isPost(form) ? QByteArray("{\"a\":1}") : QByteArray());
    }

    void isDeletableAfterOutcome()
    {
        QPointer<CHttpPostRequest> request = new CHttpPostRequest;
        QByteArray answer;
        connect(request, &CHttpPostRequest::SignalRequestResult, this,
                [&answer](const QByteArray &data) { answer = data; });
        connect(request, &CHttpPostRequest::SignalRequestResult, request, &QObject::deleteLater);
        connect(request, &CHttpPostRequest::SignalRequestTimeout, request, &QObject::deleteLater);
        connect(request, &CHttpPostRequest::SignalRequestCancel, request, &QObject::deleteLater);
        request->StartGetRequest(url("/echo?x"), QString());
        QTRY_VERIFY_WITH_TIMEOUT(request.isNull(), longestWaitMs);
        QCOMPARE(answer, QByteArray("/echo?x"));
    }

    void deliversEventsDuringSynchronousCall_data() { addForms(syncForms); }
    void deliversEventsDuringSynchronousCall()
    {
        QFETCH(Form, form);
        int events = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&events] { ++events; });
        timer.start(10);
        QByteArray data;
        QVERIFY(call(form, url("/bytes/1000?rate=2000"), data));
        QVERIFY(events > 5);
    }

    void supportsNestedSynchronousCall_data() { addForms(syncForms); }
    void supportsNestedSynchronousCall()
    {
        QFETCH(Form, form);
        CHttpPostRequest request;
        QByteArray inner;
        bool innerResult = false;
        QTimer::singleShot(0, this,
                           [&] { innerResult = request.StartGetRequestSync(url("/echo?inner"), inner); });
        QByteArray outer;
        QVERIFY(call(form, url("/bytes/1000?rate=2000"), outer));
        QCOMPARE(outer, HttpServer::content(1000));
        QVERIFY(innerResult);
        QCOMPARE(inner, QByteArray("/echo?inner"));
    }

    void needsNoEventLoopForSynchronousCall_data() { addForms(syncForms); }
    void needsNoEventLoopForSynchronousCall()
    {
        QFETCH(Form, form);
        QByteArray data;
        bool isDone = false;
        std::thread([&] { isDone = call(form, url("/status/404"), data); }).join();
        QVERIFY(isDone);
        QCOMPARE(data, QByteArray("status 404"));
    }

    void replacesResultVariable_data() { addForms(syncForms); }
    void replacesResultVariable()
    {
        QFETCH(Form, form);
        QByteArray data("longer than the answer");
        QVERIFY(call(form, url("/bytes/1"), data));
        QCOMPARE(data, HttpServer::content(1));
    }

    void sharesNoCookieBetweenRequests_data() { addForms(allForms); }
    void sharesNoCookieBetweenRequests()
    {
        QFETCH(Form, form);
        carryOut(form, url("/echo"), QStringLiteral("first"));
        carryOut(form, url("/echo"));
        QCOMPARE(m_server->requests().size(), 2);
        QCOMPARE(m_server->requests().at(1).header("Cookie"), QByteArray());
    }

    void logsNothing_data() { addForms(allForms); }
    void logsNothing()
    {
        QFETCH(Form, form);
        OutputCapture output;
        carryOut(form, url("/status/500"));
        carryOut(form, url("/cut/1000"));
        carryOut(form, QUrl(QStringLiteral("http://127.0.0.1:1/")));
        QCOMPARE(output.lines(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestHttpRequests)

#include "tst_http_requests.moc"
