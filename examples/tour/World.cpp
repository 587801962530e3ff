// SPDX-License-Identifier: LGPL-2.1-or-later

#include "World.h"

#include "DevelopmentServices.h"

#include <ZyBase/analytics/SigningSecret.h>
#include <ZyBase/files/CJsonReader.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <localservices/GaCollector.h>
#include <localservices/Proxy.h>
#include <localservices/PublicServices.h>
#include <localservices/StatisticsBackend.h>

#include <QJsonArray>
#include <QJsonDocument>

class World::Services
{
public:
    virtual ~Services() = default;
    virtual QString statistics() const = 0;
    virtual QList<Sent> events() const = 0;
    virtual QList<Sent> records() const = 0;
};

class World::OwnServices : public World::Services
{
public:
    OwnServices()
        : m_backend(ZyBase::pszSigningSecret)
        , m_proxy(m_authority)
    {
        m_publicServices.route(m_proxy);
        m_proxy.routeAll(m_collector.url());
        QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
        trusting.setCaCertificates(QSslCertificate::fromData(m_authority.certificate()));
        QSslConfiguration::setDefaultConfiguration(trusting);
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), m_proxy.port()));
    }

    QString statistics() const override { return m_backend.url().toString(); }
    QList<Sent> events() const override { return toSent(m_collector.events()); }
    QList<Sent> records() const override { return toSent(m_backend.records()); }

private:
    template <typename Arrivals> static QList<Sent> toSent(const Arrivals &arrivals)
    {
        QList<Sent> sent;
        for (const auto &arrival : arrivals) {
            sent.append({QString::fromLatin1(arrival.request.target), QString::fromUtf8(arrival.request.body),
                         arrival.problems.isEmpty()});
        }
        return sent;
    }

    const LocalServices::Authority m_authority;
    const LocalServices::PublicServices m_publicServices;
    const LocalServices::GaCollector m_collector;
    const LocalServices::StatisticsBackend m_backend;
    LocalServices::Proxy m_proxy;
};

class World::LedServices : public World::Services
{
public:
    explicit LedServices(const QString &description)
        : m_services(useDevelopmentServices())
        , m_page(ZyBase::CJsonReader::ParseJsonFile(description, QStringLiteral("page")).toString())
        , m_before(lastId())
    {
    }

    QString statistics() const override { return m_services.statistics; }
    QList<Sent> events() const override { return sent(QLatin1String("event")); }
    QList<Sent> records() const override { return sent(QLatin1String("record")); }

private:
    QJsonArray arrivals(int after) const
    {
        QByteArray answer;
        ZyBase::CHttpPostRequest().StartGetRequestSync(
            QUrl(m_page + QStringLiteral("arrivals?after=%1").arg(after)), answer);
        return QJsonDocument::fromJson(answer).array();
    }

    int lastId() const { return arrivals(0).last().toObject().value(QStringLiteral("id")).toInt(); }

    QList<Sent> sent(QLatin1String kind) const
    {
        QList<Sent> result;
        const QJsonArray all = arrivals(m_before);
        for (const QJsonValue &arrival : all) {
            const auto value = [&](const char *key) { return arrival.toObject().value(QLatin1String(key)); };
            if (value("kind").toString() == kind)
                result.append({value("target").toString(), value("body").toString(), value("good").toBool()});
        }
        return result;
    }

    const DevelopmentServices m_services;
    const QString m_page;
    const int m_before;
};

World::World()
    : m_previousProxy(QNetworkProxy::applicationProxy())
    , m_previousConfiguration(QSslConfiguration::defaultConfiguration())
{
    const QString description = qEnvironmentVariable("LOCAL_SERVICES");
    if (description.isEmpty())
        m_services = std::make_unique<OwnServices>();
    else
        m_services = std::make_unique<LedServices>(description);
}

World::~World()
{
    QNetworkProxy::setApplicationProxy(m_previousProxy);
    QSslConfiguration::setDefaultConfiguration(m_previousConfiguration);
}

QString World::statistics() const
{
    return m_services->statistics();
}

QList<World::Sent> World::events() const
{
    return m_services->events();
}

QList<World::Sent> World::records() const
{
    return m_services->records();
}
