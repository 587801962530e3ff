// SPDX-License-Identifier: LGPL-2.1-or-later

#include "LocalWorld.h"

#include "Files.h"

#include <ZyBase/analytics/SigningSecret.h>
#include <ZyBase/netinfo/Services.h>

#include <QJsonDocument>

using LocalServices::HttpServer;
using LocalServices::RawServer;

namespace {

const QByteArray location =
    "{\"status\":\"success\",\"country\":\"Germany\",\"regionName\":\"Land Berlin\",\"city\":\"Berlin\","
    "\"lat\":52.52,\"lon\":13.405}";
const QByteArray order =
    "{\"order\":{\"number\":4711,\"items\":[{\"item\":\"paper\",\"count\":3}]},\"state\":"
    "\"packed\",\"tracking\":\"https://service.example.org/t/4711\"}";

HttpServer::Answer answerWith(const QByteArray &body)
{
    return [body](const HttpServer::Request &) { return HttpServer::Response {200, body}; };
}

} // namespace

LocalWorld::LocalWorld()
    : m_backend(ZyBase::pszSigningSecret)
    , m_server({}, {{QStringLiteral("/json"), answerWith(location)},
                    {QStringLiteral("/orders/4711"), answerWith(order)}})
    , m_proxy(m_authority)
{
    m_proxy.routeAll(m_server.url(QStringLiteral("/")));
    m_proxy.route(QStringLiteral("www.google-analytics.com"), m_collector.url());
    const QString path = m_directory.filePath(QStringLiteral("services.json"));
    describe(path);
    qputenv("LOCAL_SERVICES", path.toUtf8());
}

LocalWorld::~LocalWorld()
{
    qunsetenv("LOCAL_SERVICES");
}

void LocalWorld::setSilent(bool isSilent)
{
    if (isSilent)
        m_silence =
            std::make_unique<RawServer>([](LocalServices::Connection &client) { client.waitForClose(); });
    const QUrl target = isSilent ? m_silence->url() : m_server.url(QStringLiteral("/"));
    for (const char *host : {ZyBase::pszGeolocationHost, ZyBase::pszGeolocationPageHost})
        m_proxy.route(QLatin1String(host), target);
    if (!isSilent)
        m_silence.reset();
}

void LocalWorld::describe(const QString &path)
{
    const QString authority = m_directory.filePath(QStringLiteral("authority.pem"));
    writeFile(authority, m_authority.certificate());
    const QJsonObject services {
        {QStringLiteral("proxy"), QStringLiteral("http://127.0.0.1:%1").arg(m_proxy.port())},
        {QStringLiteral("authority"), authority},
        {QStringLiteral("statistics"), m_backend.url().toString()},
        {QStringLiteral("downloads"), QStringLiteral("http://downloads.example.org/")},
        {QStringLiteral("page"), QStringLiteral("http://127.0.0.1:8080/")}};
    writeFile(path, QJsonDocument(services).toJson());
}
