// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CNetworkUtils.h"

#include "../http/CHttpPostRequest.h"
#include "Services.h"

#include <QEventLoop>
#include <QHostInfo>
#include <QJsonDocument>
#include <QPointer>

using ZyBase::CHttpPostRequest;

namespace {

constexpr int nRequiredHits = 5;

QUrl serviceUrl(const char *pszScheme, const char *pszHost, const char *pszPathAndQuery = "")
{
    return QUrl(QLatin1String(pszScheme) + QLatin1String(pszHost) + QLatin1String(pszPathAndQuery));
}

// Empty if there was no answer.
QByteArray get(const QUrl &url)
{
    QByteArray baReply;
    CHttpPostRequest request;
    request.StartGetRequestSync(url, baReply);
    return baReply;
}

// Empty if the reply is not a JSON object.
QJsonObject parseObject(const QByteArray &baReply)
{
    return QJsonDocument::fromJson(baReply).object();
}

// The names are inserted one after the other: a "%2" in the city is replaced as well.
QString printableLocation(const QString &strCity, const QString &strRegion, const QString &strCountry)
{
    const QString strFormat = QStringLiteral("%1, %2, %3");
    return strFormat.arg(strCity).arg(strRegion).arg(strCountry); // clazy:exclude=qstring-arg
}

// Decodes up to the first NUL byte.
QString lineText(const QByteArray &baLine)
{
    return QString::fromUtf8(baLine.constData());
}

// The marker of a page entry, and where the value on the next line is stored.
struct Entry
{
    const char *pszMarker;
    QString *pTarget;
};

// Returns the number of values found. A repeated entry replaces the value and counts again.
template <int nCount> int readEntries(const QByteArray &baPage, const Entry (&entries)[nCount])
{
    const QList<QByteArray> lines = baPage.split('\n');
    int nHits = 0;
    for (int i = 0; i + 1 < lines.size(); ++i) {
        const QString strLine = lineText(lines.at(i));
        for (const Entry &entry : entries) {
            if (strLine.indexOf(QLatin1String(entry.pszMarker)) == -1)
                continue;
            *entry.pTarget = ParseTdValue(lineText(lines.at(i + 1)));
            ++nHits;
        }
    }
    return nHits;
}

} // namespace

bool GetIPInfoAPI(QString &strCountry, QString &strLocation, double &dLatitude, double &dLongitude)
{
    QByteArray baReply;
    CHttpPostRequest request;
    request.StartRequestSync(serviceUrl("http://", ZyBase::pszGeolocationHost, "/json"), QJsonObject(),
                             baReply);
    const QJsonObject answer = parseObject(baReply);
    if (answer.value(QLatin1String("status")).toString() != QLatin1String("success"))
        return false;
    strCountry = answer.value(QLatin1String("country")).toString();
    dLatitude = answer.value(QLatin1String("lat")).toDouble();
    dLongitude = answer.value(QLatin1String("lon")).toDouble();
    strLocation = printableLocation(answer.value(QLatin1String("city")).toString(),
                                    answer.value(QLatin1String("regionName")).toString(), strCountry);
    return true;
}

bool GetIPInfoMy(QString &strCountry, QString &strLocation, double &dLatitude, double &dLongitude)
{
    QString strCity;
    QString strState;
    QString strLatitude;
    QString strLongitude;
    // The country is written to the caller's string even if the page lacks other entries.
    const Entry entries[] = {{"<td>City:</td>", &strCity},
                             {"<td>Country:</td>", &strCountry},
                             {"<td>State:</td>", &strState},
                             {"<td>Latitude:</td>", &strLatitude},
                             {"<td>Longitude:</td>", &strLongitude}};
    const QByteArray baPage = get(serviceUrl("https://", ZyBase::pszGeolocationPageHost));
    if (readEntries(baPage, entries) < nRequiredHits)
        return false;
    dLatitude = strLatitude.toDouble();
    dLongitude = strLongitude.toDouble();
    strLocation = printableLocation(strCity, strState, strCountry);
    return true;
}

QString GetIP()
{
    const QJsonObject answer =
        parseObject(get(serviceUrl("https://", ZyBase::pszAddressHost, "?format=json")));
    return answer.isEmpty() ? QStringLiteral("") : answer.value(QLatin1String("ip")).toString();
}

QString ParseTdValue(const QString &strLine)
{
    const int nStart = strLine.indexOf(QLatin1Char('>')) + 1;
    if (nStart >= strLine.length())
        return QStringLiteral("");
    const QString strRest = strLine.mid(nStart);
    return strRest.left(strRest.indexOf(QLatin1Char('<'))); // the whole rest if there is no "<"
}

namespace ZyBase {

bool CNetworkUtils::GetIPInfo(QString &strCountry, QString &strLocation, double &dLatitude,
                              double &dLongitude)
{
    return GetIPInfoAPI(strCountry, strLocation, dLatitude, dLongitude)
           || GetIPInfoMy(strCountry, strLocation, dLatitude, dLongitude);
}

bool CNetworkUtils::GetIPCountryCode(QString &strCountryCode, QString &strIp)
{
    const QJsonObject answer = parseObject(get(serviceUrl("https://", pszCountryHost, "/all.json")));
    if (answer.isEmpty())
        return false;
    strCountryCode = answer.value(QLatin1String("country_code")).toString();
    strIp = answer.value(QLatin1String("ip")).toString();
    return true;
}

// The loop also ends when the application quits. The answer then arrives after this function has returned.
bool CNetworkUtils::IsNetWorkOnline()
{
    bool bOnline = false;
    QEventLoop loop;
    QHostInfo::lookupHost(QString::fromLatin1(pszProbeName),
                          [&bOnline, pGuard = QPointer<QEventLoop>(&loop)](const QHostInfo &info) {
                              if (QEventLoop *pLoop = pGuard) {
                                  bOnline = info.error() == QHostInfo::NoError;
                                  pLoop->quit();
                              }
                          });
    loop.exec();
    return bOnline;
}

} // namespace ZyBase
