// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Archives.h"
#include "Files.h"
#include "RecipeRun.h"
#include "Utf8.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

// An entry whose sizes are lies: "size" bytes where the archive holds three.
constexpr const char *liar = R"(
import sys, zipfile, struct
with zipfile.ZipFile(sys.argv[1], 'w') as archive:
    archive.writestr('liar', 'abc')
data = bytearray(open(sys.argv[1], 'rb').read())
for mark, place in ((b'PK\3\4', 22), (b'PK\1\2', 24)):
    struct.pack_into('<I', data, data.index(mark) + place, int(sys.argv[2]))
open(sys.argv[1], 'wb').write(data)
)";

constexpr const char *bomb = R"(
import sys, zipfile
with zipfile.ZipFile(sys.argv[1], 'w', zipfile.ZIP_DEFLATED) as archive:
    for i in range(int(sys.argv[2])):
        archive.writestr('zeros%d' % i, bytes(1 << 20))
)";

// Turns a bit in the content of the last entry.
constexpr const char *spoil = R"(
import sys, zipfile
data = bytearray(open(sys.argv[1], 'rb').read())
data[data.rindex(b'content')] ^= 1
open(sys.argv[1], 'wb').write(data)
)";

} // namespace

Q_DECLARE_METATYPE(ArchiveEntry)

