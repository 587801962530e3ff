// SPDX-License-Identifier: LGPL-2.1-or-later

#include "StatisticsBackend.h"

#include "Validation.h"

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

// Returns the first of the two keys that is not in the query.
QString missingKey(const QByteArray &target)
{
    for (const char *key : {"sign", "timestamp"}) {
        if (!target.contains(QByteArray(key) + '='))
            return QLatin1String(key) + QStringLiteral(" is missing");
    }
    return QString();
}

void checkBody(Validation &validation, const QJsonObject &body)
{
    validation.checkKeys(body, keys(), "keys");
    for (const QString &key : keys())
        validation.check(!body.contains(key) || body.value(key).isString(), "value", key);
    static const QRegularExpression dayForm(
        QStringLiteral("\\A[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\z"));
    const QString day = body.value(QStringLiteral("day")).toString();
    validation.check(dayForm.match(day).hasMatch(), "day", day);
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
    static const QRegularExpression queryForm(QStringLiteral("\\?sign=([^&]*)&timestamp=([^&]*)\\z"));
    const QRegularExpressionMatch query = queryForm.match(QString::fromLatin1(request.target));
    Record record {request,
                   query.captured(1).toLatin1(),
                   query.captured(2).toLongLong(),
                   QJsonDocument::fromJson(request.body).object(),
                   {}};
    const QByteArray text = m_secret + "timestamp" + query.captured(2).toLatin1() + request.body + m_secret;
    const bool isRecent = qAbs(QDateTime::currentSecsSinceEpoch() - record.timestamp) <= maximumAgeSeconds;
    Validation validation;
    validation.check(request.method == "POST", "method");
    validation.check(request.header("Content-Type") == "application/json", "Content-Type");
    validation.check(query.hasMatch(), "query", missingKey(request.target));
    validation.check(isRecent, "timestamp");
    validation.check(QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex() == record.signature,
                     "sign");
    checkBody(validation, record.body);
    record.problems = validation.problems();
    if (m_watcher)
        m_watcher(record);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_records.append(record);
    return record.problems.isEmpty() ? HttpServer::Response {HttpStatus::Ok, "{\"code\":0}"}
                                     : HttpServer::Response {HttpStatus::Forbidden, "{\"code\":1}"};
}

} // namespace LocalServices
