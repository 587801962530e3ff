// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include <localservices/Proxy.h>
#include <localservices/PublicServices.h>

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

} // namespace

void showLocation(Report &report, const QDir &)
{
    report.heading(QStringLiteral("Address and location"), QStringLiteral("ZyBase/netinfo/CNetworkUtils.h"));

    // The tour stays on this machine: the services that are asked are stand-ins.
    const PublicServices services;
    const Authority authority;
    Proxy proxy(authority);
    services.lead(proxy);
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.port()));

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
    const RawServer refusal(RawServer::answerWith("{\"status\":\"fail\"}"));
    proxy.lead(QLatin1String(ZyBase::Services::pszGeolocationHost), refusal.url());
    report.promise(QStringLiteral("where that one fails, the page of the second is read"),
                   locate(report, QStringLiteral("GetIPInfo, refused"))
                       == QLatin1String("Paris, Ile-de-France, France"));
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));

    report.line(QStringLiteral("IsNetWorkOnline"), CNetworkUtils::IsNetWorkOnline()
                                                       ? QStringLiteral("true on this machine")
                                                       : QStringLiteral("false on this machine"));
}
