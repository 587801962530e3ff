// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/ZipManager.h>

#include "Archives.h"
#include "Files.h"
#include "FilesTest.h"
#include "HostProcess.h"

#include <QDir>
#include <QDirIterator>
#include <QMap>
#include <QTextCodec>

#include <quazip.h>
#include <quazipfile.h>

#include <fcntl.h>
#include <unistd.h>

using ZyBase::ZipManager;

namespace {

constexpr int manyFiles = 2000; // a process can usually open 1,024 at a time
constexpr int manyEntries = 66000; // more than 65,535 need the Zip64 format

// Returns the content of each file in a directory by its relative path. The path of a directory ends with
// "/".
QMap<QString, QByteArray> tree(const QString &directory)
{
    QMap<QString, QByteArray> found;
    QDirIterator entry(directory, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (entry.hasNext()) {
        const QString path = entry.next();
        const QString name = path.mid(directory.length() + 1);
        if (entry.fileInfo().isDir())
            found.insert(name + QLatin1Char('/'), QByteArray());
        else
            found.insert(name, readFile(path));
    }
    return found;
}

// Returns the content of a file whose path is given as bytes, independently of the locale of this process.
QByteArray readFileNamed(const QByteArray &path)
{
    QFile file;
    const int descriptor = open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return QByteArray();
    return file.readAll();
}

bool makeSourceTree(const QString &directory)
{
    QByteArray binary;
    for (int i = 0; i < 300000; ++i)
        binary += char((quint32(i) * 2654435761U) >> 24U);
    return QDir().mkpath(directory + utf8("/sub/deep")) && QDir().mkpath(directory + utf8("/目录"))
           && writeFile(directory + utf8("/a.txt"), "hello\r\n") && writeFile(directory + utf8("/empty"), "")
           && writeFile(directory + utf8("/.hidden"), "hidden")
           && writeFile(directory + utf8("/zeros.bin"), QByteArray(1000000, '\0'))
           && writeFile(directory + utf8("/sub/deep/random.bin"), binary)
           && writeFile(directory + utf8("/目录/报告 ü.txt"), "文件");
}

// Whether the installed QuaZip reads each entry. Built without bzip2, it returns the compressed bytes.
bool canQuaZipRead(const QString &archive)
{
    QuaZip zip(archive);
    if (!zip.open(QuaZip::mdUnzip))
        return false;
    QuaZipFile entry(&zip);
    for (bool hasEntry = zip.goToFirstFile(); hasEntry; hasEntry = zip.goToNextFile()) {
        if (!entry.open(QIODevice::ReadOnly) || entry.readAll().size() != entry.usize())
            return false;
        entry.close();
    }
    return true;
}

} // namespace

// Archives that common tools create.
class TestZipArchives : public FilesTest
{
    Q_OBJECT

private:
    // Extracts the archive in a process with this locale, which decides how QuaZip decodes unmarked names.
    QJsonValue extractInLocale(const QString &locale) const
    {
        HostProcess host;
        host.setEnvironment(utf8("LC_ALL"), locale);
        if (!host.start())
            return QJsonValue();
        return host.call(utf8("files.unzip"), {path("archive.zip"), path("target"), true});
    }

private Q_SLOTS:
    void extractsSameFilesAsPacked_data()
    {
        QTest::addColumn<QStringList>("command");
        const auto row = [](const char *name, const char *command) {
            QTest::newRow(name) << utf8(command).split(QLatin1Char(' '));
        };
        row("Info-ZIP, deflated", "zip -q -r ../archive.zip .");
        row("Info-ZIP, stored", "zip -q -0 -r ../archive.zip .");
        row("Info-ZIP, best, no directory entries", "zip -q -9 -D -r ../archive.zip .");
        row("Info-ZIP, zip64 forms", "zip -q -fz -r ../archive.zip .");
        row("7-Zip, deflated", "7z a -tzip -bd ../archive.zip .");
        row("7-Zip, stored", "7z a -tzip -bd -mx=0 ../archive.zip .");
        row("7-Zip, bzip2", "7z a -tzip -bd -mm=BZip2 ../archive.zip .");
        row("7-Zip, UTF-8 marks", "7z a -tzip -bd -mcu=on ../archive.zip .");
        row("Python, stored", "python3 -m zipfile -c ../archive.zip ./");
    }
    void extractsSameFilesAsPacked()
    {
        QFETCH(QStringList, command);
        QVERIFY(makeSourceTree(path("source")));
        qputenv("LC_ALL", "C.UTF-8");
        const QString program = command.takeFirst();
        if (!runTool(program, command, path("source")))
            QSKIP(qPrintable(program + utf8(" is not installed")));
        if (!canQuaZipRead(path("archive.zip")))
            QSKIP("The installed QuaZip does not support this compression");
        QCOMPARE(extractInLocale(utf8("C.UTF-8")), QJsonValue(true));
        QCOMPARE(tree(path("target")), tree(path("source")));
    }

