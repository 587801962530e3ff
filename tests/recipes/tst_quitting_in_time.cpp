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

// A network in which nothing answers, the name server neither.
const QString silentNetwork = QStringLiteral("ip link add silent type bridge\n"
                                             "ip addr add 192.0.2.1/24 dev silent\n"
                                             "ip link set silent up arp off\n");

// The system gives a name up after these; a machine may have several servers that are tried in turn.
constexpr int lookupMs = 10000;

// The user quits after a second; what is more than two seconds beyond goes to a busy machine.
constexpr int quitMs = 6000;

} // namespace

class TestQuittingInTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hangingNameLookupIsLeft()
    {
        if (!Sandbox::hasNetwork(silentNetwork))
            QSKIP("a network of its own is not allowed here");
        const QTemporaryDir etc;
        writeFile(etc.filePath(QStringLiteral("hosts")), "127.0.0.1 localhost\n");
        writeFile(etc.filePath(QStringLiteral("nsswitch.conf")), "hosts: files dns\n");
        writeFile(etc.filePath(QStringLiteral("resolv.conf")),
                  QStringLiteral("nameserver 192.0.2.53\noptions timeout:%1 attempts:1\n")
                      .arg(lookupMs / 1000)
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
        QVERIFY2(recipe.duration() < quitMs, qPrintable(QString::number(recipe.duration())));
        QCOMPARE(recipe.lines(), QStringList({QStringLiteral("The settings are saved"),
                                              QStringLiteral("Stopped"), QStringLiteral("Stopped")}));
        plain.finish();
        QVERIFY2(plain.duration() >= lookupMs, qPrintable(QString::number(plain.duration())));
    }

    void silentServersAreLeft()
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
        QVERIFY2(recipe.duration() < quitMs, qPrintable(QString::number(recipe.duration())));
        QCOMPARE(recipe.lines(), QStringList {QStringLiteral("The settings are saved")} + outcomes
                                     + QStringList {QStringLiteral("The application is gone")});
    }

    void answersInTheLastMomentDoNoHarm()
    {
        // They come when the user quits, or about then.
        LocalServices::RawServer server([](LocalServices::Connection &client) {
            client.sleep(1000);
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
            QVERIFY2(recipe->duration() < quitMs, qPrintable(QString::number(recipe->duration())));
        }
    }

    void nothingRunningQuitsAsEver()
    {
        RecipeProcess recipe(recipeName);
        QVERIFY(recipe.start());
        QCOMPARE(recipe.finish(), 0);
        QCOMPARE(recipe.lines(), QStringList({QStringLiteral("The settings are saved"),
                                              QStringLiteral("The application is gone")}));
    }
};

QTEST_GUILESS_MAIN(TestQuittingInTime)

#include "tst_quitting_in_time.moc"
