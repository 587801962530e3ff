// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "Files.h"
#include "HostProcess.h"
#include "MessageCapture.h"
#include "OrdinaryUser.h"

#include <QCryptographicHash>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <ctime>
#include <pthread.h>
#include <thread>

using ZyBase::CFileUtils;

namespace {

const QString md5OfNothing = QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");
constexpr qint64 mebibyte = 1024LL * 1024;
// Ends in the middle of a chunk.
constexpr qint64 largeSize = (ZYBASE_SANITIZED ? 16 : 128) * mebibyte + 100;

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
    const QByteArray zeros(int(mebibyte), '\0');
    for (qint64 done = 0; done < length; done += mebibyte)
        hash.addData(zeros.constData(), int(qMin(mebibyte, length - done)));
    return hash.result();
}

// The most memory that the host ever held, in KiB.
qint64 peakMemory(HostProcess *host)
{
    const QString status =
        host->call(QStringLiteral("process.readFile"), {QStringLiteral("/proc/self/status")}).toString();
    return QRegularExpression(QStringLiteral("VmHWM:\\s*(\\d+)")).match(status).captured(1).toLongLong();
}

// How far this process has read the file; -1 while it isn't open.
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

double processorSeconds(pthread_t thread)
{
    clockid_t clock {};
    timespec time {};
    if (pthread_getcpuclockid(thread, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return 0;
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

} // namespace

class TestFileHashes : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_directory->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void bothHashesAreTheMd5OfTheContent_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        const auto digest = [](const QByteArray &content) {
            return QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex());
        };
        QTest::newRow("empty") << QByteArray() << md5OfNothing;
        QTest::newRow("abc") << QByteArray("abc") << "900150983cd24fb0d6963f7d28e17f72";
        QTest::newRow("digest with a leading zero")
            << QByteArray("168") << "006f52e9102a8d3be2fe5614f42ba989";
        QTest::newRow("NUL bytes") << QByteArray("a\0b\0", 4) << digest(QByteArray("a\0b\0", 4));
        QTest::newRow("line endings") << QByteArray("a\r\nb\n\r") << digest("a\r\nb\n\r");
        for (const int length : {1, 4095, 4096, 4097, 8191, 8192, 8193, 16384, 16385, 1000003})
            QTest::newRow(QByteArray::number(length).constData()) << sample(length) << digest(sample(length));
    }
    void bothHashesAreTheMd5OfTheContent()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QVERIFY(writeFile(path("file"), content));
        const MessageCapture messages;
        QCOMPARE(CFileUtils::GetFileMd5(path("file")), expected);
        const QByteArray digest = getBigFileMd5(path("file"));
        QCOMPARE(digest.size(), 16);
        QCOMPARE(QString::fromLatin1(digest.toHex()), expected);
        QCOMPARE(messages.messages().size(), 0);
    }

    void fileThatCannotBeOpenedIsNullForOneAndNothingForTheOther_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << "missing";
        QTest::newRow("directory") << ".";
        QTest::newRow("in a missing directory") << "missing/file";
        QTest::newRow("no permission") << "secret";
    }
    void fileThatCannotBeOpenedIsNullForOneAndNothingForTheOther()
    {
        QFETCH(QString, name);
        m_directory.reset();
        const OrdinaryUser user;
        if (!user.isOrdinary())
            QSKIP("root passes every permission check");
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(writeFile(path("secret"), "secret"));
        QVERIFY(QFile::setPermissions(path("secret"), QFile::Permissions()));

        const MessageCapture messages;
        const QByteArray digest = getBigFileMd5(m_directory->filePath(name));
        QVERIFY(digest.isNull());
        QCOMPARE(messages.messages().size(), 0);
        QCOMPARE(CFileUtils::GetFileMd5(m_directory->filePath(name)), md5OfNothing);
        // Qt's own about the device that isn't open, where it says so; the library adds none.
        for (const MessageCapture::Message &message : messages.messages())
            QVERIFY(message.text.startsWith(QStringLiteral("QIODevice::read")));
    }

    void emptyPathIsAFileThatCannotBeOpened()
    {
        const MessageCapture messages;
        QVERIFY(getBigFileMd5(QString()).isNull());
        QCOMPARE(CFileUtils::GetFileMd5(QString()), md5OfNothing);
    }

    void streamedHashOfAFileWithoutASizeIsThatOfNothing()
    {
        const QString status = QStringLiteral("/proc/self/status");
        QCOMPARE(QString::fromLatin1(getBigFileMd5(status).toHex()), md5OfNothing);
        QVERIFY(CFileUtils::GetFileMd5(status) != md5OfNothing);
    }

    void streamedHashKeepsMemoryFlat()
    {
        if (ZYBASE_SANITIZED)
            QSKIP("sanitizers hold memory of their own");
        QVERIFY(writeFile(path("large"), QByteArray()));
        QVERIFY(QFile::resize(path("large"), largeSize));
        HostProcess host;
        QVERIFY(host.start());
        QVERIFY(writeFile(path("small"), sample(100000)));
        host.call(QStringLiteral("files.bigFileMd5"), {path("small")});
        const qint64 before = peakMemory(&host);
        const QString digest = host.call(QStringLiteral("files.bigFileMd5"), {path("large")}).toString();
        QCOMPARE(digest, QString::fromLatin1(md5OfZeros(largeSize).toHex()));
        QVERIFY(before > 0);
        QVERIFY2(peakMemory(&host) - before < 256, "more than 256 KiB");
    }

    void streamedHashOfAFileThatGotShorterGoesOnUntilItHasItsLengthAgain()
    {
        const QString large = QDir(m_directory->path()).canonicalPath() + QStringLiteral("/large");
        QVERIFY(writeFile(large, QByteArray()));
        QVERIFY(QFile::resize(large, largeSize));
        std::atomic<bool> done {false};
        QByteArray digest;
        std::thread reader([&] {
            digest = getBigFileMd5(large);
            done = true;
        });
        // Nothing in between may return: the thread has to be joined.
        const bool isReading = QTest::qWaitFor([&] { return readPosition(large) > 0; });
        const bool isCut = QFile::resize(large, 0);
        const double spent = processorSeconds(reader.native_handle());
        const bool keepsTurning = QTest::qWaitFor(
            [&] { return !done && processorSeconds(reader.native_handle()) > spent + 0.2; }, 60000);
        const bool isUnfinished = !done;
        // Longer than before: what was added behind the size taken at the start doesn't count.
        const bool isLong = QFile::resize(large, largeSize + mebibyte);
        reader.join();
        QVERIFY(isReading);
        QVERIFY(isCut);
        QVERIFY(keepsTurning);
        QVERIFY(isUnfinished);
        QVERIFY(isLong);
        QCOMPARE(digest, md5OfZeros(largeSize));
    }

    void plainHashOfMoreThanAnArrayHoldsIsThatOfNothing()
    {
        // Qt reads nothing of a file that doesn't fit into a QByteArray.
        QVERIFY(writeFile(path("huge"), QByteArray()));
        if (!QFile::resize(path("huge"), 2048 * mebibyte))
            QSKIP("no file of this size can be made here");
        const MessageCapture messages;
        QCOMPARE(CFileUtils::GetFileMd5(path("huge")), md5OfNothing);
    }
};

QTEST_GUILESS_MAIN(TestFileHashes)

#include "tst_file_hashes.moc"
