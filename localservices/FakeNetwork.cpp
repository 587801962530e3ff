// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeNetwork.h"

#include <ZyBase/analytics/SigningSecret.h>

#include <QDir>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QSaveFile>
#include <QSslConfiguration>

namespace LocalServices {

namespace {

bool writeFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit();
}

} // namespace

/** Restores the application's proxy and SSL configuration when it is destroyed. */
class FakeNetwork::Installation
{
public:
    explicit Installation(const QUrl &proxy)
        : m_previousProxy(QNetworkProxy::applicationProxy())
        , m_previousConfiguration(QSslConfiguration::defaultConfiguration())
    {
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, proxy.host(), quint16(proxy.port())));
    }
    ~Installation()
    {
        QNetworkProxy::setApplicationProxy(m_previousProxy);
        QSslConfiguration::setDefaultConfiguration(m_previousConfiguration);
    }
    void trust(const Authority &authority)
    {
        QSslConfiguration configuration = m_previousConfiguration;
        configuration.setCaCertificates(QSslCertificate::fromData(authority.certificate()));
        QSslConfiguration::setDefaultConfiguration(configuration);
    }

private:
    Q_DISABLE_COPY(Installation)

    const QNetworkProxy m_previousProxy;
    const QSslConfiguration m_previousConfiguration;
};

FakeNetwork::FakeNetwork(GaCollector::Watcher eventWatcher, StatisticsBackend::Watcher recordWatcher)
    : m_collector(std::move(eventWatcher))
    , m_statistics(ZyBase::pszSigningSecret, {}, std::move(recordWatcher))
    , m_proxy(m_authority)
{
    route(collectorHost, m_collector.url());
}

FakeNetwork::~FakeNetwork() = default;

void FakeNetwork::install()
{
    installProxy();
    m_installation->trust(m_authority);
}

void FakeNetwork::installProxy()
{
    m_installation = std::make_unique<Installation>(proxyUrl());
}

void FakeNetwork::route(const char *host, const RawServer::Answer &answer)
{
    const auto server = std::make_shared<RawServer>(answer);
    route(host, server->url());
    m_servers.insert(host, server);
}

void FakeNetwork::routePublicServices()
{
    m_publicServices = std::make_unique<PublicServices>();
    m_publicServices->route(m_proxy);
}

QUrl FakeNetwork::proxyUrl() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_proxy.port()));
}

QList<QByteArray> FakeNetwork::requests(const char *host) const
{
    const std::shared_ptr<RawServer> server = m_servers.value(host);
    return server ? server->requests() : QList<QByteArray>();
}

int FakeNetwork::openConnections()
{
    return m_proxy.openConnections() + m_collector.openConnections() + m_statistics.openConnections();
}

QString FakeNetwork::writeDescription(const QString &directory, const Addresses &addresses) const
{
    const QDir folder(directory);
    const QString authority = folder.absoluteFilePath(QStringLiteral("authority.pem"));
    const QString description = folder.absoluteFilePath(QStringLiteral("services.json"));
    const QUrl statistics = addresses.statistics.isEmpty() ? m_statistics.url() : addresses.statistics;
    const QJsonObject services {{QStringLiteral("authority"), authority},
                                {QStringLiteral("downloads"), addresses.downloads.toString()},
                                {QStringLiteral("page"), addresses.page.toString()},
                                {QStringLiteral("proxy"), proxyUrl().toString()},
                                {QStringLiteral("statistics"), statistics.toString()}};
    const bool isWritten = writeFile(authority, m_authority.certificate())
                           && writeFile(description, QJsonDocument(services).toJson());
    return isWritten ? description : QString();
}

} // namespace LocalServices
