// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/ZipManager.h>

#include "Archives.h"
#include "Files.h"
#include "FilesTest.h"

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>

#include <sys/stat.h>

using ZyBase::ZipManager;

namespace {

QByteArray levelOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug ";
    case QtWarningMsg:
        return "warning ";
    case QtCriticalMsg:
        return "critical ";
    default:
        return "other ";
    }
}

} // namespace

// What is extracted from generated archives, and which messages are logged.
class TestZip : public FilesTest
{
    Q_OBJECT

private:
    QString archive() const { return path("archive.zip"); }
    QString target() const { return path("target"); }
    QString extracted(const char *name) const { return target() + QLatin1Char('/') + utf8(name); }
    QByteArray content(const char *name) const { return readFile(extracted(name)); }

    bool make(const QList<ArchiveEntry> &entries) const { return makeArchive(archive(), entries); }
    bool extract(bool overwrite = true) const
    {
        return ZipManager::QuaUnzipFile(archive(), target(), overwrite);
    }

    // Returns the messages since the last call, each as level, message and value.
    QStringList newMessages()
    {
        QStringList lines;
        for (const Message &message : messages().mid(m_reported))
            lines << QString::fromLatin1(levelOf(message.type)) + message.text;
        m_reported += lines.size();
        return lines;
    }
    static QString extractedMessage(const QString &file) { return utf8("debug 解压成功： \"%1\"").arg(file); }
    static QString skippedMessage(const QString &file)
    {
        return utf8("debug 文件已存在，跳过： \"%1\"").arg(file);
    }

    int m_reported = 0;

private Q_SLOTS:
    void initTestCase()
    {
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
    }
    void init()
    {
        FilesTest::init();
        m_reported = 0;
    }

    // --- Functions that do nothing ---

