// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Downloads.h"

#include "Files.h"
#include "Headers.h"
#include "Utf8.h"
#include "Waiting.h"

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>

#include <QDir>
#include <QElapsedTimer>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTemporaryDir>
#include <QThread>

using LocalServices::Authority;
using LocalServices::Certificate;
using LocalServices::Connection;
using LocalServices::HttpServer;
using LocalServices::RawServer;
using ZyBase::DownloadManager;
using namespace std::chrono_literals;

namespace {

const QString localHost = QStringLiteral("127.0.0.1");

QString speedText(double bytesPerSecond)
{
    if (bytesPerSecond < 1024.0)
        return QString::number(bytesPerSecond, 'f', 1) + utf8(" bytes/sec");
    if (bytesPerSecond < 1048576.0)
        return QString::number(bytesPerSecond / 1024.0, 'f', 1) + utf8(" kB/s");
    return QString::number(bytesPerSecond / 1048576.0, 'f', 1) + utf8(" MB/s");
}

// Returns the speed that the manager emits for a progress signal of its reply.
QString reportedSpeed(WatchedDownload *watched, qint64 bytesReceived)
{
    QMetaObject::invokeMethod(watched->manager(), "downloadProgress", Qt::DirectConnection,
                              Q_ARG(qint64, bytesReceived), Q_ARG(qint64, 1));
    return watched->progress().last().speed;
}

} // namespace

class TestDownload : public QObject
{
    Q_OBJECT

private:
    QUrl url(const QByteArray &path) const { return m_server->url(QString::fromUtf8(path)); }
    QString folder() const { return m_directory->path(); }
    QString file(const char *name) const { return m_directory->filePath(utf8(name)); }
    QStringList filesLeft() const
    {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }

