// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Arrival.h"

#include <QDateTime>
#include <QJsonArray>
#include <QMap>
#include <QRegularExpression>
#include <QVector>

using LocalServices::GaCollector;
using LocalServices::StatisticsBackend;

namespace {

const QString good = QStringLiteral("good");
const QString bad = QStringLiteral("bad: ");
const QString separator = QStringLiteral(": ");

// A sentence for each problem that the collector reports.
const QMap<QString, QString> &eventSentences()
{
    static const QMap<QString, QString> sentences {
        {QStringLiteral("method"), QStringLiteral("The method is not POST.")},
        {QStringLiteral("measurement_id"), QStringLiteral("The query has no measurement_id.")},
        {QStringLiteral("api_secret"), QStringLiteral("The query has no api_secret.")},
        {QStringLiteral("query"),
         QStringLiteral("The query has other keys than measurement_id and api_secret.")},
        {QStringLiteral("Content-Type"), QStringLiteral("The Content-Type is not application/json.")},
        {QStringLiteral("size"), QStringLiteral("The body has 130 KiB or more.")},
        {QStringLiteral("keys"),
         QStringLiteral("The body is not an object with the keys client_id, events and user_id.")},
        {QStringLiteral("client_id"), QStringLiteral("The client_id is empty.")},
        {QStringLiteral("user_id"), QStringLiteral("The user_id is empty or longer than 256 characters.")},
        {QStringLiteral("events"), QStringLiteral("There is no event or more than 25.")},
        {QStringLiteral("event"), QStringLiteral("An event has other keys than name and params.")},
        {QStringLiteral("name"),
         QStringLiteral(
             "An event's name is reserved, longer than 40 characters, does not start with a letter, "
             "or contains other characters than letters, digits and underscores.")},
        {QStringLiteral("params"), QStringLiteral("An event has more than 25 params.")},
        {QStringLiteral("param"), QStringLiteral("A param's name violates the rules for names.")},
        {QStringLiteral("value"),
         QStringLiteral("A param's value is not a string of at most 100 characters.")}};
    return sentences;
}

const QMap<QString, QString> &recordSentences()
{
    static const QMap<QString, QString> sentences {
        {QStringLiteral("method"), QStringLiteral("The method is not POST.")},
        {QStringLiteral("Content-Type"), QStringLiteral("The Content-Type is not application/json.")},
        {QStringLiteral("keys"),
         QStringLiteral(
             "The body is not an object with the keys action, day, device_id, os, product, qd, status "
             "and version.")},
        {QStringLiteral("value"), QStringLiteral("A value of the body is not a string.")},
        {QStringLiteral("day"),
         QStringLiteral("The day is not a date and time such as 2026-11-20 17:05:09.")}};
    return sentences;
}

// What a record's signature violates, the most important first. Without the right query there is no signature
// to check.
const QVector<QPair<QString, QString>> &signatureReasons()
{
    static const QVector<QPair<QString, QString>> reasons {
        {QStringLiteral("query"), QStringLiteral("the query does not end with sign and timestamp")},
        {QStringLiteral("sign"), QStringLiteral("it does not match the secret, time stamp and body")},
        {QStringLiteral("timestamp"), QStringLiteral("the time stamp is more than 300 seconds from now")}};
    return reasons;
}

// What violates a rule follows after a colon.
QString violationOf(const QString &problem)
{
    const QString violation = problem.section(separator, 1);
    return violation.isEmpty() ? QString() : separator + violation;
}

// Returns the most important reason, and removes all that concern the signature from the problems.
QString takeSignatureVerdict(QStringList &problems)
{
    QStringList verdicts;
    for (const QPair<QString, QString> &reason : signatureReasons()) {
        const QRegularExpression form(QStringLiteral("\\A%1(:|\\z)").arg(reason.first));
        const QStringList found = problems.filter(form);
        for (const QString &problem : found) {
            problems.removeAll(problem);
            verdicts << reason.second + violationOf(problem);
        }
    }
    return verdicts.isEmpty() ? good : bad + verdicts.first();
}

// Each problem once, even if several events have it.
QStringList inSentences(QStringList problems, const QMap<QString, QString> &sentences)
{
    problems.removeDuplicates();
    for (QString &problem : problems) {
        QString sentence = sentences.value(problem.section(separator, 0, 0));
        if (sentence.isEmpty())
            continue;
        sentence.chop(1);
        problem = sentence + violationOf(problem) + QLatin1Char('.');
    }
    return problems;
}

QString now()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}

QString joined(QStringList texts)
{
    texts.removeAll(QString());
    return texts.join(QStringLiteral(" · "));
}

} // namespace

Arrival Arrival::of(const GaCollector::Event &event)
{
    QStringList names;
    QStringList details;
    const QJsonArray events = event.body.value(QStringLiteral("events")).toArray();
    for (const QJsonValue &each : events) {
        const QJsonObject params = each.toObject().value(QStringLiteral("params")).toObject();
        names << each.toObject().value(QStringLiteral("name")).toString();
        details << params.value(QStringLiteral("event_category")).toString()
                << params.value(QStringLiteral("event_label")).toString();
    }
    return {0,
            Arrival::event(),
            now(),
            joined(names),
            joined(details),
            event.request,
            QString(),
            inSentences(event.problems, eventSentences())};
}

Arrival Arrival::of(const StatisticsBackend::Record &record)
{
    QStringList problems = record.problems;
    const QString signature = takeSignatureVerdict(problems);
    return {0,
            Arrival::record(),
            now(),
            record.body.value(QStringLiteral("action")).toString(),
            record.body.value(QStringLiteral("status")).toString(),
            record.request,
            signature,
            inSentences(problems, recordSentences())};
}

bool Arrival::isGood() const
{
    return problems.isEmpty() && !signature.startsWith(bad);
}

QJsonObject Arrival::toJson() const
{
    QJsonArray headers;
    for (const QPair<QByteArray, QByteArray> &header : request.headers)
        headers << QJsonArray {QString::fromLatin1(header.first), QString::fromLatin1(header.second)};
    return {{QStringLiteral("id"), id},
            {QStringLiteral("kind"), kind},
            {QStringLiteral("time"), time},
            {QStringLiteral("name"), name},
            {QStringLiteral("detail"), detail},
            {QStringLiteral("method"), QString::fromLatin1(request.method)},
            {QStringLiteral("target"), QString::fromLatin1(request.target)},
            {QStringLiteral("headers"), headers},
            {QStringLiteral("body"), QString::fromUtf8(request.body)},
            {QStringLiteral("signature"), signature},
            {QStringLiteral("problems"), QJsonArray::fromStringList(problems)},
            {QStringLiteral("good"), isGood()}};
}
