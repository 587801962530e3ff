// SPDX-License-Identifier: 0BSD

#include "SafeDownload.h"

#include <ZyBase/files/CFileUtils.h>

#include <QFileInfo>
#include <QNetworkReply>

#include <cstdio>

using ZyBase::DownloadManager;

namespace {

constexpr int defaultStallTimeoutMs = 30000;
constexpr int reasonTimeoutMs = 10000;

// Unlike QFile::rename(), this replaces an older file in one step.
bool replaceFile(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

SafeDownload::SafeDownload(QObject *parent)
    : QObject(parent)
{
    m_stallTimer.setSingleShot(true);
    m_stallTimer.setInterval(defaultStallTimeoutMs);
    connect(&m_stallTimer, &QTimer::timeout, this, [this] { stop(Stop::Stalled); });
    connect(&m_manager, &DownloadManager::signalDownloadProgress, this, &SafeDownload::handleProgress);
    // Queued, so that this object may be deleted in a slot of its own signals.
    connect(&m_manager, &DownloadManager::signalDownloadFinished, this, &SafeDownload::handleEnd,
            Qt::QueuedConnection);
}

void SafeDownload::start(const QUrl &url, const QString &path, const QByteArray &md5)
{
    m_url = url;
    m_path = path;
    m_md5 = md5;
    m_bytesTotal = 0;
    m_stop = Stop::None;
    // A directory on the same disk, so that the file can be renamed.
    m_directory =
        std::make_unique<QTemporaryDir>(QFileInfo(path).absolutePath() + QStringLiteral("/.download-XXXXXX"));
    QString problem;
    if (!m_directory->isValid())
        problem = tr("No file can be written there: %1").arg(m_directory->errorString());
    else if (!m_manager.StartDownload(url, m_directory->path()))
        problem = tr("The address does not name a file");
    if (!problem.isNull())
        QTimer::singleShot(0, this, [this, problem] { fail(problem); });
    else
        m_stallTimer.start();
}

void SafeDownload::cancel()
{
    stop(Stop::Cancelled);
}

void SafeDownload::stop(Stop stop)
{
    m_stop = stop;
    m_manager.StopDownload();
}

void SafeDownload::handleProgress(qint64 bytesReceived, qint64 bytesTotal, const QString &speed)
{
    m_stallTimer.start();
    m_bytesTotal = bytesTotal;
    Q_EMIT progressed(bytesReceived, bytesTotal, speed);
}

void SafeDownload::handleEnd(bool isSuccess, const QString &partialPath)
{
    m_stallTimer.stop();
    if (isSuccess)
        return keep(partialPath);
    if (m_stop == Stop::Stalled)
        return fail(tr("The server stopped sending"));
    if (m_stop == Stop::None)
        return findReason();
    m_directory.reset();
    Q_EMIT cancelled();
}

// The library can report success for an incomplete file.
void SafeDownload::keep(const QString &partialPath)
{
    if (QFileInfo(partialPath).size() != m_bytesTotal)
        return fail(tr("The file is not complete. Is the disk full?"));
    if (!m_md5.isEmpty() && getBigFileMd5(partialPath).toHex() != m_md5.toLower())
        return fail(tr("The file is not the expected one"));
    if (!replaceFile(partialPath, m_path))
        return fail(tr("The file %1 cannot be replaced").arg(m_path));
    m_directory.reset();
    Q_EMIT finished(m_path);
}

// The library does not report the reason, so the server is asked again, without the content.
void SafeDownload::findReason()
{
    QNetworkReply *const reply = m_network.head(QNetworkRequest(m_url));
    QTimer::singleShot(reasonTimeoutMs, reply, &QNetworkReply::abort);
    const auto tell = [this, reply] {
        reply->deleteLater();
        if (reply->attribute(QNetworkRequest::RedirectionTargetAttribute).isValid())
            fail(tr("The file has moved"));
        else if (reply->error() == QNetworkReply::NoError)
            fail(tr("The connection broke off"));
        else
            fail(reply->errorString());
    };
    connect(reply, &QNetworkReply::finished, this, tell, Qt::QueuedConnection);
}

void SafeDownload::fail(const QString &reason)
{
    m_directory.reset();
    Q_EMIT failed(reason);
}
