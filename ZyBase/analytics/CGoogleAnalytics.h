// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QByteArray>
#include <QObject>
#include <QString>

/**
 * Sends one event to Google Analytics 4 by the Measurement Protocol. Hosts report through
 * ZyBase::CGaReportManager, which makes these objects; this header is for the one that wants to know
 * whether an event got through.
 *
 * An event is a POST to https, the service's host and "/mp/collect", with the measurement identifier and
 * the API secret in the query and this body, indented as it stands here:
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
 * Nothing is checked: empty texts go out as empty texts. The two identifiers of the query go in as
 * they are: an ampersand starts another query key, "%41" goes out as "A", and a "%1" in
 * the measurement identifier swallows the API secret. Real identifiers have none of these.
 *
 * Certificates are checked as Qt's default SSL configuration says, and the application proxy is used.
 * Nothing is kept for later and no message is written: a lost event is lost. Nothing is tried twice, but
 * Qt itself may send a request again whose connection was closed before any answer came.
 *
 * **Threads.** A background request runs in a thread of its own, which nothing waits for; its outcome
 * signal is emitted there. A receiver in another thread gets it queued, in need of a running event loop.
 *
 * **Blocking.** StartRequestSync() alone does, for at most 10000 ms.
 *
 * @warning The object must outlive its running background request. The destructor drops all connections
 * from the object, those to destroyed() too, but neither waits nor cancels; a request that is
 * still running then uses a dead object. Delete it only by deleteLater() from its outcome.
 */
class ZYBASE_EXPORT CGoogleAnalytics : public QObject
{
    Q_OBJECT

public:
    /** Makes an object without a request. @param parent none for an object that serves in the background */
    explicit CGoogleAnalytics(QObject *parent = nullptr);

    /** Drops all connections from the object; neither waits for a running request nor cancels it. */
    ~CGoogleAnalytics() override;

    /**
     * Sends the event and waits for the answer, for at most 10000 ms.
     *
     * Meanwhile it runs an event loop of its own, in which all other events of the calling thread are
     * delivered: be ready for re-entry. It can't be stopped, and emits no signal.
     *
     * @param clientId whose event it is; also sent as the user identifier
     * @param measurementId names the data stream
     * @param apiSecret the data stream's secret
     * @param eventName,eventCategory,eventLabel what the event says
     * @return true when the answer came in time with no error; false for a refused connection, a
     * certificate that doesn't hold, an HTTP status of 400 or more, and after the time limit
     *
     * @warning When the application quits meanwhile the call returns at once, with true but without an
     * answer.
     */
    bool StartRequestSync(const QString &clientId, const QString &measurementId, const QString &apiSecret,
                          const QString &eventName, const QString &eventCategory, const QString &eventLabel);

    /**
     * Sends the event in a thread of its own, and returns at once. The outcome is one of
     * SignalRequestTimeout(), SignalRequestCancel() and SignalRequestResult().
     *
     * @param clientId,measurementId,apiSecret,eventName,eventCategory,eventLabel as for StartRequestSync()
     * @throws std::system_error when the system grants no further thread; no signal follows then
     */
    void StartRequestAsync(const QString &clientId, const QString &measurementId, const QString &apiSecret,
                           const QString &eventName, const QString &eventCategory, const QString &eventLabel);

Q_SIGNALS:
    /** Ten seconds passed; the request was aborted. */
    void SignalRequestTimeout();

    /** The request was aborted because of SignalStopRequest(). */
    void SignalRequestCancel();

    /**
     * Emit this, or connect a signal to it, to stop the background request.
     *
     * @warning It doesn't reach a request whose thread hasn't got going yet, a moment after its start:
     * that request runs on to its end.
     */
    void SignalStopRequest();

    /**
     * The background request is over in any other way.
     *
     * @param data the body of the answer, an error page too; empty when there was none. It doesn't
     * tell a delivered event from a failed one.
     */
    void SignalRequestResult(QByteArray data);

private:
    QString m_strCollectUrl;
};
