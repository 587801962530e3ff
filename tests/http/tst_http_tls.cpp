// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include "Downloads.h"
#include "Files.h"

#include <localservices/HttpServer.h>
#include <localservices/Nginx.h>

#include <QDir>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTemporaryDir>

using LocalServices::Authority;
using LocalServices::Certificate;
using LocalServices::HttpServer;
using LocalServices::Nginx;

namespace {

const QString localHost = QStringLiteral("127.0.0.1");
const QString tls12 = QStringLiteral("TLSv1.2");
const QString tls13 = QStringLiteral("TLSv1.3");

} // namespace

// Requests to a real server under TLS.
class TestHttpTls : public QObject
{
    Q_OBJECT

private:
    // Creates a server with one file, "hello".
    std::unique_ptr<Nginx> createServer(const Certificate &certificate, const QString &protocols)
    {
        auto server = std::make_unique<Nginx>(certificate, protocols);
        writeFile(server->filePath(QStringLiteral("hello")), "hello");
        return server;
    }
    // nginx rejects a POST to a static file.
    static Outcome expected(Form form, const Outcome &outcome)
    {
        return form == Form::PostSync || form == Form::PostAsync
                   ? result(form, outcome.data.contains("405 Not Allowed") ? outcome.data : "no answer", 405)
                   : result(form, "hello", 200);
    }
    static const QString &hello()
    {
        static const QString path = QStringLiteral("/hello");
        return path;
    }

    Authority m_authority;

private Q_SLOTS:
    void acceptsAnyCertificate_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QString>("kind");
        for (const Form form : allForms) {
            for (const char *kind :
                 {"unknown authority", "self-signed", "expired", "wrong name", "all wrong"})
                QTest::addRow("%s, %s", nameOf(form), kind) << form << QString::fromLatin1(kind);
        }
    }
    void acceptsAnyCertificate()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        QFETCH(Form, form);
        QFETCH(QString, kind);
        const QDateTime past = QDateTime::currentDateTimeUtc().addSecs(-3600);
        const QString other = QStringLiteral("other.example.org");
        const QHash<QString, Certificate> certificates {
            {QStringLiteral("unknown authority"), m_authority.issue(localHost)},
            {QStringLiteral("self-signed"), Authority::selfSigned(localHost)},
            {QStringLiteral("expired"), m_authority.issue(localHost, past)},
            {QStringLiteral("wrong name"), m_authority.issue(other)},
            {QStringLiteral("all wrong"), m_authority.issue(other, past)}};
        const auto server = createServer(certificates.value(kind), tls12);
        QVERIFY(server->isRunning());
        const Outcome outcome = carryOut(form, server->url(hello()));
        QCOMPARE(outcome, expected(form, outcome));
    }

    void connectsToServerWithBothVersions_data() { addForms(allForms); }
    void connectsToServerWithBothVersions()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        QFETCH(Form, form);
        const auto server = createServer(Authority::selfSigned(localHost), QStringLiteral("TLSv1.2 TLSv1.3"));
        const Outcome outcome = carryOut(form, server->url(hello()));
        QCOMPARE(outcome, expected(form, outcome));
    }

    void rejectsServerWithOtherVersion_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QString>("protocols");
        for (const Form form : allForms) {
            QTest::addRow("%s, TLS 1.3", nameOf(form)) << form << tls13;
            QTest::addRow("%s, TLS 1.1", nameOf(form)) << form << QStringLiteral("TLSv1.1");
        }
    }
    void rejectsServerWithOtherVersion()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        QFETCH(Form, form);
        QFETCH(QString, protocols);
        const auto server = createServer(Authority::selfSigned(localHost), protocols);
        QVERIFY(server->isRunning());
        QCOMPARE(carryOut(form, server->url(hello())), result(form, QByteArray(), 0));
    }

    void reportsAnswerOfTlsPortToPlainRequest_data() { addForms(allForms); }
    void reportsAnswerOfTlsPortToPlainRequest()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        QFETCH(Form, form);
        const auto server = createServer(Authority::selfSigned(localHost), tls12);
        QUrl url = server->url(hello());
        url.setScheme(QStringLiteral("http"));
        const Outcome outcome = carryOut(form, url);
        QVERIFY(outcome.data.contains("400 The plain HTTP request was sent to HTTPS port"));
    }

    void reportsEmptyResultOfPlainPortToTlsRequest_data() { addForms(allForms); }
    void reportsEmptyResultOfPlainPortToTlsRequest()
    {
        QFETCH(Form, form);
        const HttpServer server;
        QUrl url = server.url(QStringLiteral("/echo"));
        url.setScheme(QStringLiteral("https"));
        QCOMPARE(carryOut(form, url), result(form, QByteArray(), 0));
    }

    void sendsSameRequestOverTls_data() { addForms(allForms); }
    void sendsSameRequestOverTls()
    {
        QFETCH(Form, form);
        const HttpServer server(Authority::selfSigned(localHost));
        carryOut(form, server.url(QStringLiteral("/echo?x")), QStringLiteral("abc"),
                 {{QStringLiteral("a"), 1}});
        QCOMPARE(server.requests().size(), 1);
        const HttpServer::Request request = server.requests().first();
        const bool isPost = form == Form::PostSync || form == Form::PostAsync;
        QCOMPARE(request.target, QByteArray("/echo?x"));
        QCOMPARE(request.body, isPost ? QByteArray("{\"a\":1}") : QByteArray());
        QCOMPARE(request.header("Cookie"), isSync(form) ? QByteArray() : QByteArray("sessionid=abc"));
    }

    void downloadsWithTls13FromTrustedServer_data()
    {
        QTest::addColumn<QString>("protocols");
        QTest::newRow("1.2") << tls12;
        QTest::newRow("1.3") << tls13;
    }
    void downloadsWithTls13FromTrustedServer()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        QFETCH(QString, protocols);
        const auto server = createServer(m_authority.issue(localHost), protocols);
        const QTemporaryDir directory;
        WatchedDownload watched;
        QCOMPARE(watched.fetch(server->url(hello()), directory.path()), QString());

        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration trusting = before;
        trusting.setCaCertificates({QSslCertificate(m_authority.certificate())});
        QSslConfiguration::setDefaultConfiguration(trusting);
        WatchedDownload trusted;
        const QString path = trusted.fetch(server->url(hello()), directory.path());
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(readFile(path), QByteArray("hello"));
    }

    void rejectsDownloadWithInvalidCertificate_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("validSeconds");
        QTest::newRow("expired") << localHost << -3600;
        QTest::newRow("wrong name") << QStringLiteral("other.example.org") << 3600;
    }
    void rejectsDownloadWithInvalidCertificate()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        QFETCH(QString, host);
        QFETCH(int, validSeconds);
        const QDateTime until = QDateTime::currentDateTimeUtc().addSecs(validSeconds);
        const auto server = createServer(m_authority.issue(host, until), tls12);
        const QTemporaryDir directory;
        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration trusting = before;
        trusting.setCaCertificates({QSslCertificate(m_authority.certificate())});
        QSslConfiguration::setDefaultConfiguration(trusting);
        WatchedDownload watched;
        const QString path = watched.fetch(server->url(hello()), directory.path());
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(path, QString());
        QVERIFY(QDir(directory.path()).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestHttpTls)

#include "tst_http_tls.moc"
