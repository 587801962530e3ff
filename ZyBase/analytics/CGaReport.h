// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QObject>
#include <QString>

/**
 * Reports events of one application to Google Analytics 4, each by a request of its own. Hosts go
 * through ZyBase::CGaReportManager, which holds one of these.
 *
 * The requests in the background are children of the reporter until they remove themselves. For
 * that, and for a stop, the reporter's thread must run an event loop. Nobody learns how a request ended.
 *
 * **Threads.** For the thread that owns it. **Blocking.** ReportGaData() with @p sync true alone does.
 *
 * @warning Requests that are still running use a dead object when the reporter is destroyed. Call
 * StopReport(), go back to the event loop until no children are left, and destroy it then. A
 * request that ended in the very moment of its start may stay a child until the reporter goes.
 */
class ZYBASE_EXPORT CGaReport : public QObject
{
    Q_OBJECT

public:
    /** Makes a reporter whose three identifiers are empty. @param parent owns it, in the same thread */
    explicit CGaReport(QObject *parent = nullptr);

    /** Deletes the requests that are its children, running or not. */
    ~CGaReport() override;

    /**
     * Sets who reports, for the requests that start from now on. Nothing is checked.
     *
     * @param clientId the installation, such as ZyBase::CSystemUtils::GetPCID() gives it
     * @param measurementId the data stream
     * @param apiSecret the data stream's secret
     */
    void InitData(const QString &clientId, const QString &measurementId, const QString &apiSecret);

    /**
     * Sends an event; empty texts and identifiers go out as well.
     *
     * @param eventName,eventCategory,eventLabel what it says
     * @param sync true waits for the answer, for at most 10000 ms, in which the thread's other events are
     * delivered; false returns once a thread is started
     * @throws std::system_error with @p sync false, when the system grants no further thread
     */
    void ReportGaData(const QString &eventName, const QString &eventCategory, const QString &eventLabel,
                      bool sync);

    /**
     * Starts to stop all requests in the background; returns at once and has stopped nothing until the
     * event loop of this thread runs. One that waits isn't stopped, and later ones go out as ever.
     */
    void StopReport();

Q_SIGNALS:
    /** What StopReport() emits; the requests in the background listen to it. */
    void SignalStopRequest();

private:
    QString m_strClientId;
    QString m_strMeasurementId;
    QString m_strApiSecret;
};