    std::unique_ptr<HttpServer> m_server;
    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<HttpServer>();
        m_directory = std::make_unique<QTemporaryDir>();
    }
    void cleanup() { m_server.reset(); }

    void keepsSignalsAndSlotsInOrder()
    {
        const QMetaObject &meta = DownloadManager::staticMetaObject;
        QList<QByteArray> signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            const bool isSignal = method.methodType() == QMetaMethod::Signal;
            QVERIFY(isSignal || method.access() == QMetaMethod::Private);
            signatures << (isSignal ? "signal " : "slot ") + method.methodSignature();
        }
        QCOMPARE(signatures,
                 QList<QByteArray>(
                     {"signal finished()", "signal signalDownloadProgress(qlonglong,qlonglong,QString)",
                      "signal signalDownloadFinished(bool,QString)", "signal SignalStopDownload()",
                      "slot downloadProgress(qlonglong,qlonglong)", "slot downloadFinished()",
                      "slot downloadReadyRead()"}));
    }

    // Applications can read them from the meta-object.
    void keepsParameterNames()
    {
        const QMetaObject &meta = DownloadManager::staticMetaObject;
        QList<QList<QByteArray>> names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << meta.method(i).parameterNames();
        QCOMPARE(names, QList<QList<QByteArray>>({{},
                                                  {"bytesReceived", "bytesTotal", "strSpeed"},
                                                  {"bSuccess", "strFilePath"},
                                                  {},
                                                  {"bytesReceived", "bytesTotal"},
                                                  {},
                                                  {}}));
    }

    void keepsParent()
    {
        QObject parent;
        const auto *const manager = new DownloadManager(&parent);
        QCOMPARE(manager->parent(), &parent);
    }

    // --- The name of the file ----------------------------------------------------------------

    void returnsLastComponentAsFileName_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("expected");
        const QString x = utf8("/nowhere/x");
        QTest::newRow("directory without slash") << utf8("http://h/a/b.zip") << x << utf8("/nowhere/x/b.zip");
        QTest::newRow("directory with slash")
            << utf8("http://h/a/b.zip") << x + utf8("/") << utf8("/nowhere/x/b.zip");
        QTest::newRow("directory with slashes")
            << utf8("http://h/b.zip") << x + utf8("//") << utf8("/nowhere/x//b.zip");
        QTest::newRow("relative directory")
            << utf8("http://h/b.zip") << utf8("nowhere") << utf8("nowhere/b.zip");
        QTest::newRow("empty directory")
            << utf8("http://h/no-such-file") << utf8("") << utf8("/no-such-file");
        QTest::newRow("null directory")
            << utf8("http://h/no-such-file") << QString() << utf8("/no-such-file");
        QTest::newRow("query and fragment")
            << utf8("http://h/b.zip?name=c.zip&x=/d#e/f") << x << utf8("/nowhere/x/b.zip");
        QTest::newRow("encoded space") << utf8("http://h/a%20b.zip") << x << utf8("/nowhere/x/a b.zip");
        QTest::newRow("encoded characters")
            << utf8("http://h/%E6%96%87%C3%A4.zip") << x << utf8("/nowhere/x/文ä.zip");
        QTest::newRow("encoded slash") << utf8("http://h/a%2Fb.zip") << x << utf8("/nowhere/x/b.zip");
        QTest::newRow("encoded question mark") << utf8("http://h/a%3Fb") << x << utf8("/nowhere/x/a?b");
        QTest::newRow("encoded percent") << utf8("http://h/a%2541") << x << utf8("/nowhere/x/a%41");
        QTest::newRow("plus") << utf8("http://h/a+b") << x << utf8("/nowhere/x/a+b");
        QTest::newRow("path ends in a slash") << utf8("http://h/a/") << x << utf8("/nowhere/x/");
        QTest::newRow("root path") << utf8("http://h/") << x << utf8("/nowhere/x/");
        QTest::newRow("no path") << utf8("http://h") << x << utf8("/nowhere/x/");
        QTest::newRow("empty address") << utf8("") << x << utf8("/nowhere/x/");
        QTest::newRow("empty address and directory") << utf8("") << utf8("") << utf8("/");
    }
    void returnsLastComponentAsFileName()
    {
        QFETCH(QString, address);
        QFETCH(QString, directory);
        QFETCH(QString, expected);
        QCOMPARE(DownloadManager::saveFileName(QUrl(address), directory), expected);
    }

    void deletesFileWhenNameIsQueried()
    {
        QVERIFY(writeFile(file("b.zip"), "old"));
        QVERIFY(writeFile(file("other"), "kept"));
        DownloadManager::saveFileName(QUrl(utf8("http://h/b.zip")), folder());
        QCOMPARE(filesLeft(), QStringList {utf8("other")});
    }

    void keepsDirectoryWhenNameIsQueried()
    {
        QVERIFY(QDir(folder()).mkdir(utf8("b.zip")));
        QCOMPARE(DownloadManager::saveFileName(QUrl(utf8("http://h/b.zip")), folder()), file("b.zip"));
        QCOMPARE(filesLeft(), QStringList {utf8("b.zip")});
    }

    // --- Success -------------------------------------------------------------------------------

    void writesWholeContent_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<int>("size");
        constexpr int mebibyte = 1024 * 1024;
        for (const char *kind : {"bytes", "chunked", "gzip"}) {
            for (const int size : {0, 1, 16383, 16384, 65537, mebibyte - 1, mebibyte, mebibyte + 1,
                                   2 * mebibyte, 5 * mebibyte + 7}) {
                const QByteArray path = '/' + QByteArray(kind) + '/' + QByteArray::number(size);
                QTest::newRow(path.constData()) << path + "/file" << size;
            }
        }
    }
    void writesWholeContent()
    {
        QFETCH(QByteArray, path);
        QFETCH(int, size);
        WatchedDownload watched;
        QCOMPARE(watched.fetch(url(path), folder()), file("file"));
        QVERIFY(readFile(file("file")) == HttpServer::content(size));
        QCOMPARE(watched.outcomes().size(), 1);
        QCOMPARE(watched.finishedCount(), 0);
    }

    void writesWholeContentInBusyThread_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<int>("size");
        QTest::newRow("length") << QByteArray("/bytes/5000000/file") << 5000000;
        QTest::newRow("chunks") << QByteArray("/chunked/5000000/file") << 5000000;
        QTest::newRow("compressed") << QByteArray("/gzip/5000000/file") << 5000000;
        QTest::newRow("less than Qt reads ahead") << QByteArray("/bytes/500000/file") << 500000;
    }
    void writesWholeContentInBusyThread()
    {
        QFETCH(QByteArray, path);
        QFETCH(int, size);
        WatchedDownload watched;
        connect(watched.manager(), &DownloadManager::signalDownloadProgress, this,
                [] { QThread::msleep(30); });
        QVERIFY(watched.manager()->StartDownload(url(path), folder()));
        QThread::msleep(200); // Qt has read ahead before the first event
        QVERIFY(watched.waitForOutcomes());
        QVERIFY(readFile(file("file")) == HttpServer::content(size));
    }

    void acceptsTrailingSlash()
    {
        WatchedDownload watched;
        QCOMPARE(watched.fetch(url("/bytes/10/file"), folder() + QLatin1Char('/')), file("file"));
    }

    void decodesFileName()
    {
        WatchedDownload watched;
        QCOMPARE(watched.fetch(url("/bytes/10/%E6%96%87 a%20b ä.zip"), folder()), file("文 a b ä.zip"));
        QCOMPARE(readFile(file("文 a b ä.zip")), HttpServer::content(10));
    }

    void sendsHeadersOfQt()
    {
        WatchedDownload watched;
        watched.fetch(url("/bytes/10/file?x=1"), folder());
        QCOMPARE(m_server->requests().size(), 1);
        const HttpServer::Request request = m_server->requests().first();
        QCOMPARE(request.method, QByteArray("GET"));
        QCOMPARE(request.target, QByteArray("/bytes/10/file?x=1"));
        QCOMPARE(headersOf(request), headersOfQt(m_server->url(QString())));
    }

    void writesDataBeforeTheEnd()
    {
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(url("/bytes/4000000/file?rate=1000000"), folder()));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(file("file")).size() > 100000, longestWaitMs);
        QVERIFY(watched.outcomes().isEmpty());
        watched.manager()->StopDownload();
    }

    // --- Progress ------------------------------------------------------------------------------

    void emitsProgressUpToTotal()
    {
        WatchedDownload watched;
        watched.fetch(url("/bytes/1000000/file?rate=2000000"), folder());
        QVERIFY(watched.progress().size() > 2);
        qint64 before = 0;
        for (const WatchedDownload::Progress &progress : watched.progress()) {
            QVERIFY(progress.received >= before);
            QCOMPARE(progress.total, qint64(1000000));
            before = progress.received;
        }
        QCOMPARE(before, qint64(1000000));
    }

    void emitsTotalOfMinusOneWithoutLength()
    {
        const RawServer server([](Connection &client) {
            client.write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nsome");
            client.sleep(300);
            client.write("more");
        });
        WatchedDownload watched;
        QCOMPARE(watched.fetch(server.url(utf8("/file")), folder()), file("file"));
        QCOMPARE(readFile(file("file")), QByteArray("somemore"));
        QVERIFY(!watched.progress().isEmpty());
        QCOMPARE(watched.progress().first().total, qint64(-1));
    }

    void emitsMeanSpeedSinceStart_data()
    {
        QTest::addColumn<qint64>("bytes");
        for (const qint64 bytes : {0LL, 1LL, 50LL, 150LL, 1000LL, 50000LL, 123456LL, 300000LL, 3000000LL,
                                   1234567890LL, 1234567890123LL})
            QTest::addRow("%lld", bytes) << qint64(bytes);
    }
    void emitsMeanSpeedSinceStart()
    {
        QFETCH(qint64, bytes);
        WatchedDownload watched;
        QElapsedTimer outer;
        outer.start();
        QVERIFY(watched.manager()->StartDownload(url("/never/file"), folder()));
        QElapsedTimer inner;
        inner.start();
        QVERIFY(staysTrueFor(150ms, [&] { return watched.outcomes().isEmpty(); }));
        const qint64 least = inner.elapsed();
        const QString speed = reportedSpeed(&watched, bytes);
        QStringList possible;
        for (qint64 elapsed = least; elapsed <= outer.elapsed() + 1; ++elapsed)
            possible << speedText(double(bytes) * 1000.0 / double(elapsed));
        QVERIFY2(possible.contains(speed),
                 qPrintable(speed + utf8(" is not ") + possible.join(utf8(" or "))));
        watched.manager()->StopDownload();
    }

    void measuresSpeedOfEachDownload()
    {
        WatchedDownload watched;
        watched.fetch(url("/bytes/10/first"), folder());
        QVERIFY(staysTrueFor(600ms, [&] { return watched.outcomes().size() == 1; }));
        // Counted from the first start this would always be less than 1000 bytes/sec. A busy machine may need
        // half a second for the next line, but not in every attempt.
        QString speed = utf8("bytes/sec");
        for (int attempt = 0; attempt < 10 && speed.endsWith(utf8("bytes/sec")); ++attempt) {
            QVERIFY(watched.manager()->StartDownload(url("/never/file"), folder()));
            speed = reportedSpeed(&watched, 500);
            watched.manager()->StopDownload();
        }
        QVERIFY2(!speed.endsWith(utf8("bytes/sec")), qPrintable(speed));
    }

    // Emits progress around the moment at which the mean is exactly the limit of the unit.
    void changesUnitAtItsLimit_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("atLeast");
        QTest::addColumn<QString>("unitBelow");
        QTest::addColumn<QString>("never");
        QTest::newRow("kB/s") << qint64(1024) << utf8("1.0 kB/s") << utf8("bytes/sec")
                              << utf8("1024.0 bytes/sec");
        QTest::newRow("MB/s") << qint64(1048576) << utf8("1.0 MB/s") << utf8("kB/s") << utf8("1024.0 kB/s");
    }
    void changesUnitAtItsLimit()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, atLeast);
        QFETCH(QString, unitBelow);
        QFETCH(QString, never);
        QStringList texts;
        const auto hasBoth = [&] { return texts.contains(atLeast) && texts.last().endsWith(unitBelow); };
        for (int attempt = 0; attempt < 10 && (texts.isEmpty() || !hasBoth()); ++attempt) {
            WatchedDownload watched;
            QVERIFY(watched.manager()->StartDownload(url("/never/file"), folder()));
            QElapsedTimer clock;
            clock.start();
            QVERIFY(staysTrueFor(900ms, [&] { return watched.outcomes().isEmpty(); }));
            do {
                texts << reportedSpeed(&watched, bytes);
            } while (clock.elapsed() < 1003);
            watched.manager()->StopDownload();
        }
        QVERIFY(hasBoth());
        QVERIFY(!texts.contains(never));
    }

    void emitsNoNumberInFirstMillisecond_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("expected");
        QTest::newRow("nothing received") << qint64(0) << utf8("nan MB/s");
        QTest::newRow("something received") << qint64(1) << utf8("inf MB/s");
    }
    void emitsNoNumberInFirstMillisecond()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, expected);
        QString speed;
        // On a busy machine the millisecond may be over, but not in every attempt.
        for (int attempt = 0; attempt < 50 && speed != expected; ++attempt) {
            WatchedDownload watched;
            QVERIFY(watched.manager()->StartDownload(url("/never/file"), folder()));
            speed = reportedSpeed(&watched, bytes);
            watched.manager()->StopDownload();
        }
        QCOMPARE(speed, expected);
    }

    void emitsProgressUnchanged()
    {
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(url("/never/file"), folder()));
        QMetaObject::invokeMethod(watched.manager(), "downloadProgress", Qt::DirectConnection,
                                  Q_ARG(qint64, 5), Q_ARG(qint64, -1));
        QCOMPARE(watched.progress().size(), 1);
        QCOMPARE(watched.progress().first().received, qint64(5));
        QCOMPARE(watched.progress().first().total, qint64(-1));
        watched.manager()->StopDownload();
    }

    // --- Failure -------------------------------------------------------------------------------

    void removesFileAfterFailure_data()
    {
        QTest::addColumn<QByteArray>("path");
        for (const char *path :
             {"/status/400/file", "/status/401/file", "/status/403/file", "/status/404/file",
              "/status/418/file", "/status/500/file", "/status/503/file", "/redirect/301/file?to=/bytes/10",
              "/redirect/302/file?to=/bytes/10", "/redirect/303/file?to=/bytes/10",
              "/redirect/305/file?to=/bytes/10", "/redirect/307/file?to=/bytes/10",
              "/redirect/308/file?to=/bytes/10", "/status/301/file", "/status/302/file", "/status/303/file",
              "/status/305/file", "/status/307/file", "/status/308/file"})
            QTest::newRow(path) << QByteArray(path);
    }
    void removesFileAfterFailure()
    {
        QFETCH(QByteArray, path);
        QVERIFY(writeFile(file("file"), "old"));
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(url(path), folder()));
        QVERIFY(watched.waitForOutcomes());
        QVERIFY(staysTrueFor(20ms, [&] { return watched.outcomes().size() == 1; }));
        QVERIFY(!watched.outcomes().first().success);
        QVERIFY(watched.outcomes().first().path.isEmpty());
        QVERIFY(!watched.outcomes().first().path.isNull());
        QCOMPARE(filesLeft(), QStringList());
        QCOMPARE(m_server->requests().size(), 1); // no redirect is followed and no request is repeated
        QCOMPARE(watched.finishedCount(), 0);
    }

    // Qt 5 reports success for some connections that end early, and the file is then incomplete.
    void failsOrKeepsSentBytesIfConnectionBreaks()
    {
        constexpr int sentBytes = 1500000;
        bool hasFailed = false;
        for (int attempt = 0; attempt < 20 && !hasFailed; ++attempt) {
            WatchedDownload watched;
            QVERIFY(watched.manager()->StartDownload(url("/cut/3000000/file"), folder()));
            QVERIFY(watched.waitForOutcomes());
            QCOMPARE(watched.outcomes().size(), 1);
            hasFailed = !watched.outcomes().first().success;
            QCOMPARE(watched.outcomes().first().path, hasFailed ? QString() : file("file"));
            if (!hasFailed)
                QVERIFY(readFile(file("file")) == HttpServer::content(sentBytes));
        }
        QVERIFY(hasFailed);
        QCOMPARE(filesLeft(), QStringList());
    }

    void acceptsOtherStatus_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {200, 201, 204, 206, 300, 304, 306})
            QTest::addRow("%d", status) << status;
    }
    void acceptsOtherStatus()
    {
        QFETCH(int, status);
        WatchedDownload watched;
        const QByteArray number = QByteArray::number(status);
        QCOMPARE(watched.fetch(url("/status/" + number + "/file"), folder()), file("file"));
        QCOMPARE(readFile(file("file")),
                 status == 204 || status == 304 ? QByteArray("") : "status " + number);
    }

    void failsForUnreachableAddress_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("refused") << utf8("http://127.0.0.1:1/file");
        QTest::newRow("unknown host") << utf8("http://no-such-host.invalid/file");
        QTest::newRow("unsupported scheme") << utf8("gopher://127.0.0.1/file");
        QTest::newRow("no scheme") << utf8("/file");
        QTest::newRow("no host") << utf8("http:///file");
    }
    void failsForUnreachableAddress()
    {
        QFETCH(QString, address);
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(QUrl(address), folder()));
        QVERIFY(watched.waitForOutcomes());
        QVERIFY(!watched.outcomes().first().success);
        QCOMPARE(filesLeft(), QStringList());
    }

    void replacesOlderFileAtStart()
    {
        QVERIFY(writeFile(file("file"), "old"));
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(url("/never/file"), folder()));
        QVERIFY(QFile::exists(file("file")));
        QCOMPARE(readFile(file("file")), QByteArray(""));
        watched.manager()->StopDownload();
        QCOMPARE(filesLeft(), QStringList());
    }

    void returnsFalseForUnopenableFile_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QString>("directory");
        QTest::newRow("path ends in a slash") << QByteArray("/bytes/10/") << QString();
        QTest::newRow("root path") << QByteArray("/") << QString();
        QTest::newRow("no path") << QByteArray("") << QString();
        QTest::newRow("missing directory") << QByteArray("/bytes/10/file") << utf8("/missing");
    }
    void returnsFalseForUnopenableFile()
    {
        QFETCH(QByteArray, path);
        QFETCH(QString, directory);
        WatchedDownload watched;
        QVERIFY(!watched.manager()->StartDownload(url(path), folder() + directory));
        QVERIFY(staysTrueFor(100ms, [&] { return watched.outcomes().isEmpty(); }));
        QVERIFY(m_server->requests().isEmpty());
        QCOMPARE(filesLeft(), QStringList()); // no directory is created
        // The object can start the next download.
        watched.manager()->StopDownload();
        QCOMPARE(watched.fetch(url("/bytes/10/file"), folder()), file("file"));
    }

    void keepsDirectoryInPlaceOfFile()
    {
        QVERIFY(QDir(folder()).mkdir(utf8("file")));
        WatchedDownload watched;
        QVERIFY(!watched.manager()->StartDownload(url("/bytes/10/file"), folder()));
        QCOMPARE(filesLeft(), QStringList {utf8("file")});
    }

    // --- Redirects --------------------------------------------------------

    void detectsRedirectStatus_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("expected");
        for (const int status : {301, 302, 303, 305, 307, 308})
            QTest::addRow("%d", status) << status << true;
        for (const int status : {200, 300, 304, 306, 309, 404})
            QTest::addRow("%d", status) << status << false;
    }
    void detectsRedirectStatus()
    {
        QFETCH(int, status);
        QFETCH(bool, expected);
        const RawServer server([status](Connection &client) {
            client.write("HTTP/1.1 " + QByteArray::number(status) + " X\r\nContent-Length: 1000\r\n\r\n");
            while (client.sleep(20))
                client.write("x");
        });
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(server.url(utf8("/file")), folder()));
        QVERIFY(!watched.manager()->isHttpRedirect()); // before the status was received
        if (status != 304) {
            QTRY_VERIFY_WITH_TIMEOUT(!watched.progress().isEmpty(), longestWaitMs);
            QCOMPARE(watched.manager()->isHttpRedirect(), expected);
        }
        watched.manager()->StopDownload();
    }

    // --- Stopping ------------------------------------------------------------------------------

    void stopsAtOnce_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<int>("stage");
        QTest::newRow("right after the start") << QByteArray("/bytes/1000000/file") << 0;
        QTest::newRow("before the answer") << QByteArray("/never/file") << 1;
        QTest::newRow("in the middle") << QByteArray("/bytes/100000000/file?rate=1000000") << 2;
        QTest::newRow("in the middle, at full speed") << QByteArray("/bytes/1000000000/file") << 2;
        QTest::newRow("in chunks") << QByteArray("/drip/file") << 2;
    }
    void stopsAtOnce()
    {
        QFETCH(QByteArray, path);
        QFETCH(int, stage);
        WatchedDownload watched;
        int stops = 0;
        connect(watched.manager(), &DownloadManager::SignalStopDownload, [&stops] { ++stops; });
        QVERIFY(watched.manager()->StartDownload(url(path), folder()));
        if (stage == 1)
            QTRY_COMPARE_WITH_TIMEOUT(m_server->requests().size(), 1, longestWaitMs);
        if (stage == 2)
            QTRY_VERIFY_WITH_TIMEOUT(!watched.progress().isEmpty(), longestWaitMs);
        QVERIFY(watched.outcomes().isEmpty());
        watched.manager()->StopDownload();
        QCOMPARE(stops, 1);
        QCOMPARE(watched.outcomes().size(), 1);
        QVERIFY(!watched.outcomes().first().success);
        QVERIFY(watched.outcomes().first().path.isEmpty());
        QCOMPARE(filesLeft(), QStringList());
        // No download is running now.
        watched.manager()->StopDownload();
        QVERIFY(staysTrueFor(50ms, [&] { return stops == 1 && watched.outcomes().size() == 1; }));
        QCOMPARE(filesLeft(), QStringList());
    }

    void stopsInProgressHandler()
    {
        WatchedDownload watched;
        connect(watched.manager(), &DownloadManager::signalDownloadProgress, watched.manager(),
                &DownloadManager::StopDownload);
        // Slow enough for a progress signal before the end.
        QVERIFY(watched.manager()->StartDownload(url("/bytes/100000000/file?rate=10000000"), folder()));
        QVERIFY(watched.waitForOutcomes());
        QVERIFY(staysTrueFor(50ms, [&] { return watched.outcomes().size() == 1; }));
        QVERIFY(!watched.outcomes().first().success);
        QCOMPARE(filesLeft(), QStringList());
    }

    void ignoresStopInFinishedHandler()
    {
        WatchedDownload watched;
        connect(watched.manager(), &DownloadManager::signalDownloadFinished, watched.manager(),
                &DownloadManager::StopDownload);
        QCOMPARE(watched.fetch(url("/bytes/10/file"), folder()), file("file"));
        QVERIFY(staysTrueFor(20ms, [&] { return watched.outcomes().size() == 1; }));
    }

    void emitsNothingForStopWithoutDownload()
    {
        WatchedDownload watched;
        int stops = 0;
        connect(watched.manager(), &DownloadManager::SignalStopDownload, [&stops] { ++stops; });
        watched.manager()->StopDownload();
        watched.fetch(url("/bytes/10/file"), folder());
        watched.manager()->StopDownload();
        QVERIFY(!watched.manager()->StartDownload(url("/"), folder()));
        watched.manager()->StopDownload();
        QCOMPARE(stops, 0);
        QCOMPARE(watched.outcomes().size(), 1);
    }

    void stopsBySignal()
    {
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(url("/never/file"), folder()));
        Q_EMIT watched.manager()->SignalStopDownload();
        QCOMPARE(watched.outcomes().size(), 1);
    }

    // --- Reuse and lifetime --------------------------------------------------------------------------

    void downloadsRepeatedly()
    {
        WatchedDownload watched;
        for (int i = 0; i < 20; ++i) {
            const QByteArray name = "file" + QByteArray::number(i);
            const int size = 10000 * i;
            QCOMPARE(watched.fetch(url("/bytes/" + QByteArray::number(size) + '/' + name), folder()),
                     file(name.constData()));
            QCOMPARE(readFile(file(name.constData())), HttpServer::content(size));
            QCOMPARE(watched.fetch(url("/status/404/" + name + "x"), folder()), QString());
        }
        QCOMPARE(watched.outcomes().size(), 40);
        QCOMPARE(filesLeft().size(), 20);
    }

    void downloadsSameFileAgain()
    {
        WatchedDownload watched;
        watched.fetch(url("/bytes/5000/file"), folder());
        watched.fetch(url("/bytes/10/file"), folder());
        QCOMPARE(readFile(file("file")), HttpServer::content(10));
    }

    void startsNextDownloadInFinishedHandler()
    {
        WatchedDownload watched;
        connect(watched.manager(), &DownloadManager::signalDownloadFinished, this, [&] {
            if (watched.outcomes().size() < 5)
                QVERIFY(watched.manager()->StartDownload(
                    url("/bytes/100/file" + QByteArray::number(watched.outcomes().size())), folder()));
        });
        QVERIFY(watched.manager()->StartDownload(url("/bytes/100/file0"), folder()));
        QVERIFY(watched.waitForOutcomes(5));
        QCOMPARE(filesLeft().size(), 5);
    }

    void releasesReply()
    {
        // Each existing reply is connected to the stop signal.
        class Counting : public DownloadManager
        {
        public:
            int replies() const { return receivers(SIGNAL(SignalStopDownload())); }
        };
        Counting manager;
        bool isOver = false;
        connect(&manager, &DownloadManager::signalDownloadFinished, [&isOver] { isOver = true; });
        QVERIFY(manager.StartDownload(url("/bytes/10/file"), folder()));
        QCOMPARE(manager.replies(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(isOver, longestWaitMs);
        QTRY_COMPARE_WITH_TIMEOUT(manager.replies(), 0, longestWaitMs);
    }

    void keepsFileAndEmitsNothingWhenDestroyed()
    {
        int outcomes = 0;
        {
            DownloadManager manager;
            connect(&manager, &DownloadManager::signalDownloadFinished, [&outcomes] { ++outcomes; });
            QVERIFY(manager.StartDownload(url("/bytes/4000000/file?rate=1000000"), folder()));
            QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(file("file")).size() > 100000, longestWaitMs);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_server->openConnections(), 0, longestWaitMs);
        QCOMPARE(outcomes, 0);
        QCOMPARE(filesLeft(), QStringList {utf8("file")});
        QVERIFY(QFileInfo(file("file")).size() > 100000);
    }

    void downloadsWithTwoObjects()
    {
        WatchedDownload first;
        WatchedDownload second;
        QVERIFY(first.manager()->StartDownload(url("/bytes/300000/first?rate=1000000"), folder()));
        QVERIFY(second.manager()->StartDownload(url("/bytes/200000/second?rate=1000000"), folder()));
        QVERIFY(first.waitForOutcomes());
        QVERIFY(second.waitForOutcomes());
        QCOMPARE(readFile(file("first")), HttpServer::content(300000));
        QCOMPARE(readFile(file("second")), HttpServer::content(200000));
    }

    // --- Certificates ----------------------------------------------------------------------------

    void rejectsUntrustedCertificate()
    {
        const HttpServer server(Authority::selfSigned(localHost));
        WatchedDownload watched;
        QVERIFY(watched.manager()->StartDownload(server.url(utf8("/bytes/10/file")), folder()));
        QVERIFY(watched.waitForOutcomes());
        QVERIFY(!watched.outcomes().first().success);
        QCOMPARE(filesLeft(), QStringList());
        QVERIFY(server.requests().isEmpty());
    }

    void acceptsTrustedCertificate()
    {
        const Authority authority;
        const HttpServer server(authority.issue(localHost));
        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration trusting = before;
        trusting.setCaCertificates({QSslCertificate(authority.certificate())});
        QSslConfiguration::setDefaultConfiguration(trusting);
        WatchedDownload watched;
        const QString path = watched.fetch(server.url(utf8("/bytes/3000000/file")), folder());
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(path, file("file"));
        QCOMPARE(readFile(path), HttpServer::content(3000000));
    }
};

QTEST_GUILESS_MAIN(TestDownload)

#include "tst_download.moc"
