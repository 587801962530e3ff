// SPDX-License-Identifier: LGPL-2.1-or-later

#include "AnalyticsTest.h"
#include "StopTest.h"

using LocalServices::FakeNetwork;

// CGoogleAnalytics::SignalStopRequest().
class TestGoogleAnalyticsStop : public StopTest
{
    Q_OBJECT

private:
    QStringList asyncCalls() const override { return {QStringLiteral("StartRequestAsync")}; }
    QStringList syncCalls() const override { return {QStringLiteral("StartRequestSync")}; }
    bool hasSyncData() const override { return false; }
    void setServer(const QUrl &url) override { m_network->route(FakeNetwork::collectorHost, url); }
    std::unique_ptr<OutcomeWatcher> createWatcher() override { return std::make_unique<WatchedEvent>(); }
    void start(OutcomeWatcher &watcher, const QString &) override
    {
        static_cast<WatchedEvent &>(watcher).start();
    }
    bool send(OutcomeWatcher &watcher, const QString &, QByteArray &) override
    {
        return sendSync(static_cast<WatchedEvent &>(watcher).analytics());
    }
    Outcome resultOf(const QString &, const QByteArray &data) const override
    {
        return result(Form::PostAsync, data, -1);
    }

    void init() override
    {
        StopTest::init();
        m_network = std::make_unique<FakeNetwork>();
        m_network->install();
    }
    void cleanup() override
    {
        m_network.reset();
        StopTest::cleanup();
    }

    std::unique_ptr<FakeNetwork> m_network;
};

QTEST_GUILESS_MAIN(TestGoogleAnalyticsStop)

#include "tst_google_analytics_stop.moc"
