// SPDX-License-Identifier: 0BSD

#include "DevelopmentServices.h"

#include <ZyBase/files/CJsonReader.h>

#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QUrl>

namespace {

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

DevelopmentServices useDevelopmentServices()
{
    const QString description = qEnvironmentVariable("LOCAL_SERVICES");
    if (description.isEmpty())
        return {};
    const QJsonObject services = ZyBase::CJsonReader::ParseJsonFileToObject(description);
    const auto value = [&services](const char *key) { return services.value(QLatin1String(key)).toString(); };
    const QUrl proxy(value("proxy"));
    const QList<QSslCertificate> authorities = QSslCertificate::fromPath(value("authority"));
    if (proxy.port() < 0 || authorities.isEmpty())
        qFatal("LOCAL_SERVICES is %s, which describes no running services", qUtf8Printable(description));

    trust(authorities);
    useProxy(proxy);
    return {value("statistics"), value("downloads"), value("page")};
}
