// SPDX-License-Identifier: 0BSD

#include "SystemProxy.h"

#include <QNetworkProxyFactory>

namespace {

// Other programs also read the name in capitals, and all_proxy if there is no such variable.
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

// Qt reads "name:port" as an address without a name, and does not support the scheme of GNOME, "socks".
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
