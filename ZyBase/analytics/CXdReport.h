// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QObject>
#include <QString>

/**
 * Sends signed records of what an application did to a statistics backend, each by a request of its
 * own in the background. Hosts go through ZyBase::CGaReportManager, which holds one of these.
 *
 * A record is a POST of a compact JSON text with these keys in this order, all of them texts:
 *
 * | Key         | Value                                                                    |
 * |-------------|--------------------------------------------------------------------------|
 * | "action"    | as given                                                                 |
 * | "day"       | local date and time in spite of its name, as "2026-11-20 17:05:09"       |
 * | "device_id" | of InitData()                                                            |
 * | "os"        | "linux"                                                                  |
 * | "product"   | of InitData()                                                            |
 * | "qd"        | of InitData(); "home" until then                                         |
 * | "status"    | as given                                                                 |
 * | "version"   | of InitData()                                                            |
 *
 * The address is that of InitData() with "?sign=", the signature, "&timestamp=" and the seconds since
 * 1970 behind it. The signature is the MD5 digest, as 32 lower-case hexadecimal digits, of these UTF-8
 * bytes joined: secret, "timestamp", the seconds, the JSON text, secret. The secret is a constant of the
 * library. "day" may be a second before the time stamp.
 *
 * @warning As with all requests of ZyBase::CHttpPostRequest the certificate of the backend isn't
 * checked: whoever sits on the line can read the records. The secret stands in the library for anyone
 * to read, so a signature shows that a record wasn't garbled, not who sent it.
 *
 * The requests are children of the reporter until they remove themselves, for which the reporter's
 * thread must run an event loop. Nobody learns how a request ended, the answer isn't read, and a lost
 * record is lost.
 *
 * **Threads.** For the thread that owns it. **Blocking.** Never.
 *
 * @warning Requests that are still running use a dead object when the reporter is destroyed. Call
 * StopReport(), go back to the event loop until no children are left, and destroy it then.
 */
class ZYBASE_EXPORT CXdReport : public QObject
{
    Q_OBJECT

public:
    /**
     * Makes a reporter without an address, whose records carry the "qd" "home" and else empty texts.
     *
     * @param parent owns it, in the same thread
     */
    explicit CXdReport(QObject *parent = nullptr);

    /** Deletes the requests that are its children, running or not. */
    ~CXdReport() override;

    /**
     * Sets where records go and what they say of the installation, for those that start from now on.
     * Nothing is checked, and all five are overwritten: an empty @p qd is empty, not "home".
     *
     * @param reportUrl the backend's address without a query; to one that has a query, "?sign=" is
     * appended all the same
     * @param deviceId,product,version,qd as for ZyBase::CGaReportManager::InitXdData()
     */
    void InitData(const QString &reportUrl, const QString &deviceId, const QString &product,
                  const QString &version, const QString &qd);

    /**
     * Sends a record, and returns once a thread is started.
     *
     * @param action,status any texts; those that backends know are told at
     * ZyBase::CGaReportManager::SendXdReport()
     * @throws std::system_error when the system grants no further thread
     */
    void ReportXdData(const QString &action, const QString &status);

    /**
     * Tells all running requests to stop before it returns; they end and remove themselves in the event
     * loop. Later records go out as ever.
     */
    void StopReport();

Q_SIGNALS:
    /** What StopReport() emits; the requests listen to it. */
    void SignalStopRequest();

private:
    QString m_strReportUrl;
    QString m_strDeviceId;
    QString m_strProduct;
    QString m_strVersion;
    QString m_strQd;
};
