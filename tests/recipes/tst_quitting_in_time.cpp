// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "RecipeProcess.h"

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>

#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

using LocalServices::HttpServer;

namespace {

const QString recipeName = QStringLiteral("quitting-in-time");

// A network in which no machine answers, not even the name server.
const QString silentNetwork = QStringLiteral("ip link add silent type bridge\n"
                                             "ip addr add 192.0.2.1/24 dev silent\n"
                                             "ip link set silent up arp off\n");

// The time limit of a name lookup.
constexpr int lookupTimeoutMs = 10000;

// The recipe quits after this time.
constexpr int quitMs = 1000;

// The recipe quits after one second and ends within two more. The rest is for a busy machine.
constexpr int endTimeoutMs = 6000;

} // namespace

class TestQuittingInTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsDuringNameLookup()
    {
        if (!Sandbox::hasNetwork(silentNetwork))
            QSKIP("no separate network can be created here");
        const QTemporaryDir etc;
        writeFile(etc.filePath(QStringLiteral("hosts")), "127.0.0.1 localhost\n");
        writeFile(etc.filePath(QStringLiteral("nsswitch.conf")), "hosts: files dns\n");
        writeFile(etc.filePath(QStringLiteral("resolv.conf")),
                  QStringLiteral("nameserver 192.0.2.53\noptions timeout:%1 attempts:1\n")
                      .arg(lookupTimeoutMs / 1000)
                      .toUtf8());
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/etc"), etc.path());
        sandbox.ownNetwork(silentNetwork);
        const QStringList addresses {QStringLiteral("http://one.example/"),
                                     QStringLiteral("http://two.example/")};

        RecipeProcess plain(recipeName);
        plain.setSandbox(sandbox);
        QVERIFY(plain.start(QStringList {QStringLiteral("--plainly")} + addresses));
        RecipeProcess recipe(recipeName);
        recipe.setSandbox(sandbox);
        QVERIFY(recipe.start(addresses));

        QCOMPARE(recipe.finish(), 0);
        QVERIFY2(recipe.duration() < endTimeoutMs, qPrintable(QString::number(recipe.duration())));
        QCOMPARE(recipe.lines(), QStringList({QStringLiteral("The settings are saved"),
                                              QStringLiteral("Stopped"), QStringLiteral("Stopped")}));
        plain.finish();
        QVERIFY2(plain.duration() >= lookupTimeoutMs, qPrintable(QString::number(plain.duration())));
    }

    void stopsRequestsToSilentServers()
    {
        const HttpServer server;
        QStringList addresses;
        QStringList outcomes;
        for (int i = 0; i < 20; ++i) {
            addresses << server.url(QStringLiteral("/never")).toString();
            outcomes << QStringLiteral("Stopped");
        }
        RecipeProcess recipe(recipeName);
        QVERIFY(recipe.start(addresses));
        QCOMPARE(recipe.finish(), 0);
        QVERIFY2(recipe.duration() < endTimeoutMs, qPrintable(QString::number(recipe.duration())));
        QCOMPARE(recipe.lines(), QStringList {QStringLiteral("The settings are saved")} + outcomes
                                     + QStringList {QStringLiteral("The application object is destroyed")});
    }

    void endsWithoutCrashDuringAnswers()
    {
        // Answers arrive at about the time when the recipe quits.
        LocalServices::RawServer server([](LocalServices::Connection &client) {
            client.sleep(quitMs);
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nok");
        });
        QStringList addresses;
        for (int i = 0; i < 20; ++i)
            addresses << server.url().toString();
        std::vector<std::unique_ptr<RecipeProcess>> recipes(5);
        for (std::unique_ptr<RecipeProcess> &recipe : recipes) {
            recipe = std::make_unique<RecipeProcess>(recipeName);
            QVERIFY(recipe->start(addresses));
        }
        for (const std::unique_ptr<RecipeProcess> &recipe : recipes) {
            QCOMPARE(recipe->finish(), 0);
            QVERIFY2(recipe->duration() < endTimeoutMs, qPrintable(QString::number(recipe->duration())));
        }
    }

    void endsWithoutRequests()
    {
        RecipeProcess recipe(recipeName);
        QVERIFY(recipe.start());
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(), QStringList({QStringLiteral("The settings are saved"),
                                              QStringLiteral("The application object is destroyed")}));
    }
};

QTEST_GUILESS_MAIN(TestQuittingInTime)

#include "tst_quitting_in_time.moc"
