// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RecipeProcess.h"

#include <localservices/HttpServer.h>

#include <QTest>

using LocalServices::HttpServer;

class TestBlockingCallsAndTheInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void secondClickIsHeldOff_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QStringList>("lines");
        const QString first = QStringLiteral("Running: 1");
        const QString second = QStringLiteral("Running: 2");
        const QString answer = QStringLiteral("Answered by 1000 bytes");
        const QString isOver = QStringLiteral("The click is over");
        // Without care the second request runs inside the first one's call, which ends last.
        QTest::newRow("not without care")
            << QStringLiteral("plain") << QStringList {first, second, answer, isOver, answer, isOver};
        QTest::newRow("with the button disabled")
            << QStringLiteral("disabling") << QStringList {first, isOver, answer, isOver};
        QTest::newRow("with the call in a thread")
            << QStringLiteral("thread") << QStringList {first, isOver, isOver, answer};
    }
    void secondClickIsHeldOff()
    {
        QFETCH(QString, way);
        QFETCH(QStringList, lines);
        const HttpServer server;
        RecipeProcess recipe(QStringLiteral("blocking-calls-and-the-interface"));
        QVERIFY(recipe.start({server.url(QStringLiteral("/bytes/1000?rate=1000")).toString(), way}));
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(), lines);
        QCOMPARE(server.requests().size(), lines.filter(QStringLiteral("Running")).size());
    }

    void windowMayBeClosedMeanwhile()
    {
        const HttpServer server;
        RecipeProcess recipe(QStringLiteral("blocking-calls-and-the-interface"));
        QVERIFY(recipe.start(
            {server.url(QStringLiteral("/bytes/1000?rate=1000")).toString(), QStringLiteral("closing")}));
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(),
                 QStringList({QStringLiteral("Running: 1"), QStringLiteral("The window is closed")}));
    }
};

QTEST_GUILESS_MAIN(TestBlockingCallsAndTheInterface)

#include "tst_blocking_calls_and_the_interface.moc"
