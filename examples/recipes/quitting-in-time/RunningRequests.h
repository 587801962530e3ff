// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QObject>
#include <QSet>

#include <chrono>

namespace ZyBase {
class CHttpPostRequest;
}

/** The requests in the background of a host, which knows of each whether it is still running. */
class RunningRequests : public QObject
{
    Q_OBJECT

public:
    /** A request to be started once; it removes itself a moment after its outcome. */
    ZyBase::CHttpPostRequest *create();

    /**
     * Stops all of them and runs the event loop until they are over, for at most @p grace.
     *
     * @return false when some are still running: end the process then, don't destroy this object
     */
    bool stopAll(std::chrono::milliseconds grace);

private:
    void noteEnd(ZyBase::CHttpPostRequest *request);
    static void runEventLoop(std::chrono::milliseconds time);

    QSet<ZyBase::CHttpPostRequest *> m_running;
};
