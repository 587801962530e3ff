// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Downloads.h"

#include "Files.h"
#include "ProcessFigures.h"

#include <localservices/HttpServer.h>
#include <localservices/Nginx.h>

#include <QFile>
#include <QTemporaryDir>

using LocalServices::HttpServer;
using LocalServices::Nginx;

namespace {

constexpr qint64 mebibyte = 1024 * 1024;
constexpr bool isSanitized = ZYBASE_SANITIZED != 0;
constexpr qint64 largeSizeBytes = (isSanitized ? 256 : 2048) * mebibyte;

// If the disk is busy, Qt holds several times what the system has received, which is limited by the largest
// receive buffer. Sanitizers keep freed memory.
qint64 allowedGrowthBytes()
{
    const QByteArray sizes = readFile(QStringLiteral("/proc/sys/net/ipv4/tcp_rmem")).simplified();
    return (isSanitized ? 1024 : 16) * mebibyte + 4 * sizes.split(' ').last().toLongLong();
}

} // namespace

class TestDownloadLarge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usesLittleMemory()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        const Nginx server;
        QVERIFY(server.isRunning());
        QFile large(server.filePath(QStringLiteral("large")));
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(largeSizeBytes));
        const QTemporaryDir directory;
        WatchedDownload watched;
        // Memory that Qt allocates once is not counted.
        QFile small(server.filePath(QStringLiteral("small")));
        QVERIFY(small.open(QIODevice::WriteOnly) && small.resize(2 * mebibyte));
        QVERIFY(!watched.fetch(server.url(QStringLiteral("/small")), directory.path()).isNull());

        const qint64 before = ProcessFigures::residentBytes();
        qint64 peak = before;
        connect(watched.manager(), &ZyBase::DownloadManager::signalDownloadProgress, this,
                [&peak] { peak = qMax(peak, ProcessFigures::residentBytes()); });
        const QString path = watched.fetch(server.url(QStringLiteral("/large")), directory.path());
        const qint64 growth = peak - before;
        QCOMPARE(QFileInfo(path).size(), largeSizeBytes);
        QCOMPARE(watched.progress().last().received, largeSizeBytes);
        QVERIFY2(growth < allowedGrowthBytes(), qPrintable(QStringLiteral("%1 MiB").arg(growth / mebibyte)));
    }

    void writesEveryByte()
    {
        constexpr qint64 size = 64 * mebibyte;
        const HttpServer server;
        const QTemporaryDir directory;
        WatchedDownload watched;
        const QString path =
            watched.fetch(server.url(QStringLiteral("/bytes/%1/file").arg(size)), directory.path());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll() == HttpServer::content(int(size)));
    }
};

QTEST_GUILESS_MAIN(TestDownloadLarge)

#include "tst_download_large.moc"
