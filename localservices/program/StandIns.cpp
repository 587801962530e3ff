// SPDX-License-Identifier: LGPL-2.1-or-later

#include "StandIns.h"

#include <ZyBase/analytics/SigningSecret.h>

#include <QDeadlineTimer>
#include <QThread>

using LocalServices::GaCollector;
using LocalServices::HttpServer;
using LocalServices::StatisticsBackend;

namespace {

constexpr const char *collectorHost = "www.google-analytics.com";
constexpr int settlingMs = 2000;
constexpr int pauseMs = 50;

HttpServer::Answer file(const QByteArray &contentType, const QByteArray &content)
{
    return [=](const HttpServer::Request &) {
        return HttpServer::Response {LocalServices::HttpStatus::Ok, content, contentType};
    };
}

QMap<QString, HttpServer::Answer> files()
{
    return {{QStringLiteral("/files/notes.txt"),
             file("text/plain; charset=utf-8", "A file of the local services.\nIt has two lines.\n")},
            {QStringLiteral("/files/version.json"),
             file("application/json", "{\"version\":\"1.1.0\",\"file\":\"bytes/5000000/setup.bin\"}\n")},
            {QStringLiteral("/files/picture.svg"),
             file("image/svg+xml", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"64\" height=\"64\">"
                                   "<circle cx=\"32\" cy=\"32\" r=\"28\" fill=\"#3b6fd4\"/></svg>\n")}};
}

} // namespace

StandIns::StandIns(ArrivalFeed &feed)
    : m_downloads({}, files())
    , m_collector([&feed](const GaCollector::Event &event) { feed.add(Arrival::of(event)); })
    , m_backend(ZyBase::pszSigningSecret, {},
                [&feed](const StatisticsBackend::Record &record) { feed.add(Arrival::of(record)); })
    , m_proxy(m_authority)
{
    m_publicServices.route(m_proxy);
    m_proxy.route(QLatin1String(collectorHost), m_collector.url());
}

QUrl StandIns::proxy() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_proxy.port()));
}

bool StandIns::isQuiet()
{
    return m_proxy.openConnections() == 0 && m_collector.openConnections() == 0
           && m_backend.openConnections() == 0;
}

// A new connection may not be counted yet, so one check is not enough.
void StandIns::settle()
{
    constexpr int enoughChecks = 3;
    int quietChecks = 0;
    for (const QDeadlineTimer deadline(settlingMs); quietChecks < enoughChecks && !deadline.hasExpired();) {
        QThread::msleep(pauseMs);
        quietChecks = isQuiet() ? quietChecks + 1 : 0;
    }
}
