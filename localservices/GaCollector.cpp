// SPDX-License-Identifier: LGPL-2.1-or-later

#include "GaCollector.h"

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

// Collects the names of the parts of an event that are invalid.
class Validation
{
public:
    QStringList problems() const { return m_problems; }

    void check(bool isGood, const char *problem)
    {
        if (!isGood)
            m_problems << QString::fromLatin1(problem);
    }

    void checkRequest(const HttpServer::Request &request)
    {
        const QUrlQuery query(QUrl::fromEncoded(request.target));
        check(request.method == "POST", "method");
        check(!query.queryItemValue(QStringLiteral("measurement_id")).isEmpty(), "measurement_id");
        check(!query.queryItemValue(QStringLiteral("api_secret")).isEmpty(), "api_secret");
        check(query.queryItems().size() == 2, "query");
        check(request.header("Content-Type") == "application/json", "Content-Type");
        check(request.body.size() < maximumBodySize, "size");
    }

    void checkBody(const QJsonObject &body)
    {
        const QStringList known {QStringLiteral("client_id"), QStringLiteral("events"),
                                 QStringLiteral("user_id")};
        check(body.keys() == known, "keys");
        const QString userId = body.value(QStringLiteral("user_id")).toString();
        check(!body.value(QStringLiteral("client_id")).toString().isEmpty(), "client_id");
        check(!userId.isEmpty() && userId.size() <= maximumUserIdLength, "user_id");
        const QJsonArray events = body.value(QStringLiteral("events")).toArray();
        check(!events.isEmpty() && events.size() <= maximumEvents, "events");
        for (const QJsonValue &event : events)
            checkEvent(event.toObject());
    }

private:
    void checkEvent(const QJsonObject &event)
    {
        const QJsonObject params = event.value(QStringLiteral("params")).toObject();
        check(event.keys() == QStringList({QStringLiteral("name"), QStringLiteral("params")}), "event");
        check(isName(event.value(QStringLiteral("name")).toString()), "name");
        check(params.size() <= maximumParams, "params");
        for (auto param = params.begin(); param != params.end(); ++param) {
            check(isName(param.key()), "param");
            check(param.value().isString() && param.value().toString().size() <= maximumValueLength, "value");
        }
    }

    QStringList m_problems;
};

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
    validation.checkRequest(request);
    validation.checkBody(body);
    const Event event {request, body, validation.problems()};
    if (m_watcher)
        m_watcher(event);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_events.append(event);
    return {HttpStatus::NoContent, {}};
}

} // namespace LocalServices
