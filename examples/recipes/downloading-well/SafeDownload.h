// SPDX-License-Identifier: 0BSD

#pragma once

#include <ZyBase/http/DownloadManager.h>

#include <QNetworkAccessManager>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

/**
 * A download that replaces a file only when it is complete, ends if the server stops sending, and names the
 * reason of a failure.
 *
 * Downloads one file at a time, in a thread with an event loop. The object may be deleted at any time, also
 * in a slot of its signals.
 */
class SafeDownload : public QObject
{
    Q_OBJECT

public:
    explicit SafeDownload(QObject *parent = nullptr);

    /** Sets after how long a silence of the server the download fails. By default 30 seconds. */
    void setStallTimeout(int milliseconds) { m_stallTimer.setInterval(milliseconds); }

    /**
     * Starts a download. One of the signals finished(), failed() and cancelled() follows.
     *
     * @param path the final path; an older file stays until the download is complete
     * @param md5 the digest of the file in hexadecimal digits, or an empty string if it is not known
     */
    void start(const QUrl &url, const QString &path, const QByteArray &md5 = {});

    /** Ends the download; cancelled() follows. Does nothing if none runs. */
    void cancel();

Q_SIGNALS:
    /** The arguments are those of ZyBase::DownloadManager::signalDownloadProgress(). */
    void progressed(qint64 bytesReceived, qint64 bytesTotal, const QString &speed);

    /** The file is complete and has its final path. */
    void finished(const QString &path);

    /** Nothing is kept of the download. @p reason can be shown to the user. */
    void failed(const QString &reason);

    void cancelled();

private:
    enum class Stop { None, Stalled, Cancelled };

    void handleProgress(qint64 bytesReceived, qint64 bytesTotal, const QString &speed);
    void handleEnd(bool isSuccess, const QString &partialPath);
    void keep(const QString &partialPath);
    void findReason();
    void fail(const QString &reason);
    void stop(Stop stop);

    ZyBase::DownloadManager m_manager;
    QNetworkAccessManager m_network;
    QTimer m_stallTimer;
    std::unique_ptr<QTemporaryDir> m_directory; ///< of the partial file
    QUrl m_url;
    QString m_path;
    QByteArray m_md5;
    qint64 m_bytesTotal = 0;
    Stop m_stop = Stop::None;
};
