// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "Files.h"
#include "FilesTest.h"
#include "HostProcess.h"

#include <QCryptographicHash>
#include <QDir>
#include <QRegularExpression>

#include <atomic>
#include <ctime>
#include <pthread.h>
#include <thread>

using ZyBase::CFileUtils;

namespace {

const QString md5OfZeroBytes = QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");
constexpr qint64 bytesPerMebibyte = 1024LL * 1024;
// Not a multiple of the chunk size.
constexpr qint64 largeSizeBytes = (ZYBASE_SANITIZED ? 16 : 128) * bytesPerMebibyte + 100;

QByteArray sample(int length)
{
    QByteArray bytes;
    for (int i = 0; i < length; ++i)
        bytes += char(i * 7 + i / 251);
    return bytes;
}

QByteArray md5OfZeros(qint64 length)
{
    QCryptographicHash hash(QCryptographicHash::Md5);
    const QByteArray zeros(int(bytesPerMebibyte), '\0');
    for (qint64 done = 0; done < length; done += bytesPerMebibyte)
        hash.addData(zeros.constData(), int(qMin(bytesPerMebibyte, length - done)));
    return hash.result();
}

// Returns the peak memory of the process in KiB.
qint64 peakMemoryKiB(HostProcess *host)
{
    const QString status =
        host->call(QStringLiteral("process.readFile"), {QStringLiteral("/proc/self/status")}).toString();
    return QRegularExpression(QStringLiteral("VmHWM:\\s*(\\d+)")).match(status).captured(1).toLongLong();
}

// Returns the position in the file that this process reads, or -1 if the file is not open.
qint64 readPosition(const QString &path)
{
    const QFileInfoList descriptors = QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files);
    for (const QFileInfo &descriptor : descriptors) {
        if (descriptor.symLinkTarget() != path)
            continue;
        const QString information =
            QString::fromUtf8(readFile(QStringLiteral("/proc/self/fdinfo/") + descriptor.fileName()));
        return QRegularExpression(QStringLiteral("pos:\\s*(\\d+)"))
            .match(information)
            .captured(1)
            .toLongLong();
    }
    return -1;
}

