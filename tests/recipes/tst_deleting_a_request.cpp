// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RecipeProcess.h"

#include <localservices/HttpServer.h>

#include <QRegularExpression>
#include <QTest>

using LocalServices::HttpServer;

class TestDeletingARequest : public QObject
{
    Q_OBJECT

private:
    // Returns the time in the line, or -1 if it has another form.
    static int msAfterOutcome(const QString &line)
    {
        static const QRegularExpression form(
            QStringLiteral("^The request was deleted (\\d+) ms after its outcome$"));
        const QRegularExpressionMatch match = form.match(line);
        return match.hasMatch() ? match.captured(1).toInt() : -1;
    }

private Q_SLOTS:
    void deletesRequestsOneSecondAfterTheirOutcome()
    {
        const HttpServer server;
        RecipeProcess recipe(QStringLiteral("deleting-a-request"));
        QVERIFY(recipe.start({server.url(QStringLiteral("/echo?hello")).toString(),
                              server.url(QStringLiteral("/never")).toString()}));
        QCOMPARE(recipe.finish(), 0);
        const QStringList lines = recipe.lines();
        QCOMPARE(lines.size(), 5);
        QCOMPARE(lines.at(0), QStringLiteral("The window shows /echo?hello"));
        QVERIFY2(msAfterOutcome(lines.at(1)) >= 900, qPrintable(lines.at(1)));
        QCOMPARE(lines.at(2), QStringLiteral("The other window is closed"));
        QCOMPARE(lines.at(3), QStringLiteral("The request was stopped"));
        QVERIFY2(msAfterOutcome(lines.at(4)) >= 900, qPrintable(lines.at(4)));
        QCOMPARE(recipe.standardError(), QString());
        QVERIFY(recipe.duration() < 9000); // no request reached its time limit
    }

    void dropsAnswerForClosedWindow()
    {
        const HttpServer server;
        RecipeProcess recipe(QStringLiteral("deleting-a-request"));
        // The window closes after half of the answer.
        QVERIFY(recipe.start({server.url(QStringLiteral("/echo?hello")).toString(),
                              server.url(QStringLiteral("/bytes/600?rate=1000")).toString()}));
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines().filter(QStringLiteral("shows")).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestDeletingARequest)

#include "tst_deleting_a_request.moc"
