// SPDX-License-Identifier: 0BSD

#include "DevelopmentServices.h"

#include <ZyBase/files/CJsonReader.h>

#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QUrl>

namespace {

QString value(const QJsonObject &services, const char *key)
{
    return services.value(QLatin1String(key)).toString();
}

void trust(const QList<QSslCertificate> &authorities)
{
    QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
    trusting.setCaCertificates(trusting.caCertificates() + authorities);
    QSslConfiguration::setDefaultConfiguration(trusting);
}

void useProxy(const QUrl &url)
{
    QNetworkProxy::setApplicationProxy(
        {QNetworkProxy::HttpProxy, url.host(), static_cast<quint16>(url.port())});
}

} // namespace

bool describesServices(const QString &path)
{
    const QJsonObject services = ZyBase::CJsonReader::ParseJsonFileToObject(path);
    return QUrl(value(services, "proxy")).port() >= 0
           && !QSslCertificate::fromPath(value(services, "authority")).isEmpty();
}

DevelopmentServices useDevelopmentServices()
{
    const QString description = qEnvironmentVariable("LOCAL_SERVICES");
    if (description.isEmpty())
        return {};
    if (!describesServices(description))
        qFatal("LOCAL_SERVICES is %s, which describes no running services", qUtf8Printable(description));

    const QJsonObject services = ZyBase::CJsonReader::ParseJsonFileToObject(description);
    trust(QSslCertificate::fromPath(value(services, "authority")));
    useProxy(QUrl(value(services, "proxy")));
    return {value(services, "statistics"), value(services, "downloads"), value(services, "page")};
}
