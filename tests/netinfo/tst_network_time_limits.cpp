// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "Location.h"
#include "NetInfoTest.h"
#include "Resolver.h"

#include <QElapsedTimer>

#include <thread>

using ZyBase::CNetworkUtils;

namespace {

// Runs a function in its own thread and measures its duration.
class Call
{
public:
    explicit Call(const std::function<void()> &function)
        : m_thread([this, function] {
            QElapsedTimer timer;
            timer.start();
            function();
            m_elapsed = timer.elapsed();
        })
    {
    }
    qint64 join()
    {
        m_thread.join();
        return m_elapsed;
    }

private:
    qint64 m_elapsed = 0;
    std::thread m_thread;
};

// Qt's timers may fire 5 % early.
bool isAbout(qint64 milliseconds, qint64 expected)
{
    return milliseconds >= expected - expected / 20 && milliseconds < expected + 5000;
}

} // namespace

// All requests run at the same time, to services that never answer.
class TestNetworkTimeLimits : public NetInfoTest
{
    Q_OBJECT

private Q_SLOTS:
    void endsRequestsAfterTenSecondsEachAndLookupWhenAnswered()
    {
        const auto never = [](Connection &client) { client.waitForClose(); };
        for (const char *host : {ZyBase::pszGeolocationHost, ZyBase::pszGeolocationPageHost,
                                 ZyBase::pszAddressHost, ZyBase::pszCountryHost})
            network().route(host, never);
        Resolver::hold();

        Location fromBoth;
        Location fromApi;
        Location fromPage;
        bool isFound[] = {true, true, true, true};
        QString address;
        QString code = QStringLiteral("before");
        QString codeAddress = QStringLiteral("also before");
        bool isOnline = false;
        Call both([&] { isFound[0] = fromBoth.fill(CNetworkUtils::GetIPInfo); });
        Call api([&] { isFound[1] = fromApi.fill(GetIPInfoAPI); });
        Call page([&] { isFound[2] = fromPage.fill(GetIPInfoMy); });
        Call ip([&] { address = GetIP(); });
        Call country([&] { isFound[3] = CNetworkUtils::GetIPCountryCode(code, codeAddress); });
        Call lookup([&] { isOnline = CNetworkUtils::IsNetWorkOnline(); });

        const qint64 ofOne[] = {api.join(), page.join(), ip.join(), country.join()};
        const qint64 ofBoth = both.join();
        Resolver::release();
        const qint64 ofLookup = lookup.join();

        for (const qint64 elapsed : ofOne)
            QVERIFY2(isAbout(elapsed, 10000), qPrintable(QString::number(elapsed)));
        QVERIFY2(isAbout(ofBoth, 20000), qPrintable(QString::number(ofBoth)));
        QVERIFY2(isAbout(ofLookup, ofBoth), qPrintable(QString::number(ofLookup)));
        for (const bool found : isFound)
            QVERIFY(!found);
        QCOMPARE(fromBoth, Location());
        QCOMPARE(fromApi, Location());
        QCOMPARE(fromPage, Location());
        QVERIFY(address.isEmpty() && !address.isNull());
        QCOMPARE(code, QStringLiteral("before"));
        QCOMPARE(codeAddress, QStringLiteral("also before"));
        QVERIFY(isOnline);
    }
};

QTEST_GUILESS_MAIN(TestNetworkTimeLimits)

#include "tst_network_time_limits.moc"
