// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"
#include "TourNetwork.h"

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include <localservices/FakeNetwork.h>

#include <QHostInfo>

using LocalServices::FakeNetwork;
using LocalServices::RawServer;
using ZyBase::CNetworkUtils;

namespace {

struct Location
{
    bool isFound;
    QString country;
    QString name;
    double latitude;
    double longitude;
};

bool operator==(const Location &left, const Location &right)
{
    return left.isFound == right.isFound && left.country == right.country && left.name == right.name
           && qFuzzyCompare(left.latitude, right.latitude) && qFuzzyCompare(left.longitude, right.longitude);
}

Location locate(Report &report, const QString &what)
{
    Location location {false, QString(), QString(), 0, 0};
    location.isFound =
        CNetworkUtils::GetIPInfo(location.country, location.name, location.latitude, location.longitude);
    report.line(what, QStringLiteral("%1 (%2, %3)")
                          .arg(location.isFound ? location.name : QStringLiteral("not found"))
                          .arg(location.latitude)
                          .arg(location.longitude));
    return location;
}

// A network of its own, because scripts/local-services has no service that fails.
Location locateWithoutFirstService(Report &report)
{
    FakeNetwork network;
    network.routePublicServices();
    network.route(ZyBase::pszGeolocationHost, RawServer::answerWith("{\"status\":\"fail\"}"));
    network.install();
    return locate(report, QStringLiteral("GetIPInfo, 2nd service"));
}

void showAddress(Report &report)
{
    const QString address = GetIP();
    report.line(QStringLiteral("GetIP"), address);
    report.promise(QStringLiteral("The address is that which the service sees"),
                   address == QLatin1String("192.0.2.1"));

    QString code;
    QString sameAddress;
    const bool isFound = CNetworkUtils::GetIPCountryCode(code, sameAddress);
    report.line(QStringLiteral("GetIPCountryCode"), code + QStringLiteral(", ") + sameAddress);
    report.promise(QStringLiteral("The country comes with the address"),
                   isFound && code == QLatin1String("DE") && sameAddress == QLatin1String("192.0.2.1"));
}

void showOnline(Report &report)
{
    const bool isOnline = CNetworkUtils::IsNetWorkOnline();
    report.line(QStringLiteral("IsNetWorkOnline"),
                isOnline ? QStringLiteral("true") : QStringLiteral("false"));
    const QHostInfo probe = QHostInfo::fromName(QLatin1String(ZyBase::pszProbeName));
    report.promise(QStringLiteral("The machine is online if a public name can be resolved"),
                   isOnline == (probe.error() == QHostInfo::NoError));
}

} // namespace

void showLocation(Report &report, const QDir &)
{
    report.heading(QStringLiteral("Address and location"), QStringLiteral("ZyBase/netinfo/CNetworkUtils.h"));
    const TourNetwork network;
    showAddress(report);
    report.promise(QStringLiteral("The location is that of the first service"),
                   locate(report, QStringLiteral("GetIPInfo"))
                       == Location {true, QStringLiteral("Germany"),
                                    QStringLiteral("Berlin, Land Berlin, Germany"), 52.52, 13.405});
    report.promise(QStringLiteral("If the first service fails, the second is used"),
                   locateWithoutFirstService(report)
                       == Location {true, QStringLiteral("France"),
                                    QStringLiteral("Paris, Ile-de-France, France"), 48.85, 2.35});
    showOnline(report);
}
