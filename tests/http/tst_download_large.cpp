// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Downloads.h"

#include "ProcessFigures.h"

#include <localservices/HttpServer.h>
#include <localservices/Nginx.h>

#include <QFile>
#include <QTemporaryDir>

using LocalServices::HttpServer;
using LocalServices::Nginx;

namespace {

constexpr qint64 mebi = 1024 * 1024;
constexpr bool isSanitized = ZYBASE_SANITIZED != 0;
constexpr qint64 largeSize = (isSanitized ? 256 : 2048) * mebi;
// What a sanitizer keeps of freed memory is not ours to count.
constexpr qint64 allowedGrowth = (isSanitized ? 1024 : 16) * mebi;

} // namespace

class TestDownloadLarge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void memoryStaysFlat()
    {
        if (!Nginx::isAvailable())
            QSKIP("nginx is not installed");
        const Nginx server;
        QVERIFY(server.isRunning());
        QFile hole(server.filePath(QStringLiteral("large")));
        QVERIFY(hole.open(QIODevice::WriteOnly) && hole.resize(largeSize));
        const QTemporaryDir directory;
        WatchedDownload watched;
        // What is made once, for any download, is no growth.
        QFile small(server.filePath(QStringLiteral("small")));
        QVERIFY(small.open(QIODevice::WriteOnly) && small.resize(2 * mebi));
        QVERIFY(!watched.fetch(server.url(QStringLiteral("/small")), directory.path()).isNull());

        if (!ProcessFigures::resetPeak())
            QSKIP("the system doesn't let the peak be measured");
        const qint64 before = ProcessFigures::residentBytes();
        const QString path = watched.fetch(server.url(QStringLiteral("/large")), directory.path());
        const qint64 growth = ProcessFigures::peakBytes() - before;
        QCOMPARE(QFileInfo(path).size(), largeSize);
        QCOMPARE(watched.progress().last().received, largeSize);
        QVERIFY2(growth < allowedGrowth, qPrintable(QStringLiteral("%1 MiB").arg(growth / mebi)));
    }

    void everyByteIsInItsPlace()
    {
        constexpr qint64 size = 64 * mebi;
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