    void extractsArchiveWrittenToPipe()
    {
        // In an archive that was written to a pipe, the sizes follow the content.
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        const char *script = R"(
import sys, zipfile
class Pipe:
    def __init__(self, path): self.file = open(path, 'wb')
    def write(self, data): return self.file.write(data)
    def flush(self): self.file.flush()
with zipfile.ZipFile(Pipe(sys.argv[1]), 'w', zipfile.ZIP_DEFLATED) as archive:
    archive.writestr('a.txt', 'A' * 100000)
    archive.writestr('b.txt', 'B')
)";
        QVERIFY(runPython(script, {path("archive.zip")}));
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QCOMPARE(readFile(path("target/a.txt")), QByteArray(100000, 'A'));
        QCOMPARE(readFile(path("target/b.txt")), QByteArray("B"));
    }

    void ignoresDataBeforeAndAfterArchive()
    {
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        QVERIFY(makeArchive(path("archive.zip"), {{"a.txt", "A"}}));
        QVERIFY(writeFile(path("archive.zip"), "#!/bin/sh\n" + readFile(path("archive.zip")) + "appended"));
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QCOMPARE(readFile(path("target/a.txt")), QByteArray("A"));
    }

    void decodesUnmarkedNamesInUtf8Locale_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("inUtf8");
        QTest::newRow("GBK") << QByteArray("\xce\xc4\xbc\xfe.txt") << utf8("\ufffd\u013c\ufffd.txt");
        QTest::newRow("CP437") << QByteArray("f\x81r.txt") << utf8("f\ufffdr.txt");
    }
    void decodesUnmarkedNamesInUtf8Locale()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, inUtf8);
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        QVERIFY(makeArchive(path("archive.zip"), {{name, "content"}, {"plain.txt", "plain"}}));
        QCOMPARE(extractInLocale(utf8("C.UTF-8")), QJsonValue(true));
        QCOMPARE(QDir(path("target")).entryList(QDir::Files).size(), 2);
        QCOMPARE(readFileNamed(path("target/").toUtf8() + inUtf8.toUtf8()), QByteArray("content"));
        QCOMPARE(readFile(path("target/plain.txt")), QByteArray("plain"));
    }

    void decodesUnmarkedNamesWithCodecOfLocale_data()
    {
        QTest::addColumn<QByteArray>("codec");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("decoded");
        QTest::newRow("GBK") << QByteArray("GBK") << QByteArray("\xce\xc4\xbc\xfe.txt") << utf8("文件.txt");
        QTest::newRow("Latin-1") << QByteArray("ISO-8859-1") << QByteArray("gr\xfc\xdf.txt")
                                 << utf8("grüß.txt");
    }
    void decodesUnmarkedNamesWithCodecOfLocale()
    {
        // Fails if the library sets a codec for file names.
        QFETCH(QByteArray, codec);
        QFETCH(QByteArray, name);
        QFETCH(QString, decoded);
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        if (!QTextCodec::codecForName(codec))
            QSKIP("Qt does not have this codec");
        QVERIFY(makeArchive(path("archive.zip"), {{name, "content"}}));
        QTextCodec *const previous = QTextCodec::codecForLocale();
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(codec));
        const bool isExtracted = ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true);
        QTextCodec::setCodecForLocale(previous);
        QVERIFY(isExtracted);
        QCOMPARE(messages().first().text, utf8("解压成功： \"%1\"").arg(path("target/") + decoded));
        const QByteArray file = path("target/").toUtf8() + name;
        QCOMPARE(readFileNamed(file), QByteArray("content"));
        QCOMPARE(unlink(file.constData()), 0); // QTemporaryDir cannot remove a name that is not UTF-8
    }

    void decodesMarkedNamesAsUtf8()
    {
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        QVERIFY(makeArchive(path("archive.zip"), {{"文件/报告.txt", "content"}}));
        QCOMPARE(extractInLocale(utf8("C.UTF-8")), QJsonValue(true));
        QCOMPARE(readFileNamed(path("target/文件/报告.txt").toUtf8()), QByteArray("content"));
    }

    void writesMeaninglessBytesForEncryptedStoredEntry()
    {
        // QuaZip opens the entry without a password. A content this short is not compressed.
        QVERIFY(writeFile(path("a.txt"), "hello"));
        if (!runTool(utf8("zip"),
                     {utf8("-q"), utf8("-P"), utf8("secret"), utf8("archive.zip"), utf8("a.txt")},
                     directoryPath()))
            QSKIP("Info-ZIP is not installed");
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QCOMPARE(messages().size(), 1);
        QCOMPARE(messages().first().text, utf8("解压成功： \"%1\"").arg(path("target/a.txt")));
        QVERIFY(QFile::exists(path("target/a.txt")));
        QVERIFY(readFile(path("target/a.txt")) != QByteArray("hello"));
    }

    void usuallyLeavesEmptyFileForEncryptedDeflatedEntry()
    {
        // zip encrypts with random numbers, so the meaningless bytes can begin as deflated ones do.
        constexpr int attempts = 10;
        const QByteArray content(100000, 'a');
        QByteArray extracted = content;
        QVERIFY(writeFile(path("a.txt"), content));
        QVERIFY(QDir().mkpath(path("target")));
        for (int i = 0; i < attempts && !extracted.isEmpty(); ++i) {
            QFile::remove(path("archive.zip"));
            if (!runTool(utf8("zip"),
                         {utf8("-q"), utf8("-P"), utf8("secret"), utf8("archive.zip"), utf8("a.txt")},
                         directoryPath()))
                QSKIP("Info-ZIP is not installed");
            QVERIFY(writeFile(path("target/a.txt"), "replaced"));
            QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
            extracted = readFile(path("target/a.txt"));
            QVERIFY(extracted != content && extracted != "replaced");
        }
        QCOMPARE(extracted, QByteArray());
        QCOMPARE(messages().last().text, utf8("解压成功： \"%1\"").arg(path("target/a.txt")));
    }

    void logsWarningForUnknownMethod_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("AES") << QStringList {utf8("-psecret"), utf8("-mem=AES256")};
        QTest::newRow("LZMA") << QStringList {utf8("-mm=LZMA")};
    }
    void logsWarningForUnknownMethod()
    {
        QFETCH(QStringList, options);
        QVERIFY(writeFile(path("a.txt"), QByteArray(10000, 'a')));
        if (!runTool(utf8("7z"),
                     QStringList {utf8("a"), utf8("-tzip"), utf8("-bd")} + options
                         + QStringList {utf8("archive.zip"), utf8("a.txt")},
                     directoryPath()))
            QSKIP("7-Zip is not installed");
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QCOMPARE(messages().size(), 1);
        QCOMPARE(messages().first().type, QtWarningMsg);
        QCOMPARE(messages().first().text, utf8("打开 ZIP 内文件失败： -103"));
        QVERIFY(QDir(path("target")).isEmpty());

        QVERIFY(writeFile(path("target/a.txt"), "kept"));
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QCOMPARE(readFile(path("target/a.txt")), QByteArray("kept"));
    }

    void extractsSymbolicLinkAsPlainFile()
    {
        QVERIFY(QFile::link(utf8("/etc/passwd"), path("link")));
        if (!runTool(utf8("zip"), {utf8("-q"), utf8("-y"), utf8("archive.zip"), utf8("link")},
                     directoryPath()))
            QSKIP("Info-ZIP is not installed");
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QVERIFY(!QFileInfo(path("target/link")).isSymLink());
        QCOMPARE(readFile(path("target/link")), QByteArray("/etc/passwd"));
    }

    void ignoresPermissionsInArchive()
    {
        QVERIFY(writeFile(path("script"), "#!/bin/sh"));
        QVERIFY(QFile::setPermissions(path("script"), QFile::ReadOwner | QFile::ExeOwner | QFile::ExeOther));
        if (!runTool(utf8("zip"), {utf8("-q"), utf8("archive.zip"), utf8("script")}, directoryPath()))
            QSKIP("Info-ZIP is not installed");
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QVERIFY(writeFile(path("new"), "new"));
        QCOMPARE(QFile::permissions(path("target/script")), QFile::permissions(path("new")));
    }

    void rejectsTruncatedArchive()
    {
        QVERIFY(makeSourceTree(path("source")));
        if (!runTool(utf8("zip"), {utf8("-q"), utf8("-r"), utf8("../archive.zip"), utf8(".")},
                     path("source")))
            QSKIP("Info-ZIP is not installed");
        QVERIFY(QFile::resize(path("archive.zip"), QFileInfo(path("archive.zip")).size() / 2));
        QVERIFY(!ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), true));
        QCOMPARE(messages().size(), 1);
        QCOMPARE(messages().first().type, QtCriticalMsg);
        QVERIFY(messages().first().text.startsWith(utf8("打开 ZIP 文件失败： -")));
        QVERIFY(QDir(path("target")).isEmpty());
    }

    void extractsManyEntries()
    {
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        // The first file is repeated, and therefore skipped.
        const char *script = R"(
import sys, warnings, zipfile
warnings.simplefilter('ignore')
files, entries = int(sys.argv[2]), int(sys.argv[3])
with zipfile.ZipFile(sys.argv[1], 'w') as archive:
    for i in list(range(files)) + [0] * (entries - files):
        archive.writestr(zipfile.ZipInfo('%d/%d' % (i // 1000, i)), str(i))
)";
        QVERIFY(runPython(script,
                          {path("archive.zip"), QString::number(manyFiles), QString::number(manyEntries)}));
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), false));
        QCOMPARE(messages().size(), manyEntries);
        for (int i = 0; i < manyFiles; i += 97) {
            const QString name = utf8("%1/%2").arg(i / 1000).arg(i);
            QCOMPARE(readFile(path("target/") + name), QByteArray::number(i));
        }
        QCOMPARE(tree(path("target")).size(), manyFiles + manyFiles / 1000);
    }

    void extractsArchiveLargerThan4GiB()
    {
        // The archive is a sparse file with an entry of 4 GiB between two small ones. The large entry is
        // skipped because a file of its name exists.
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        const char *script = R"(
import sys, zipfile
zeros = bytes(1 << 24)
class Sparse:
    def __init__(self, path): self.file = open(path, 'wb')
    def write(self, data):
        if data is zeros:
            self.file.seek(len(data), 1)
        else:
            self.file.write(data)
        return len(data)
    def tell(self): return self.file.tell()
    def seek(self, *position): return self.file.seek(*position)
    def flush(self): self.file.flush()
with zipfile.ZipFile(Sparse(sys.argv[1]), 'w', allowZip64=True) as archive:
    archive.writestr('first.txt', 'first')
    with archive.open('huge.bin', 'w', force_zip64=True) as entry:
        for _ in range(257):
            entry.write(zeros)
    archive.writestr('folder/last.txt', 'last')
)";
        if (!runPython(script, {path("archive.zip")}))
            QSKIP("this file system does not allow a file of 4 GiB");
        QVERIFY(QFileInfo(path("archive.zip")).size() > 4LL << 30);
        QVERIFY(QDir().mkpath(path("target")));
        QVERIFY(writeFile(path("target/huge.bin"), "kept"));
        QVERIFY(ZipManager::QuaUnzipFile(path("archive.zip"), path("target"), false));
        QCOMPARE(readFile(path("target/first.txt")), QByteArray("first"));
        QCOMPARE(readFile(path("target/huge.bin")), QByteArray("kept"));
        QCOMPARE(readFile(path("target/folder/last.txt")), QByteArray("last"));
        QCOMPARE(messages().size(), 3);
    }

    void leavesTruncatedFileIfDiskIsFull()
    {
        if (!Sandbox::hasSizedFileSystems())
            QSKIP("this machine does not allow a sandbox with a small file system");
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
        QVERIFY(makeArchive(path("archive.zip"),
                            {{"large.bin", QByteArray(30000, 'x')}, {"other.txt", "other"}}));
        QVERIFY(QDir().mkpath(path("target")));
        Sandbox sandbox;
        sandbox.sizedFileSystem(path("target"), 16384);
        HostProcess host;
        QVERIFY(host.start(sandbox));
        QCOMPARE(host.call(utf8("files.unzip"), {path("archive.zip"), path("target"), true}),
                 QJsonValue(true));
        const QString left = host.call(utf8("process.readFile"), {path("target/large.bin")}).toString();
        QVERIFY(left.length() < 30000);
        QVERIFY(host.standardError().contains(utf8("large.bin")));
    }
};

QTEST_GUILESS_MAIN(TestZipArchives)

#include "tst_zip_archives.moc"
