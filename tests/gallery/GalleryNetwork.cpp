// SPDX-License-Identifier: LGPL-2.1-or-later

#include "GalleryNetwork.h"

#include <ZyBase/netinfo/Services.h>

using LocalServices::Connection;
using LocalServices::FakeNetwork;
using LocalServices::HttpServer;

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

GalleryNetwork::GalleryNetwork()
    : m_server({}, {{QStringLiteral("/json"), answerWith(location)},
                    {QStringLiteral("/orders/4711"), answerWith(order)}})
{
    m_network.routeAll(m_server.url(QStringLiteral("/")));
    FakeNetwork::Addresses addresses;
    addresses.downloads = QUrl(QStringLiteral("http://downloads.example.org/"));
    addresses.page = QUrl(QStringLiteral("http://127.0.0.1:8080/"));
    qputenv("LOCAL_SERVICES", QFile::encodeName(m_network.writeDescription(m_directory.path(), addresses)));
}

GalleryNetwork::~GalleryNetwork()
{
    qunsetenv("LOCAL_SERVICES");
}

void GalleryNetwork::setSilent(bool isSilent)
{
    for (const char *host : {ZyBase::pszGeolocationHost, ZyBase::pszGeolocationPageHost}) {
        if (isSilent)
            m_network.route(host, [](Connection &client) { client.waitForClose(); });
        else
            m_network.route(host, m_server.url(QStringLiteral("/")));
    }
}