    void returnsFixedResultsWithoutCreatingFiles()
    {
        QVERIFY(make({{"a.txt", "A"}}));
        const QStringList files {archive()};
        QVERIFY(!ZyBase::zipWriter(path("new.zip"), files));
        QVERIFY(!ZyBase::zipReader(archive(), target()));
        QVERIFY(!ZipManager::ZipDir(path("new.zip"), files));
        QVERIFY(!ZipManager::UnzipFile(archive(), target()));
        QVERIFY(ZipManager::QuaZipDir(path("new.zip"), files));
        QVERIFY(ZipManager::QuaZipDir(QString(), {}));
        QVERIFY(!ZipManager::ZipDir(QString(), {}));
        QVERIFY(!ZipManager::UnzipFile(QString(), QString()));
        QCOMPARE(QDir(directoryPath()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList {utf8("archive.zip")});
        QCOMPARE(newMessages(), QStringList());
    }

    void addsNoMembersToQObject()
    {
        QObject parent;
        auto *manager = new ZipManager(&parent);
        QCOMPARE(manager->parent(), &parent);
        QCOMPARE(manager->metaObject()->className(), "ZyBase::ZipManager");
        QCOMPARE(manager->metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
        QCOMPARE(sizeof(ZipManager), sizeof(QObject));
        QVERIFY(!ZipManager().parent());
    }

    // --- Before the extraction ---

    void rejectsEmptyArchivePathWithoutMessage()
    {
        QVERIFY(!ZipManager::QuaUnzipFile(QString(), target(), true));
        QVERIFY(!ZipManager::QuaUnzipFile(utf8(""), QString(), false));
        QCOMPARE(newMessages(), QStringList());
        QVERIFY(QDir(directoryPath()).isEmpty());
    }

    void rejectsMissingArchiveWithoutCreatingDirectory()
    {
        for (const QString &directory : {target(), QString()}) {
            QVERIFY(!ZipManager::QuaUnzipFile(archive(), directory, true));
            QCOMPARE(newMessages(), QStringList {utf8("critical ZIP 文件不存在： \"%1\"").arg(archive())});
            QVERIFY(QDir(directoryPath()).isEmpty());
        }
        QVERIFY(!QFile::exists(directoryPath() + utf8("archive")));
    }

    void logsWithDefaultCategoryAndWithoutSourceLocation()
    {
        QVERIFY(make({{"a.txt", "A"}, {"b/", ""}, {"b", "B"}}));
        extract();
        ZipManager::QuaUnzipFile(path("missing"), target(), true);
        QCOMPARE(messages().size(), 3);
        for (const Message &message : messages()) {
            QCOMPARE(message.category, utf8("default"));
            QVERIFY(message.file.isNull());
            QVERIFY(message.function.isNull());
            QCOMPARE(message.line, 0);
        }
    }

    void derivesDirectoryFromArchivePathIfEmpty_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("directory");
        QTest::newRow("two suffixes") << "docs/data.tar.zip"
                                      << "docsdata";
        QTest::newRow("one suffix") << "docs/data.zip"
                                    << "docsdata";
        QTest::newRow("no suffix") << "docs/data"
                                   << "docsdata";
        QTest::newRow("name that starts with a dot") << "docs/.zip"
                                                     << "docs";
        QTest::newRow("parent directory in the path") << "docs/../docs/data.zip"
                                                      << "docsdata";
    }
    void derivesDirectoryFromArchivePathIfEmpty()
    {
        QFETCH(QString, name);
        QFETCH(QString, directory);
        QVERIFY(QDir(directoryPath()).mkdir(utf8("docs")));
        QVERIFY(makeArchive(path(name), {{"a.txt", "A"}}));
        QVERIFY(ZipManager::QuaUnzipFile(path(name), QString(), true));
        QCOMPARE(readFile(path(directory) + utf8("/a.txt")), QByteArray("A"));
        QVERIFY(!QFile::exists(path("docs/data/a.txt")));
    }

    void usesPathsRelativeToCurrentDirectory()
    {
        QVERIFY(QDir(directoryPath()).mkdir(utf8("docs")));
        QVERIFY(makeArchive(path("docs/data.zip"), {{"a.txt", "A"}}));
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(path("docs")));
        const bool isExtractedByDefault = ZipManager::QuaUnzipFile(utf8("data.zip"), utf8(""), true);
        const bool isExtractedToName = ZipManager::QuaUnzipFile(utf8("data.zip"), utf8("here"), true);
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(isExtractedByDefault);
        QVERIFY(isExtractedToName);
        QCOMPARE(readFile(path("docsdata/a.txt")), QByteArray("A"));
        QCOMPARE(readFile(path("docs/here/a.txt")), QByteArray("A"));
        QCOMPARE(newMessages().last(), extractedMessage(utf8("here/a.txt")));
    }

    void createsParentDirectories()
    {
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(ZipManager::QuaUnzipFile(archive(), path("x/y/z"), true));
        QCOMPARE(readFile(path("x/y/z/a.txt")), QByteArray("A"));
    }

    void rejectsDirectoryThatCannotBeCreated()
    {
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(writeFile(target(), "in the way"));
        for (const QString &directory : {target(), target() + utf8("/below")}) {
            QVERIFY(!ZipManager::QuaUnzipFile(archive(), directory, true));
            QCOMPARE(newMessages(), QStringList {utf8("critical 无法创建目标目录： \"%1\"").arg(directory)});
        }
        QCOMPARE(readFile(target()), QByteArray("in the way"));
    }

