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

QString redirectAddress(const HttpServer &server, int status, const QString &target)
{
    return server
        .url(QStringLiteral("/redirect/%1?to=").arg(status)
             + QString::fromLatin1(QUrl::toPercentEncoding(target)))
        .toString(QUrl::FullyEncoded);
}

QString address(const HttpServer &server, const QString &path)
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

    // Returns an address that redirects to the target in this number of steps.
    QString chain(int length, const QString &target) const
    {
        QString first = target;
        for (int i = 0; i < length; ++i)
            first = redirectAddress(*m_server, 302, first);
        return first;
    }

    std::unique_ptr<HttpServer> m_server;

private Q_SLOTS:
    void init() { m_server = std::make_unique<HttpServer>(); }

    void returnsRedirectAnswerOfLibrary()
    {
        const QString plainAddress =
            redirectAddress(*m_server, 302, address(*m_server, QStringLiteral("/echo")));
        const QStringList lines = run({QStringLiteral("plainly"), plainAddress});
        QVERIFY2(lines.value(0).endsWith(QLatin1String(" answered 302")),
                 qPrintable(lines.join(QLatin1Char('\n'))));
        QCOMPARE(lines.value(1), QStringLiteral("moved"));
        QCOMPARE(m_server->requests().size(), 1);
    }

    void choosesMethodByStatus_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("method");
        for (const int status : {301, 302, 303, 307, 308}) {
            QTest::addRow("get, %d", status) << QStringLiteral("get") << status << QByteArray("GET");
            QTest::addRow("post, %d", status)
                << QStringLiteral("post") << status << QByteArray(status < 307 ? "GET" : "POST");
        }
    }
    void choosesMethodByStatus()
    {
        QFETCH(QString, action);
        QFETCH(int, status);
        QFETCH(QByteArray, method);
        const QString target = address(*m_server, QStringLiteral("/echo?hello"));
        const QStringList lines = run({action, redirectAddress(*m_server, status, target)});
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

    void followsRelativeTarget()
    {
        QCOMPARE(run({QStringLiteral("get"), redirectAddress(*m_server, 302, QStringLiteral("/echo?here"))})
                     .value(1),
                 QStringLiteral("/echo?here"));
    }

    void returnsOtherAnswersUnchanged()
    {
        const QString missing = address(*m_server, QStringLiteral("/status/404"));
        QCOMPARE(run({QStringLiteral("get"), missing}),
                 QStringList({missing + QStringLiteral(" answered 404"), QStringLiteral("status 404")}));
    }

    void followsFiveRedirectsAtMost()
    {
        const QString target = address(*m_server, QStringLiteral("/echo?end"));
        QCOMPARE(run({QStringLiteral("get"), chain(5, target)}).value(1), QStringLiteral("/echo?end"));
        QCOMPARE(m_server->requests().size(), 6);
        m_server->forgetRequests();
        QCOMPARE(run({QStringLiteral("get"), chain(6, target)}, 1),
                 QStringList {QStringLiteral("There are more than 5 redirects")});
        QCOMPARE(m_server->requests().size(), 6);
    }

    void rejectsOtherSchemes()
    {
        QCOMPARE(run({QStringLiteral("get"),
                      redirectAddress(*m_server, 302, QStringLiteral("file:///etc/hostname"))},
                     1),
                 QStringList {QStringLiteral("The redirect to file:///etc/hostname is not followed")});
    }

    void followsHttpsOnlyToHttps()
    {
        if (!Sandbox::isAvailable())
            QSKIP("no sandbox can be created here");
        const Authority authority;
        const HttpServer secure(authority.issue(QStringLiteral("127.0.0.1")));
        const QTemporaryDir certificates; // replaces the certificates that this machine trusts
        QVERIFY(writeFile(certificates.filePath(QStringLiteral("authority.pem")), authority.certificate()));
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/etc/ssl/certs"), certificates.path());

        const QString plain = address(*m_server, QStringLiteral("/echo"));
        QCOMPARE(run({QStringLiteral("get"), redirectAddress(secure, 302, plain)}, 1, sandbox),
                 QStringList {QStringLiteral("The redirect to %1 is not followed").arg(plain)});
        QCOMPARE(m_server->requests().size(), 0);

        const QString target = address(secure, QStringLiteral("/echo?safe"));
        QCOMPARE(run({QStringLiteral("get"), redirectAddress(secure, 302, target)}, 0, sandbox).value(1),
                 QStringLiteral("/echo?safe"));
        QCOMPARE(run({QStringLiteral("get"), redirectAddress(*m_server, 302, target)}, 0, sandbox).value(1),
                 QStringLiteral("/echo?safe"));
    }

    void rejectsUntrustedCertificate()
    {
        const HttpServer secure(Authority::selfSigned(QStringLiteral("127.0.0.1")));
        run({QStringLiteral("get"), address(secure, QStringLiteral("/echo"))}, 1);
        QVERIFY(secure.requests().isEmpty());
    }

    void downloadsFileAfterRedirect()
    {
        const QTemporaryDir directory;
        const QString target = address(*m_server, QStringLiteral("/bytes/5000/a.bin"));
        const QStringList lines =
            run({QStringLiteral("download"), redirectAddress(*m_server, 302, target), directory.path()});
        const QString path = directory.filePath(QStringLiteral("a.bin"));
        QVERIFY2(lines.contains(QStringLiteral("The file is ") + path),
                 qPrintable(lines.join(QLatin1Char('\n'))));
        QCOMPARE(readFile(path), HttpServer::content(5000));
        QCOMPARE(m_server->requests().first().method, QByteArray("HEAD"));
    }

    void endsAfterTenSeconds()
    {
        const QByteArray target = address(*m_server, QStringLiteral("/never")).toUtf8();
        RawServer slow([target](Connection &client) {
            client.sleep(6000);
            client.write("HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n");
        });
        RecipeProcess recipe(QStringLiteral("following-a-redirect"));
        QVERIFY(recipe.start({QStringLiteral("get"), slow.url().toString()}));
        QCOMPARE(recipe.finish(), 1);
        QCOMPARE(recipe.lines(), QStringList {QStringLiteral("There was no answer within ten seconds")});
        QCOMPARE(m_server->requests().size(), 1);
        QVERIFY2(recipe.duration() > 9000 && recipe.duration() < 15000,
                 qPrintable(QString::number(recipe.duration())));
    }
};

QTEST_GUILESS_MAIN(TestFollowingARedirect)

#include "tst_following_a_redirect.moc"
