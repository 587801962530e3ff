// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QByteArray>
#include <QObject>
#include <QString>

/**
 * Sends one event to Google Analytics 4 by the Measurement Protocol.
 *
 * Applications report through ZyBase::CGaReportManager, which creates these objects. Use this class only if
 * you must know whether an event was delivered.
 *
 * An event is a POST to "https://", the service's name and "/mp/collect". The query contains the
 * measurement identifier and the API secret. The body is indented JSON:
 * @code
 * {
 *     "client_id": "<clientId>",
 *     "events": [
 *         {
 *             "name": "<eventName>",
 *             "params": {
 *                 "event_category": "<eventCategory>",
 *                 "event_label": "<eventLabel>"
 *             }
 *         }
 *     ],
 *     "user_id": "<clientId>"
 * }
 * @endcode
 *
 * No value is checked, and empty strings are sent. The two identifiers in the query are not escaped: "&"
 * starts another query key, "%41" is sent as "A", and a "%1" in the measurement identifier is replaced by
 * the API secret. Real identifiers contain none of these.
 *
 * Certificates are checked by Qt's default SSL configuration, and the application proxy is used. Events
 * that could not be sent are lost: nothing is stored or logged. Qt itself can repeat a request if its
 * connection was closed before the answer.
 *
 * **Threads.** All functions and signals except the destructor are thread-safe. Any thread may create the
 * object and start requests, also the GUI thread. Delete the object in its own thread. A background request
 * runs in a thread of its own, which emits the outcome signal. A receiver in another thread gets the signal
 * queued and needs a running event loop there.
 *
 * **Blocking.** StartRequestSync() blocks for at most 10 seconds; Qt's coarse timer can extend this to 10.5
 * seconds. It runs a nested event loop: other events of the calling thread are delivered meanwhile. All other
 * functions return at once and never block.
 *
 * **Failures.** StartRequestSync() returns false. A background request does not report whether the event
 * was delivered.
 *
 * **Lifetime.** The object must exist until the threads of its background requests have ended. Delete it one
 * second after the outcome signal.
 *
 * @warning Deleting the object while a request runs is undefined behaviour. The same applies to deleting it
 * at once in the slot of its outcome signal, even with deleteLater(). The destructor neither waits nor
 * cancels. Create the object without a parent, and delete it one second after its outcome, as
 * @ref guide-deleting-a-request "docs/guide/deleting-a-request.md" shows for ZyBase::CHttpPostRequest.
 *
 * @warning Quitting while a background request runs can crash the process. Quit as
 * @ref guide-quitting-in-time "docs/guide/quitting-in-time.md" shows.
 *
 * @warning A QCoreApplication object must exist. Without one, a request that waits never returns and uses a
 * whole processor core. If the system has no thread left for Qt's network code (EAGAIN), it does not return
 * within ten seconds, and background requests emit no signal.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CGoogleAnalytics : public QObject
{
    Q_OBJECT

public:
    /**
     * Creates an object without a request.
     *
     * @param parent the parent, in the same thread. Pass nullptr if you use background requests: a parent may
     * delete the object while they run.
     */
    explicit CGoogleAnalytics(QObject *parent = nullptr);

    /**
     * Destroys the object, in the thread that owns it.
     *
     * First drops all connections from the object, including those to destroyed(). Does not wait for
     * running requests and does not cancel them: no request may be running.
     */
    ~CGoogleAnalytics() override;

    /**
     * Sends the event and waits for the answer. The request cannot be stopped, and no signal is emitted.
     *
     * @param clientId identifier of the installation; also sent as the user identifier
     * @param measurementId identifier of the data stream
     * @param apiSecret the secret of the data stream
     * @param eventName the name of the event
     * @param eventCategory the category of the event
     * @param eventLabel the label of the event
     * @return true if an answer without an error came in time. False after the time limit, a refused
     * connection, an invalid certificate, or an HTTP status of 400 or more.
     *
     * @warning If the application quits meanwhile, the call returns at once with true, although no answer
     * came. Send a last event in a slot of aboutToQuit() or after exec().
     *
     * @see StartRequestAsync(), which does not block
     */
    bool StartRequestSync(const QString &clientId, const QString &measurementId, const QString &apiSecret,
                          const QString &eventName, const QString &eventCategory, const QString &eventLabel);

    /**
     * Sends the event in the background.
     *
     * Emits one of SignalRequestTimeout(), SignalRequestCancel() and SignalRequestResult() when the request
     * has ended.
     *
     * @param clientId identifier of the installation; also sent as the user identifier
     * @param measurementId identifier of the data stream
     * @param apiSecret the secret of the data stream
     * @param eventName the name of the event
     * @param eventCategory the category of the event
     * @param eventLabel the label of the event
     * @throws std::system_error if the system cannot create a thread; no signal follows
     */
    void StartRequestAsync(const QString &clientId, const QString &measurementId, const QString &apiSecret,
                           const QString &eventName, const QString &eventCategory, const QString &eventLabel);

Q_SIGNALS:
    /** Emitted if the background request was aborted after the time limit. */
    void SignalRequestTimeout();

    /** Emitted if the background request was aborted by SignalStopRequest(). */
    void SignalRequestCancel();

    /**
     * Emit this signal, or connect a signal to it, to stop the background request. It returns at once; the
     * stopped request then emits SignalRequestCancel(). Without a running request it does nothing.
     *
     * @warning A request whose thread has only just started does not receive the signal and runs to its
     * end. Emit the signal again until the request has ended.
     */
    void SignalStopRequest();

    /**
     * Emitted when the background request has ended by itself, also after a failure.
     *
     * @param data the body of the answer, which may be an error page; empty if there was no answer. It does
     * not show whether the event was delivered.
     */
    void SignalRequestResult(QByteArray data);

private:
    QString m_strCollectUrl;
};
