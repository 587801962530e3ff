// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RecipeProcess.h"

#include <localservices/HttpServer.h>

#include <QTest>

using LocalServices::HttpServer;

class TestBlockingCallsAndTheInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void preventsSecondRequest_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QStringList>("lines");
        const QString first = QStringLiteral("Running: 1");
        const QString second = QStringLiteral("Running: 2");
        const QString answer = QStringLiteral("Answered with 1000 bytes");
        const QString isHandled = QStringLiteral("The click is handled");
        // Without care the second call runs inside the first call, which ends last.
        QTest::newRow("without care: two requests")
            << QStringLiteral("plain") << QStringList {first, second, answer, isHandled, answer, isHandled};
        QTest::newRow("button disabled: one request")
            << QStringLiteral("disabling") << QStringList {first, isHandled, answer, isHandled};
        QTest::newRow("call in a thread: one request")
            << QStringLiteral("thread") << QStringList {first, isHandled, isHandled, answer};
    }
    void preventsSecondRequest()
    {
        QFETCH(QString, action);
        QFETCH(QStringList, lines);
        const HttpServer server;
        RecipeProcess recipe(QStringLiteral("blocking-calls-and-the-interface"));
        QVERIFY(recipe.start({server.url(QStringLiteral("/bytes/1000?rate=1000")).toString(), action}));
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(), lines);
        QCOMPARE(server.requests().size(), lines.filter(QStringLiteral("Running")).size());
    }

    void allowsClosingWindowDuringCall()
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
