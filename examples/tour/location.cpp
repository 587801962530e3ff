// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"
#include "World.h"

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include <localservices/Proxy.h>
#include <localservices/PublicServices.h>
#include <localservices/RawServer.h>

#include <QNetworkProxy>

using LocalServices::Authority;
using LocalServices::Proxy;
using LocalServices::PublicServices;
using LocalServices::RawServer;
using ZyBase::CNetworkUtils;

namespace {

QString locate(Report &report, const QString &what)
{
    QString country;
    QString text;
    double latitude = 0;
    double longitude = 0;
    if (!CNetworkUtils::GetIPInfo(country, text, latitude, longitude))
        text = QStringLiteral("not found");
    report.line(what, QStringLiteral("%1 (%2, %3)").arg(text).arg(latitude).arg(longitude));
    return text;
}

// The local services never refuse: this goes through a proxy of its own.
QString locateWhereTheFirstRefuses(Report &report)
{
    const PublicServices services;
    const RawServer refusal(RawServer::answerWith("{\"status\":\"fail\"}"));
    const Authority authority;
    Proxy proxy(authority);
    services.route(proxy);
    proxy.route(QLatin1String(ZyBase::pszGeolocationHost), refusal.url());
    const QNetworkProxy previous = QNetworkProxy::applicationProxy();
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.port()));
    QString text = locate(report, QStringLiteral("GetIPInfo, refused"));
    QNetworkProxy::setApplicationProxy(previous);
    return text;
}

} // namespace

void showLocation(Report &report, const QDir &)
{
    report.heading(QStringLiteral("Address and location"), QStringLiteral("ZyBase/netinfo/CNetworkUtils.h"));

    // The tour stays on this machine: the services that are asked are stand-ins.
    const World world;
    const QString address = GetIP();
    report.line(QStringLiteral("GetIP"), address);
    report.promise(QStringLiteral("the address is the one that the service sees"),
                   address == QLatin1String("192.0.2.1"));

    QString code;
    QString sameAddress;
    CNetworkUtils::GetIPCountryCode(code, sameAddress);
    report.line(QStringLiteral("GetIPCountryCode"), code + QStringLiteral(", ") + sameAddress);
    report.promise(QStringLiteral("the country comes with it"),
                   code == QLatin1String("DE") && sameAddress == address);

    report.promise(QStringLiteral("the location is that of the first source"),
                   locate(report, QStringLiteral("GetIPInfo"))
                       == QLatin1String("Berlin, Land Berlin, Germany"));
    report.promise(QStringLiteral("where that one fails, the page of the second is read"),
                   locateWhereTheFirstRefuses(report) == QLatin1String("Paris, Ile-de-France, France"));

    report.line(QStringLiteral("IsNetWorkOnline"), CNetworkUtils::IsNetWorkOnline()
                                                       ? QStringLiteral("true on this machine")
                                                       : QStringLiteral("false on this machine"));
}
