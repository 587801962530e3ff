// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "RecipeProcess.h"

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>

#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using LocalServices::Authority;
using LocalServices::Connection;
using LocalServices::HttpServer;
using LocalServices::RawServer;

namespace {

QString redirect(const HttpServer &server, int status, const QString &target)
{
    return server
        .url(QStringLiteral("/redirect/%1?to=").arg(status)
             + QString::fromLatin1(QUrl::toPercentEncoding(target)))
        .toString(QUrl::FullyEncoded);
}

QString text(const HttpServer &server, const QString &path)
{
    return server.url(path).toString();
}

} // namespace

class TestFollowingARedirect : public QObject
{
    Q_OBJECT

private:
    QStringList run(const QStringList &arguments, int exitCode = 0, const Sandbox &sandbox = Sandbox())
    {
        RecipeProcess recipe(QStringLiteral("following-a-redirect"));
        recipe.setSandbox(sandbox);
        recipe.start(arguments);
        const int code = recipe.finish();
        return code == exitCode ? recipe.lines() : QStringList {QStringLiteral("exit code %1").arg(code)};
    }

    // Each redirection leads to the one before.
    QString chain(int length, const QString &target) const
    {
        QString address = target;
        for (int i = 0; i < length; ++i)
            address = redirect(*m_server, 302, address);
        return address;
    }

    std::unique_ptr<HttpServer> m_server;

private Q_SLOTS:
    void init() { m_server = std::make_unique<HttpServer>(); }

    void libraryLeavesItToTheHost()
    {
        const QString address = redirect(*m_server, 302, text(*m_server, QStringLiteral("/echo")));
        const QStringList lines = run({QStringLiteral("plainly"), address});
        QVERIFY2(lines.value(0).endsWith(QLatin1String(" answered 302")),
                 qPrintable(lines.join(QLatin1Char('\n'))));
        QCOMPARE(lines.value(1), QStringLiteral("moved"));
        QCOMPARE(m_server->requests().size(), 1);
    }

