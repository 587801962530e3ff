// SPDX-License-Identifier: LGPL-2.1-or-later

#include "SystemProxy.h"

#include <QNetworkProxyFactory>

namespace {

// The variable as other programs read it: in capitals as well, and that for all protocols in its place.
QString proxyVariable(const char *name)
{
    for (const QByteArray &variable : {QByteArray(name), QByteArrayLiteral("all_proxy")}) {
        for (const QByteArray &spelling : {variable, variable.toUpper()}) {
            QString value = qEnvironmentVariable(spelling.constData()).trimmed();
            if (!value.isEmpty())
                return value;
        }
    }
    return QString();
}

// Qt takes "host:port" for an address without a host, and doesn't know what GNOME calls SOCKS.
QByteArray proxyAddress(QString value)
{
    if (!value.contains(QLatin1String("://")))
        value.prepend(QLatin1String("http://"));
    if (value.startsWith(QLatin1String("socks://")))
        value.replace(0, 5, QLatin1String("socks5"));
    return value.toLocal8Bit();
}

} // namespace

void useSystemProxy()
{
    for (const char *name : {"http_proxy", "https_proxy"}) {
        const QString value = proxyVariable(name);
        if (!value.isEmpty())
            qputenv(name, proxyAddress(value));
    }
    if (qEnvironmentVariableIsEmpty("no_proxy"))
        qputenv("no_proxy", qgetenv("NO_PROXY"));
    QNetworkProxyFactory::setUseSystemConfiguration(true);
}

QString proxyFor(const QUrl &url)
{
    const QNetworkProxy proxy = QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(url)).constFirst();
    if (proxy.type() == QNetworkProxy::NoProxy)
        return QString();
    return QStringLiteral("%1:%2").arg(proxy.hostName()).arg(proxy.port());
}
