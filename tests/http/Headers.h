// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/HttpServer.h>

#include <QLocale>

using Headers = QMap<QByteArray, QByteArray>;

/** Returns all headers of a request. */
inline Headers headersOf(const LocalServices::HttpServer::Request &request)
{
    Headers headers;
    for (const QPair<QByteArray, QByteArray> &header : request.headers)
        headers.insert(header.first, header.second);
    return headers;
}

/** Returns the headers that Qt adds to a request to @p server. */
inline Headers headersOfQt(const QUrl &server)
{
    const QString language = QLocale::system().name().replace(QLatin1Char('_'), QLatin1Char('-'));
    const bool isC = language == QLatin1String("C");
    return {{"Host", server.authority().toLatin1()},
            {"User-Agent", "Mozilla/5.0"},
            {"Connection", "Keep-Alive"},
            {"Accept-Encoding", "gzip, deflate"},
            {"Accept-Language", (isC ? QStringLiteral("en,*") : language + QStringLiteral(",*")).toLatin1()}};
}
