// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QElapsedTimer>
#include <QFile>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QUrl>

class QNetworkReply;

namespace ZyBase {

/**
 * Downloads one file at a time to a directory, in the background, and reports the progress.
 *
 * Use it for files of any size: the data is written to the file as it arrives. Use CHttpPostRequest for
 * short answers.
 *
 * @code
 * auto *const download = new ZyBase::DownloadManager(this);
 * connect(download, &ZyBase::DownloadManager::signalDownloadProgress, this, &Window::showProgress);
 * connect(download, &ZyBase::DownloadManager::signalDownloadFinished, this, &Window::openFile);
 * if (!QDir().mkpath(directory) || !download->StartDownload(url, directory))
 *     reportError();
 * @endcode
 *
 * The order of calls is StartDownload(), signals, signalDownloadFinished(), then the next StartDownload().
 * The file has its final name from the start. Cookies that a server sets are sent with later downloads of
 * the same object. Certificates are checked as Qt does by default.
 *
 * Redirects are not followed. Such a download fails, and only the standard error stream shows the target.
 * @ref guide-following-a-redirect "docs/guide/following-a-redirect.md" shows how to follow them.
 *
 * **Threads.** Reentrant: different threads may use different objects. Use an object only in the thread
 * that created it, which may be the GUI thread. That thread must run an event loop and receives all
 * signals.
 *
 * **Blocking.** No function blocks on the network. Data is written to the disk in this thread. There is no
 * timeout: if a server stops sending, the download stays open until StopDownload(). The same applies if the
 * connection ends between two chunks of an answer, because Qt can miss that.
 *
 * **Failures.** StartDownload() returns false, or signalDownloadFinished() reports false. The start and the
 * end of a download are also printed to the standard output and error streams.
 * @ref guide-downloading-well "docs/guide/downloading-well.md" keeps the old file until the new one is
 * complete, and finds the reason of a failure.
 *
 * **Lifetime.** The destructor ends a running download without a signal and keeps the partial file. Call
 * StopDownload() before you delete the object.
 *
 * @warning Deleting the object in a slot of signalDownloadFinished() is undefined behaviour. Call
 * deleteLater() there.
 *
 * @warning Calling StartDownload() while a download runs is not supported: the second download replaces the
 * state of the first. Wait for signalDownloadFinished() first.
 *
 * @warning A QCoreApplication object must exist. If the system has no thread left for Qt's network code
 * (EAGAIN), no signal follows.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT DownloadManager : public QObject
{
    Q_OBJECT

public:
    /**
     * Creates an object without a download.
     *
     * @param parent the parent, in the same thread, or nullptr
     */
    explicit DownloadManager(QObject *parent = nullptr);

    /** Ends a running download without a signal. The partial file is kept. */
    ~DownloadManager() override;

    /**
     * Starts to download a file.
     *
     * The file is stored in the directory under the last component of the URL's path, decoded.
     *
     * @param url the URL
     * @param strSaveDir an existing directory, with or without a "/" at its end; it is not created. An empty
     * string is the root of the file system.
     * @return true if the request was sent; signalDownloadFinished() follows. False if the file cannot be
     * opened for writing, or if the URL's path is empty or ends with "/"; no signal follows.
     *
     * @warning An older file of the same name is deleted at once, and is lost if the download fails. To
     * keep it, download to a different directory and then rename the new file.
     *
     * @warning Some failures are reported as success. If the disk is full, the file lacks a part. If a
     * connection breaks off, Qt sometimes treats it as the end of the file. Compare the size of the file
     * with the last bytesTotal. For a chunked answer compare a digest, because its last bytesTotal is only
     * the number of bytes received.
     */
    bool StartDownload(const QUrl &url, const QString &strSaveDir);

    /**
     * Stops the running download; does nothing if none runs.
     *
     * signalDownloadFinished() with false is emitted before this function returns.
     */
    void StopDownload();

    /**
     * Returns the path of the file to which StartDownload() would store the URL.
     *
     * This function is thread-safe. It blocks only while it deletes one file.
     *
     * @param url the URL
     * @param strSaveDir the directory, as for StartDownload()
     * @return the path; it ends with "/" if the URL has no file name
     *
     * @warning An existing file with this path is deleted by the call. Do not call this function to test
     * whether a file exists.
     */
    static QString saveFileName(const QUrl &url, QString strSaveDir);

    /**
     * Returns whether the running download was answered by a redirect. For use by the class itself.
     *
     * @return true for the statuses 301, 302, 303, 305, 307 and 308; false for all others
     *
     * @warning Calling it while no download runs is undefined behaviour. Use signalDownloadFinished()
     * instead.
     */
    bool isHttpRedirect() const;

    /**
     * Prints the target of a redirect to the standard error stream. For use by the class itself.
     *
     * @warning Calling it while no download runs is undefined behaviour. See
     * @ref guide-following-a-redirect "docs/guide/following-a-redirect.md".
     */
    void reportRedirect();

Q_SIGNALS:
    /** Never emitted. Use signalDownloadFinished(). */
    void finished();

    /**
     * Emitted when Qt reports progress, about ten times a second at most.
     *
     * @param bytesReceived bytes of the body received so far
     * @param bytesTotal bytes of the whole body; -1 if the server does not send the length; the last signal
     * of a download then has the number of bytes received
     * @param strSpeed mean speed since the start, for display: "512.0 bytes/sec", "1.5 kB/s" or "12.3 MB/s".
     * A kB has 1024 bytes. In the first millisecond it can be "inf MB/s" or "nan MB/s".
     */
    void signalDownloadProgress(qint64 bytesReceived, qint64 bytesTotal, QString strSpeed);

    /**
     * Emitted once for each download that was started.
     *
     * @param bSuccess true on success, also for the HTTP statuses 304 and 306. False after a network failure,
     * an HTTP error, a redirect or StopDownload(); the partial file is removed.
     * @param strFilePath path of the file; an empty string after a failure
     *
     * @warning Do not delete the object in a slot of this signal. Call deleteLater().
     */
    void signalDownloadFinished(bool bSuccess, QString strFilePath);

    /** Emitted by StopDownload() while a download runs; aborts the download. */
    void SignalStopDownload();

private Q_SLOTS:
    void downloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void downloadFinished();
    void downloadReadyRead();

private:
    QNetworkAccessManager m_manager;
    QNetworkReply *m_pReply;
    QFile m_output;
    QElapsedTimer m_downloadTimer;
};

} // namespace ZyBase