// Archives from elsewhere, handed to the recipe's host.
class TestCheckingAnArchive : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_directory->filePath(utf8(name)); }

    RecipeRun extract(const Sandbox &sandbox = Sandbox()) const
    {
        return RecipeRun({QStringLiteral(RECIPE), path("archive.zip"), path("new/target")}, sandbox);
    }

    // Refused for this reason, and nothing is written anywhere.
    void expectRefusal(const QString &reason) const
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

    void goodArchiveIsExtracted()
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

    void entryThatLeavesTheDirectoryIsRefused_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("above") << QByteArray("../x");
        QTest::newRow("far above") << QByteArray("../../../x");
        QTest::newRow("down and up again") << QByteArray("a/../../x");
        QTest::newRow("the directory above") << QByteArray("../");
        QTest::newRow("the one above as a file") << QByteArray("..");
        QTest::newRow("absolute") << QByteArray("/tmp/x");
        QTest::newRow("absolute with two slashes") << QByteArray("//tmp/x");
    }
    void entryThatLeavesTheDirectoryIsRefused()
    {
        QFETCH(QByteArray, name);
        QVERIFY(makeArchive(path("archive.zip"), {{"good.txt", "good"}, {name, "bad"}}));
        expectRefusal(QString::fromUtf8(name) + utf8(": it would be written outside the directory"));
    }

    void linkIsRefused()
    {
        QVERIFY(QFile::link(utf8("/etc/passwd"), path("link")));
        if (!runTool(utf8("zip"), {utf8("-q"), utf8("-y"), utf8("archive.zip"), utf8("link")},
                     m_directory->path()))
            QSKIP("Info-ZIP is not installed");
        expectRefusal(utf8("link: it is a link"));
    }

    void encryptedEntryIsRefused()
    {
        QVERIFY(writeFile(path("a.txt"), "hello"));
        if (!runTool(utf8("zip"),
                     {utf8("-q"), utf8("-P"), utf8("secret"), utf8("archive.zip"), utf8("a.txt")},
                     m_directory->path()))
            QSKIP("Info-ZIP is not installed");
        expectRefusal(utf8("a.txt: it is encrypted"));
    }

    void fileThatIsNoArchiveIsRefused()
    {
        QVERIFY(writeFile(path("archive.zip"), "no archive"));
        expectRefusal(utf8("It is no archive."));
    }

    void entryOf2GibibytesIsRefused()
    {
        QVERIFY(runPython(liar, {path("archive.zip"), QString::number(1U << 31U)}));
        expectRefusal(utf8("liar: it is too large"));
    }

    // Half of a disk of 8 MiB takes three of these entries of one MiB and not five, packed in 5 kB.
    void whatTheDiskHasNoRoomForIsRefused_data()
    {
        QTest::addColumn<int>("entries");
        QTest::addColumn<QString>("line");
        QTest::newRow("fits") << 3 << "extracted";
        QTest::newRow("together too much") << 6 << "refused: zeros4: there is no room for it";
    }
    void whatTheDiskHasNoRoomForIsRefused()
    {
        QFETCH(int, entries);
        QFETCH(QString, line);
        if (!Sandbox::hasSizedFileSystems())
            QSKIP("no sandbox with a sized file system can be made here");
        QVERIFY(runPython(bomb, {path("archive.zip"), QString::number(entries)}));
        QVERIFY(QFileInfo(path("archive.zip")).size() < 10000);
        Sandbox sandbox;
        sandbox.sizedFileSystem(path("new"), 9 << 20);
        QCOMPARE(extract(sandbox).lines, QStringList {line});
    }

    void directoryThatIsThereAlreadyIsRefused()
    {
        QVERIFY(makeArchive(path("archive.zip"), {{"link/a.txt", "A"}}));
        QVERIFY(QDir().mkpath(path("new/target")));
        QVERIFY(QDir().mkpath(path("elsewhere")));
        QVERIFY(QFile::link(path("elsewhere"), path("new/target/link")));
        const RecipeRun run = extract();
        QCOMPARE(run.lines, QStringList {utf8("refused: The directory is there already or can't be made.")});
        QVERIFY(QDir(path("elsewhere")).isEmpty());
    }

    void whatDidNotComeOutWholeIsTold_data()
    {
        QTest::addColumn<QList<ArchiveEntry>>("entries");
        QTest::addColumn<bool>("isSpoilt");
        QTest::addColumn<QString>("entry");
        QTest::newRow("a wrong check sum")
            << QList<ArchiveEntry> {{"a", "A"}, {"b", "content"}} << true << "b";
        QTest::newRow("two of one name") << QList<ArchiveEntry> {{"a", "A"}, {"a", "B"}} << false << "a";
        QTest::newRow("a file in the place of a directory")
            << QList<ArchiveEntry> {{"a", "A"}, {"a/b", "B"}} << false << "a/b";
    }
    void whatDidNotComeOutWholeIsTold()
    {
        QFETCH(QList<ArchiveEntry>, entries);
        QFETCH(bool, isSpoilt);
        QFETCH(QString, entry);
        QVERIFY(makeArchive(path("archive.zip"), entries));
        if (isSpoilt)
            QVERIFY(runPython(spoil, {path("archive.zip")}));
        const RecipeRun run = extract();
        QCOMPARE(run.lines, QStringList {utf8("refused: ") + entry + utf8(": it did not come out whole")});
        QCOMPARE(run.exitCode, 1);
    }

    // The size that an archive states bounds what is written, so it is the one to add up.
    void entryThatStatesLessThanItHoldsIsCutOff()
    {
        QVERIFY(runPython(liar, {path("archive.zip"), utf8("1")}));
        QCOMPARE(extract().exitCode, 1);
        QVERIFY(readFile(path("new/target/liar")).size() <= 1);
    }

    void namesComeOutAsTheirWriterSawThem_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("file");
        QTest::newRow("GBK") << QByteArray("\xce\xc4\xbc\xfe/\xb1\xa8\xb8\xe6.txt") << "文件/报告.txt";
        QTest::newRow("GBK with a backslash as its second byte")
            << QByteArray("\x81\x5c/a") << utf8("\xe4\xb9\x97/a");
        QTest::newRow("UTF-8 that is marked") << QByteArray("文件/报告.txt") << "文件/报告.txt";
        QTest::newRow("ASCII") << QByteArray("a/b.txt") << "a/b.txt";
    }
    void namesComeOutAsTheirWriterSawThem()
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

    void unmarkedUtf8IsNotTakenForGbk()
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
