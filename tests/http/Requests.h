// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <ZyBase/http/CHttpPostRequest.h>

#include <QEventLoop>
#include <QList>
#include <QObject>
#include <QTest>
#include <QThread>

#include <atomic>
#include <cstring>
#include <memory>
#include <typeinfo>

/** The five functions that start a request. */
enum class Form { PostSync, PostAsync, Get, GetSync, GetStatus };
Q_DECLARE_METATYPE(Form)

const QList<Form> allForms {Form::PostSync, Form::PostAsync, Form::Get, Form::GetSync, Form::GetStatus};
const QList<Form> asyncForms {Form::PostAsync, Form::Get, Form::GetStatus};
const QList<Form> syncForms {Form::PostSync, Form::GetSync};

const char *nameOf(Form form);
bool isSync(Form form);

/** Adds the column "form" and a row for each form. */
void addForms(const QList<Form> &forms);

/** Calls an asynchronous form. */
void start(Form form, ZyBase::CHttpPostRequest *request, const QUrl &url, const QString &session = QString(),
           const QJsonObject &object = {});

/** Calls a synchronous form. */
bool call(Form form, ZyBase::CHttpPostRequest *request, const QUrl &url, QByteArray &result,
          const QJsonObject &object = {});
bool call(Form form, const QUrl &url, QByteArray &result, const QJsonObject &object = {});

/** One outcome signal. */
struct Outcome
{
    QString signal;
    QByteArray data;
    int status = -1; ///< -1 if the signal has none

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

/** The outcome of a request that has a result; status -1 if there is none. */
Outcome result(Form form, const QByteArray &data, int status);

/** Collects the outcomes of an object's requests, in the thread that creates it. */
class OutcomeWatcher : public QObject
{
public:
    QList<Outcome> outcomes() const { return m_outcomes; }

    /** Waits until every request has an outcome. */
    bool waitForAll(int timeoutMs = 30000);

    /** Emits the stop signal until every request has an outcome: new ones may not be connected yet. */
    bool stopAll();

    virtual void emitStop() = 0;

    /**
     * Returns true if every signal so far was emitted in a thread other than that of this object, which was
     * not started by Qt.
     */
    bool areEmittedInWorkers() const { return *m_areEmittedInWorkers; }

protected:
    /** Verifies the thread in which @p signal is emitted. */
    template <class Object, class Signal> void checkThreadOf(const Object *object, Signal signal)
    {
        connect(object, signal, [flag = m_areEmittedInWorkers, owner = thread()] {
            const QThread &current = *QThread::currentThread();
            const bool isNative = strstr(typeid(current).name(), "QAdoptedThread") != nullptr;
            if (&current == owner || !isNative)
                *flag = false;
        });
    }
    /** Deletes the object much later: a thread may still be emitting its signal. */
    static void retire(std::unique_ptr<QObject> object);

    void addRequest() { ++m_requestCount; }
    void addOutcome(const Outcome &outcome);
    bool hasAllOutcomes() const { return m_outcomes.size() >= m_requestCount; }

private:
    QEventLoop m_loop;
    QList<Outcome> m_outcomes;
    int m_requestCount = 0;
    std::shared_ptr<std::atomic<bool>> m_areEmittedInWorkers = std::make_shared<std::atomic<bool>>(true);
};

/** A request object and its outcomes. */
class WatchedRequest : public OutcomeWatcher
{
public:
    WatchedRequest();

    /** Stops the requests and retires the request object. */
    ~WatchedRequest() override;

    ZyBase::CHttpPostRequest *request() { return m_request.get(); }
    void start(Form form, const QUrl &url, const QString &session = QString(),
               const QJsonObject &object = {});
    void emitStop() override { Q_EMIT m_request->SignalStopRequest(); }

private:
    std::unique_ptr<ZyBase::CHttpPostRequest> m_request;
};

/**
 * Calls any form and returns its outcome. A synchronous form that returns false has the outcome timedOut.
 */
Outcome carryOut(Form form, const QUrl &url, const QString &session = QString(),
                 const QJsonObject &object = {});

/** Does the same, and repeats a request that was ended by the time limit, which happens on a busy machine. */
Outcome carryOutInTime(Form form, const QUrl &url, const QJsonObject &object = {});
