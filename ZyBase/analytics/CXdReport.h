// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QObject>
#include <QString>

/**
 * Sends signed records to a statistics backend, each in a background request of its own.
 *
 * Applications use ZyBase::CGaReportManager, which contains an object of this class.
 *
 * A record is a POST of compact JSON. It contains these keys, in this order, all with string values:
 *
 * | Key         | Value                                                           |
 * |-------------|-----------------------------------------------------------------|
 * | "action"    | argument of ReportXdData()                                      |
 * | "day"       | local date and time, such as "2026-11-20 17:05:09"              |
 * | "device_id" | argument of InitData()                                          |
 * | "os"        | "linux"                                                         |
 * | "product"   | argument of InitData()                                          |
 * | "qd"        | argument of InitData(); "home" before the first call            |
 * | "status"    | argument of ReportXdData()                                      |
 * | "version"   | argument of InitData()                                          |
 *
 * The URL is that of InitData(), followed by "?sign=", the signature, "&timestamp=" and the seconds since
 * 1970. The signature is the MD5 digest, as 32 lower-case hexadecimal digits, of these strings in UTF-8
 * without separators: the secret, "timestamp", the seconds, the JSON, the secret. The secret is a constant
 * of the library. "day" can be one second earlier than the time stamp.
 *
 * **Threads.** Not thread-safe: use the object only in the thread that created it, which may be the GUI
 * thread.
 *
 * **Blocking.** No function blocks.
 *
 * **Failures.** No function reports a failure, and the answer is not read. A record that could not be sent
 * is lost.
 *
 * **Lifetime.** Background requests are children of the reporter and delete themselves. This needs a
 * running event loop in the reporter's thread.
 *
 * @warning Destroying the reporter while a request runs is undefined behaviour. Call StopReport(), run the
 * event loop until the reporter has no children, and then destroy it.
 *
 * @warning Quitting while a request runs can crash the process. Quit as
 * @ref guide-quitting-in-time "docs/guide/quitting-in-time.md" shows.
 *
 * @warning The certificate of the backend is not checked: anyone on the network path can read the records.
 * Every user of the library can read the secret, so a signature does not prove who sent a record.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CXdReport : public QObject
{
    Q_OBJECT

public:
    /**
     * Creates a reporter without a URL. "qd" is "home", all other values are empty strings.
     *
     * @param parent the parent, in the same thread, or nullptr
     */
    explicit CXdReport(QObject *parent = nullptr);

    /** Destroys the reporter and the requests that are its children. No request may be running. */
    ~CXdReport() override;

    /**
     * Sets the URL and the description of the installation for all records that start later. No value is
     * checked.
     *
     * @param reportUrl the URL of the backend, without a query: "?sign=" is appended in any case
     * @param deviceId identifier of the installation, for example the result of
     * ZyBase::CSystemUtils::GetPCID()
     * @param product the name of the application
     * @param version the version of the application
     * @param qd the source of the installation; an empty string replaces "home"
     */
    void InitData(const QString &reportUrl, const QString &deviceId, const QString &product,
                  const QString &version, const QString &qd);

    /**
     * Sends a record in the background. Before InitData() it has no URL and is lost.
     *
     * @param action any string; ZyBase::CGaReportManager::SendXdReport() lists those that backends recognise
     * @param status any string; listed there, too
     * @throws std::system_error if the system cannot create a thread
     */
    void ReportXdData(const QString &action, const QString &status);

    /**
     * Stops all running requests.
     *
     * Returns at once. The requests end in their threads and delete themselves in the event loop of this
     * thread. Later records are sent normally.
     *
     * @warning A request whose thread has only just started is not stopped. Call the function again until
     * the reporter has no children.
     */
    void StopReport();

Q_SIGNALS:
    /** Emitted by StopReport(); stops the requests. */
    void SignalStopRequest();

private:
    QString m_strReportUrl;
    QString m_strDeviceId;
    QString m_strProduct;
    QString m_strVersion;
    QString m_strQd;
};
