// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "AnalyticsTest.h"

/** A reporter that counts its requests, which are its children. */
class ReporterWatcher
{
public:
    virtual ~ReporterWatcher() = default;

    virtual QObject &object() = 0;
    const QObject &object() const { return const_cast<ReporterWatcher *>(this)->object(); }
    virtual void stop() = 0;

    int running() const { return object().children().size(); }
    int started() const { return m_started; }

    /** Returns true if all requests so far were deleted in the reporter's thread. */
    bool areDeletedInOwnThread() const { return m_areDeletedInOwnThread; }

    /** Waits until no request is left, and calls @p meanwhile repeatedly. */
    template <class Call> bool waitForAll(Call meanwhile)
    {
        constexpr int timeoutMs = 20000;
        return QTest::qWaitFor(
            [&] {
                meanwhile();
                return running() == 0;
            },
            timeoutMs);
    }
    bool waitForAll()
    {
        return waitForAll([] {});
    }

protected:
    void record(const QChildEvent &event)
    {
        if (event.added())
            ++m_started;
        if (event.removed() && QThread::currentThread() != object().thread())
            m_areDeletedInOwnThread = false;
    }

private:
    int m_started = 0;
    bool m_areDeletedInOwnThread = true;
};

template <class Reporter>
class WatchedReporter
    : public Reporter
    , public ReporterWatcher
{
public:
    /** Stops the requests and waits for them: they must not outlive the reporter. */
    ~WatchedReporter() override
    {
        if (!waitForAll([this] { this->StopReport(); }))
            qWarning("A request is still running");
    }

    QObject &object() override { return *this; }
    void stop() override { this->StopReport(); }

protected:
    void childEvent(QChildEvent *event) override { record(*event); }
};

/** The tests that the two reporters share. */
class ReporterTest : public AnalyticsTest
{
    Q_OBJECT

protected:
    /** Creates a reporter whose background requests go to @p server, or are recorded if it is empty. */
    virtual std::unique_ptr<ReporterWatcher> createReporter(const QUrl &server = QUrl()) = 0;

    /** Starts a background request. */
    virtual void start(ReporterWatcher &reporter) = 0;

    /** The number of recorded requests. */
    virtual int recorded() = 0;

    virtual std::unique_ptr<QObject> createObject(QObject *parent) = 0;

    void start(ReporterWatcher &reporter, int count);

private Q_SLOTS:
    void deletesFinishedRequest_data();
    void deletesFinishedRequest();
    void returnsBeforeAnswer();
    void stopsAllRequests();
    void endsThreadsOfRequests();
    void emitsStopSignal();
    void sendsAfterStop();
    void isDeletedByParent();
    void declaresOneSignalAndNoSlots();
};
