// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "RecipeProcess.h"

#include <localservices/HttpServer.h>

#include <QRegularExpression>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>

using LocalServices::Authority;
using LocalServices::HttpServer;

class TestTrustingAPrivateAuthority : public QObject
{
    Q_OBJECT

private:
    // Returns what the recipe prints itself.
    QStringList download(const QStringList &authority, int exitCode)
    {
        RecipeProcess recipe(QStringLiteral("trusting-a-private-authority"));
        recipe.start(
            QStringList {m_server.url(QStringLiteral("/bytes/5000/a.bin")).toString(), m_directory->path()}
            + authority);
        if (recipe.finish() != exitCode)
            return {recipe.standardError()};
        return recipe.lines().filter(QRegularExpression(QStringLiteral("^(?!Downloading|Succeeded)")));
    }

    QString write(const QByteArray &content)
    {
        const QString path = m_directory->filePath(QStringLiteral("authority.pem"));
        return writeFile(path, content) ? path : QString();
    }

    const Authority m_authority;
    const HttpServer m_server {m_authority.issue(QStringLiteral("127.0.0.1"))};
    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void initTestCase()
    {
        if (!QSslSocket::supportsSsl())
            QSKIP("Qt finds no OpenSSL library");
    }
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void failsWithUnknownAuthority()
    {
        QCOMPARE(download({}, 1), QStringList {QStringLiteral("The download failed")});
    }

    void downloadsWithTrustedAuthority_data()
    {
        QTest::addColumn<QByteArray>("pem");
        QTest::newRow("one") << m_authority.certificate();
        QTest::newRow("several") << Authority::selfSigned(QStringLiteral("other")).certificate
                                        + m_authority.certificate();
    }
    void downloadsWithTrustedAuthority()
    {
        QFETCH(QByteArray, pem);
        QCOMPARE(download({write(pem)}, 0), QStringList {QStringLiteral("The file is ")
                                                         + m_directory->filePath(QStringLiteral("a.bin"))});
    }

    void addsNothing_data()
    {
        QTest::addColumn<QByteArray>("pem");
        QTest::addColumn<QString>("problem");
        const QDateTime yesterday = QDateTime::currentDateTimeUtc().addSecs(-60);
        const QByteArray expired = Authority().issue(QStringLiteral("h"), yesterday).certificate;
        QTest::newRow("no certificate")
            << QByteArray("text") << QStringLiteral("%1 contains no certificate.");
        QTest::newRow("another authority") << Authority().certificate() << QString();
        QTest::newRow("expired") << m_authority.certificate() + expired
                                 << QStringLiteral("A certificate in %1 has expired.");
    }
    void addsNothing()
    {
        QFETCH(QByteArray, pem);
        QFETCH(QString, problem);
        const QString path = write(pem);
        QStringList expected {QStringLiteral("The download failed")};
        if (!problem.isEmpty())
            expected.prepend(problem.arg(path));
        QCOMPARE(download({path}, 1), expected);
    }
};

QTEST_GUILESS_MAIN(TestTrustingAPrivateAuthority)

#include "tst_trusting_a_private_authority.moc"
