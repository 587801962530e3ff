// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Archives.h"
#include "Files.h"
#include "RecipeRun.h"
#include "Utf8.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Makes an archive whose entry states a wrong size: the second argument instead of three bytes.
constexpr const char *wrongSizeScript = R"(
import sys, zipfile, struct
with zipfile.ZipFile(sys.argv[1], 'w') as archive:
    archive.writestr('entry', 'abc')
data = bytearray(open(sys.argv[1], 'rb').read())
for mark, offset in ((b'PK\3\4', 22), (b'PK\1\2', 24)):
    struct.pack_into('<I', data, data.index(mark) + offset, int(sys.argv[2]))
open(sys.argv[1], 'wb').write(data)
)";

// Makes an archive with as many entries of one MiB of zeros as the second argument states.
constexpr const char *zerosScript = R"(
import sys, zipfile
with zipfile.ZipFile(sys.argv[1], 'w', zipfile.ZIP_DEFLATED) as archive:
    for i in range(int(sys.argv[2])):
        archive.writestr('zeros%d' % i, bytes(1 << 20))
)";

// Changes one bit in the content of the last entry.
constexpr const char *damageScript = R"(
import sys, zipfile
data = bytearray(open(sys.argv[1], 'rb').read())
data[data.rindex(b'content')] ^= 1
open(sys.argv[1], 'wb').write(data)
)";

} // namespace

Q_DECLARE_METATYPE(ArchiveEntry)

