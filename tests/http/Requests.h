// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <ZyBase/http/CHttpPostRequest.h>

#include <QEventLoop>
#include <QList>
#include <QObject>
#include <QTest>

#include <memory>

/** The five forms of a request. */
enum class Form { PostSync, PostAsync, Get, GetSync, GetStatus };
Q_DECLARE_METATYPE(Form)

const QList<Form> allForms {Form::PostSync, Form::PostAsync, Form::Get, Form::GetSync, Form::GetStatus};
const QList<Form> asyncForms {Form::PostAsync, Form::Get, Form::GetStatus};
const QList<Form> syncForms {Form::PostSync, Form::GetSync};

const char *nameOf(Form form);
bool isSync(Form form);

/** Adds the column "form" and a row for each of the forms. */
void addForms(const QList<Form> &forms);

/** Starts an asynchronous form. */
void start(Form form, ZyBase::CHttpPostRequest *request, const QUrl &url, const QString &session = QString(),
           const QJsonObject &object = {});

/** Carries out a synchronous form. */
bool call(Form form, const QUrl &url, QByteArray &result, const QJsonObject &object = {});

/** One outcome signal. */
struct Outcome
{
    QString signal;
    QByteArray data;
    int status = -1; ///< -1 where the signal has none

    bool operator==(const Outcome &other) const
    {
        return signal == other.signal && data == other.data && status == other.status;
    }
};
namespace QTest {
template <> char *toString(const Outcome &outcome);
}

const Outcome timedOut {QStringLiteral("SignalRequestTimeout"), {}, -1};
const Outcome cancelled {QStringLiteral("SignalRequestCancel"), {}, -1};

/** The outcome of a request that is over; status -1 for none. */
Outcome result(Form form, const QByteArray &data, int status);

/** A request object whose outcomes are collected in the thread that made it. */
class WatchedRequest : public QObject
{
public:
    WatchedRequest();

    /**
     * Waits for the outcomes. The request object lives a while longer: a worker may still be on its way
     * out of the signal.
     */
    ~WatchedRequest() override;

    ZyBase::CHttpPostRequest *request() { return m_request.get(); }
    void start(Form form, const QUrl &url, const QString &session = QString(),
               const QJsonObject &object = {});
    QList<Outcome> outcomes() const { return m_outcomes; }

    /** Waits until every request that was started has had an outcome. */
    bool waitForAll(int milliseconds = 30000);

    /** Emits the stop signal until every request has had an outcome: a request may not yet listen to it. */
    bool stopAll();

private:
    void add(const Outcome &outcome);
    bool areAllOver() const { return m_outcomes.size() >= m_started; }

    std::unique_ptr<ZyBase::CHttpPostRequest> m_request;
    QEventLoop m_loop;
    QList<Outcome> m_outcomes;
    int m_started = 0;
};

/**
 * Any form by one call: starts it, waits for its outcome, and shows the return value of a synchronous one
 * as the outcome that it means.
 */
Outcome carryOut(Form form, const QUrl &url, const QString &session = QString(),
                 const QJsonObject &object = {});
