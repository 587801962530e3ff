// SPDX-License-Identifier: LGPL-2.1-or-later

#include "StatisticsBackend.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QJsonDocument>
#include <QRegularExpression>

namespace LocalServices {

namespace {

constexpr qint64 maximumAgeSeconds = 300;

const QStringList &keys()
{
    static const QStringList list {QStringLiteral("action"),    QStringLiteral("day"),
                                   QStringLiteral("device_id"), QStringLiteral("os"),
                                   QStringLiteral("product"),   QStringLiteral("qd"),
                                   QStringLiteral("status"),    QStringLiteral("version")};
    return list;
}

bool areStrings(const QJsonObject &body)
{
    for (const QString &key : keys()) {
        if (!body.value(key).isString())
            return false;
    }
    return true;
}

} // namespace

StatisticsBackend::StatisticsBackend(const QByteArray &secret, const Certificate &certificate,
                                     Watcher watcher)
    : m_secret(secret)
    , m_watcher(std::move(watcher))
    , m_server(certificate, {{QStringLiteral("/report"),
                              [this](const HttpServer::Request &request) { return receive(request); }}})
{
}

QList<StatisticsBackend::Record> StatisticsBackend::records() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_records;
}

HttpServer::Response StatisticsBackend::receive(const HttpServer::Request &request)
{
    // The last two keys of the query. Keys before them belong to the backend's own address.
    static const QRegularExpression queryForm(QStringLiteral("\\?sign=([0-9a-f]{32})&timestamp=([0-9]+)\\z"));
    static const QRegularExpression dayForm(
        QStringLiteral("\\A[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\z"));
    const QRegularExpressionMatch query = queryForm.match(QString::fromLatin1(request.target));
    Record record {request,
                   query.captured(1).toLatin1(),
                   query.captured(2).toLongLong(),
                   QJsonDocument::fromJson(request.body).object(),
                   {}};
    const auto check = [&record](bool isGood, const char *problem) {
        if (!isGood)
            record.problems << QString::fromLatin1(problem);
    };
    const QByteArray text = m_secret + "timestamp" + query.captured(2).toLatin1() + request.body + m_secret;
    check(request.method == "POST", "method");
    check(request.header("Content-Type") == "application/json", "Content-Type");
    check(query.hasMatch(), "query");
    check(qAbs(QDateTime::currentSecsSinceEpoch() - record.timestamp) <= maximumAgeSeconds, "timestamp");
    check(QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex() == record.signature, "sign");
    check(record.body.keys() == keys() && areStrings(record.body), "keys");
    check(dayForm.match(record.body.value(QStringLiteral("day")).toString()).hasMatch(), "day");
    if (m_watcher)
        m_watcher(record);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_records.append(record);
    return record.problems.isEmpty() ? HttpServer::Response {HttpStatus::Ok, "{\"code\":0}"}
                                     : HttpServer::Response {HttpStatus::Forbidden, "{\"code\":1}"};
}

} // namespace LocalServices
