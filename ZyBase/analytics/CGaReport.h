// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QObject>
#include <QString>

/**
 * Sends the events of one application to Google Analytics 4, each in a request of its own.
 *
 * Applications use ZyBase::CGaReportManager, which contains an object of this class.
 *
 * **Threads.** Not thread-safe: use the object only in the thread that created it, which may be the GUI
 * thread.
 *
 * **Blocking.** ReportGaData() with @p sync true blocks for at most 10 seconds; Qt's coarse timer can
 * extend this to 10.5 seconds. All other functions return at once and never block.
 *
 * **Failures.** No function reports a failure. An event that could not be sent is lost.
 *
 * **Lifetime.** Background requests are children of the reporter and delete themselves. This needs a
 * running event loop in the reporter's thread. A request that ends before ReportGaData() has returned can
 * remain a child until the reporter is destroyed. So limit each wait for the children to 11 seconds; no
 * request takes longer.
 *
 * @warning Destroying the reporter while a request runs is undefined behaviour. Call StopReport(), run the
 * event loop until the reporter has no children, and then destroy it.
 *
 * @warning Quitting while a background request runs can crash the process. Quit as
 * @ref guide-quitting-in-time "docs/guide/quitting-in-time.md" shows.
 *
 * @warning A QCoreApplication object must exist. Without one, a request that waits never returns and uses a
 * whole processor core. If the system has no thread left for Qt's network code (EAGAIN), it does not return
 * within ten seconds.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CGaReport : public QObject
{
    Q_OBJECT

public:
    /**
     * Creates a reporter. Its three identifiers are empty strings.
     *
     * @param parent the parent, in the same thread, or nullptr
     */
    explicit CGaReport(QObject *parent = nullptr);

    /** Destroys the reporter and the requests that are its children. No request may be running. */
    ~CGaReport() override;

    /**
     * Sets the identifiers of all requests that start later. No value is checked.
     *
     * @param clientId identifier of the installation, for example the result of
     * ZyBase::CSystemUtils::GetPCID()
     * @param measurementId identifier of the data stream
     * @param apiSecret the secret of the data stream
     */
    void InitData(const QString &clientId, const QString &measurementId, const QString &apiSecret);

    /**
     * Sends an event. Empty strings and identifiers are sent, too.
     *
     * @param eventName the name of the event
     * @param eventCategory the category of the event
     * @param eventLabel the label of the event
     * @param sync true waits for the end of the request in a nested event loop, which delivers the thread's
     * other events; false sends in the background and returns at once
     * @throws std::system_error with @p sync false, if the system cannot create a thread
     */
    void ReportGaData(const QString &eventName, const QString &eventCategory, const QString &eventLabel,
                      bool sync);

    /**
     * Requests a stop of all background requests.
     *
     * Returns at once. The stop takes effect when the event loop of this thread runs. Requests that wait
     * are not stopped, and later events are sent normally.
     *
     * @warning A request whose thread has only just started is not stopped. Call the function again until
     * the reporter has no children.
     */
    void StopReport();

Q_SIGNALS:
    /** Emitted by StopReport(); stops the background requests. */
    void SignalStopRequest();

private:
    QString m_strClientId;
    QString m_strMeasurementId;
    QString m_strApiSecret;
};
