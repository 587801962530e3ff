// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "CGaReport.h"
#include "CXdReport.h"

#include "../base/ZyBaseExport.h"

#include <QJsonObject>
#include <QMap>
#include <QObject>
#include <QString>

namespace ZyBase {

/**
 * Reports what an application does: named events to Google Analytics 4, and signed records to a
 * statistics backend. One for the process.
 *
 * @code
 * auto *const manager = ZyBase::CGaReportManager::getInstance(nullptr);
 * manager->InitGaData(":/events.json", deviceId, "G-XXXXXXXXXX", apiSecret);
 * manager->InitXdData("https://stat.example.org/report", deviceId, "reader", "1.2.3", "store");
 *
 * manager->SendGaReport("open_file", "pdf", false);
 * manager->SendXdReport("install", "end");
 * ...
 * ZyBase::CGaReportManager::ReleaseReport();      // and the event loop runs on for a moment
 * @endcode
 *
 * **The catalogue of events** is a UTF-8 JSON file of the host's own, an array with an object an event:
 *
 * | Key              | Value                                                                     |
 * |------------------|---------------------------------------------------------------------------|
 * | "event_key"      | what the host calls the event by                                          |
 * | "event_name"     | its name; an event without one is never sent                              |
 * | "event_category" | its category; likewise                                                    |
 * | "event_label"    | its label; an event without one is sent only with a label of the call     |
 *
 * Only texts count: a number is an empty text. Other keys are kept and not used. Keys are matched
 * exactly. Of two events with one key the later counts, and an event without a key has the empty key.
 *
 * What is sent to whom is told at CGoogleAnalytics and CXdReport. Nothing here reports a failure: a
 * catalogue that can't be read, an unknown key, a network that is away, all of them go by in silence.
 *
 * **Threads.** For the thread that makes the instance, which must run an event loop: without one no
 * request in the background is ever removed and no event is ever stopped. The first getInstance() must
 * not race with another.
 *
 * **Blocking.** Only SendGaReport() with sync true does, for at most 10000 ms.
 */
class ZYBASE_EXPORT CGaReportManager : public QObject
{
    Q_OBJECT

public:
    /**
     * The instance, which the first call makes. The library never deletes it.
     *
     * @param parent of the instance; only that of the first call counts
     * @return never null
     *
     * @warning With a parent the instance goes when the parent does, and from then on this returns
     * a dangling pointer; requests that are still running then use a dead object. A null parent is safe.
     */
    static CGaReportManager *getInstance(QObject *parent);

    /** Nothing in the library calls it: a host that deletes the instance sees to it that nothing runs. */
    ~CGaReportManager() override;

    /**
     * Starts to stop all requests that are under way, those to Google Analytics first; does nothing
     * before getInstance(). In spite of its name it deletes nothing: the instance, its catalogue
     * and its settings stay, and more can be sent.
     *
     * Requests end only while the event loop runs, so let it run for a moment before the host quits.
     */
    static void ReleaseReport();

    /**
     * Adds the events of a file to the catalogue, and sets who reports.
     *
     * The identifiers are set even when the file gives nothing. A second call adds to the catalogue;
     * nothing is ever taken from it.
     *
     * @param configPath the file; a missing or malformed one, or one whose top isn't an array, gives
     * no events
     * @param clientId the installation, such as CSystemUtils::GetPCID() gives it
     * @param measurementId the data stream
     * @param apiSecret the data stream's secret
     */
    void InitGaData(const QString &configPath, const QString &clientId, const QString &measurementId,
                    const QString &apiSecret);

    /**
     * Sends the event of the key, if the catalogue has it and its name, category and label aren't empty.
     *
     * @param eventKey as in the catalogue, in its exact case
     * @param labelOverride takes the place of the label of the catalogue, for this call; none when empty
     * @param sync true waits for the end of the request, for at most 10000 ms, in which the thread's
     * other events are delivered and re-entry must be expected; false sends in the background
     * @throws std::system_error with @p sync false, when the system grants no further thread
     */
    void SendGaReport(const QString &eventKey, const QString &labelOverride, bool sync);

    /**
     * What the catalogue has of an event.
     *
     * @param eventKey as for SendGaReport()
     * @return all of the event's keys; an empty object for an unknown one
     */
    QJsonObject GetGaData(const QString &eventKey);

    /**
     * Sets where records go and what they say of the installation. Nothing is checked.
     *
     * @param reportUrl the backend's address without a query
     * @param deviceId such as CSystemUtils::GetPCID() gives it
     * @param product,version the application's, as the backend knows them
     * @param qd where the installation came from; "home" until the first call, and empty after a call
     * with an empty one
     */
    void InitXdData(const QString &reportUrl, const QString &deviceId, const QString &product,
                    const QString &version, const QString &qd);

    /**
     * Sends a record in the background; before InitXdData() it has no address and is lost.
     *
     * Any texts are taken; these are the words that backends know.
     *
     * @param action "install", "uninstall", "uninstall_opt", "update", "feedback", "mf_show",
     * "payment_completed", "crash" or "server_run"
     * @param status "start", "end", "cancel", "fail" or "none"
     * @throws std::system_error when the system grants no further thread
     */
    void SendXdReport(const QString &action, const QString &status);

    /** Starts to stop all events in the background, as CGaReport::StopReport() does. */
    void StopGaReport();

    /** Stops all records that are under way, as CXdReport::StopReport() does. */
    void StopXdReport();

    /** What getInstance() returns; null before its first call. */
    static CGaReportManager *s_instance;

private:
    explicit CGaReportManager(QObject *parent);

    QMap<QString, QJsonObject> m_mapGaData;
    CGaReport m_gaReport;
    CXdReport m_xdReport;
};

} // namespace ZyBase
