// SPDX-License-Identifier: 0BSD

#pragma once

#include <QObject>
#include <QSet>

#include <chrono>

namespace ZyBase {
class CHttpPostRequest;
}

/** The requests of an application that are running in the background. For one thread, usually the main one.
 */
class RunningRequests : public QObject
{
    Q_OBJECT

public:
    /** Adds a request of createRequest(). Call it when you start the request; it is removed when it ends. */
    void add(ZyBase::CHttpPostRequest *request);

    /**
     * Stops all requests and all reports of ZyBase::CGaReportManager.
     *
     * Runs an event loop until the requests have ended, for at most @p grace plus 0.1 seconds. If the
     * application has a report manager, it waits for the whole time, because the end of a report is not
     * reported.
     *
     * @return false if requests are still running; call endProcess() then
     */
    bool stopAll(std::chrono::milliseconds grace);

private:
    static void runEventLoop(std::chrono::milliseconds time);

    QSet<ZyBase::CHttpPostRequest *> m_running;
};
