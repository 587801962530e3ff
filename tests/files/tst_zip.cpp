// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/ZipManager.h>

#include "Archives.h"
#include "Files.h"
#include "MessageCapture.h"
#include "OrdinaryUser.h"
#include "Utf8.h"

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <sys/stat.h>
#include <thread>

using ZyBase::ZipManager;

namespace {

QByteArray levelOf(const MessageCapture::Message &message)
{
    switch (message.type) {
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

// What is done with an archive and what is said about it; archives are made to measure.
class TestZip : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_directory->filePath(utf8(name)); }
    QString archive() const { return path("archive.zip"); }
    QString target() const { return path("target"); }
    QString extracted(const char *name) const { return target() + QLatin1Char('/') + utf8(name); }
    QByteArray content(const char *name) const { return readFile(extracted(name)); }

    bool make(const QList<ArchiveEntry> &entries) const { return makeArchive(archive(), entries); }
    // As hosts mostly call it.
    bool extract(bool overwrite = true) const
    {
        return ZipManager::QuaUnzipFile(archive(), target(), overwrite);
    }

    // All that was said since the last call, each as level, text and value.
    QStringList said()
    {
        QStringList lines;
        for (const MessageCapture::Message &message : m_messages->messages().mid(m_heard))
            lines << QString::fromLatin1(levelOf(message)) + message.text;
        m_heard += lines.size();
        return lines;
    }
    static QString done(const QString &file) { return utf8("debug 解压成功： \"%1\"").arg(file); }
    static QString skipped(const QString &file) { return utf8("debug 文件已存在，跳过： \"%1\"").arg(file); }

    bool becomeOrdinary()
    {
        m_directory.reset();
        m_user = std::make_unique<OrdinaryUser>();
        m_directory = std::make_unique<QTemporaryDir>();
        return m_user->isOrdinary();
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<MessageCapture> m_messages;
    std::unique_ptr<OrdinaryUser> m_user;
    int m_heard = 0;

private Q_SLOTS:
    void initTestCase()
    {
        if (!canMakeArchives())
            QSKIP("Python's zipfile is not installed");
    }
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_messages = std::make_unique<MessageCapture>();
        m_heard = 0;
    }
    void cleanup()
    {
        m_messages.reset();
        m_user.reset();
    }

    // --- What holds its place ----------------------------------------------------------------

    void placeholdersDoNothingAndHaveFixedResults()
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
        QCOMPARE(QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList {utf8("archive.zip")});
        QCOMPARE(said(), QStringList());
    }

