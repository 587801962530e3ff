// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "SeenServices.h"

#include <QTemporaryDir>
#include <QTest>

class TestSeeingWhatIsSent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsEventAndRecordToLocalServices()
    {
        SeenServices services;
        RecipeProcess recipe(QStringLiteral("seeing-what-is-sent"));
        services.leadThere(&recipe);
        QVERIFY(recipe.start());
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(), QStringList {QStringLiteral("An event and a record were sent; see "
                                                             "http://127.0.0.1:1/page")});
        QCOMPARE(services.collector().events().size(), 1);
        QCOMPARE(services.collector().events().first().problems, QStringList());
        QCOMPARE(services.backend().records().size(), 1);
        QCOMPARE(services.backend().records().first().problems, QStringList());
    }

    void sendsNothingWithoutLocalServices()
    {
        RecipeProcess recipe(QStringLiteral("seeing-what-is-sent"));
        QVERIFY(recipe.start());
        QCOMPARE(recipe.finish(), 1);
        QCOMPARE(recipe.lines(), QStringList {QStringLiteral(
                                     "There are no local services: start this with scripts/local-services")});
    }

    void endsIfFileDescribesNoServices_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("missing file") << QByteArray();
        QTest::newRow("file without JSON") << QByteArray("services");
        QTest::newRow("no proxy address") << QByteArray("{\"authority\": \"AUTHORITY\"}");
        QTest::newRow("no port of the proxy")
            << QByteArray("{\"proxy\": \"http://127.0.0.1\", \"authority\": \"AUTHORITY\"}");
        QTest::newRow("missing certificate file")
            << QByteArray("{\"proxy\": \"http://127.0.0.1:1\", \"authority\": \"/none\"}");
    }
    void endsIfFileDescribesNoServices()
    {
        QFETCH(QByteArray, content);
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("services.json"));
        const QString authority = directory.filePath(QStringLiteral("authority.pem"));
        QVERIFY(writeFile(authority, LocalServices::Authority().certificate()));
        if (!content.isEmpty())
            QVERIFY(writeFile(path, content.replace("AUTHORITY", authority.toUtf8())));
        RecipeProcess recipe(QStringLiteral("seeing-what-is-sent"));
        recipe.setEnvironment(QStringLiteral("LOCAL_SERVICES"), path);
        QVERIFY(recipe.start());
        QCOMPARE(recipe.finish(), -1);
        QVERIFY(recipe.standardError().contains(
            QStringLiteral("LOCAL_SERVICES is %1, which describes no running services").arg(path)));
        QCOMPARE(recipe.lines(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestSeeingWhatIsSent)

#include "tst_seeing_what_is_sent.moc"
