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
 * Downloads one file at a time to a directory, in the background of the thread that owns the object.
 *
 * @code
 * auto *const download = new ZyBase::DownloadManager(this);
 * connect(download, &ZyBase::DownloadManager::signalDownloadProgress, this, &Window::showProgress);
 * connect(download, &ZyBase::DownloadManager::signalDownloadFinished, this, &Window::openFile);
 * if (!QDir().mkpath(directory) || !download->StartDownload(url, directory))
 *     complain();
 * @endcode
 *
 * The data goes to the file as it arrives and never collects in memory, however large the file is. The
 * file has its final name from the start. There is no timeout: a server that falls silent keeps the
 * download open until StopDownload().
 *
 * Certificates are checked as Qt does it by default. Redirects aren't followed: such a download fails,
 * and its target stands on the standard error stream only.
 *
 * The course of a download is told on the standard output and error streams, for developers.
 *
 * **Calling order.** StartDownload(), signals, signalDownloadFinished(), then the next StartDownload().
 *
 * @warning Don't call StartDownload() while a download runs. The running one is forgotten but not
 * ended, and both then get in each other's way.
 *
 * @warning The destructor removes no partial file. Call StopDownload() before you delete the object.
 *
 * **Threads.** The thread that made the object, which needs a running event loop; all signals come
 * there. **Blocking.** Never, but for the writing to disk.
 */
class ZYBASE_EXPORT DownloadManager : public QObject
{
    Q_OBJECT

public:
    /** Makes an object without a download. @param parent owns it, in the same thread */
    explicit DownloadManager(QObject *parent = nullptr);

    /** Drops a running download without a signal, and leaves what it has written. */
    ~DownloadManager() override;

    /**
     * Starts to download the address to the directory, under the last component of the address's path.
     *
     * @warning An older file of that name is deleted at once, and stays deleted if the download
     * fails. To keep it, download to a directory of its own and move the new file over the old one.
     *
     * @warning A full disk goes unnoticed: the download succeeds with a file that is cut short. So does, now
     * and then, a connection that breaks off, since Qt takes it for the end of the file. Compare the size
     * of the file with the last bytesTotal where that matters.
     *
     * @param url the address
     * @param strSaveDir an existing directory, with or without a "/" at its end; it is not made. An
     * empty one is the root of the file system.
     * @return true when the request went out, and signalDownloadFinished() follows; false when
     * the file can't be opened for writing, and no signal follows. That is so too for an address whose
     * path is empty or ends in "/", which gives the file no name.
     */
    bool StartDownload(const QUrl &url, const QString &strSaveDir);

    /**
     * Aborts the running download, which ends as failed, before this returns; does nothing when none
     * runs.
     */
    void StopDownload();

    /**
     * The path that a download of the address to the directory has.
     *
     * @warning A file that is there already is deleted by this call.
     *
     * @param url,strSaveDir as for StartDownload()
     * @return the path; one that ends in "/" where the address gives no name
     */
    static QString saveFileName(const QUrl &url, QString strSaveDir);

    /**
     * Whether the running download was answered by a redirect. Serves the class itself; must not be called
     * while none runs.
     *
     * @return true for the statuses 301, 302, 303, 305, 307 and 308
     */
    bool isHttpRedirect() const;

    /** Prints where the running download was redirected to; to be called as isHttpRedirect() is. */
    void reportRedirect();

Q_SIGNALS:
    /** Never emitted; signalDownloadFinished() is the one to wait for. */
    void finished();

    /**
     * Comes many times a second at most, as Qt reports progress.
     *
     * @param bytesReceived of the body, so far
     * @param bytesTotal of the body; -1 when the server doesn't say
     * @param strSpeed the mean speed since the start, ready to be shown: "512.0 bytes/sec", "1.5 kB/s",
     * "12.3 MB/s", where a kB is 1024 bytes. It may read "inf MB/s" or "nan MB/s" in the first moment.
     */
    void signalDownloadProgress(qint64 bytesReceived, qint64 bytesTotal, QString strSpeed);

    /**
     * Once for each download that started.
     *
     * @param bSuccess false after a network failure, an HTTP error, a redirect or StopDownload(); what
     * was written is removed then. Statuses 304 and 306 count as a success.
     * @param strFilePath the whole path of the file; empty when it failed
     */
    void signalDownloadFinished(bool bSuccess, QString strFilePath);

    /** What StopDownload() emits while a download runs; the download listens to it. */
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
