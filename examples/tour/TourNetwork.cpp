// SPDX-License-Identifier: LGPL-2.1-or-later

#include "TourNetwork.h"

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

class TourNetwork::Services
{
public:
    virtual ~Services() = default;
    virtual QString statisticsUrl() const = 0;
    virtual QList<Arrival> events() const = 0;
    virtual QList<Arrival> records() const = 0;
};

class TourNetwork::OwnServices : public TourNetwork::Services
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

    QString statisticsUrl() const override { return m_backend.url().toString(); }
    QList<Arrival> events() const override { return toArrivals(m_collector.events()); }
    QList<Arrival> records() const override { return toArrivals(m_backend.records()); }

private:
    template <typename List> static QList<Arrival> toArrivals(const List &list)
    {
        QList<Arrival> arrivals;
        for (const auto &arrival : list) {
            arrivals.append({QString::fromLatin1(arrival.request.target),
                             QString::fromUtf8(arrival.request.body), arrival.problems.isEmpty()});
        }
        return arrivals;
    }

    const LocalServices::Authority m_authority;
    const LocalServices::PublicServices m_publicServices;
    const LocalServices::GaCollector m_collector;
    const LocalServices::StatisticsBackend m_backend;
    LocalServices::Proxy m_proxy;
};

class TourNetwork::SharedServices : public TourNetwork::Services
{
public:
    explicit SharedServices(const QString &description)
        : m_services(useDevelopmentServices())
        , m_page(ZyBase::CJsonReader::ParseJsonFile(description, QStringLiteral("page")).toString())
        , m_lastIdBefore(lastId())
    {
    }

    QString statisticsUrl() const override { return m_services.statistics; }
    QList<Arrival> events() const override { return arrivalsOf(QLatin1String("event")); }
    QList<Arrival> records() const override { return arrivalsOf(QLatin1String("record")); }

private:
    QJsonArray arrivals(int after) const
    {
        QByteArray answer;
        ZyBase::CHttpPostRequest().StartGetRequestSync(
            QUrl(m_page + QStringLiteral("arrivals?after=%1").arg(after)), answer);
        return QJsonDocument::fromJson(answer).array();
    }

    int lastId() const { return arrivals(0).last().toObject().value(QStringLiteral("id")).toInt(); }

    QList<Arrival> arrivalsOf(QLatin1String kind) const
    {
        QList<Arrival> result;
        const QJsonArray all = arrivals(m_lastIdBefore);
        for (const QJsonValue &arrival : all) {
            const auto value = [&](const char *key) { return arrival.toObject().value(QLatin1String(key)); };
            if (value("kind").toString() == kind)
                result.append({value("target").toString(), value("body").toString(), value("good").toBool()});
        }
        return result;
    }

    const DevelopmentServices m_services;
    const QString m_page;
    const int m_lastIdBefore;
};

TourNetwork::TourNetwork()
    : m_previousProxy(QNetworkProxy::applicationProxy())
    , m_previousConfiguration(QSslConfiguration::defaultConfiguration())
{
    const QString description = qEnvironmentVariable("LOCAL_SERVICES");
    if (description.isEmpty())
        m_services = std::make_unique<OwnServices>();
    else
        m_services = std::make_unique<SharedServices>(description);
}

TourNetwork::~TourNetwork()
{
    QNetworkProxy::setApplicationProxy(m_previousProxy);
    QSslConfiguration::setDefaultConfiguration(m_previousConfiguration);
}

QString TourNetwork::statisticsUrl() const
{
    return m_services->statisticsUrl();
}

QList<TourNetwork::Arrival> TourNetwork::events() const
{
    return m_services->events();
}

QList<TourNetwork::Arrival> TourNetwork::records() const
{
    return m_services->records();
}