class TestCheckingAnArchive : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_directory->filePath(utf8(name)); }

    RecipeRun extract(const Sandbox &sandbox = Sandbox()) const
    {
        return RecipeRun({QStringLiteral(RECIPE), path("archive.zip"), path("new/target")}, sandbox);
    }

    // Verifies that the archive is refused and nothing is written.
    void verifyRefusal(const QString &reason) const
    {
        const QStringList before =
            QDir(m_directory->path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries);
        const RecipeRun run = extract();
        QCOMPARE(run.lines, QStringList {utf8("refused: ") + reason});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(QDir(path("new")).isEmpty());
        QCOMPARE(QDir(m_directory->path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), before);
    }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void initTestCase()
    {
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
    }
    void init()
    {
        qputenv("LC_ALL", "C.UTF-8");
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkdir(path("new")));
    }

    void extractsGoodArchive()
    {
        QVERIFY(
            makeArchive(path("archive.zip"), {{"a.txt", "A"}, {"d/", ""}, {"d/e/..f", "F"}, {"empty", ""}}));
        const RecipeRun run = extract();
        QCOMPARE(run.lines, QStringList {utf8("extracted")});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(readFile(path("new/target/a.txt")), QByteArray("A"));
        QCOMPARE(readFile(path("new/target/d/e/..f")), QByteArray("F"));
        QVERIFY(QFile::exists(path("new/target/empty")));
    }

    void rejectsEntryOutsideDirectory_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("parent directory") << QByteArray("../x");
        QTest::newRow("three directories up") << QByteArray("../../../x");
        QTest::newRow("down and up again") << QByteArray("a/../../x");
        QTest::newRow("parent directory as an entry") << QByteArray("../");
        QTest::newRow("parent directory as a file") << QByteArray("..");
        QTest::newRow("absolute path") << QByteArray("/tmp/x");
        QTest::newRow("absolute path with two slashes") << QByteArray("//tmp/x");
    }
    void rejectsEntryOutsideDirectory()
    {
        QFETCH(QByteArray, name);
        QVERIFY(makeArchive(path("archive.zip"), {{"good.txt", "good"}, {name, "bad"}}));
        verifyRefusal(QString::fromUtf8(name) + utf8(": it would be written outside the directory"));
    }

    void rejectsSymbolicLink()
    {
        QVERIFY(QFile::link(utf8("/etc/passwd"), path("link")));
        if (!runTool(utf8("zip"), {utf8("-q"), utf8("-y"), utf8("archive.zip"), utf8("link")},
                     m_directory->path()))
            QSKIP("Info-ZIP is not installed");
        verifyRefusal(utf8("link: it is a symbolic link"));
    }

    void rejectsEncryptedEntry()
    {
        QVERIFY(writeFile(path("a.txt"), "hello"));
        if (!runTool(utf8("zip"),
                     {utf8("-q"), utf8("-P"), utf8("secret"), utf8("archive.zip"), utf8("a.txt")},
                     m_directory->path()))
            QSKIP("Info-ZIP is not installed");
        verifyRefusal(utf8("a.txt: it is encrypted"));
    }

    void rejectsFileThatIsNoArchive()
    {
        QVERIFY(writeFile(path("archive.zip"), "no archive"));
        verifyRefusal(utf8("It is not an archive."));
    }

    void rejectsEntryOfTwoGibibytes()
    {
        QVERIFY(runPython(wrongSizeScript, {path("archive.zip"), QString::number(1U << 31U)}));
        verifyRefusal(utf8("entry: it is too large"));
    }

    // Half of a disk of 9 MiB has space for three entries of one MiB, but not for six.
    void rejectsArchiveLargerThanHalfOfFreeSpace_data()
    {
        QTest::addColumn<int>("entries");
        QTest::addColumn<bool>("hasMountTable"); // QStorageInfo reads it
        QTest::addColumn<QString>("line");
        const QString extracted = utf8("extracted");
        const QString refused = utf8("refused: zeros4: there is not enough space for it");
        QTest::newRow("small enough") << 3 << true << extracted;
        QTest::newRow("together too large") << 6 << true << refused;
        QTest::newRow("small enough, without a mount table") << 3 << false << extracted;
        QTest::newRow("together too large, without a mount table") << 6 << false << refused;
    }
    void rejectsArchiveLargerThanHalfOfFreeSpace()
    {
        QFETCH(int, entries);
        QFETCH(bool, hasMountTable);
        QFETCH(QString, line);
        if (!Sandbox::hasSizedFileSystems())
            QSKIP("no sandbox with a sized file system can be made here");
        QVERIFY(runPython(zerosScript, {path("archive.zip"), QString::number(entries)}));
        QVERIFY(QFileInfo(path("archive.zip")).size() < 10000);
        QVERIFY(QDir().mkdir(path("no mounts")));
        Sandbox sandbox;
        sandbox.sizedFileSystem(path("new"), 9 << 20);
        if (!hasMountTable)
            sandbox.replace(utf8("/proc"), path("no mounts"));
        QCOMPARE(extract(sandbox).lines, QStringList {line});
    }

    void rejectsExistingDirectory()
    {
        QVERIFY(makeArchive(path("archive.zip"), {{"link/a.txt", "A"}}));
        QVERIFY(QDir().mkpath(path("new/target")));
        QVERIFY(QDir().mkpath(path("elsewhere")));
        QVERIFY(QFile::link(path("elsewhere"), path("new/target/link")));
        const RecipeRun run = extract();
        QCOMPARE(run.lines,
                 QStringList {utf8("refused: The directory exists already or cannot be created.")});
        QVERIFY(QDir(path("elsewhere")).isEmpty());
    }

    void reportsIncompleteEntry_data()
    {
        QTest::addColumn<QList<ArchiveEntry>>("entries");
        QTest::addColumn<bool>("isDamaged");
        QTest::addColumn<QString>("entry");
        QTest::newRow("wrong check sum") << QList<ArchiveEntry> {{"a", "A"}, {"b", "content"}} << true << "b";
        QTest::newRow("two entries with one name")
            << QList<ArchiveEntry> {{"a", "A"}, {"a", "B"}} << false << "a";
        QTest::newRow("file with the name of a directory")
            << QList<ArchiveEntry> {{"a", "A"}, {"a/b", "B"}} << false << "a/b";
    }
    void reportsIncompleteEntry()
    {
        QFETCH(QList<ArchiveEntry>, entries);
        QFETCH(bool, isDamaged);
        QFETCH(QString, entry);
        QVERIFY(makeArchive(path("archive.zip"), entries));
        if (isDamaged)
            QVERIFY(runPython(damageScript, {path("archive.zip")}));
        const RecipeRun run = extract();
        QCOMPARE(run.lines,
                 QStringList {utf8("refused: ") + entry + utf8(": it was not extracted completely")});
        QCOMPARE(run.exitCode, 1);
    }

    // So the sum of the stated sizes limits what is written.
    void writesNoMoreThanTheStatedSize()
    {
        QVERIFY(runPython(wrongSizeScript, {path("archive.zip"), utf8("1")}));
        QCOMPARE(extract().exitCode, 1);
        QVERIFY(readFile(path("new/target/entry")).size() <= 1);
    }

    void decodesNames_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("file");
        QTest::newRow("GBK") << QByteArray("\xce\xc4\xbc\xfe/\xb1\xa8\xb8\xe6.txt") << "文件/报告.txt";
        QTest::newRow("GBK with a backslash as its second byte")
            << QByteArray("\x81\x5c/a") << utf8("\xe4\xb9\x97/a");
        QTest::newRow("marked UTF-8") << QByteArray("文件/报告.txt") << "文件/报告.txt";
        QTest::newRow("ASCII") << QByteArray("a/b.txt") << "a/b.txt";
    }
    void decodesNames()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, file);
        QVERIFY(makeArchive(path("archive.zip"), {{"plain.txt", "plain"}, {name, "content"}}));
        for (const char *locale : {"C.UTF-8", "C"}) {
            qputenv("LC_ALL", locale);
            QCOMPARE(extract().lines, QStringList {utf8("extracted")});
            QCOMPARE(readFile(path("new/target/") + file), QByteArray("content"));
            QVERIFY(QDir(path("new/target")).removeRecursively());
        }
    }

    void decodesUnmarkedUtf8()
    {
        const char *script = R"(
import sys, zipfile
class Raw(zipfile.ZipInfo):
    def _encodeFilenameFlags(self): return '文件.txt'.encode(), 0
with zipfile.ZipFile(sys.argv[1], 'w') as archive:
    archive.writestr(Raw('x'), 'content')
    archive.writestr('ü', 'marked')
)";
        QVERIFY(runPython(script, {path("archive.zip")}));
        QCOMPARE(extract().lines, QStringList {utf8("extracted")});
        QCOMPARE(readFile(path("new/target/文件.txt")), QByteArray("content"));
        QCOMPARE(readFile(path("new/target/ü")), QByteArray("marked"));
    }
};

QTEST_GUILESS_MAIN(TestCheckingAnArchive)

#include "tst_checking_an_archive.moc"
