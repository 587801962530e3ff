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
 * Sends HTTP requests with a time limit of ten seconds: JSON by POST, and GET.
 *
 * Use it for short answers. Use DownloadManager for files: this class holds the whole answer in memory.
 *
 * This example waits for the answer. Use it in a worker thread, or in a program without windows:
 * @code
 * ZyBase::CHttpPostRequest request;
 * QByteArray answer;
 * if (request.StartGetRequestSync(url, answer) && !answer.isEmpty())
 *     use(answer);
 * @endcode
 *
 * For a request in the background, copy the functions of
 * @ref guide-deleting-a-request "docs/guide/deleting-a-request.md". They delete the object safely.
 *
 * The five functions send different requests:
 *
 * | Function                     | Method | Waits | Content-Type     | User-Agent  | Cookie    | Stop |
 * |------------------------------|--------|-------|------------------|-------------|-----------|------|
 * | StartRequestSync             | POST   | yes   | application/json | Qt's        | none      | no   |
 * | StartRequestAsync            | POST   | no    | application/json | Qt's        | sessionid | yes  |
 * | StartGetRequest              | GET    | no    | application/json | Qt's        | sessionid | yes  |
 * | StartGetRequestSync          | GET    | yes   | none             | a browser's | none      | no   |
 * | StartGetRequestAndStatusCode | GET    | no    | application/json | Qt's        | sessionid | yes  |
 *
 * The body of a POST is the JSON object in compact form, encoded as UTF-8. Redirects are not followed and
 * failed requests are not repeated. Requests share no cookies, no cache and no connection. The URL may have
 * any scheme that QNetworkAccessManager supports: a "file:" URL reads a local file.
 *
 * **Threads.** All functions and signals except the destructor are thread-safe. Any thread may create the
 * object and start requests, also the GUI thread. Delete the object in its own thread. Each background
 * request runs in a thread of its own, which emits the outcome signal. A receiver in another thread gets
 * the signal queued and needs a running event loop there. A direct connection, or a lambda without a
 * receiver object, runs in the request's thread.
 *
 * **Blocking.** StartRequestSync() and StartGetRequestSync() block for at most 10 seconds; Qt's coarse timer
 * can extend this to 10.5 seconds. They run a nested event loop: other events of the calling thread are
 * delivered meanwhile. The user can start the same action again, or close the window that waits. All other
 * functions return at once and never block.
 *
 * **Failures.** There are no error signals and no messages.
 * - A request without an HTTP answer ends with the status 0 and usually with empty data. Examples are a
 *   refused connection, an unknown server, a TLS failure and an invalid URL.
 * - A request with an HTTP answer ends with its body and its status, whatever the status. An HTTP 500 has
 *   the status 500.
 * - Qt can miss the end of a connection between two chunks of an answer. Such a request ends at the time
 *   limit.
 *
 * Check the data before you use it.
 *
 * **Lifetime.** The object must exist until the threads of its background requests have ended. Delete it one
 * second after the outcome signal. Each request emits exactly one outcome signal. Use one object for each
 * request, because the signals do not identify the request.
 *
 * @warning Deleting the object while a request runs is undefined behaviour. The same applies to deleting it
 * at once in the slot of its outcome signal, even with deleteLater(). The destructor neither waits nor
 * cancels. Create the object without a parent, and delete it one second after its outcome, as
 * @ref guide-deleting-a-request "docs/guide/deleting-a-request.md" shows.
 *
 * @warning Quitting while a request runs can crash the process. Of 1,500 processes that quit right after the
 * start of a request, 199 crashed. Quit as
 * @ref guide-quitting-in-time "docs/guide/quitting-in-time.md" shows: none of 3,000 processes crashed.
 *
 * @warning Certificates are not checked, and only TLS 1.2 is used. The connection is encrypted, but anyone
 * on the network path can pose as the server. Send no secrets, and verify what you receive in another way.
 * A server that supports only TLS 1.3 cannot be reached.
 *
 * @warning A QCoreApplication object must exist. Without one, the functions that wait never return and use
 * a whole processor core. If the system has no thread left for Qt's network code (EAGAIN), they do not
 * return within ten seconds, and background requests emit no signal. If it has no file descriptor left, GLib,
 * which Qt's event loop uses, can end the process.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CHttpPostRequest : public QObject
{
    Q_OBJECT

public:
    /**
     * Creates an object without a request.
     *
     * @param parent the parent, in the same thread. Pass nullptr if you use background requests: a parent may
     * delete the object while they run.
     */
    explicit CHttpPostRequest(QObject *parent = nullptr);

    /**
     * Destroys the object, in the thread that owns it. Does not wait for running requests and does not
     * cancel them: no request may be running.
     *
     * @see @ref guide-deleting-a-request "docs/guide/deleting-a-request.md"
     */
    ~CHttpPostRequest() override;

    /**
     * Posts a JSON object and waits for the answer.
     *
     * If the application quits meanwhile, the call returns at once with true and the data received so far,
     * usually none.
     *
     * @param url the URL, with its query
     * @param jsonObject the body; an empty object is sent as "{}"
     * @param baResult receives the body of the answer, whatever its status; it is empty if there was no
     * answer. After a timeout it is unchanged.
     * @return true if the request ended in time, also if it failed; false after the time limit
     *
     * @see StartRequestAsync(), which does not block
     */
    bool StartRequestSync(const QUrl &url, const QJsonObject &jsonObject, QByteArray &baResult);

    /**
     * Posts a JSON object in the background.
     *
     * Emits one of SignalRequestResult(), SignalRequestTimeout() and SignalRequestCancel() when the request
     * has ended.
     *
     * @param url the URL, with its query
     * @param jsonObject the body; an empty object is sent as "{}"
     * @param strSession the value of the cookie "sessionid", sent in Latin-1; an empty string sends no
     * cookie. Characters outside Latin-1 are sent as "?".
     * @throws std::system_error if the system cannot create a thread; no signal follows
     *
     * @warning Line ends and semicolons in @p strSession are not escaped. Never pass a string that a user
     * typed.
     */
    void StartRequestAsync(const QUrl &url, const QJsonObject &jsonObject, const QString &strSession);

    /**
     * Sends a GET request in the background.
     *
     * Emits one of SignalRequestResult(), SignalRequestTimeout() and SignalRequestCancel() when the request
     * has ended.
     *
     * @param url the URL, with its query
     * @param strSession the session cookie; see StartRequestAsync(), also for the warning
     * @throws std::system_error if the system cannot create a thread; no signal follows
     */
    void StartGetRequest(const QUrl &url, const QString &strSession);

    /**
     * Sends a GET request and waits for the answer.
     *
     * If the application quits meanwhile, the call returns at once with true and the data received so far,
     * usually none.
     *
     * @param url the URL, with its query
     * @param baResult receives the body of the answer, whatever its status; it is empty if there was no
     * answer. After a timeout it is unchanged.
     * @return true if the request ended in time, also if it failed; false after the time limit
     *
     * @see StartGetRequest(), which does not block
     */
    bool StartGetRequestSync(const QUrl &url, QByteArray &baResult);

    /**
     * Sends a GET request in the background and reports its HTTP status.
     *
     * Emits one of SignalRequestResultAndStatusCode(), SignalRequestTimeout() and SignalRequestCancel()
     * when the request has ended. SignalRequestResult() is not emitted.
     *
     * @param url the URL, with its query
     * @param strSession the session cookie; see StartRequestAsync(), also for the warning
     * @throws std::system_error if the system cannot create a thread; no signal follows
     */
    void StartGetRequestAndStatusCode(const QUrl &url, const QString &strSession);

    /**
     * Returns the signature of a JSON object under a shared secret. Sends nothing and cannot fail.
     *
     * The signature is an MD5 digest. Its input is each member as "key=value" in the order of the keys,
     * joined by "&", with the secret appended. For {"b":"x","a":1.9,"c":true} and the secret "S" it is
     * "a=1&b=x&c=S". Keys are ordered by their UTF-16 code units: upper case comes before lower case.
     * Strings are not escaped.
     *
     * @param jsonObject the object to sign; it may be empty
     * @param strSecret the secret; a null string is treated as empty
     * @return the digest as 32 lower-case hexadecimal digits
     *
     * @warning The signature does not cover the whole object. Fractions of numbers are cut off, and numbers
     * are limited to 32 bits, so all present times in milliseconds give the same signature. true, false,
     * null, arrays and objects count as an empty value. A string that contains "&" or "=" can look like
     * other members. Send what must be protected as a string of a known form.
     */
    static QString SignObject(const QJsonObject &jsonObject, const QString &strSecret);

Q_SIGNALS:
    /** Emitted if a background request was aborted after the time limit. */
    void SignalRequestTimeout();

    /** Emitted if a background request was aborted by SignalStopRequest(). */
    void SignalRequestCancel();

    /**
     * Emit this signal, or connect a signal to it, to stop all background requests of the object. It
     * returns at once; each stopped request then emits SignalRequestCancel(). Without a running request it
     * does nothing.
     *
     * @warning A request whose thread has only just started does not receive the signal and runs to its
     * end. Emit the signal again until the request has ended.
     */
    void SignalStopRequest();

    /**
     * Emitted when a request of StartRequestAsync() or StartGetRequest() has ended by itself, also after a
     * failure.
     *
     * @param data the body of the answer, whatever its status; empty if there was no answer
     */
    void SignalRequestResult(QByteArray data);

    /**
     * Emitted when a request of StartGetRequestAndStatusCode() has ended by itself, also after a failure.
     *
     * @param data the body of the answer, whatever its status; empty if there was no answer
     * @param nStatusCode the HTTP status; 0 if there was no HTTP answer
     */
    void SignalRequestResultAndStatusCode(QByteArray data, int nStatusCode);
};

} // namespace ZyBase