    void rejectsInvalidArchiveAfterCreatingDirectory_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("text file") << QByteArray("no archive").repeated(1000);
        QTest::newRow("signature only") << QByteArray("PK\x03\x04");
        // QuaZip opens an archive without entries only if something precedes it.
        QTest::newRow("archive without entries") << QByteArray("PK\x05\x06") + QByteArray(18, '\0');
    }
    void rejectsInvalidArchiveAfterCreatingDirectory()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(archive(), content));
        QVERIFY(!extract());
        QCOMPARE(newMessages(), QStringList {utf8("critical 打开 ZIP 文件失败： -1000")});
        QVERIFY(QFileInfo(target()).isDir());
        QVERIFY(QDir(target()).isEmpty());
    }

    void rejectsUnreadableArchive()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(QFile::setPermissions(archive(), QFile::Permissions()));
        QVERIFY(!extract());
        QCOMPARE(newMessages().size(), 1);
        QVERIFY(QDir(target()).isEmpty());
    }

    void replacesFileThatCannotBeRead()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(make({{"a.txt", "new"}}));
        QVERIFY(QDir().mkpath(target()));
        QVERIFY(writeFile(extracted("a.txt"), "old content"));
        QVERIFY(QFile::setPermissions(extracted("a.txt"), QFile::WriteOwner));
        QVERIFY(extract());
        QVERIFY(QFile::setPermissions(extracted("a.txt"), QFile::ReadOwner));
        QCOMPARE(content("a.txt"), QByteArray("new"));
    }

    void rejectsDirectoryAsArchive()
    {
        QVERIFY(QDir(directoryPath()).mkdir(utf8("archive.zip")));
        QVERIFY(!extract());
        QVERIFY(newMessages().first().startsWith(utf8("critical 打开 ZIP 文件失败： ")));
    }

    void logsOneWarningForArchiveWithoutEntries()
    {
        QVERIFY(writeFile(archive(), "#!/bin/sh\nPK\x05\x06" + QByteArray(18, '\0')));
        QVERIFY(extract());
        QCOMPARE(newMessages(), QStringList {utf8("warning 获取文件信息失败： 0")});
        QVERIFY(QDir(target()).isEmpty());
    }

    // --- Entries ---

    void extractsInOrderOfArchive()
    {
        QVERIFY(make({{"b.txt", "B"}, {"folder/", ""}, {"a.txt", "A"}, {"folder/c.txt", "C"}}));
        QVERIFY(extract());
        QCOMPARE(newMessages(),
                 QStringList({extractedMessage(extracted("b.txt")), extractedMessage(extracted("a.txt")),
                              extractedMessage(extracted("folder/c.txt"))}));
        QCOMPARE(content("b.txt"), QByteArray("B"));
        QCOMPARE(content("a.txt"), QByteArray("A"));
        QCOMPARE(content("folder/c.txt"), QByteArray("C"));
    }

    void createsEmptyFilesAndDirectories()
    {
        QVERIFY(make({{"empty", ""}, {"folder/", ""}, {"a/b/c/", ""}}));
        QVERIFY(extract());
        QCOMPARE(QFileInfo(extracted("empty")).size(), 0LL);
        QVERIFY(QFileInfo(extracted("empty")).isFile());
        QVERIFY(QDir(extracted("folder")).isEmpty());
        QVERIFY(QFileInfo(extracted("a/b/c")).isDir());
        QCOMPARE(newMessages(), QStringList {extractedMessage(extracted("empty"))});
    }

    void createsDirectoryThatHasNoEntry()
    {
        QVERIFY(make({{"sub/deep/a.txt", "A"}}));
        QVERIFY(extract());
        QCOMPARE(content("sub/deep/a.txt"), QByteArray("A"));
    }

    void keepsExistingFilesWithoutOverwrite()
    {
        QVERIFY(make({{"a.txt", "new"}, {"b.txt", "B"}}));
        QVERIFY(QDir().mkpath(target()));
        QVERIFY(writeFile(extracted("a.txt"), "old"));
        QVERIFY(extract(false));
        QCOMPARE(newMessages(),
                 QStringList({skippedMessage(extracted("a.txt")), extractedMessage(extracted("b.txt"))}));
        QCOMPARE(content("a.txt"), QByteArray("old"));
        QCOMPARE(content("b.txt"), QByteArray("B"));
        QVERIFY(extract(false));
        QCOMPARE(newMessages(),
                 QStringList({skippedMessage(extracted("a.txt")), skippedMessage(extracted("b.txt"))}));
    }

    void replacesExistingFilesWithOverwrite()
    {
        QVERIFY(make({{"a.txt", "new"}, {"b.txt", "B"}}));
        QVERIFY(QDir().mkpath(target()));
        QVERIFY(writeFile(extracted("a.txt"), "old and longer"));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(extract(true));
            QCOMPARE(newMessages(), QStringList({extractedMessage(extracted("a.txt")),
                                                 extractedMessage(extracted("b.txt"))}));
            QCOMPARE(content("a.txt"), QByteArray("new"));
        }
    }

    void keepsExistingDirectories()
    {
        QVERIFY(make({{"folder/", ""}, {"folder/a.txt", "A"}}));
        QVERIFY(QDir().mkpath(extracted("folder")));
        QVERIFY(writeFile(extracted("folder/other"), "kept"));
        for (const bool overwrite : {true, false}) {
            QVERIFY(extract(overwrite));
            QCOMPARE(content("folder/other"), QByteArray("kept"));
            QCOMPARE(newMessages().size(), 1);
        }
    }

    void extractsLastDuplicateWithOverwriteAndFirstWithout()
    {
        QVERIFY(make({{"a.txt", "first"}, {"a.txt", "second"}}));
        QVERIFY(extract(true));
        QCOMPARE(content("a.txt"), QByteArray("second"));
        QVERIFY(QFile::remove(extracted("a.txt")));
        newMessages();
        QVERIFY(extract(false));
        QCOMPARE(content("a.txt"), QByteArray("first"));
        QCOMPARE(newMessages(),
                 QStringList({extractedMessage(extracted("a.txt")), skippedMessage(extracted("a.txt"))}));
    }

    void logsWarningIfFileIsInPlaceOfDirectory()
    {
        QVERIFY(make({{"x/", ""}, {"x/y.txt", "Y"}, {"z.txt", "Z"}}));
        QVERIFY(QDir().mkpath(target()));
        QVERIFY(writeFile(extracted("x"), "in the way"));
        QVERIFY(extract());
        QCOMPARE(newMessages(), QStringList({utf8("warning 创建目录失败： \"%1\"").arg(extracted("x/")),
                                             utf8("warning 创建父目录失败： \"%1\"").arg(extracted("x")),
                                             extractedMessage(extracted("z.txt"))}));
        QCOMPARE(content("x"), QByteArray("in the way"));
    }

    void keepsFileEntryIfDirectoryOfSameNameFollows()
    {
        QVERIFY(make({{"x", "X"}, {"x/", ""}, {"x/y.txt", "Y"}, {"z.txt", "Z"}}));
        QVERIFY(extract());
        QCOMPARE(content("x"), QByteArray("X"));
        QCOMPARE(content("z.txt"), QByteArray("Z"));
        QCOMPARE(newMessages().size(), 4);
    }

    void logsWarningIfDirectoryIsInPlaceOfFile()
    {
        QVERIFY(make({{"x", "X"}, {"z.txt", "Z"}}));
        QVERIFY(QDir().mkpath(extracted("x")));
        QFile directory(extracted("x"));
        directory.open(QIODevice::WriteOnly | QIODevice::Truncate);
        QVERIFY(extract(true));
        QCOMPARE(newMessages(),
                 QStringList({utf8("warning 创建目标文件失败： \"%1\"").arg(directory.errorString()),
                              extractedMessage(extracted("z.txt"))}));
        QVERIFY(extract(false));
        QCOMPARE(newMessages(),
                 QStringList({skippedMessage(extracted("x")), skippedMessage(extracted("z.txt"))}));
        QVERIFY(QFileInfo(extracted("x")).isDir());
    }

    void logsWarningsForFilesThatCannotBeWritten()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(make({{"a.txt", "A"},
                      {"locked/b.txt", "B"},
                      {"locked/new/c.txt", "C"},
                      {"locked/folder/", ""},
                      {"d.txt", "D"}}));
        QVERIFY(QDir().mkpath(extracted("locked")));
        QVERIFY(writeFile(extracted("a.txt"), "old"));
        QCOMPARE(chmod(QFile::encodeName(extracted("a.txt")).constData(), 0444), 0);
        QCOMPARE(chmod(QFile::encodeName(extracted("locked")).constData(), 0555), 0);
        QVERIFY(extract(true));
        QCOMPARE(chmod(QFile::encodeName(extracted("locked")).constData(), 0755), 0);
        QCOMPARE(newMessages(),
                 QStringList({utf8("warning 创建目标文件失败： \"Permission denied\""),
                              utf8("warning 创建目标文件失败： \"Permission denied\""),
                              utf8("warning 创建父目录失败： \"%1\"").arg(extracted("locked/new")),
                              utf8("warning 创建目录失败： \"%1\"").arg(extracted("locked/folder/")),
                              extractedMessage(extracted("d.txt"))}));
        QCOMPARE(content("a.txt"), QByteArray("old"));
        QCOMPARE(content("d.txt"), QByteArray("D"));
    }

    void logsWarningForDamagedEntryAndExtractsOthers()
    {
        QVERIFY(make({{"a.txt", "A"}, {"b.txt", "B"}, {"c.txt", "C"}}));
        QByteArray bytes = readFile(archive());
        bytes[bytes.indexOf("PK\x03\x04", 4)] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        QCOMPARE(newMessages(), QStringList({extractedMessage(extracted("a.txt")),
                                             utf8("warning 打开 ZIP 内文件失败： -103"),
                                             extractedMessage(extracted("c.txt"))}));
        QVERIFY(!QFile::exists(extracted("b.txt")));
    }

    void stopsAtDamagedListOfEntries()
    {
        QVERIFY(make({{"a.txt", "A"}, {"b.txt", "B"}}));
        QByteArray bytes = readFile(archive());
        bytes[bytes.indexOf("PK\x01\x02", bytes.indexOf("PK\x01\x02") + 4)] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        QCOMPARE(newMessages(), QStringList {extractedMessage(extracted("a.txt"))});
        bytes[bytes.indexOf("PK\x01\x02")] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        QCOMPARE(newMessages(), QStringList {utf8("warning 获取文件信息失败： 0")});
    }

    void writesEntryWithWrongChecksumAndNoLaterFile()
    {
        // QuaZip finds the wrong checksum when it closes the entry. The entry stays open, so no other can be
        // opened.
        QVERIFY(make({{"a.txt", "AAAA"}, {"b.txt", "BBBB"}, {"folder/", ""}, {"c.txt", "CCCC"}}));
        QByteArray bytes = readFile(archive());
        bytes[bytes.indexOf("AAAA")] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        const QStringList own = newMessages().filter(QRegularExpression(utf8("^(?!warning QuaZip)")));
        QCOMPARE(own,
                 QStringList({extractedMessage(extracted("a.txt")), utf8("warning 打开 ZIP 内文件失败： 0"),
                              utf8("warning 打开 ZIP 内文件失败： 0")}));
        QCOMPARE(content("a.txt"), QByteArray("XAAA"));
        QVERIFY(!QFile::exists(extracted("b.txt")));
        QVERIFY(QFileInfo(extracted("folder")).isDir());
        QVERIFY(!QFile::exists(extracted("c.txt")));
    }

    void extractsOutsideDirectoryIfNameSaysSo_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("target");
        QTest::newRow("parent directory") << QByteArray("../x") << "x";
        QTest::newRow("parent directory, then a subdirectory") << QByteArray("a/../../sub/x") << "sub/x";
        QTest::newRow("parent directory and back") << QByteArray("../target/x") << "target/x";
        QTest::newRow("absolute path") << QByteArray("ABSOLUTE/x") << "x";
        QTest::newRow("absolute path in a new directory") << QByteArray("ABSOLUTE/new/x") << "new/x";
    }
    void extractsOutsideDirectoryIfNameSaysSo()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, target);
        name.replace("ABSOLUTE", QFile::encodeName(directoryPath()));
        QVERIFY(QDir().mkpath(extracted("a")));
        QVERIFY(make({{name, "outside"}, {"inside", "inside"}}));
        QVERIFY(extract());
        QCOMPARE(readFile(path(target)), QByteArray("outside"));
        QCOMPARE(content("inside"), QByteArray("inside"));
        const QString asNamed = QDir(this->target()).filePath(QString::fromUtf8(name));
        QCOMPARE(newMessages(),
                 QStringList({extractedMessage(asNamed), extractedMessage(extracted("inside"))}));
    }

    void createsDirectoryOutsideIfNameSaysSo()
    {
        QVERIFY(make({{"../folder/", ""}, {QFile::encodeName(path("absolute")) + "/", ""}}));
        QVERIFY(extract());
        QVERIFY(QFileInfo(path("folder")).isDir());
        QVERIFY(QFileInfo(path("absolute")).isDir());
    }

    void followsExistingLinks()
    {
        QVERIFY(make({{"link/a.txt", "A"}, {"file", "F"}}));
        QVERIFY(QDir().mkpath(target()) && QDir().mkpath(path("elsewhere")));
        QVERIFY(QFile::link(path("elsewhere"), extracted("link")));
        QVERIFY(QFile::link(path("linked"), extracted("file")));
        QVERIFY(extract(false));
        QCOMPARE(readFile(path("elsewhere/a.txt")), QByteArray("A"));
        QCOMPARE(readFile(path("linked")), QByteArray("F"));
    }

    void keepsUnusualNames()
    {
        QVERIFY(make({{"a\\b", "backslash"},
                      {"x//y", "twice"},
                      {" space ", "space"},
                      {"%1 %s", "percent"},
                      {"-rf", "option"},
                      {".hidden", "hidden"},
                      {"quote\"d", "quote"}}));
        QVERIFY(extract());
        QCOMPARE(content("a\\b"), QByteArray("backslash"));
        QCOMPARE(content("x/y"), QByteArray("twice"));
        QCOMPARE(content(" space "), QByteArray("space"));
        QCOMPARE(content("%1 %s"), QByteArray("percent"));
        QCOMPARE(content("-rf"), QByteArray("option"));
        QCOMPARE(content(".hidden"), QByteArray("hidden"));
        QCOMPARE(content("quote\"d"), QByteArray("quote"));
        QCOMPARE(newMessages().last(), utf8("debug 解压成功： \"%1\"").arg(extracted("quote\\\"d")));
    }

    void setsPermissionsAndTimeOfNewFile()
    {
        // The archive contains rw------- and 1 January 1980.
        const QDateTime before = QDateTime::currentDateTime().addSecs(-2);
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(extract());
        QVERIFY(writeFile(path("new"), "new"));
        QCOMPARE(QFile::permissions(extracted("a.txt")), QFile::permissions(path("new")));
        QVERIFY(QFileInfo(extracted("a.txt")).lastModified() >= before);
    }

    void isThreadSafe()
    {
        QList<ArchiveEntry> entries;
        for (int i = 0; i < 50; ++i)
            entries << ArchiveEntry {"folder/" + QByteArray::number(i), QByteArray(1000 + i, 'x')};
        QVERIFY(make(entries));
        const int successes = sumOfEightThreads([this](int i) {
            int count = 0;
            const QString own = path("own") + QString::number(i);
            count += ZipManager::QuaUnzipFile(archive(), own, true);
            count += QDir(own + utf8("/folder")).count() == 50 + 2;
            return count;
        });
        QCOMPARE(successes, 16);
    }
};

QTEST_GUILESS_MAIN(TestZip)

#include "tst_zip.moc"
