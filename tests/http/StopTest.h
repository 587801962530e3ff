// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Requests.h"

#include "OutputCapture.h"

/**
 * The tests of stopping that all classes with a stop signal share. Each function also fails if the process
 * writes a message.
 */
class StopTest : public QObject
{
    Q_OBJECT

protected:
    /** The names of the class's functions that start a request. */
    virtual QStringList asyncCalls() const = 0;
    virtual QStringList syncCalls() const = 0;

    /** Sets the server of later requests. */
    virtual void setServer(const QUrl &url) = 0;

    virtual std::unique_ptr<OutcomeWatcher> createWatcher() = 0;
    virtual void start(OutcomeWatcher &watcher, const QString &call) = 0;

    /** Calls a synchronous function. @p data is set if the function has a result besides its return value. */
    virtual bool send(OutcomeWatcher &watcher, const QString &call, QByteArray &data) = 0;
    virtual bool hasSyncData() const = 0;

    virtual Outcome resultOf(const QString &call, const QByteArray &data) const = 0;

protected Q_SLOTS:
    virtual void init();
    virtual void cleanup();

private Q_SLOTS:
    void cancelsStoppedRequest_data();
    void cancelsStoppedRequest();
    void returnsBeforeAnswer_data() { addCalls(asyncCalls()); }
    void returnsBeforeAnswer();
    void ignoresStopBeforeRequestIsConnected_data() { addCalls(asyncCalls()); }
    void ignoresStopBeforeRequestIsConnected();
    void ignoresStopWithoutRequest_data() { addCalls(asyncCalls()); }
    void ignoresStopWithoutRequest();
    void stopsAllRequestsOfObject();
    void ignoresStopDuringSynchronousCall_data() { addCalls(syncCalls()); }
    void ignoresStopDuringSynchronousCall();
    void returnsTrueIfApplicationQuits_data() { addCalls(syncCalls()); }
    void returnsTrueIfApplicationQuits();
    void emitsNothingDuringSynchronousCall_data() { addCalls(syncCalls()); }
    void emitsNothingDuringSynchronousCall();

private:
    static void addCalls(const QStringList &calls);

    std::unique_ptr<OutputCapture> m_output;
};
