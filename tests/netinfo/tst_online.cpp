// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "Files.h"
#include "HostProcess.h"
#include "NetInfoTest.h"
#include "Resolver.h"
#include "Waiting.h"

#include <QCoreApplication>
#include <QHostInfo>
#include <QTemporaryDir>
#include <QTimer>

#include <netdb.h>

using ZyBase::CNetworkUtils;

namespace {

const QByteArray probe = ZyBase::pszProbeName;

// Runs IsNetWorkOnline() in a process with an empty network and these name sources.
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

// IsNetWorkOnline(), which looks up the probe name.
class TestOnline : public NetInfoTest
{
    Q_OBJECT

private:
    // Replaces the names in Qt's cache, which has about a hundred entries.
    static void forgetLookups()
    {
        for (int i = 0; i < 300; ++i)
            QHostInfo::fromName(QStringLiteral("other%1.example").arg(i));
    }
    // Calls IsNetWorkOnline() until it causes a new lookup, which returns the code.
    static bool isOnlineAnew(int code)
    {
        for (int attempt = 0; attempt < 100; ++attempt) {
            Resolver::answerWith(0);
            forgetLookups();
            Resolver::answerWith(code);
            const int before = Resolver::lookups().size();
            const bool isOnline = CNetworkUtils::IsNetWorkOnline();
            if (Resolver::lookups().size() > before)
                return isOnline;
        }
        qFatal("No name is looked up");
    }
    static bool hasOwnNetwork() { return Sandbox::hasNetwork(QStringLiteral("true")); }

private Q_SLOTS:
    void init()
    {
        NetInfoTest::init();
        forgetLookups();
    }
    void cleanup()
    {
        Resolver::release();
        Resolver::answerWith(0);
        NetInfoTest::cleanup();
    }

    // Must run first: this is the first lookup of the process.
    void looksUpNameAndSendsNothing()
    {
        Resolver::hold();
        const int before = Resolver::lookups().size();
        bool isDelivered = false;
        QTimer::singleShot(0, this, [&isDelivered] {
            isDelivered = true;
            Resolver::release();
        });
        QVERIFY(CNetworkUtils::IsNetWorkOnline());
        QVERIFY(isDelivered); // events are delivered while the lookup blocks
        QCOMPARE(Resolver::lookups().mid(before), QList<QByteArray> {probe});
        QCOMPARE(network().requestLines(), QStringList());
    }

    void acceptsNameOfHostsFile()
    {
        if (!hasOwnNetwork())
            QSKIP("this user cannot create a network namespace");
        QCOMPARE(isOnline("192.0.2.1 " + probe + '\n', "files"), QJsonValue(true));
    }

    void returnsFalseForUnknownName_data()
    {
        QTest::addColumn<QByteArray>("hosts");
        QTest::addColumn<QByteArray>("sources");
        QTest::newRow("no such name") << QByteArray("127.0.0.1 localhost\n") << QByteArray("files");
        QTest::newRow("part of another") << "192.0.2.1 x" + probe + '\n' << QByteArray("files");
        QTest::newRow("no name server") << QByteArray() << QByteArray("files dns");
    }
    void returnsFalseForUnknownName()
    {
        QFETCH(QByteArray, hosts);
        QFETCH(QByteArray, sources);
        if (!hasOwnNetwork())
            QSKIP("this user cannot create a network namespace");
        QCOMPARE(isOnline(hosts, sources), QJsonValue(false));
    }

    void returnsFalseForAnyError_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("no such name") << EAI_NONAME;
        QTest::newRow("no address") << EAI_NODATA;
        QTest::newRow("no answer") << EAI_AGAIN;
        QTest::newRow("failure") << EAI_FAIL;
    }
    void returnsFalseForAnyError()
    {
        QFETCH(int, code);
        QVERIFY(!isOnlineAnew(code));
    }

    void returnsFalseIfApplicationQuits()
    {
        QVERIFY(!isOnlineAnew(EAI_NONAME)); // no success is cached
        Resolver::hold();
        bool isOnline = true;
        QTimer::singleShot(0, this, [&isOnline] { isOnline = CNetworkUtils::IsNetWorkOnline(); });
        QTimer::singleShot(50, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
        QVERIFY(!isOnline);
        Resolver::release();
        // The late answer has no receiver.
        Resolver::answerWith(0);
        QTRY_VERIFY_WITH_TIMEOUT(CNetworkUtils::IsNetWorkOnline(), longestWaitMs);
    }

    // Qt caches a result for a minute; the library has no cache.
    void reusesSuccessThatQtCaches()
    {
        QVERIFY(isOnlineAnew(0));
        Resolver::answerWith(EAI_NONAME);
        const int before = Resolver::lookups().size();
        QVERIFY(CNetworkUtils::IsNetWorkOnline());
        QCOMPARE(Resolver::lookups().size(), before);
    }

    void repeatsLookupAfterFailure()
    {
        QVERIFY(!isOnlineAnew(EAI_NONAME));
        Resolver::answerWith(0);
        QTRY_VERIFY_WITH_TIMEOUT(CNetworkUtils::IsNetWorkOnline(), longestWaitMs);
    }
};

QTEST_GUILESS_MAIN(TestOnline)

#include "tst_online.moc"
