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
 * Sends usage reports: events to Google Analytics 4, and signed records to a statistics backend.
 *
 * There is one instance for the process. Get the user's consent before you send the first report, and
 * before you create an identifier for it.
 * @ref guide-consent-for-reports "docs/guide/consent-for-reports.md" shows how.
 *
 * @code
 * // After the user has consented:
 * auto *const manager = ZyBase::CGaReportManager::getInstance(nullptr);
 * manager->InitGaData(":/events.json", deviceId, "G-XXXXXXXXXX", apiSecret);
 * manager->InitXdData("https://stat.example.org/report", deviceId, "reader", "1.2.3", "store");
 *
 * manager->SendGaReport("open_file", "pdf", false);
 * manager->SendXdReport("install", "end");
 * @endcode
 *
 * **Event catalogue.** A UTF-8 JSON file of the application describes the events. It is an array with one
 * object for each event:
 *
 * | Key              | Value                                                                       |
 * |------------------|-----------------------------------------------------------------------------|
 * | "event_key"      | key of the event in SendGaReport()                                          |
 * | "event_name"     | name; if empty, the event is not sent                                       |
 * | "event_category" | category; if empty, the event is not sent                                   |
 * | "event_label"    | label; if empty, the event is sent only if the call passes a label          |
 *
 * A missing value, and a value that is not a string, counts as empty. Other keys are stored but not used.
 * Keys are case-sensitive. If two events have the same key, the later one is used.
 *
 * CGoogleAnalytics and CXdReport describe what is sent.
 *
 * **Threads.** Not thread-safe: use the instance only in the thread that first called getInstance(), which
 * may be the GUI thread. That thread must run an event loop. Without one, background requests are never
 * deleted, and events are never stopped.
 *
 * **Blocking.** SendGaReport() with @p sync true blocks for at most 10 seconds; Qt's coarse timer can extend
 * this to 10.5 seconds. InitGaData() blocks while it reads the catalogue file. All other functions return at
 * once and never block.
 *
 * **Failures.** No function reports a failure. An unreadable catalogue, an unknown key and a failed request
 * have no visible effect.
 *
 * **Lifetime.** The library never deletes the instance.
 *
 * @warning Quitting while a request runs can crash the process. Of 1,500 processes that quit right after the
 * start of a background request, 199 crashed. Quit as
 * @ref guide-quitting-in-time "docs/guide/quitting-in-time.md" shows: none of 3,000 processes crashed.
 *
 * @warning A QCoreApplication object must exist. Without one, SendGaReport() with @p sync true never
 * returns and uses a whole processor core. If the system has no thread left for Qt's network code (EAGAIN),
 * it does not return within ten seconds, and background requests never end.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CGaReportManager : public QObject
{
    Q_OBJECT

public:
    /**
     * Returns the instance. The first call creates it.
     *
     * @param parent the parent of the instance; used only by the first call. Pass nullptr.
     * @return the instance, never null
     *
     * @warning The first call must not overlap with another one. Make it before other threads start.
     *
     * @warning If a parent deletes the instance, later calls return a dangling pointer, and running
     * requests use a deleted object.
     */
    static CGaReportManager *getInstance(QObject *parent);

    /**
     * Destroys the instance and its requests. The library never calls it.
     *
     * @warning No request may be running, and getInstance() must not be called afterwards: it returns a
     * dangling pointer unless you set s_instance to nullptr.
     */
    ~CGaReportManager() override;

    /**
     * Stops all background requests, as StopGaReport() and then StopXdReport() do. Does nothing before the
     * first getInstance().
     *
     * Returns at once and deletes nothing: the instance, its catalogue and its settings remain, and more
     * reports can be sent. Requests end only while the event loop of the instance's thread runs.
     *
     * @see @ref guide-quitting-in-time "docs/guide/quitting-in-time.md"
     */
    static void ReleaseReport();

    /**
     * Adds the events of a file to the catalogue and sets the identifiers.
     *
     * Blocks while it reads the whole file in the calling thread. The identifiers are set even if the file
     * cannot be read. A second call adds to the catalogue; events are never removed.
     *
     * @param configPath the path of the catalogue; a file that is missing, malformed or not an array adds no
     * events
     * @param clientId identifier of the installation, for example the result of CSystemUtils::GetPCID()
     * @param measurementId identifier of the data stream
     * @param apiSecret the secret of the data stream
     *
     * @see GetGaData(), which returns an empty object if an event was not read
     */
    void InitGaData(const QString &configPath, const QString &clientId, const QString &measurementId,
                    const QString &apiSecret);

    /**
     * Sends an event of the catalogue to Google Analytics 4.
     *
     * Nothing is sent if the key is unknown, or if the name, the category or the label is empty.
     *
     * @param eventKey the key of the event, case-sensitive
     * @param labelOverride replaces the label of the catalogue for this call; an empty string keeps it
     * @param sync true waits for the end of the request, at most 10 seconds, in a nested event loop that
     * delivers the thread's other events; false sends in the background and returns at once
     * @throws std::system_error with @p sync false, if the system cannot create a thread
     */
    void SendGaReport(const QString &eventKey, const QString &labelOverride, bool sync);

    /**
     * Returns an event of the catalogue.
     *
     * @param eventKey the key of the event, case-sensitive
     * @return the event with all its keys; an empty object if the key is unknown
     */
    QJsonObject GetGaData(const QString &eventKey);

    /**
     * Sets the URL of the statistics backend and the description of the installation. No value is checked.
     *
     * @param reportUrl the URL of the backend, without a query
     * @param deviceId identifier of the installation, for example the result of CSystemUtils::GetPCID()
     * @param product the name of the application, as the backend expects it
     * @param version the version of the application, as the backend expects it
     * @param qd the source of the installation; "home" before the first call. An empty string replaces it.
     */
    void InitXdData(const QString &reportUrl, const QString &deviceId, const QString &product,
                    const QString &version, const QString &qd);

    /**
     * Sends a record to the statistics backend in the background. Before InitXdData() it has no URL and is
     * lost.
     *
     * Any strings are accepted. Backends recognise these:
     *
     * @param action "install", "uninstall", "uninstall_opt", "update", "feedback", "mf_show",
     * "payment_completed", "crash" or "server_run"
     * @param status "start", "end", "cancel", "fail" or "none"
     * @throws std::system_error if the system cannot create a thread
     */
    void SendXdReport(const QString &action, const QString &status);

    /**
     * Requests a stop of all events that are sent in the background.
     *
     * Returns at once. The stop takes effect when the event loop of this thread runs. Later events are sent
     * normally.
     *
     * @warning A request whose thread has only just started is not stopped. Call the function again.
     */
    void StopGaReport();

    /**
     * Stops all records that are being sent.
     *
     * Returns at once. The requests end in their threads and delete themselves in the event loop of this
     * thread. Later records are sent normally.
     *
     * @warning A request whose thread has only just started is not stopped. Call the function again.
     */
    void StopXdReport();

    /** The instance that getInstance() returns; nullptr before its first call. */
    static CGaReportManager *s_instance;

private:
    explicit CGaReportManager(QObject *parent);

    QMap<QString, QJsonObject> m_mapGaData;
    CGaReport m_gaReport;
    CXdReport m_xdReport;
};

} // namespace ZyBase
