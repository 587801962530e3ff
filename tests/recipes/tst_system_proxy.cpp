// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RecipeProcess.h"

#include <localservices/HttpServer.h>
#include <localservices/Proxy.h>

#include <QTest>

using LocalServices::Authority;
using LocalServices::HttpServer;
using LocalServices::Proxy;

class TestSystemProxy : public QObject
{
    Q_OBJECT

private:
    // Returns the recipe's output with this variable. PORT in the value is replaced by the port of the proxy.
    QStringList linesFor(const QString &variable, const QString &value, const QStringList &arguments)
    {
        RecipeProcess recipe(QStringLiteral("system-proxy"));
        if (!variable.isEmpty())
            recipe.setEnvironment(
                variable, QString(value).replace(QLatin1String("PORT"), QString::number(m_proxy.port())));
        recipe.start(arguments);
        return recipe.finish() == 0 ? recipe.lines() : QStringList();
    }

    const Authority m_authority;
    const HttpServer m_server;
    Proxy m_proxy {m_authority};

private Q_SLOTS:
    void initTestCase() { m_proxy.routeAll(m_server.url(QStringLiteral("/"))); }

    void usesProxyOfEnvironment_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("scheme");
        const auto row = [](const char *name, const char *variable, const char *value,
                            const char *scheme = "http") {
            QTest::newRow(name) << QString::fromLatin1(variable) << QString::fromLatin1(value)
                                << QString::fromLatin1(scheme);
        };
        row("http", "http_proxy", "http://127.0.0.1:PORT");
        row("https", "https_proxy", "http://127.0.0.1:PORT", "https");
        row("https, variable for http", "http_proxy", "http://127.0.0.1:PORT/", "https");
        row("name in capitals", "HTTP_PROXY", "http://127.0.0.1:PORT");
        row("variable for all protocols", "all_proxy", "http://127.0.0.1:PORT");
        row("https, variable for all protocols", "ALL_PROXY", "http://127.0.0.1:PORT", "https");
        row("value without a scheme", "http_proxy", "127.0.0.1:PORT");
        row("value with spaces", "http_proxy", " http://127.0.0.1:PORT ");
    }
    void usesProxyOfEnvironment()
    {
        QFETCH(QString, variable);
        QFETCH(QString, value);
        QFETCH(QString, scheme);
        const int before = m_proxy.requestLines().size();
        const QStringList lines =
            linesFor(variable, value, {scheme + QStringLiteral("://service.example/echo?hello")});
        QCOMPARE(lines, QStringList({QStringLiteral("Proxy 127.0.0.1:%1").arg(m_proxy.port()),
                                     QStringLiteral("/echo?hello")}));
        QCOMPARE(m_proxy.requestLines().size(), before + 1);
    }

    // The hazard that the recipe avoids.
    void showsThatQtIgnoresVariables_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::addColumn<QString>("value");
        QTest::newRow("name in capitals")
            << QStringLiteral("HTTP_PROXY") << QStringLiteral("http://127.0.0.1:PORT");
        QTest::newRow("variable for all protocols")
            << QStringLiteral("all_proxy") << QStringLiteral("http://127.0.0.1:PORT");
    }
    void showsThatQtIgnoresVariables()
    {
        QFETCH(QString, variable);
        QFETCH(QString, value);
        // Another address of this machine, so that no request leaves it.
        QUrl url = m_server.url(QStringLiteral("/echo?hello"));
        url.setHost(QStringLiteral("0.0.0.0"));
        const QString noProxy = QStringLiteral("No proxy");
        QCOMPARE(linesFor(variable, value, {QStringLiteral("--plainly"), url.toString()}).value(0), noProxy);
        QVERIFY(linesFor(variable, value, {url.toString()}).value(0) != noProxy);
    }

    void usesNoProxyForExceptions_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::newRow("name in lower case") << QStringLiteral("no_proxy");
        QTest::newRow("name in capitals") << QStringLiteral("NO_PROXY");
    }
    void usesNoProxyForExceptions()
    {
        QFETCH(QString, variable);
        QUrl url = m_server.url(QStringLiteral("/echo?hello"));
        url.setHost(QStringLiteral("0.0.0.0"));
        const int before = m_proxy.requestLines().size();
        RecipeProcess recipe(QStringLiteral("system-proxy"));
        recipe.setEnvironment(QStringLiteral("http_proxy"),
                              QStringLiteral("127.0.0.1:%1").arg(m_proxy.port()));
        recipe.setEnvironment(variable, QStringLiteral("other.example,0.0.0.0"));
        QVERIFY(recipe.start({url.toString()}));
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(), QStringList({QStringLiteral("No proxy"), QStringLiteral("/echo?hello")}));
        QCOMPARE(m_proxy.requestLines().size(), before);
    }

    void usesSocksProxy_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("scheme with a version") << QStringLiteral("socks5://127.0.0.1:1");
        QTest::newRow("scheme of GNOME") << QStringLiteral("socks://127.0.0.1:1/");
    }
    void usesSocksProxy()
    {
        QFETCH(QString, value);
        const QStringList lines =
            linesFor(QStringLiteral("all_proxy"), value, {QStringLiteral("http://service.example/echo")});
        QCOMPARE(lines, QStringList({QStringLiteral("Proxy 127.0.0.1:1"), QStringLiteral("No answer")}));
    }

    void usesNoProxyWithoutVariable()
    {
        QCOMPARE(linesFor(QString(), QString(), {m_server.url(QStringLiteral("/echo?hello")).toString()}),
                 QStringList({QStringLiteral("No proxy"), QStringLiteral("/echo?hello")}));
    }

    void reportsNoAnswerOfUnreachableProxy()
    {
        QCOMPARE(linesFor(QStringLiteral("http_proxy"), QStringLiteral("http://127.0.0.1:1"),
                          {QStringLiteral("http://service.example/echo")})
                     .value(1),
                 QStringLiteral("No answer"));
    }
};

QTEST_GUILESS_MAIN(TestSystemProxy)

#include "tst_system_proxy.moc"
