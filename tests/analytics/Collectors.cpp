// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Collectors.h"

#include <QMetaMethod>
#include <QTcpServer>

using LocalServices::Authority;
using LocalServices::Proxy;

Collectors::Collectors()
    : m_previousConfiguration(QSslConfiguration::defaultConfiguration())
    , m_previousProxy(QNetworkProxy::applicationProxy())
    , m_proxy(m_authority)
{
    routeTo(m_ga.url());
    trust(m_authority);
    use(m_proxy);
}

Collectors::~Collectors()
{
    QNetworkProxy::setApplicationProxy(m_previousProxy);
    QSslConfiguration::setDefaultConfiguration(m_previousConfiguration);
}

void Collectors::trust(const Authority &authority)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(QSslCertificate::fromData(authority.certificate()));
    QSslConfiguration::setDefaultConfiguration(configuration);
}

void Collectors::use(const Proxy &proxy)
{
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.port()));
}

QUrl deadUrl()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort()));
}

bool sendSync(CGoogleAnalytics &analytics, const Event &event)
{
    return analytics.StartRequestSync(event.clientId, event.measurementId, event.apiSecret, event.name,
                                      event.category, event.label);
}

void sendAsync(CGoogleAnalytics &analytics, const Event &event)
{
    analytics.StartRequestAsync(event.clientId, event.measurementId, event.apiSecret, event.name,
                                event.category, event.label);
}

WatchedEvent::WatchedEvent()
    : m_analytics(std::make_unique<CGoogleAnalytics>())
{
    connect(m_analytics.get(), &CGoogleAnalytics::SignalRequestTimeout, this,
            [this] { m_outcomes << timedOut; });
    connect(m_analytics.get(), &CGoogleAnalytics::SignalRequestCancel, this,
            [this] { m_outcomes << cancelled; });
    connect(m_analytics.get(), &CGoogleAnalytics::SignalRequestResult, this,
            [this](const QByteArray &data) { m_outcomes << result(Form::PostAsync, data, -1); });
}

WatchedEvent::~WatchedEvent()
{
    if (!areAllOver())
        stopAll();
}

void WatchedEvent::start(const Event &event)
{
    ++m_started;
    sendAsync(*m_analytics, event);
}

bool WatchedEvent::waitForAll()
{
    return QTest::qWaitFor([this] { return areAllOver(); }, 30000);
}

bool WatchedEvent::stopAll()
{
    return QTest::qWaitFor(
        [this] {
            if (areAllOver())
                return true;
            Q_EMIT m_analytics->SignalStopRequest();
            return false;
        },
        30000);
}

QStringList ownMethods(const QMetaObject &meta)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const char *const kind = method.methodType() == QMetaMethod::Signal ? "signal " : "slot ";
        signatures << QString::fromLatin1(kind + method.methodSignature());
    }
    return signatures;
}