    void managerIsAnObjectWithNothingOfItsOwn()
    {
        QObject parent;
        auto *manager = new ZipManager(&parent);
        QCOMPARE(manager->parent(), &parent);
        QCOMPARE(manager->metaObject()->className(), "ZyBase::ZipManager");
        QCOMPARE(manager->metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
        QCOMPARE(sizeof(ZipManager), sizeof(QObject));
        QVERIFY(!ZipManager().parent());
    }

    // --- Before the extraction -----------------------------------------------------------------

    void emptyArchivePathIsFalseInSilence()
    {
        QVERIFY(!ZipManager::QuaUnzipFile(QString(), target(), true));
        QVERIFY(!ZipManager::QuaUnzipFile(utf8(""), QString(), false));
        QCOMPARE(said(), QStringList());
        QVERIFY(QDir(m_directory->path()).isEmpty());
    }

    void missingArchiveIsFalseAndNothingIsMade()
    {
        for (const QString &directory : {target(), QString()}) {
            QVERIFY(!ZipManager::QuaUnzipFile(archive(), directory, true));
            QCOMPARE(said(), QStringList {utf8("critical ZIP 文件不存在： \"%1\"").arg(archive())});
            QVERIFY(QDir(m_directory->path()).isEmpty());
        }
        QVERIFY(!QFile::exists(m_directory->path() + utf8("archive")));
    }

    void messagesHaveTheDefaultCategoryAndNoPlace()
    {
        QVERIFY(make({{"a.txt", "A"}, {"b/", ""}, {"b", "B"}}));
        extract();
        ZipManager::QuaUnzipFile(path("missing"), target(), true);
        QCOMPARE(m_messages->messages().size(), 3);
        for (const MessageCapture::Message &message : m_messages->messages()) {
            QCOMPARE(message.category, utf8("default"));
            QVERIFY(message.file.isNull());
            QVERIFY(message.function.isNull());
            QCOMPARE(message.line, 0);
        }
    }

    void emptyDirectoryIsGluedToTheArchivesOwn_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("directory");
        QTest::newRow("two suffixes") << "docs/data.tar.zip"
                                      << "docsdata";
        QTest::newRow("one suffix") << "docs/data.zip"
                                    << "docsdata";
        QTest::newRow("no suffix") << "docs/data"
                                   << "docsdata";
        QTest::newRow("nothing before the first dot") << "docs/.zip"
                                                      << "docs";
        QTest::newRow("way back") << "docs/../docs/data.zip"
                                  << "docsdata";
    }
    void emptyDirectoryIsGluedToTheArchivesOwn()
    {
        QFETCH(QString, name);
        QFETCH(QString, directory);
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("docs")));
        QVERIFY(makeArchive(m_directory->filePath(name), {{"a.txt", "A"}}));
        QVERIFY(ZipManager::QuaUnzipFile(m_directory->filePath(name), QString(), true));
        QCOMPARE(readFile(m_directory->filePath(directory) + utf8("/a.txt")), QByteArray("A"));
        QVERIFY(!QFile::exists(path("docs/data/a.txt")));
    }

    void relativePathsAreTakenFromTheCurrentDirectory()
    {
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("docs")));
        QVERIFY(makeArchive(path("docs/data.zip"), {{"a.txt", "A"}}));
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(path("docs")));
        const bool glued = ZipManager::QuaUnzipFile(utf8("data.zip"), utf8(""), true);
        const bool named = ZipManager::QuaUnzipFile(utf8("data.zip"), utf8("here"), true);
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(glued && named);
        QCOMPARE(readFile(path("docsdata/a.txt")), QByteArray("A"));
        QCOMPARE(readFile(path("docs/here/a.txt")), QByteArray("A"));
        QCOMPARE(said().last(), done(utf8("here/a.txt")));
    }

    void directoryIsMadeWithThoseAboveIt()
    {
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(ZipManager::QuaUnzipFile(archive(), path("x/y/z"), true));
        QCOMPARE(readFile(path("x/y/z/a.txt")), QByteArray("A"));
    }

    void directoryThatCannotBeMadeIsFalse()
    {
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(writeFile(target(), "in the way"));
        for (const QString &directory : {target(), target() + utf8("/below")}) {
            QVERIFY(!ZipManager::QuaUnzipFile(archive(), directory, true));
            QCOMPARE(said(), QStringList {utf8("critical 无法创建目标目录： \"%1\"").arg(directory)});
        }
        QCOMPARE(readFile(target()), QByteArray("in the way"));
    }

    void whatIsNoArchiveIsFalseAndTheDirectoryStays_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("text") << QByteArray("no archive").repeated(1000);
        QTest::newRow("signature alone") << QByteArray("PK\x03\x04");
        // QuaZip takes this one for none when nothing stands before it.
        QTest::newRow("archive with no entries") << QByteArray("PK\x05\x06") + QByteArray(18, '\0');
    }
    void whatIsNoArchiveIsFalseAndTheDirectoryStays()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(archive(), content));
        QVERIFY(!extract());
        QCOMPARE(said(), QStringList {utf8("critical 打开 ZIP 文件失败： -1000")});
        QVERIFY(QFileInfo(target()).isDir());
        QVERIFY(QDir(target()).isEmpty());
    }

    void archiveThatMayNotBeReadIsFalse()
    {
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(QFile::setPermissions(archive(), QFile::Permissions()));
        QVERIFY(!extract());
        QCOMPARE(said().size(), 1);
        QVERIFY(QDir(target()).isEmpty());
    }

    void archiveThatIsADirectoryIsFalse()
    {
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("archive.zip")));
        QVERIFY(!extract());
        QVERIFY(said().first().startsWith(utf8("critical 打开 ZIP 文件失败： ")));
    }

    void archiveWithNoEntriesGivesOneWarningAndTrue()
    {
        QVERIFY(writeFile(archive(), "#!/bin/sh\nPK\x05\x06" + QByteArray(18, '\0')));
        QVERIFY(extract());
        QCOMPARE(said(), QStringList {utf8("warning 获取文件信息失败： 0")});
        QVERIFY(QDir(target()).isEmpty());
    }

    // --- Entries -------------------------------------------------------------------------------

    void entriesAreExtractedInTheOrderOfTheArchive()
    {
        QVERIFY(make({{"b.txt", "B"}, {"folder/", ""}, {"a.txt", "A"}, {"folder/c.txt", "C"}}));
        QVERIFY(extract());
        QCOMPARE(said(), QStringList({done(extracted("b.txt")), done(extracted("a.txt")),
                                      done(extracted("folder/c.txt"))}));
        QCOMPARE(content("b.txt"), QByteArray("B"));
        QCOMPARE(content("a.txt"), QByteArray("A"));
        QCOMPARE(content("folder/c.txt"), QByteArray("C"));
    }

    void emptyFilesAndDirectoriesAreMade()
    {
        QVERIFY(make({{"empty", ""}, {"folder/", ""}, {"a/b/c/", ""}}));
        QVERIFY(extract());
        QCOMPARE(QFileInfo(extracted("empty")).size(), 0LL);
        QVERIFY(QFileInfo(extracted("empty")).isFile());
        QVERIFY(QDir(extracted("folder")).isEmpty());
        QVERIFY(QFileInfo(extracted("a/b/c")).isDir());
        QCOMPARE(said(), QStringList {done(extracted("empty"))});
    }

    void folderWithoutAnEntryIsMade()
    {
        QVERIFY(make({{"sub/deep/a.txt", "A"}}));
        QVERIFY(extract());
        QCOMPARE(content("sub/deep/a.txt"), QByteArray("A"));
    }

    void existingFilesAreKeptWithoutOverwriting()
    {
        QVERIFY(make({{"a.txt", "new"}, {"b.txt", "B"}}));
        QVERIFY(QDir().mkpath(target()));
        QVERIFY(writeFile(extracted("a.txt"), "old"));
        QVERIFY(extract(false));
        QCOMPARE(said(), QStringList({skipped(extracted("a.txt")), done(extracted("b.txt"))}));
        QCOMPARE(content("a.txt"), QByteArray("old"));
        QCOMPARE(content("b.txt"), QByteArray("B"));
        QVERIFY(extract(false));
        QCOMPARE(said(), QStringList({skipped(extracted("a.txt")), skipped(extracted("b.txt"))}));
    }

    void existingFilesAreReplacedWithOverwriting()
    {
        QVERIFY(make({{"a.txt", "new"}, {"b.txt", "B"}}));
        QVERIFY(QDir().mkpath(target()));
        QVERIFY(writeFile(extracted("a.txt"), "old and longer"));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(extract(true));
            QCOMPARE(said(), QStringList({done(extracted("a.txt")), done(extracted("b.txt"))}));
            QCOMPARE(content("a.txt"), QByteArray("new"));
        }
    }

    void existingDirectoriesAreKeptEitherWay()
    {
        QVERIFY(make({{"folder/", ""}, {"folder/a.txt", "A"}}));
        QVERIFY(QDir().mkpath(extracted("folder")));
        QVERIFY(writeFile(extracted("folder/other"), "kept"));
        for (const bool overwrite : {true, false}) {
            QVERIFY(extract(overwrite));
            QCOMPARE(content("folder/other"), QByteArray("kept"));
            QCOMPARE(said().size(), 1);
        }
    }

    void sameNameTwiceIsTheLaterWithOverwritingAndTheFirstWithout()
    {
        QVERIFY(make({{"a.txt", "first"}, {"a.txt", "second"}}));
        QVERIFY(extract(true));
        QCOMPARE(content("a.txt"), QByteArray("second"));
        QVERIFY(QFile::remove(extracted("a.txt")));
        said();
        QVERIFY(extract(false));
        QCOMPARE(content("a.txt"), QByteArray("first"));
        QCOMPARE(said(), QStringList({done(extracted("a.txt")), skipped(extracted("a.txt"))}));
    }

    void fileWhereADirectoryMustGoIsAWarning()
    {
        QVERIFY(make({{"x/", ""}, {"x/y.txt", "Y"}, {"z.txt", "Z"}}));
        QVERIFY(QDir().mkpath(target()));
        QVERIFY(writeFile(extracted("x"), "in the way"));
        QVERIFY(extract());
        QCOMPARE(said(), QStringList({utf8("warning 创建目录失败： \"%1\"").arg(extracted("x/")),
                                      utf8("warning 创建父目录失败： \"%1\"").arg(extracted("x")),
                                      done(extracted("z.txt"))}));
        QCOMPARE(content("x"), QByteArray("in the way"));
    }

    void fileEntryBeforeTheDirectoryOfItsName()
    {
        QVERIFY(make({{"x", "X"}, {"x/", ""}, {"x/y.txt", "Y"}, {"z.txt", "Z"}}));
        QVERIFY(extract());
        QCOMPARE(content("x"), QByteArray("X"));
        QCOMPARE(content("z.txt"), QByteArray("Z"));
        QCOMPARE(said().size(), 4);
    }

    void directoryWhereAFileMustGoIsAWarning()
    {
        QVERIFY(make({{"x", "X"}, {"z.txt", "Z"}}));
        QVERIFY(QDir().mkpath(extracted("x")));
        QFile directory(extracted("x"));
        directory.open(QIODevice::WriteOnly | QIODevice::Truncate);
        QVERIFY(extract(true));
        QCOMPARE(said(), QStringList({utf8("warning 创建目标文件失败： \"%1\"").arg(directory.errorString()),
                                      done(extracted("z.txt"))}));
        QVERIFY(extract(false));
        QCOMPARE(said(), QStringList({skipped(extracted("x")), skipped(extracted("z.txt"))}));
        QVERIFY(QFileInfo(extracted("x")).isDir());
    }

    void filesThatMayNotBeWrittenAreWarnings()
    {
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
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
        QCOMPARE(said(), QStringList({utf8("warning 创建目标文件失败： \"Permission denied\""),
                                      utf8("warning 创建目标文件失败： \"Permission denied\""),
                                      utf8("warning 创建父目录失败： \"%1\"").arg(extracted("locked/new")),
                                      utf8("warning 创建目录失败： \"%1\"").arg(extracted("locked/folder/")),
                                      done(extracted("d.txt"))}));
        QCOMPARE(content("a.txt"), QByteArray("old"));
        QCOMPARE(content("d.txt"), QByteArray("D"));
    }

    void entryThatCannotBeOpenedIsAWarningAndTheOthersGoOn()
    {
        QVERIFY(make({{"a.txt", "A"}, {"b.txt", "B"}, {"c.txt", "C"}}));
        QByteArray bytes = readFile(archive());
        bytes[bytes.indexOf("PK\x03\x04", 4)] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        QCOMPARE(said(), QStringList({done(extracted("a.txt")), utf8("warning 打开 ZIP 内文件失败： -103"),
                                      done(extracted("c.txt"))}));
        QVERIFY(!QFile::exists(extracted("b.txt")));
    }

    void damagedDirectoryOfTheArchiveEndsTheWalkThere()
    {
        QVERIFY(make({{"a.txt", "A"}, {"b.txt", "B"}}));
        QByteArray bytes = readFile(archive());
        bytes[bytes.indexOf("PK\x01\x02", bytes.indexOf("PK\x01\x02") + 4)] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        QCOMPARE(said(), QStringList {done(extracted("a.txt"))});
        bytes[bytes.indexOf("PK\x01\x02")] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        QCOMPARE(said(), QStringList {utf8("warning 获取文件信息失败： 0")});
    }

    void damagedContentIsWrittenAndTheFilesBehindItAreNot()
    {
        // QuaZip finds the damage when the entry is closed, which it then isn't: it opens no other.
        QVERIFY(make({{"a.txt", "AAAA"}, {"b.txt", "BBBB"}, {"folder/", ""}, {"c.txt", "CCCC"}}));
        QByteArray bytes = readFile(archive());
        bytes[bytes.indexOf("AAAA")] = 'X';
        QVERIFY(writeFile(archive(), bytes));
        QVERIFY(extract());
        const QStringList own = said().filter(QRegularExpression(utf8("^(?!warning QuaZip)")));
        QCOMPARE(own, QStringList({done(extracted("a.txt")), utf8("warning 打开 ZIP 内文件失败： 0"),
                                   utf8("warning 打开 ZIP 内文件失败： 0")}));
        QCOMPARE(content("a.txt"), QByteArray("XAAA"));
        QVERIFY(!QFile::exists(extracted("b.txt")));
        QVERIFY(QFileInfo(extracted("folder")).isDir());
        QVERIFY(!QFile::exists(extracted("c.txt")));
    }

    void entryThatLeadsOutsideLandsOutside_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("place");
        QTest::newRow("up") << QByteArray("../x") << "x";
        QTest::newRow("up twice, down") << QByteArray("a/../../sub/x") << "sub/x";
        QTest::newRow("up and back") << QByteArray("../target/x") << "target/x";
        QTest::newRow("absolute") << QByteArray("ABSOLUTE/x") << "x";
        QTest::newRow("absolute, in a new folder") << QByteArray("ABSOLUTE/new/x") << "new/x";
    }
    void entryThatLeadsOutsideLandsOutside()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, place);
        name.replace("ABSOLUTE", QFile::encodeName(m_directory->path()));
        QVERIFY(QDir().mkpath(extracted("a")));
        QVERIFY(make({{name, "outside"}, {"inside", "inside"}}));
        QVERIFY(extract());
        QCOMPARE(readFile(m_directory->filePath(place)), QByteArray("outside"));
        QCOMPARE(content("inside"), QByteArray("inside"));
        const QString asNamed = QDir(target()).filePath(QString::fromUtf8(name));
        QCOMPARE(said(), QStringList({done(asNamed), done(extracted("inside"))}));
    }

    void directoryEntryThatLeadsOutsideIsMadeThere()
    {
        QVERIFY(make({{"../folder/", ""}, {QFile::encodeName(path("absolute")) + "/", ""}}));
        QVERIFY(extract());
        QVERIFY(QFileInfo(path("folder")).isDir());
        QVERIFY(QFileInfo(path("absolute")).isDir());
    }

    void linkThatLiesThereIsFollowed()
    {
        QVERIFY(make({{"link/a.txt", "A"}, {"file", "F"}}));
        QVERIFY(QDir().mkpath(target()) && QDir().mkpath(path("elsewhere")));
        QVERIFY(QFile::link(path("elsewhere"), extracted("link")));
        QVERIFY(QFile::link(path("linked"), extracted("file")));
        QVERIFY(extract(false));
        QCOMPARE(readFile(path("elsewhere/a.txt")), QByteArray("A"));
        QCOMPARE(readFile(path("linked")), QByteArray("F"));
    }

    void oddNamesAreTakenAsTheyStand()
    {
        QVERIFY(make({{"a\\b", "backslash"},
                      {"x//y", "twice"},
                      {" blank ", "blank"},
                      {"%1 %s", "marks"},
                      {"-rf", "option"},
                      {".hidden", "hidden"},
                      {"quote\"d", "quote"}}));
        QVERIFY(extract());
        QCOMPARE(content("a\\b"), QByteArray("backslash"));
        QCOMPARE(content("x/y"), QByteArray("twice"));
        QCOMPARE(content(" blank "), QByteArray("blank"));
        QCOMPARE(content("%1 %s"), QByteArray("marks"));
        QCOMPARE(content("-rf"), QByteArray("option"));
        QCOMPARE(content(".hidden"), QByteArray("hidden"));
        QCOMPARE(content("quote\"d"), QByteArray("quote"));
        QCOMPARE(said().last(), utf8("debug 解压成功： \"%1\"").arg(extracted("quote\\\"d")));
    }

    void permissionsAndTimeAreThoseOfANewFile()
    {
        // The entries' own: rw------- and the first of January 1980.
        const QDateTime before = QDateTime::currentDateTime().addSecs(-2);
        QVERIFY(make({{"a.txt", "A"}}));
        QVERIFY(extract());
        QVERIFY(writeFile(path("new"), "new"));
        QCOMPARE(QFile::permissions(extracted("a.txt")), QFile::permissions(path("new")));
        QVERIFY(QFileInfo(extracted("a.txt")).lastModified() >= before);
    }

    void threadsExtractIntoTheirOwnDirectories()
    {
        QList<ArchiveEntry> entries;
        for (int i = 0; i < 50; ++i)
            entries << ArchiveEntry {"folder/" + QByteArray::number(i), QByteArray(1000 + i, 'x')};
        QVERIFY(make(entries));
        std::atomic<int> good {0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([this, i, &good] {
                const QString own = path("own") + QString::number(i);
                good += ZipManager::QuaUnzipFile(archive(), own, true);
                good += QDir(own + utf8("/folder")).count() == 50 + 2;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(good.load(), 16);
    }
};

QTEST_GUILESS_MAIN(TestZip)

#include "tst_zip.moc"
