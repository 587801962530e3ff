// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include <QTest>
#include <QTimer>

#include <deque>

using ZyBase::CHttpPostRequest;

namespace {

constexpr size_t maximumRetiredRequests = 200;

} // namespace

const char *nameOf(Form form)
{
    switch (form) {
    case Form::PostSync:
        return "StartRequestSync";
    case Form::PostAsync:
        return "StartRequestAsync";
    case Form::Get:
        return "StartGetRequest";
    case Form::GetSync:
        return "StartGetRequestSync";
    case Form::GetStatus:
        return "StartGetRequestAndStatusCode";
    }
    return "";
}

bool isSync(Form form)
{
    return syncForms.contains(form);
}

void addForms(const QList<Form> &forms)
{
    QTest::addColumn<Form>("form");
    for (const Form form : forms)
        QTest::newRow(nameOf(form)) << form;
}

void start(Form form, CHttpPostRequest *request, const QUrl &url, const QString &session,
           const QJsonObject &object)
{
    if (form == Form::PostAsync)
        request->StartRequestAsync(url, object, session);
    else if (form == Form::Get)
        request->StartGetRequest(url, session);
    else
        request->StartGetRequestAndStatusCode(url, session);
}

bool call(Form form, CHttpPostRequest *request, const QUrl &url, QByteArray &result,
          const QJsonObject &object)
{
    return form == Form::PostSync ? request->StartRequestSync(url, object, result)
                                  : request->StartGetRequestSync(url, result);
}

bool call(Form form, const QUrl &url, QByteArray &result, const QJsonObject &object)
{
    CHttpPostRequest request;
    return call(form, &request, url, result, object);
}

namespace QTest {
template <> char *toString(const Outcome &outcome)
{
    return qstrdup(QStringLiteral("%1(%2, %3)")
                       .arg(outcome.signal, QString::fromLatin1(outcome.data.left(200)))
                       .arg(outcome.status)
                       .toUtf8()
                       .constData());
}
} // namespace QTest

Outcome result(Form form, const QByteArray &data, int status)
{
    if (form == Form::GetStatus)
        return {QStringLiteral("SignalRequestResultAndStatusCode"), data, status};
    return {QStringLiteral("SignalRequestResult"), data, -1};
}

bool OutcomeWatcher::waitForAll(int timeoutMs)
{
    QTimer::singleShot(timeoutMs, &m_loop, &QEventLoop::quit);
    if (!hasAllOutcomes())
        m_loop.exec();
    return hasAllOutcomes();
}

bool OutcomeWatcher::stopAll()
{
    constexpr int timeoutMs = 30000;
    return QTest::qWaitFor(
        [this] {
            if (!hasAllOutcomes())
                emitStop();
            return hasAllOutcomes();
        },
        timeoutMs);
}

void OutcomeWatcher::addOutcome(const Outcome &outcome)
{
    m_outcomes << outcome;
    if (hasAllOutcomes())
        m_loop.quit();
}

void OutcomeWatcher::retire(std::unique_ptr<QObject> object)
{
    static std::deque<std::unique_ptr<QObject>> retired;
    retired.push_back(std::move(object));
    if (retired.size() > maximumRetiredRequests)
        retired.pop_front();
}

WatchedRequest::WatchedRequest()
    : m_request(std::make_unique<CHttpPostRequest>())
{
    connect(m_request.get(), &CHttpPostRequest::SignalRequestTimeout, this, [this] { addOutcome(timedOut); });
    connect(m_request.get(), &CHttpPostRequest::SignalRequestCancel, this, [this] { addOutcome(cancelled); });
    connect(m_request.get(), &CHttpPostRequest::SignalRequestResult, this,
            [this](const QByteArray &data) { addOutcome(result(Form::Get, data, -1)); });
    connect(
        m_request.get(), &CHttpPostRequest::SignalRequestResultAndStatusCode, this,
        [this](const QByteArray &data, int status) { addOutcome(result(Form::GetStatus, data, status)); });
    checkThreadOf(m_request.get(), &CHttpPostRequest::SignalRequestTimeout);
    checkThreadOf(m_request.get(), &CHttpPostRequest::SignalRequestCancel);
    checkThreadOf(m_request.get(), &CHttpPostRequest::SignalRequestResult);
    checkThreadOf(m_request.get(), &CHttpPostRequest::SignalRequestResultAndStatusCode);
}

WatchedRequest::~WatchedRequest()
{
    stopAll();
    retire(std::move(m_request));
}

void WatchedRequest::start(Form form, const QUrl &url, const QString &session, const QJsonObject &object)
{
    addRequest();
    ::start(form, m_request.get(), url, session, object);
}

Outcome carryOut(Form form, const QUrl &url, const QString &session, const QJsonObject &object)
{
    if (isSync(form)) {
        QByteArray data("before");
        return call(form, url, data, object) ? result(form, data, -1) : timedOut;
    }
    WatchedRequest watched;
    watched.start(form, url, session, object);
    watched.waitForAll();
    return watched.outcomes().value(0);
}

Outcome carryOutInTime(Form form, const QUrl &url, const QJsonObject &object)
{
    constexpr int attempts = 5;
    Outcome outcome = timedOut;
    for (int attempt = 0; attempt < attempts && outcome == timedOut; ++attempt)
        outcome = carryOut(form, url, QString(), object);
    return outcome;
}
