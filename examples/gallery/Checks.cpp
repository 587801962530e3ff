// SPDX-License-Identifier: 0BSD

#include "Checks.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTcpSocket>
#include <QTimer>

#include <sys/statvfs.h>

namespace {

constexpr int answerLimitMs = 5000;
const QByteArray zipSignature = QByteArrayLiteral("PK");

int statusOf(const QNetworkReply *reply)
{
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

// Returns the file, or the nearest directory above it that exists.
QFileInfo nearestExisting(const QString &path)
{
    QFileInfo info(path);
    while (!info.exists() && !info.isRoot())
        info.setFile(info.absolutePath());
    return info;
}

// QStorageInfo finds no disk in a chroot; statvfs() works there too.
bool hasSpace(const QString &existingPath, qint64 bytes)
{
    struct statvfs disk = {};
    return statvfs(QFile::encodeName(existingPath).constData(), &disk) != 0
           || quint64(disk.f_bavail) * disk.f_frsize >= quint64(bytes);
}

} // namespace

QString Checks::meaningOf(int status)
{
    if (status == 404)
        return tr("Status 404: the server has nothing at this address.");
    if (status == 401 || status == 403)
        return tr("Status %1: the server denies access.").arg(status);
    if (status >= 500)
        return tr("Status %1: the server failed.").arg(status);
    if (status >= 400)
        return tr("Status %1: the server rejected the request.").arg(status);
    if (status >= 300)
        return tr("Status %1: the server redirects, and the library does not follow.").arg(status);
    return tr("Status %1").arg(status);
}

QString Checks::writeProblem(const QString &path, qint64 bytes)
{
    const QFileInfo existing = nearestExisting(path);
    const bool isTarget = existing.absoluteFilePath() == QFileInfo(path).absoluteFilePath();
    if (isTarget && existing.isDir())
        return tr("There is a directory with this name.");
    if (!isTarget && !existing.isDir())
        return tr("%1 is not a directory.").arg(existing.filePath());
    if (!existing.isWritable())
        return tr("There is no permission to write to %1.").arg(existing.filePath());
    if (!hasSpace(existing.filePath(), bytes))
        return tr("There is no space left on the disk.");
    return QString();
}

QString Checks::archiveProblem(const QString &path)
{
    if (path.isEmpty())
        return tr("No archive was chosen.");
    const QFileInfo info(path);
    if (!info.exists())
        return tr("There is no such file: %1").arg(path);
    if (info.isDir())
        return tr("This is a directory, not an archive.");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return tr("There is no permission to read the file.");
    return file.read(zipSignature.size()) == zipSignature ? QString() : tr("The file is not a zip archive.");
}

void Checks::findCause(const QUrl &url, QObject *receiver, const CauseReceiver &done)
{
    auto *const manager = new QNetworkAccessManager(receiver);
    QNetworkReply *const reply = manager->head(QNetworkRequest(url));
    QTimer::singleShot(answerLimitMs, reply, &QNetworkReply::abort);
    QObject::connect(reply, &QNetworkReply::finished, receiver, [=] {
        manager->deleteLater();
        if (const int status = statusOf(reply))
            return done(status < 300 ? tr("The connection ended early.") : meaningOf(status), true);
        switch (reply->error()) {
        case QNetworkReply::HostNotFoundError:
            return done(tr("There is no server of this name."), false);
        case QNetworkReply::ConnectionRefusedError:
            return done(tr("No server runs at this address."), false);
        case QNetworkReply::OperationCanceledError:
        case QNetworkReply::TimeoutError:
            return done(tr("The server does not answer."), false);
        case QNetworkReply::SslHandshakeFailedError:
            return done(tr("The server's certificate is not trusted."), false);
        case QNetworkReply::ProtocolUnknownError:
            return done(tr("The address begins with an unknown scheme."), false);
        default:
            return done(reply->errorString(), false);
        }
    });
}

void Checks::findListener(const QUrl &url, QObject *receiver, const std::function<void(bool)> &done)
{
    auto *const socket = new QTcpSocket; // no child: its destructor emits stateChanged()
    QObject::connect(receiver, &QObject::destroyed, socket, &QObject::deleteLater);
    socket->setProxy(QNetworkProxy::NoProxy);
    QObject::connect(socket, &QTcpSocket::stateChanged, receiver, [=](QAbstractSocket::SocketState state) {
        if (state != QAbstractSocket::ConnectedState && state != QAbstractSocket::UnconnectedState)
            return;
        socket->disconnect(receiver);
        socket->deleteLater();
        done(state == QAbstractSocket::ConnectedState);
    });
    socket->connectToHost(url.host(), quint16(url.port(80)));
}
