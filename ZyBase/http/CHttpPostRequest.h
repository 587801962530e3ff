// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QString>
#include <QUrl>

namespace ZyBase {

/**
 * HTTP requests that never hang: JSON by POST and plain GET, each over after ten seconds at most.
 *
 * Waiting for the answer, where a local object serves:
 * @code
 * ZyBase::CHttpPostRequest request;
 * QByteArray answer;
 * if (request.StartGetRequestSync(url, answer) && !answer.isEmpty())
 *     use(answer);
 * @endcode
 *
 * In the background, where the object lives on the heap until its one outcome came:
 * @code
 * using ZyBase::CHttpPostRequest;
 * auto *const request = new CHttpPostRequest;
 * connect(request, &CHttpPostRequest::SignalRequestResult, this, &Reader::use);
 * connect(request, &CHttpPostRequest::SignalRequestResult, request, &QObject::deleteLater);
 * connect(request, &CHttpPostRequest::SignalRequestTimeout, request, &QObject::deleteLater);
 * connect(request, &CHttpPostRequest::SignalRequestCancel, request, &QObject::deleteLater);
 * request->StartGetRequest(url, session);
 * @endcode
 *
 * The forms differ, and servers rely on it:
 *
 * | Form                         | Method, waits | Content-Type     | User-Agent  | Cookie  | Stops |
 * |------------------------------|---------------|------------------|-------------|---------|-------|
 * | StartRequestSync             | POST, yes     | application/json | Qt's        | none    | no    |
 * | StartRequestAsync            | POST, no      | application/json | Qt's        | session | yes   |
 * | StartGetRequest              | GET, no       | application/json | Qt's        | session | yes   |
 * | StartGetRequestSync          | GET, yes      | none             | a browser's | none    | no    |
 * | StartGetRequestAndStatusCode | GET, no       | application/json | Qt's        | session | yes   |
 *
 * A POST carries the compact JSON text of its object as UTF-8. A session that isn't empty is sent as
 * the cookie "sessionid" in Latin-1 letters; what Latin-1 lacks goes out as a question mark, and line
 * ends or semicolons in it aren't escaped, so never pass on what a user typed. Redirects aren't
 * followed, nothing is tried twice, and no cookie, cache or connection is shared between requests. The
 * whole answer is held in memory; DownloadManager is for files.
 *
 * @warning Certificates are never checked, and TLS is 1.2 only: the traffic is hidden from onlookers,
 * but whoever sits on the line can pose as the server. Send no secret, and trust no answer that
 * matters. A server that speaks only TLS 1.3 can't be reached.
 *
 * **Failures.** There are no error signals and no messages. A refused connection, an unknown host, a
 * TLS failure, an invalid or unsupported address or an HTTP status of 500 are all an answer like
 * any other: data that is empty when the server sent none, and a status of 0. Test the contents.
 *
 * **Threads.** Each asynchronous request runs in a thread of its own, which nothing waits for. The
 * outcome signals are emitted there: a receiver in another thread gets them queued, in need of a
 * running event loop; a direct connection or a lambda without a receiver runs in the worker. Any
 * number of requests may run on one object, but their signals don't say whose they are: take one
 * object a request to tell them apart.
 *
 * @warning The object must outlive its running requests. The destructor neither waits nor cancels; a
 * request that is still running then uses a dead object. So give the object no parent that may go
 * earlier, and delete it only from the handling of its outcome, never at once but by deleteLater().
 * Even then the worker may be on its last steps out of the signal; a moment more makes it safe:
 * @code
 * QTimer::singleShot(1000, request, &QObject::deleteLater);
 * @endcode
 *
 * **Blocking.** The synchronous forms block for at most 10000 ms while they run an event loop of their
 * own: every other event of the calling thread is delivered meanwhile. Be ready for re-entry, and for
 * the user closing the window that waits. When the application quits meanwhile, they return at once as if
 * the request had failed.
 */
class ZYBASE_EXPORT CHttpPostRequest : public QObject
{
    Q_OBJECT

public:
    /** Makes an object without a request. @param parent none for an object that serves in the background */
    explicit CHttpPostRequest(QObject *parent = nullptr);

