// SPDX-License-Identifier: LGPL-2.1-or-later

#include "LocalServers.h"

#include <QDeadlineTimer>
#include <QThread>

using LocalServices::GaCollector;
using LocalServices::HttpServer;
using LocalServices::StatisticsBackend;

namespace {

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

LocalServers::LocalServers(ArrivalFeed &feed)
    : m_downloads({}, files())
    , m_network([&feed](const GaCollector::Event &event) { feed.add(Arrival::of(event)); },
                [&feed](const StatisticsBackend::Record &record) { feed.add(Arrival::of(record)); })
{
    m_network.routePublicServices();
}

bool LocalServers::writeDescription(const QString &directory, const QUrl &page) const
{
    LocalServices::FakeNetwork::Addresses addresses;
    addresses.downloads = m_downloads.url(QStringLiteral("/"));
    addresses.page = page;
    return !m_network.writeDescription(directory, addresses).isNull();
}

// A new connection may not be counted yet, so one check is not enough.
void LocalServers::settle()
{
    constexpr int enoughChecks = 3;
    int quietChecks = 0;
    for (const QDeadlineTimer deadline(settlingMs); quietChecks < enoughChecks && !deadline.hasExpired();) {
        QThread::msleep(pauseMs);
        quietChecks = m_network.openConnections() == 0 ? quietChecks + 1 : 0;
    }
}
