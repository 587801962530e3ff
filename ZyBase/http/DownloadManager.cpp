// SPDX-License-Identifier: LGPL-2.1-or-later

#include "DownloadManager.h"

#include <QFileInfo>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTextStream>

#include <cstdio>

namespace ZyBase {

namespace {

constexpr double dBytesPerKilobyte = 1024;
constexpr double dBytesPerMegabyte = 1024 * 1024;

// Limits how far Qt's network thread reads ahead of the disk. Without a limit, a fast server fills the memory
// with the whole file.
constexpr qint64 nReadBufferBytes = 1048576;

int httpStatus(const QNetworkReply *pReply)
{
    return pReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

QString speedText(double dBytesPerSecond)
{
    double dSpeed = dBytesPerSecond;
    QString strUnit;
    if (dSpeed < dBytesPerKilobyte) {
        strUnit = QStringLiteral("bytes/sec");
    } else if (dSpeed < dBytesPerMegabyte) {
        dSpeed /= dBytesPerKilobyte;
        strUnit = QStringLiteral("kB/s");
    } else {
        dSpeed /= dBytesPerMegabyte;
        strUnit = QStringLiteral("MB/s");
    }
    return QStringLiteral("%1 %2").arg(dSpeed, 3, 'f', 1).arg(strUnit);
}

} // namespace

DownloadManager::DownloadManager(QObject *parent)
    : QObject(parent)
    , m_pReply(nullptr)
{
}

DownloadManager::~DownloadManager() = default;

bool DownloadManager::StartDownload(const QUrl &url, const QString &strSaveDir)
{
    m_pReply = nullptr;
    const QString strFilePath = saveFileName(url, strSaveDir);
    m_output.setFileName(strFilePath);
    if (!m_output.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "Problem opening save file '%s' for download '%s': %s\n",
                     qPrintable(strFilePath), url.toEncoded().constData(),
                     qPrintable(m_output.errorString()));
        return false;
    }

    m_pReply = m_manager.get(QNetworkRequest(url));
    m_pReply->setReadBufferSize(nReadBufferBytes);
    connect(m_pReply, SIGNAL(downloadProgress(qint64, qint64)), SLOT(downloadProgress(qint64, qint64)));
    connect(m_pReply, SIGNAL(finished()), SLOT(downloadFinished()));
    connect(m_pReply, SIGNAL(readyRead()), SLOT(downloadReadyRead()));
    connect(this, SIGNAL(SignalStopDownload()), m_pReply, SLOT(abort()));
    std::printf("Downloading %s...\n", url.toEncoded().constData());
    m_downloadTimer.start();
    return true;
}

void DownloadManager::StopDownload()
{
    if (m_pReply)
        Q_EMIT SignalStopDownload();
}

QString DownloadManager::saveFileName(const QUrl &url, QString strSaveDir)
{
    if (!strSaveDir.endsWith(QLatin1Char('/')))
        strSaveDir += QLatin1Char('/');
    QString strFilePath = strSaveDir + QFileInfo(url.path(QUrl::FullyDecoded)).fileName();
    if (strFilePath.isEmpty())
        strFilePath = QStringLiteral("download");
    if (QFile::exists(strFilePath))
        QFile::remove(strFilePath);
    return strFilePath;
}

bool DownloadManager::isHttpRedirect() const
{
    switch (httpStatus(m_pReply)) {
    case 301:
    case 302:
    case 303:
    case 305:
    case 307:
    case 308:
        return true;
    default:
        return false;
    }
}

void DownloadManager::reportRedirect()
{
    const QUrl requestUrl = m_pReply->request().url();
    QTextStream stream(stderr);
    stream << "Request: " << requestUrl.toDisplayString()
           << " was redirected with code: " << httpStatus(m_pReply) << '\n';

    const QVariant target = m_pReply->attribute(QNetworkRequest::RedirectionTargetAttribute);
    if (!target.isValid())
        return;
    QUrl targetUrl = target.toUrl();
    if (targetUrl.isRelative())
        targetUrl = requestUrl.resolved(targetUrl);
    stream << "Redirected to: " << targetUrl.toDisplayString() << '\n';
}

void DownloadManager::downloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    // Divides by zero in the first millisecond; the string is then "inf MB/s" or "nan MB/s".
    const double dSpeed = double(bytesReceived) * 1000.0 / double(m_downloadTimer.elapsed());
    Q_EMIT signalDownloadProgress(bytesReceived, bytesTotal, speedText(dSpeed));
}

void DownloadManager::downloadFinished()
{
    bool bSuccess = false;
    QString strFilePath = QStringLiteral("");
    m_output.close();
    if (m_pReply->error() != QNetworkReply::NoError) {
        std::fprintf(stderr, "Failed: %s\n", qPrintable(m_pReply->errorString()));
        m_output.remove();
    } else if (isHttpRedirect()) {
        reportRedirect();
        m_output.remove();
    } else {
        strFilePath = m_output.fileName();
        std::printf("Succeeded.\n");
        bSuccess = true;
    }
    m_pReply->deleteLater();
    m_pReply = nullptr;
    Q_EMIT signalDownloadFinished(bSuccess, strFilePath);
}

void DownloadManager::downloadReadyRead()
{
    m_output.write(m_pReply->readAll());
}

} // namespace ZyBase