    /** Neither waits for running requests nor cancels them. */
    ~CHttpPostRequest() override;

    /**
     * Posts the object and waits for the answer. An empty object posts "{}".
     *
     * @param url the address, with its query if it has one
     * @param jsonObject the body
     * @param baResult the body of the answer, whatever its status; empty when there was none. Left as
     * it was after ten seconds.
     * @return false when ten seconds passed, else true, for a failed request too
     */
    bool StartRequestSync(const QUrl &url, const QJsonObject &jsonObject, QByteArray &baResult);

    /**
     * Posts the object in a thread of its own; the outcome is one of SignalRequestResult(),
     * SignalRequestTimeout() and SignalRequestCancel().
     *
     * @param url,jsonObject as for StartRequestSync()
     * @param strSession the value of the cookie "sessionid"; none is sent when it is empty
     * @throws std::system_error when the system grants no further thread; no signal follows then. The
     * same holds for the other asynchronous forms.
     */
    void StartRequestAsync(const QUrl &url, const QJsonObject &jsonObject, const QString &strSession);

    /**
     * Fetches the address in a thread of its own; the outcome is as for StartRequestAsync().
     *
     * @param url,strSession as there
     */
    void StartGetRequest(const QUrl &url, const QString &strSession);

    /**
     * Fetches the address and waits for the answer.
     *
     * @param url,baResult as for StartRequestSync()
     * @return as there
     */
    bool StartGetRequestSync(const QUrl &url, QByteArray &baResult);

    /**
     * Fetches the address in a thread of its own; the outcome is one of
     * SignalRequestResultAndStatusCode(), SignalRequestTimeout() and SignalRequestCancel().
     *
     * @param url,strSession as for StartRequestAsync()
     */
    void StartGetRequestAndStatusCode(const QUrl &url, const QString &strSession);

    /**
     * The signature of the object under a shared secret: the MD5 digest of all its members as
     * "key=value" in the order of their keys, joined by "&", with the secret straight behind.
     * {"b":"x","a":1.9,"c":true} under "S" is the digest of "a=1&b=x&c=S".
     *
     * Keys are ordered by their UTF-16 code units, upper case before lower case. Texts stand as they
     * are, unescaped. Needs no object and never fails; any thread.
     *
     * @param jsonObject what is signed
     * @param strSecret a null one is an empty one
     * @return 32 lower-case hexadecimal digits
     *
     * @warning Not all of the object is covered. Of a number only the whole part counts, cut to
     * the range of a 32-bit integer, so all times in milliseconds look alike; true, false, null,
     * arrays and objects count as an empty text. A text with "&" or "=" in it may read like other
     * members. Send what must not be tampered with as a text of known form.
     */
    static QString SignObject(const QJsonObject &jsonObject, const QString &strSecret);

Q_SIGNALS:
    /** Ten seconds passed; the request was aborted. */
    void SignalRequestTimeout();

    /** The request was aborted because of SignalStopRequest(). */
    void SignalRequestCancel();

    /**
     * Emit this, or connect a signal to it, to stop all asynchronous requests that run on the object.
     *
     * @warning It doesn't reach a request whose thread hasn't got going yet, a moment after its start:
     * that request runs on to its end. With no request running it does nothing.
     */
    void SignalStopRequest();

    /**
     * The request of StartRequestAsync() or StartGetRequest() is over.
     *
     * @param data the body of the answer, whatever its status; empty when there was none
     */
    void SignalRequestResult(QByteArray data);

    /**
     * The request of StartGetRequestAndStatusCode() is over.
     *
     * @param data as for SignalRequestResult()
     * @param nStatusCode the HTTP status; 0 when no HTTP answer came
     */
    void SignalRequestResultAndStatusCode(QByteArray data, int nStatusCode);
};

} // namespace ZyBase
