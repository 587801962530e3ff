// SPDX-License-Identifier: 0BSD

#include "TourNetwork.h"

#include "DevelopmentServices.h"

#include <ZyBase/files/CJsonReader.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <localservices/FakeNetwork.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QSslConfiguration>

using LocalServices::FakeNetwork;

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
    {
        m_network.routePublicServices();
        m_network.install();
    }

    QString statisticsUrl() const override { return m_network.statistics().url().toString(); }
    QList<Arrival> events() const override { return toArrivals(m_network.collector().events()); }
    QList<Arrival> records() const override { return toArrivals(m_network.statistics().records()); }

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

    FakeNetwork m_network;
};

class TourNetwork::SharedServices : public TourNetwork::Services
{
public:
    explicit SharedServices(const QString &description)
        : m_previousProxy(QNetworkProxy::applicationProxy())
        , m_previousConfiguration(QSslConfiguration::defaultConfiguration())
        , m_services(useDevelopmentServices())
        , m_page(ZyBase::CJsonReader::ParseJsonFile(description, QStringLiteral("page")).toString())
        , m_lastIdBefore(lastId())
    {
    }

    ~SharedServices() override
    {
        QNetworkProxy::setApplicationProxy(m_previousProxy);
        QSslConfiguration::setDefaultConfiguration(m_previousConfiguration);
    }

    QString statisticsUrl() const override { return m_services.statistics; }
    QList<Arrival> events() const override { return arrivalsOf(QLatin1String("event")); }
    QList<Arrival> records() const override { return arrivalsOf(QLatin1String("record")); }

private:
    Q_DISABLE_COPY(SharedServices)

    QJsonArray arrivalsAfter(int id) const
    {
        QByteArray answer;
        ZyBase::CHttpPostRequest().StartGetRequestSync(
            QUrl(m_page + QStringLiteral("arrivals?after=%1").arg(id)), answer);
        return QJsonDocument::fromJson(answer).array();
    }

    int lastId() const { return arrivalsAfter(0).last().toObject().value(QStringLiteral("id")).toInt(); }

    QList<Arrival> arrivalsOf(QLatin1String kind) const
    {
        QList<Arrival> result;
        const QJsonArray arrivals = arrivalsAfter(m_lastIdBefore);
        for (const QJsonValue &arrival : arrivals) {
            const auto value = [&](const char *key) { return arrival.toObject().value(QLatin1String(key)); };
            if (value("kind").toString() == kind)
                result.append({value("target").toString(), value("body").toString(), value("good").toBool()});
        }
        return result;
    }

    const QNetworkProxy m_previousProxy;
    const QSslConfiguration m_previousConfiguration;
    const DevelopmentServices m_services;
    const QString m_page;
    const int m_lastIdBefore;
};

TourNetwork::TourNetwork()
{
    const QString description = qEnvironmentVariable("LOCAL_SERVICES");
    if (description.isEmpty())
        m_services = std::make_unique<OwnServices>();
    else
        m_services = std::make_unique<SharedServices>(description);
}

TourNetwork::~TourNetwork() = default;

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