    void operationFollowsTheStatus_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("method");
        for (const int status : {301, 302, 303, 307, 308}) {
            QTest::addRow("get, %d", status) << QStringLiteral("get") << status << QByteArray("GET");
            QTest::addRow("post, %d", status)
                << QStringLiteral("post") << status << QByteArray(status < 307 ? "GET" : "POST");
        }
    }
    void operationFollowsTheStatus()
    {
        QFETCH(QString, what);
        QFETCH(int, status);
        QFETCH(QByteArray, method);
        const QString target = text(*m_server, QStringLiteral("/echo?hello"));
        const QStringList lines = run({what, redirect(*m_server, status, target)});
        const QByteArray body = method == "POST" ? "{\"item\":\"paper\"}" : "";
        QCOMPARE(lines,
                 QStringList({target + QStringLiteral(" answered 200"),
                              body.isEmpty() ? QStringLiteral("/echo?hello") : QString::fromUtf8(body)}));
        QCOMPARE(m_server->requests().size(), 2);
        QCOMPARE(m_server->requests().last().method, method);
        QCOMPARE(m_server->requests().last().body, body);
        QCOMPARE(m_server->requests().last().header("Content-Type"),
                 QByteArray(method == "POST" ? "application/json" : QByteArray()));
    }

    void targetMayBeRelative()
    {
        QCOMPARE(
            run({QStringLiteral("get"), redirect(*m_server, 302, QStringLiteral("/echo?here"))}).value(1),
            QStringLiteral("/echo?here"));
    }

    void anyOtherAnswerIsGivenAsItIs()
    {
        const QString address = text(*m_server, QStringLiteral("/status/404"));
        QCOMPARE(run({QStringLiteral("get"), address}),
                 QStringList({address + QStringLiteral(" answered 404"), QStringLiteral("status 404")}));
    }

    void fiveAreFollowedAndNoMore()
    {
        const QString target = text(*m_server, QStringLiteral("/echo?end"));
        QCOMPARE(run({QStringLiteral("get"), chain(5, target)}).value(1), QStringLiteral("/echo?end"));
        QCOMPARE(m_server->requests().size(), 6);
        m_server->forgetRequests();
        QCOMPARE(run({QStringLiteral("get"), chain(6, target)}, 1),
                 QStringList {QStringLiteral("More than 5 redirections")});
        QCOMPARE(m_server->requests().size(), 6);
    }

    void otherSchemesAreNotFollowed()
    {
        QCOMPARE(
            run({QStringLiteral("get"), redirect(*m_server, 302, QStringLiteral("file:///etc/hostname"))}, 1),
            QStringList {QStringLiteral("Not followed to file:///etc/hostname")});
    }

    void httpsIsFollowedToHttpsAndNeverToHttp()
    {
        if (!Sandbox::isAvailable())
            QSKIP("no sandbox can be had here");
        const Authority authority;
        const HttpServer secure(authority.issue(QStringLiteral("127.0.0.1")));
        const QTemporaryDir certificates; // what this machine trusts
        QVERIFY(writeFile(certificates.filePath(QStringLiteral("authority.pem")), authority.certificate()));
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/etc/ssl/certs"), certificates.path());

        const QString plain = text(*m_server, QStringLiteral("/echo"));
        QCOMPARE(run({QStringLiteral("get"), redirect(secure, 302, plain)}, 1, sandbox),
                 QStringList {QStringLiteral("Not followed to ") + plain});
        QCOMPARE(m_server->requests().size(), 0);

        const QString target = text(secure, QStringLiteral("/echo?safe"));
        QCOMPARE(run({QStringLiteral("get"), redirect(secure, 302, target)}, 0, sandbox).value(1),
                 QStringLiteral("/echo?safe"));
        QCOMPARE(run({QStringLiteral("get"), redirect(*m_server, 302, target)}, 0, sandbox).value(1),
                 QStringLiteral("/echo?safe"));
    }

    void certificatesAreChecked()
    {
        const HttpServer secure(Authority::selfSigned(QStringLiteral("127.0.0.1")));
        run({QStringLiteral("get"), text(secure, QStringLiteral("/echo"))}, 1);
        QVERIFY(secure.requests().isEmpty());
    }

    void downloadFindsItsFile()
    {
        const QTemporaryDir directory;
        const QString target = text(*m_server, QStringLiteral("/bytes/5000/a.bin"));
        const QStringList lines =
            run({QStringLiteral("download"), redirect(*m_server, 302, target), directory.path()});
        const QString path = directory.filePath(QStringLiteral("a.bin"));
        QVERIFY2(lines.contains(QStringLiteral("The file is ") + path),
                 qPrintable(lines.join(QLatin1Char('\n'))));
        QCOMPARE(readFile(path), HttpServer::content(5000));
        QCOMPARE(m_server->requests().first().method, QByteArray("HEAD"));
    }

    void allTogetherTakesTenSecondsAtMost()
    {
        const QByteArray target = text(*m_server, QStringLiteral("/never")).toUtf8();
        RawServer slow([target](Connection &client) {
            client.sleep(6000);
            client.write("HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n");
        });
        RecipeProcess recipe(QStringLiteral("following-a-redirect"));
        QVERIFY(recipe.start({QStringLiteral("get"), slow.url().toString()}));
        QCOMPARE(recipe.finish(), 1);
        QCOMPARE(recipe.lines(), QStringList {QStringLiteral("No answer within ten seconds")});
        QCOMPARE(m_server->requests().size(), 1);
        QVERIFY2(recipe.duration() > 9000 && recipe.duration() < 15000,
                 qPrintable(QString::number(recipe.duration())));
    }
};

QTEST_GUILESS_MAIN(TestFollowingARedirect)

#include "tst_following_a_redirect.moc"
