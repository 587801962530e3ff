// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include "HostProcess.h"

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>

#include <atomic>

using LocalServices::Connection;
using LocalServices::HttpServer;
using LocalServices::RawServer;

namespace {

constexpr bool isSanitized = ZYBASE_SANITIZED != 0;
constexpr int largeBodyBytes = (isSanitized ? 20 : 200) * 1000 * 1000;

// The result of a request without an answer.
Outcome nothing(Form form)
{
    return result(form, QByteArray(), 0);
}

using Answer = RawServer::Answer;

Answer answerWith(const QByteArray &bytes)
{
    return [bytes](Connection &client) { client.write(bytes); };
}

Answer reset(const QByteArray &bytes)
{
    return [bytes](Connection &client) {
        client.write(bytes);
        client.reset();
    };
}

Answer halfClose(const QByteArray &bytes)
{
    return [bytes](Connection &client) {
        client.write(bytes);
        client.closeSending();
        client.waitForClose();
    };
}

} // namespace

Q_DECLARE_METATYPE(RawServer::Answer)

// Unreachable addresses and misbehaving servers.
class TestHttpBadInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsEmptyResultForUnreachableAddress_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QString>("address");
        const QStringList addresses {QString(),
                                     QStringLiteral("nonsense"),
                                     QStringLiteral("/path/only"),
                                     QStringLiteral("http://"),
                                     QStringLiteral("http:///path"),
                                     QStringLiteral("http://host:port/"),
                                     QStringLiteral("http://[::1"),
                                     QStringLiteral("http://127.0.0.1:99999/"),
                                     QStringLiteral("http://a b/"),
                                     QStringLiteral("gopher://127.0.0.1/"),
                                     QStringLiteral("mailto:a@example.org"),
                                     QStringLiteral("file:///no/such/file"),
                                     QStringLiteral("http://no-such-host.invalid/"),
                                     QStringLiteral("https://no-such-host.invalid/"),
                                     QStringLiteral("http://127.0.0.1:1/"),
                                     QStringLiteral("https://127.0.0.1:1/")};
        for (const Form form : allForms) {
            for (const QString &address : addresses)
                QTest::addRow("%s <%s>", nameOf(form), qPrintable(address)) << form << address;
        }
    }
    void reportsEmptyResultForUnreachableAddress()
    {
        QFETCH(Form, form);
        QFETCH(QString, address);
        QCOMPARE(carryOut(form, QUrl(address)), nothing(form));
    }

    void reportsEmptyResultForInvalidAnswer_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<Answer>("answer");
        for (const Form form : allForms) {
            QTest::addRow("%s: closed", nameOf(form)) << form << answerWith("");
            QTest::addRow("%s: reset", nameOf(form)) << form << reset("");
            QTest::addRow("%s: half closed", nameOf(form)) << form << halfClose("");
            QTest::addRow("%s: not HTTP", nameOf(form))
                << form << answerWith("220 mail.example.org ESMTP\r\n");
            QTest::addRow("%s: another protocol", nameOf(form))
                << form << answerWith("SSH-2.0-OpenSSH_9.2\r\n");
            QTest::addRow("%s: half a status line", nameOf(form)) << form << answerWith("HTTP/1.");
            QTest::addRow("%s: zeros", nameOf(form)) << form << answerWith(QByteArray(10000, '\0'));
        }
    }
    void reportsEmptyResultForInvalidAnswer()
    {
        QFETCH(Form, form);
        QFETCH(Answer, answer);
        const RawServer server(answer);
        QCOMPARE(carryOut(form, server.url()), nothing(form));
    }

    void reportsReceivedPartOfAnswer_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<int>("status");
        const QByteArray head = "HTTP/1.1 201 Created\r\n";
        for (const Form form : allForms) {
            QTest::addRow("%s: half closed in the body", nameOf(form))
                << form << halfClose(head + "Content-Length: 100\r\n\r\nsome") << 201;
            QTest::addRow("%s: closed in the body", nameOf(form))
                << form << answerWith(head + "Content-Length: 100\r\n\r\nsome") << 201;
            QTest::addRow("%s: no length", nameOf(form)) << form << answerWith(head + "\r\nsome") << 201;
            QTest::addRow("%s: closed in a chunk", nameOf(form))
                << form << answerWith(head + "Transfer-Encoding: chunked\r\n\r\n4\r\nsome\r\n64\r\n") << 201;
            QTest::addRow("%s: more than announced", nameOf(form))
                << form << answerWith(head + "Content-Length: 4\r\n\r\nsomething") << 201;
            QTest::addRow("%s: HTTP/1.0", nameOf(form))
                << form << answerWith("HTTP/1.0 201 OK\r\n\r\nsome") << 201;
            QTest::addRow("%s: unknown status", nameOf(form))
                << form << answerWith("HTTP/1.1 299 Odd\r\nContent-Length: 4\r\n\r\nsome") << 299;
        }
    }
    void reportsReceivedPartOfAnswer()
    {
        QFETCH(Form, form);
        QFETCH(Answer, answer);
        QFETCH(int, status);
        const RawServer server(answer);
        QCOMPARE(carryOut(form, server.url()), result(form, "some", status));
    }

    void reportsResultAfterResetInBody_data() { addForms(allForms); }
    void reportsResultAfterResetInBody()
    {
        QFETCH(Form, form);
        const RawServer server(reset("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nsome"));
        // A reset may overtake what was sent before it.
        const Outcome outcome = carryOut(form, server.url());
        QCOMPARE(outcome.signal, result(form, {}, 0).signal);
        QVERIFY(outcome.data.isEmpty() || outcome.data == "some");
    }

    void reportsEmptyResultAfterResetBeforeRequest_data() { addForms(allForms); }
    void reportsEmptyResultAfterResetBeforeRequest()
    {
        QFETCH(Form, form);
        std::atomic<bool> hasAccepted {false};
        const LocalServices::Listener server([&hasAccepted](Connection &client) {
            hasAccepted = true;
            client.reset();
        });
        const QUrl url(QStringLiteral("http://127.0.0.1:%1/").arg(server.port()));
        // Qt misses some resets, and the request then ends by the time limit.
        QCOMPARE(carryOutInTime(form, url), nothing(form));
        QVERIFY(hasAccepted);
    }

    // Qt needs a second of a processor for a megabyte of headers. These are smaller.
    void acceptsManyHeaders_data() { addForms(allForms); }
    void acceptsManyHeaders()
    {
        QFETCH(Form, form);
        QByteArray headers;
        for (int i = 0; i < 256; ++i)
            headers += "X-" + QByteArray::number(i) + ": " + QByteArray(1000, 'x') + "\r\n";
        const RawServer server(answerWith("HTTP/1.1 200 OK\r\n" + headers + "Content-Length: 4\r\n\r\nsome"));
        const Outcome outcome = carryOut(form, server.url());
        QCOMPARE(outcome, result(form, "some", 200));
    }

    void acceptsLongHeader_data() { addForms(allForms); }
    void acceptsLongHeader()
    {
        QFETCH(Form, form);
        const RawServer server(answerWith("HTTP/1.1 200 OK\r\nX: " + QByteArray(256 * 1024, 'x')
                                          + "\r\nContent-Length: 4\r\n\r\nsome"));
        QCOMPARE(carryOut(form, server.url()), result(form, "some", 200));
    }

    void reportsLargeBody_data() { addForms(allForms); }
    void reportsLargeBody()
    {
        QFETCH(Form, form);
        const HttpServer server;
        const Outcome outcome =
            carryOutInTime(form, server.url(QStringLiteral("/bytes/%1").arg(largeBodyBytes)));
        QCOMPARE(outcome.data.size(), largeBodyBytes);
        QVERIFY(outcome.data == HttpServer::content(largeBodyBytes));
    }

    void sendsLargeObject_data() { addForms({Form::PostSync, Form::PostAsync}); }
    void sendsLargeObject()
    {
        QFETCH(Form, form);
        const HttpServer server;
        const QString longString(5000000, QLatin1Char('x'));
        const Outcome outcome =
            carryOutInTime(form, server.url(QStringLiteral("/echo")), {{QStringLiteral("a"), longString}});
        QCOMPARE(outcome.data.size(), longString.size() + 8);
    }

    // The session is not checked: a string from outside can forge headers.
    void sendsLineEndsOfSession_data() { addForms(asyncForms); }
    void sendsLineEndsOfSession()
    {
        QFETCH(Form, form);
        const RawServer server(answerWith("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
        carryOut(form, server.url(), QStringLiteral("a\r\nX-Forged: 文é"));
        QCOMPARE(server.requests().size(), 1);
        QVERIFY(server.requests().first().contains("\r\nCookie: sessionid=a\r\nX-Forged: ?\xe9\r\n"));
    }

    void throwsIfThreadCannotBeStarted()
    {
        if (ZYBASE_SANITIZED || ZYBASE_EMULATED)
            QSKIP("sanitizers need the address space that this test removes, and emulators do not remove it");
        HostProcess host;
        QVERIFY(host.start());
        QCOMPARE(host.call(QStringLiteral("http.startWithoutThreads")),
                 QJsonValue(QStringLiteral("system_error")));
        QCOMPARE(host.quit(), 0);
    }
};

QTEST_GUILESS_MAIN(TestHttpBadInput)

#include "tst_http_bad_input.moc"
