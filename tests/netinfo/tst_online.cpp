// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "Files.h"
#include "HostProcess.h"
#include "Resolver.h"
#include "World.h"

#include <QCoreApplication>
#include <QHostInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <netdb.h>

using ZyBase::CNetworkUtils;

namespace {

const QByteArray probe = ZyBase::pszProbeName;

// A host on a machine with its own network, in which there is nothing, and its own way to look names up.
QJsonValue isOnline(const QByteArray &hosts, const QByteArray &sources)
{
    const QTemporaryDir etc;
    writeFile(etc.filePath(QStringLiteral("hosts")), hosts);
    writeFile(etc.filePath(QStringLiteral("nsswitch.conf")), "hosts: " + sources + '\n');
    writeFile(etc.filePath(QStringLiteral("resolv.conf")),
              "nameserver 127.0.0.1\noptions timeout:1 attempts:1\n");
    Sandbox sandbox;
    sandbox.replace(QStringLiteral("/etc"), etc.path());
    sandbox.ownNetwork(QStringLiteral("true"));
    HostProcess host;
    host.start(sandbox);
    const QJsonValue answer = host.call(QStringLiteral("net.isOnline"));
    host.quit();
    return answer;
}

} // namespace

// Whether the probe name resolves.
class TestOnline : public QObject
{
    Q_OBJECT

private:
    // Qt remembers a hundred names or so; others take their places.
    static void forgetLookups()
    {
        for (int i = 0; i < 300; ++i)
            QHostInfo::fromName(QStringLiteral("other%1.example").arg(i));
    }
    // Neither from what Qt remembers nor along with a lookup that is about to end.
    static bool isOnlineAnew(int code)
    {
        for (int attempt = 0; attempt < 100; ++attempt) {
            Resolver::answerWith(0);
            forgetLookups();
            Resolver::answerWith(code);
            const int before = Resolver::asked().size();
            const bool isOnline = CNetworkUtils::IsNetWorkOnline();
            if (Resolver::asked().size() > before)
                return isOnline;
        }
        qFatal("No name is looked up");
    }
    static bool hasOwnNetwork() { return Sandbox::hasNetwork(QStringLiteral("true")); }

private Q_SLOTS:
    void init() { forgetLookups(); }
    void cleanup()
    {
        Resolver::release();
        Resolver::answerWith(0);
    }

    // The first lookup of this process.
    void nameIsLookedUpAndNothingIsSent()
    {
        const World world;
        Resolver::hold();
        const int before = Resolver::asked().size();
        bool isDelivered = false;
        QTimer::singleShot(0, this, [&isDelivered] {
            isDelivered = true;
            Resolver::release();
        });
        QVERIFY(CNetworkUtils::IsNetWorkOnline());
        QVERIFY(isDelivered); // events of the thread, while the lookup waits
        QCOMPARE(Resolver::asked().mid(before), QList<QByteArray> {probe});
        QCOMPARE(world.asked(), QStringList());
    }

    void nameInTheHostsFileIsEnough()
    {
        if (!hasOwnNetwork())
            QSKIP("a network of its own is not allowed here");
        QCOMPARE(isOnline("192.0.2.1 " + probe + '\n', "files"), QJsonValue(true));
    }

    void nameThatIsUnknownIsNotOnline_data()
    {
        QTest::addColumn<QByteArray>("hosts");
        QTest::addColumn<QByteArray>("sources");
        QTest::newRow("no such name") << QByteArray("127.0.0.1 localhost\n") << QByteArray("files");
        QTest::newRow("part of another") << "192.0.2.1 x" + probe + '\n' << QByteArray("files");
        QTest::newRow("no server to ask") << QByteArray() << QByteArray("files dns");
    }
    void nameThatIsUnknownIsNotOnline()
    {
        QFETCH(QByteArray, hosts);
        QFETCH(QByteArray, sources);
        if (!hasOwnNetwork())
            QSKIP("a network of its own is not allowed here");
        QCOMPARE(isOnline(hosts, sources), QJsonValue(false));
    }

    void anyErrorIsNotOnline_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("no such name") << EAI_NONAME;
        QTest::newRow("no address") << EAI_NODATA;
        QTest::newRow("no answer") << EAI_AGAIN;
        QTest::newRow("failure") << EAI_FAIL;
    }
    void anyErrorIsNotOnline()
    {
        QFETCH(int, code);
        QVERIFY(!isOnlineAnew(code));
    }

    void applicationMayQuitMeanwhile()
    {
        QVERIFY(!isOnlineAnew(EAI_NONAME)); // none is remembered
        Resolver::hold();
        bool isOnline = true;
        QTimer::singleShot(0, this, [&isOnline] { isOnline = CNetworkUtils::IsNetWorkOnline(); });
        QTimer::singleShot(50, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
        QVERIFY(!isOnline);
        Resolver::release();
        // The late answer meets nobody.
        Resolver::answerWith(0);
        QTRY_VERIFY(CNetworkUtils::IsNetWorkOnline());
    }

    // By Qt, for a minute; the library itself keeps nothing.
    void successIsRememberedForAMoment()
    {
        QVERIFY(isOnlineAnew(0));
        Resolver::answerWith(EAI_NONAME);
        const int before = Resolver::asked().size();
        QVERIFY(CNetworkUtils::IsNetWorkOnline());
        QCOMPARE(Resolver::asked().size(), before);
    }

    void failureIsNotRemembered()
    {
        QVERIFY(!isOnlineAnew(EAI_NONAME));
        Resolver::answerWith(0);
        QTRY_VERIFY(CNetworkUtils::IsNetWorkOnline());
    }
};

QTEST_GUILESS_MAIN(TestOnline)

#include "tst_online.moc"