double processorTimeSeconds(pthread_t thread)
{
    clockid_t clock {};
    timespec time {};
    if (pthread_getcpuclockid(thread, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return 0;
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

} // namespace

class TestFileHashes : public FilesTest
{
    Q_OBJECT

private:
private Q_SLOTS:
    void returnsMd5OfContent_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        const auto digest = [](const QByteArray &content) {
            return QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex());
        };
        QTest::newRow("empty") << QByteArray() << md5OfZeroBytes;
        QTest::newRow("abc") << QByteArray("abc") << "900150983cd24fb0d6963f7d28e17f72";
        QTest::newRow("digest with a leading zero")
            << QByteArray("168") << "006f52e9102a8d3be2fe5614f42ba989";
        QTest::newRow("NUL bytes") << QByteArray("a\0b\0", 4) << digest(QByteArray("a\0b\0", 4));
        QTest::newRow("line endings") << QByteArray("a\r\nb\n\r") << digest("a\r\nb\n\r");
        for (const int length : {1, 4095, 4096, 4097, 8191, 8192, 8193, 16384, 16385, 1000003})
            QTest::newRow(QByteArray::number(length).constData()) << sample(length) << digest(sample(length));
    }
    void returnsMd5OfContent()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QVERIFY(writeFile(path("file"), content));
        QCOMPARE(CFileUtils::GetFileMd5(path("file")), expected);
        const QByteArray digest = getBigFileMd5(path("file"));
        QCOMPARE(digest.size(), 16);
        QCOMPARE(QString::fromLatin1(digest.toHex()), expected);
        QCOMPARE(messages().size(), 0);
    }

    void returnsNullOrMd5OfZeroBytesIfFileCannotBeOpened_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << "missing";
        QTest::newRow("is a directory") << ".";
        QTest::newRow("in a missing directory") << "missing/file";
        QTest::newRow("no permission") << "secret";
    }
    void returnsNullOrMd5OfZeroBytesIfFileCannotBeOpened()
    {
        QFETCH(QString, name);
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(path("secret"), "secret"));
        QVERIFY(QFile::setPermissions(path("secret"), QFile::Permissions()));

        const QByteArray digest = getBigFileMd5(path(name));
        QVERIFY(digest.isNull());
        QCOMPARE(messages().size(), 0);
        QCOMPARE(CFileUtils::GetFileMd5(path(name)), md5OfZeroBytes);
        // Qt logs a warning if the device is not open. The library logs nothing.
        for (const Message &message : messages())
            QVERIFY(message.text.startsWith(QStringLiteral("QIODevice::read")));
    }

    void returnsNullOrMd5OfZeroBytesForEmptyPath()
    {
        QVERIFY(getBigFileMd5(QString()).isNull());
        QCOMPARE(CFileUtils::GetFileMd5(QString()), md5OfZeroBytes);
    }

    void returnsMd5OfZeroBytesForFileWithoutSize()
    {
        const QString status = QStringLiteral("/proc/self/status");
        QCOMPARE(QString::fromLatin1(getBigFileMd5(status).toHex()), md5OfZeroBytes);
        QVERIFY(CFileUtils::GetFileMd5(status) != md5OfZeroBytes);
    }

    void keepsMemoryConstantForLargeFile()
    {
        if (ZYBASE_SANITIZED)
            QSKIP("sanitizers use additional memory");
        QVERIFY(writeFile(path("large"), QByteArray()));
        QVERIFY(QFile::resize(path("large"), largeSizeBytes));
        HostProcess host;
        QVERIFY(host.start());
        QVERIFY(writeFile(path("small"), sample(100000)));
        host.call(QStringLiteral("files.bigFileMd5"), {path("small")});
        const qint64 before = peakMemoryKiB(&host);
        const QString digest = host.call(QStringLiteral("files.bigFileMd5"), {path("large")}).toString();
        QCOMPARE(digest, QString::fromLatin1(md5OfZeros(largeSizeBytes).toHex()));
        QVERIFY(before > 0);
        QVERIFY2(peakMemoryKiB(&host) - before < 256, "more than 256 KiB");
    }

    void waitsUntilShortenedFileHasItsLengthAgain()
    {
        const QString large = QDir(directoryPath()).canonicalPath() + QStringLiteral("/large");
        QVERIFY(writeFile(large, QByteArray(int(largeSizeBytes), 'x')));
        std::atomic<bool> done {false};
        QByteArray digest;
        std::thread reader([&] {
            digest = getBigFileMd5(large);
            done = true;
        });
        // No QVERIFY() before join(): it would return while the thread runs.
        const bool isReading = QTest::qWaitFor([&] { return readPosition(large) > 0; });
        const bool isShortened = QFile::resize(large, 0);
        const double spent = processorTimeSeconds(reader.native_handle());
        const bool isBusy = QTest::qWaitFor(
            [&] { return !done && processorTimeSeconds(reader.native_handle()) > spent + 0.2; }, 60000);
        const bool isUnfinished = !done;
        const qint64 position = readPosition(large);
        // The file becomes longer than before, with zeros. Only its original length is hashed.
        const bool isExtended = QFile::resize(large, largeSizeBytes + bytesPerMebibyte);
        reader.join();
        QVERIFY(isReading);
        QVERIFY(isShortened);
        QVERIFY(isBusy);
        QVERIFY(isUnfinished);
        QVERIFY(isExtended);
        const QByteArray hashed =
            QByteArray(int(position), 'x') + QByteArray(int(largeSizeBytes - position), '\0');
        QCOMPARE(digest, QCryptographicHash::hash(hashed, QCryptographicHash::Md5));
    }

    void returnsMd5OfZeroBytesForFileOf2GiB()
    {
        // QFile::readAll() returns nothing if a file does not fit into a QByteArray.
        QVERIFY(writeFile(path("huge"), QByteArray()));
        if (!QFile::resize(path("huge"), 2048 * bytesPerMebibyte))
            QSKIP("this file system does not allow a file of 2 GiB");
        QCOMPARE(CFileUtils::GetFileMd5(path("huge")), md5OfZeroBytes);
    }
};

QTEST_GUILESS_MAIN(TestFileHashes)

#include "tst_file_hashes.moc"
