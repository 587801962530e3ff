// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "LoadedLibrary.h"
#include "RecipeProcess.h"

#include <localservices/HttpServer.h>

#include <QFileInfo>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>

using LocalServices::Authority;
using LocalServices::HttpServer;

class TestTellingThatTlsIsMissing : public QObject
{
    Q_OBJECT

private:
    const Authority m_authority;
    const HttpServer m_secure {m_authority.issue(QStringLiteral("127.0.0.1"))};
    const HttpServer m_plain;

private Q_SLOTS:
    void initTestCase()
    {
        if (!QSslSocket::supportsSsl())
            QSKIP("Qt finds no OpenSSL library");
    }

    void returnsAnswerWithTls()
    {
        RecipeProcess recipe(QStringLiteral("telling-that-tls-is-missing"));
        QVERIFY(recipe.start({m_secure.url(QStringLiteral("/echo?hello")).toString()}));
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(),
                 QStringList({QStringLiteral("TLS library: ") + QSslSocket::sslLibraryVersionString(),
                              QStringLiteral("Status 200 with 11 bytes"), QStringLiteral("/echo?hello")}));
    }

    void reportsUnreachableServerWithTls()
    {
        RecipeProcess recipe(QStringLiteral("telling-that-tls-is-missing"));
        QVERIFY(recipe.start({QStringLiteral("https://127.0.0.1:1/")}));
        QCOMPARE(recipe.finish(), 1);
        QCOMPARE(recipe.lines().mid(1), QStringList({QStringLiteral("Status 0 with 0 bytes"),
                                                     QStringLiteral("127.0.0.1 can't be reached.")}));
    }

    void reportsMissingTls_data()
    {
        QTest::addColumn<bool>("isOtherVersion");
        QTest::newRow("missing library") << false;
        QTest::newRow("library of another version") << true;
    }
    void reportsMissingTls()
    {
        QFETCH(bool, isOtherVersion);
        if (!Sandbox::isAvailable())
            QSKIP("no sandbox can be created here");
        const QTemporaryDir directory;
        const QString nothing = directory.filePath(QStringLiteral("nothing"));
        QVERIFY(writeFile(nothing, QByteArray()));
        // Any other library lacks the symbols that Qt resolves.
        const QString instead = isOtherVersion ? loadedLibrary("libz.so") : nothing;
        QVERIFY(QFileInfo::exists(instead));
        Sandbox sandbox;
        sandbox.replace(loadedLibrary("libssl.so"), instead);

        RecipeProcess recipe(QStringLiteral("telling-that-tls-is-missing"));
        recipe.setSandbox(sandbox);
        QVERIFY(recipe.start({m_secure.url(QStringLiteral("/echo")).toString()}));
        QCOMPARE(recipe.finish(), 1);
        QCOMPARE(recipe.lines(),
                 QStringList({QStringLiteral("TLS library: "), QStringLiteral("Status 0 with 0 bytes"),
                              QStringLiteral(
                                  "Secure connections don't work on this machine. They need an OpenSSL "
                                  "library that is compatible with %1. It is missing or has another version.")
                                  .arg(QSslSocket::sslLibraryBuildVersionString())}));
        QVERIFY(recipe.duration() < 9000); // well before the time limit
        QVERIFY(m_secure.requests().isEmpty() || m_secure.requests().last().target != "/echo");

        RecipeProcess plain(QStringLiteral("telling-that-tls-is-missing"));
        plain.setSandbox(sandbox);
        QVERIFY(plain.start({m_plain.url(QStringLiteral("/echo?plain")).toString()}));
        QCOMPARE(plain.finish(), 0);
        QCOMPARE(plain.lines().last(), QStringLiteral("/echo?plain"));

        RecipeProcess unreachable(QStringLiteral("telling-that-tls-is-missing"));
        unreachable.setSandbox(sandbox);
        QVERIFY(unreachable.start({QStringLiteral("http://127.0.0.1:1/")}));
        QCOMPARE(unreachable.finish(), 1);
        QCOMPARE(unreachable.lines().last(), QStringLiteral("127.0.0.1 can't be reached."));
    }
};

QTEST_GUILESS_MAIN(TestTellingThatTlsIsMissing)

#include "tst_telling_that_tls_is_missing.moc"
