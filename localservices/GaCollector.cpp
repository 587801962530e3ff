// SPDX-License-Identifier: LGPL-2.1-or-later

#include "GaCollector.h"

#include "Validation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrlQuery>

namespace LocalServices {

namespace {

constexpr int maximumBodySize = 130 * 1024;
constexpr int maximumEvents = 25;
constexpr int maximumParams = 25;
constexpr int maximumValueLength = 100;
constexpr int maximumUserIdLength = 256;

// Events and their params have the same rules for names.
bool isName(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z][A-Za-z0-9_]{0,39}\\z"));
    static const QRegularExpression reserved(QStringLiteral("\\A(?:firebase_|google_|ga_|_)"));
    return form.match(text).hasMatch() && !reserved.match(text).hasMatch();
}

void checkRequest(Validation &validation, const HttpServer::Request &request)
{
    const QUrlQuery query(QUrl::fromEncoded(request.target));
    validation.check(request.method == "POST", "method");
    validation.check(!query.queryItemValue(QStringLiteral("measurement_id")).isEmpty(), "measurement_id");
    validation.check(!query.queryItemValue(QStringLiteral("api_secret")).isEmpty(), "api_secret");
    validation.check(query.queryItems().size() == 2, "query");
    validation.check(request.header("Content-Type") == "application/json", "Content-Type");
    validation.check(request.body.size() < maximumBodySize, "size");
}

void checkEvent(Validation &validation, const QJsonObject &event)
{
    const QString name = event.value(QStringLiteral("name")).toString();
    const QJsonObject params = event.value(QStringLiteral("params")).toObject();
    validation.checkKeys(event, {QStringLiteral("name"), QStringLiteral("params")}, "event");
    validation.check(isName(name), "name", name);
    validation.check(params.size() <= maximumParams, "params");
    for (auto param = params.begin(); param != params.end(); ++param) {
        const QJsonValue value = param.value();
        validation.check(isName(param.key()), "param", param.key());
        validation.check(value.isString() && value.toString().size() <= maximumValueLength, "value",
                         param.key());
    }
}

void checkBody(Validation &validation, const QJsonObject &body)
{
    validation.checkKeys(
        body, {QStringLiteral("client_id"), QStringLiteral("events"), QStringLiteral("user_id")}, "keys");
    const QString userId = body.value(QStringLiteral("user_id")).toString();
    validation.check(!body.value(QStringLiteral("client_id")).toString().isEmpty(), "client_id");
    validation.check(!userId.isEmpty() && userId.size() <= maximumUserIdLength, "user_id");
    const QJsonArray events = body.value(QStringLiteral("events")).toArray();
    validation.check(!events.isEmpty() && events.size() <= maximumEvents, "events");
    for (const QJsonValue &event : events)
        checkEvent(validation, event.toObject());
}

} // namespace

GaCollector::GaCollector(Watcher watcher)
    : m_watcher(std::move(watcher))
    , m_server({}, {{QStringLiteral("/mp/collect"),
                     [this](const HttpServer::Request &request) { return collect(request); }}})
{
}

QList<GaCollector::Event> GaCollector::events() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_events;
}

HttpServer::Response GaCollector::collect(const HttpServer::Request &request)
{
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    Validation validation;
    checkRequest(validation, request);
    checkBody(validation, body);
    const Event event {request, body, validation.problems()};
    if (m_watcher)
        m_watcher(event);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_events.append(event);
    return {HttpStatus::NoContent, {}};
}

} // namespace LocalServices
