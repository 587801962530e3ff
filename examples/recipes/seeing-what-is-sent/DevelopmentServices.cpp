// SPDX-License-Identifier: LGPL-2.1-or-later

#include "DevelopmentServices.h"

#include <ZyBase/files/CJsonReader.h>

#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QUrl>

DevelopmentServices useDevelopmentServices()
{
    const QString description = qEnvironmentVariable("LOCAL_SERVICES");
    if (description.isEmpty())
        return {};
    const QJsonObject services = ZyBase::CJsonReader::ParseJsonFileToObject(description);
    const auto text = [&](const char *key) { return services.value(QLatin1String(key)).toString(); };

    QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
    trusting.setCaCertificates(trusting.caCertificates() + QSslCertificate::fromPath(text("authority")));
    QSslConfiguration::setDefaultConfiguration(trusting);

    const QUrl proxy(text("proxy"));
    QNetworkProxy::setApplicationProxy(
        {QNetworkProxy::HttpProxy, proxy.host(), static_cast<quint16>(proxy.port())});
    return {text("statistics"), text("downloads")};
}
