// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "Files.h"
#include "HostProcess.h"
#include "MessageCapture.h"
#include "OrdinaryUser.h"
#include "Utf8.h"

#include <QDir>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using ZyBase::CFileUtils;

namespace {

uint modeOf(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0;
}

bool setMode(const QString &path, uint mode)
{
    return chmod(QFile::encodeName(path).constData(), mode) == 0;
}

// The names of what is made in a directory while it lives, each followed by those removed.
class Watch
{
public:
    explicit Watch(const QString &directory)
        : m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        inotify_add_watch(m_descriptor, QFile::encodeName(directory).constData(), IN_CREATE | IN_DELETE);
    }
    ~Watch() { close(m_descriptor); }

    QStringList events() const
    {
        QStringList found;
        alignas(inotify_event) char buffer[4096];
        const ssize_t length = read(m_descriptor, buffer, sizeof buffer);
        for (ssize_t offset = 0; offset < length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer + offset);
            found << ((event->mask & IN_CREATE) != 0 ? utf8("+") : utf8("-"))
                         + QFile::decodeName(event->name);
            offset += ssize_t(sizeof(inotify_event) + event->len);
        }
        return found;
    }

private:
    Q_DISABLE_COPY(Watch)

    int m_descriptor;
};

} // namespace

class TestFilePrimitives : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_directory->filePath(utf8(name)); }
    QStringList entries() const
    {
        return QDir(m_directory->path())
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    }
    // From here to the end of the test function.
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

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_messages = std::make_unique<MessageCapture>();
    }
    void cleanup()
    {
        m_messages.reset();
        m_user.reset();
    }

    // --- Text ------------------------------------------------------------------------------

    void textIsReadUpToTheFirstNul_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << QByteArray("hello") << utf8("hello");
        QTest::newRow("UTF-8") << QByteArray("Größe 文件 😀") << utf8("Größe 文件 😀");
        QTest::newRow("line endings") << QByteArray("a\r\nb\nc\r\n") << utf8("a\r\nb\nc\r\n");
        QTest::newRow("NUL between letters") << QByteArray("ab\0cd", 5) << utf8("ab");
        QTest::newRow("NUL first") << QByteArray("\0abc", 4) << utf8("");
        QTest::newRow("NUL last") << QByteArray("abc\0", 4) << utf8("abc");
        QTest::newRow("invalid UTF-8") << QByteArray("a\xff\xfe z") << utf8("a\ufffd\ufffd z");
        QTest::newRow("cut in a character") << QByteArray("a\xe6\x96") << utf8("a\ufffd\ufffd");
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf"
                                                       "abc")
                                         << utf8("abc");
        QTest::newRow("large") << QByteArray(1000000, 'x') << QString(1000000, QLatin1Char('x'));
    }
    void textIsReadUpToTheFirstNul()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QVERIFY(writeFile(path("file"), content));
        const QString read = CFileUtils::ReadFileData(path("file"));
        QCOMPARE(read, expected);
        QVERIFY(!read.isNull());
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void textOfAnEmptyFileIsNull()
    {
        QVERIFY(writeFile(path("file"), QByteArray()));
        QVERIFY(CFileUtils::ReadFileData(path("file")).isNull());
    }

    void textOfAFileThatCannotBeOpenedIsEmptyAndNotNull_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << "missing";
        QTest::newRow("directory") << ".";
        QTest::newRow("below a file") << "secret/file";
        QTest::newRow("no permission") << "secret";
    }
    void textOfAFileThatCannotBeOpenedIsEmptyAndNotNull()
    {
        QFETCH(QString, name);
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(writeFile(path("secret"), "secret"));
        QVERIFY(setMode(path("secret"), 0));
        const QString read = CFileUtils::ReadFileData(m_directory->filePath(name));
        QCOMPARE(read, QString());
        QVERIFY(!read.isNull());
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void textWrittenIsReadBack_data()
    {
        QTest::addColumn<QString>("data");
        QTest::newRow("plain") << utf8("hello");
        QTest::newRow("UTF-8") << utf8("Größe 文件 😀");
        QTest::newRow("line endings") << utf8("a\r\nb\nc\rd\n");
        QTest::newRow("empty") << utf8("");
        QTest::newRow("null") << QString();
        QTest::newRow("control characters") << utf8("\x01\x02\x1b\x7f\u0080\ufffe");
        QTest::newRow("large") << QString(1000000, QChar(0x6587));
    }
    void textWrittenIsReadBack()
    {
        QFETCH(QString, data);
        CFileUtils::WriteFileData(path("file"), data);
        QCOMPARE(readFile(path("file")), data.toUtf8());
        QCOMPARE(CFileUtils::ReadFileData(path("file")), data);
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void textThatUtf8DoesNotBringBack()
    {
        // Qt takes U+FEFF at the start for a byte order mark and has no bytes for half a character.
        CFileUtils::WriteFileData(path("file"), QChar(0xfeff) + utf8("abc"));
        QCOMPARE(readFile(path("file")), QByteArray("\xef\xbb\xbf"
                                                    "abc"));
        QCOMPARE(CFileUtils::ReadFileData(path("file")), utf8("abc"));
        CFileUtils::WriteFileData(path("file"), QString(QChar(0xd800)));
        QCOMPARE(CFileUtils::ReadFileData(path("file")), utf8("?"));
    }

    void textWithNulIsWrittenWhole()
    {
        CFileUtils::WriteFileData(path("file"), utf8("ab") + QChar(0) + utf8("cd"));
        QCOMPARE(readFile(path("file")), QByteArray("ab\0cd", 5));
    }

    void writingLeavesNothingOfALongerFile()
    {
        QVERIFY(writeFile(path("file"), QByteArray(100000, 'x')));
        CFileUtils::WriteFileData(path("file"), utf8("short"));
        QCOMPARE(readFile(path("file")), QByteArray("short"));
    }

    void writingIsDoneInPlace()
    {
        QVERIFY(writeFile(path("file"), "old"));
        QVERIFY(setMode(path("file"), 0640));
        QCOMPARE(
            link(QFile::encodeName(path("file")).constData(), QFile::encodeName(path("second")).constData()),
            0);
        CFileUtils::WriteFileData(path("file"), utf8("new"));
        QCOMPARE(readFile(path("second")), QByteArray("new"));
        QCOMPARE(modeOf(path("file")), 0640U);
        QCOMPARE(entries(), QStringList({utf8("file"), utf8("second")}));
    }

    void writingWhereNoFileCanBeOpenedDoesNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("in a missing directory") << "missing/file";
        QTest::newRow("on a directory") << "folder";
        QTest::newRow("below a file") << "locked/file";
        QTest::newRow("no permission") << "locked";
    }
    void writingWhereNoFileCanBeOpenedDoesNothing()
    {
        QFETCH(QString, name);
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("folder")));
        QVERIFY(writeFile(path("locked"), "kept"));
        QVERIFY(setMode(path("locked"), 0444));
        CFileUtils::WriteFileData(m_directory->filePath(name), utf8("new"));
        QCOMPARE(entries(), QStringList({utf8("folder"), utf8("locked")}));
        QCOMPARE(readFile(path("locked")), QByteArray("kept"));
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void emptyPathIsAFileThatCannotBeOpened()
    {
        CFileUtils::WriteFileData(QString(), utf8("new"));
        QVERIFY(!CFileUtils::ReadFileData(QString()).isNull());
        // Qt's own word on it, once for each.
        for (const MessageCapture::Message &message : m_messages->messages())
            QVERIFY(message.text.startsWith(utf8("QFSFileEngine::open")));
    }

    void writingOnAFullDiskReturns()
    {
        CFileUtils::WriteFileData(utf8("/dev/full"), utf8("data"));
        QCOMPARE(m_messages->messages().size(), 0);
    }

    // --- Bytes and sizes -------------------------------------------------------------------

    void everyByteIsXoredWithTheKey_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<int>("key");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("letters") << QByteArray("abc") << 1 << QByteArray("`cb");
        QTest::newRow("key 0") << QByteArray("abc\0\xff", 5) << 0 << QByteArray("abc\0\xff", 5);
        QTest::newRow("key 255") << QByteArray("\0\x01\x80\xff", 4) << 255 << QByteArray("\xff\xfe\x7f\0", 4);
        QTest::newRow("key 128") << QByteArray("\0\x7f\x80", 3) << 128 << QByteArray("\x80\xff\0", 3);
        QTest::newRow("own byte") << QByteArray("aaa") << int('a') << QByteArray("\0\0\0", 3);
        QTest::newRow("one byte") << QByteArray("a") << 32 << QByteArray("A");
        QTest::newRow("empty") << QByteArray("") << 7 << QByteArray("");
    }
    void everyByteIsXoredWithTheKey()
    {
        QFETCH(QByteArray, data);
        QFETCH(int, key);
        QFETCH(QByteArray, expected);
        const QByteArray before(data.constData(), data.size());
        const QByteArray transformed = CFileUtils::getEncryptDecryptByte(data, char(key));
        QCOMPARE(transformed, expected);
        QCOMPARE(data, before);
        QCOMPARE(CFileUtils::getEncryptDecryptByte(transformed, char(key)), data);
    }

    void nullArrayStaysNullAndAnEmptyOneEmpty()
    {
        QVERIFY(CFileUtils::getEncryptDecryptByte(QByteArray(), 'k').isNull());
        QVERIFY(!CFileUtils::getEncryptDecryptByte(QByteArray(""), 'k').isNull());
    }

    void keyMayBeAByteOfTheData()
    {
        const QByteArray data("abc");
        QCOMPARE(CFileUtils::getEncryptDecryptByte(data, *data.constData()), QByteArray("\0\3\2", 3));
    }

    void sizeOfAFileIsText_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty") << 0 << "0.00 B";
        QTest::newRow("1023") << 1023 << "1023.00 B";
        QTest::newRow("1536") << 1536 << "1.50 KB";
        QTest::newRow("1 MiB") << 1048576 << "1.00 MB";
    }
    void sizeOfAFileIsText()
    {
        QFETCH(int, size);
        QFETCH(QString, expected);
        QVERIFY(writeFile(path("file"), QByteArray(size, 'x')));
        QCOMPARE(CFileUtils::GetFileSize(path("file")), expected);
    }

    void sizeOfASparseFileIsItsLength()
    {
        QVERIFY(writeFile(path("file"), QByteArray()));
        if (!QFile::resize(path("file"), 5LL << 30))
            QSKIP("no file of this size can be made here");
        QCOMPARE(CFileUtils::GetFileSize(path("file")), utf8("5.00 GB"));
    }

    void sizeOfNothingIsEmptyAndNotNull()
    {
        QCOMPARE(CFileUtils::GetFileSize(path("missing")), QString());
        QVERIFY(!CFileUtils::GetFileSize(path("missing")).isNull());
        QVERIFY(!CFileUtils::GetFileSize(QString()).isNull());
        QVERIFY(QFile::link(path("missing"), path("link")));
        QVERIFY(CFileUtils::GetFileSize(path("link")).isEmpty());
    }

    void sizeOfALinkOrDirectoryIsThatOfWhatIsThere()
    {
        QVERIFY(writeFile(path("file"), QByteArray(1536, 'x')));
        QVERIFY(QFile::link(path("file"), path("link")));
        QCOMPARE(CFileUtils::GetFileSize(path("link")), utf8("1.50 KB"));
        QCOMPARE(CFileUtils::GetFileSize(m_directory->path()),
                 CFileUtils::FormatFileSize(QFileInfo(m_directory->path()).size()));
    }

    void versionIsLeftAsItCame()
    {
        std::string version = "as it came";
        QVERIFY(CFileUtils::GetFileVersion(path("missing"), version));
        QCOMPARE(version, std::string("as it came"));
        QVERIFY(writeFile(path("file"), "1.2.3"));
        QVERIFY(CFileUtils::GetFileVersion(path("file"), version));
        QCOMPARE(version, std::string("as it came"));
    }

    void desktopLinkIsAlwaysMadeAndNeverThere()
    {
        QVERIFY(CFileUtils::CreateDesktopLink(path("a"), path("b"), path("c"), path("d")));
        QVERIFY(CFileUtils::CreateDesktopLink(QString(), QString(), QString(), QString()));
        QCOMPARE(entries(), QStringList());
    }

    // --- Copies and permissions ------------------------------------------------------------

    void copyMakesTheTarget()
    {
        QVERIFY(writeFile(path("source"), QByteArray(100000, 'x')));
        QVERIFY(setMode(path("source"), 0750));
        for (const bool overwrite : {false, true}) {
            QVERIFY(CFileUtils::CopyFileHandle(path("source"), path("target"), overwrite));
            QCOMPARE(readFile(path("target")), QByteArray(100000, 'x'));
            QCOMPARE(modeOf(path("target")), 0750U);
            QVERIFY(QFile::remove(path("target")));
        }
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void copyKeepsAnExistingTargetWithoutTheFlag()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(writeFile(path("target"), "old"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("target"), false));
        QCOMPARE(readFile(path("target")), QByteArray("old"));
    }

    void copyReplacesAnExistingTargetWithTheFlag()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(writeFile(path("target"), "longer and old"));
        QVERIFY(CFileUtils::CopyFileHandle(path("source"), path("target"), true));
        QCOMPARE(readFile(path("target")), QByteArray("new"));
        QCOMPARE(readFile(path("source")), QByteArray("new"));
    }

    void copyWithTheFlagRemovesTheTargetEvenWithoutASource()
    {
        QVERIFY(writeFile(path("target"), "old"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("missing"), path("target"), true));
        QCOMPARE(entries(), QStringList());
    }

    void copyWithoutASourceAndWithoutTheFlagKeepsTheTarget()
    {
        QVERIFY(writeFile(path("target"), "old"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("missing"), path("target"), false));
        QVERIFY(!CFileUtils::CopyFileHandle(path("missing"), path("other"), false));
        QCOMPARE(entries(), QStringList {utf8("target")});
    }

    void copyOnItselfWithTheFlagLosesTheFile()
    {
        QVERIFY(writeFile(path("file"), "lost"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("file"), path("file"), true));
        QCOMPARE(entries(), QStringList());
    }

    void copyReplacesALinkAndNotWhatItLeadsTo()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(writeFile(path("linked"), "old"));
        QVERIFY(QFile::link(path("linked"), path("target")));
        QVERIFY(CFileUtils::CopyFileHandle(path("source"), path("target"), true));
        QVERIFY(!QFileInfo(path("target")).isSymLink());
        QCOMPARE(readFile(path("linked")), QByteArray("old"));
    }

    void copyOntoADirectoryOrOfOneFails()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("folder")));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("folder"), true));
        QVERIFY(QFileInfo(path("folder")).isDir());
        QVERIFY(!CFileUtils::CopyFileHandle(path("folder"), path("copy"), true));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("missing/copy"), true));
        QCOMPARE(entries(), QStringList({utf8("folder"), utf8("source")}));
    }

    void copyAfterARemovalThatFailedFails()
    {
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("folder")));
        QVERIFY(writeFile(path("folder/target"), "old"));
        QVERIFY(setMode(path("folder"), 0555));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("folder/target"), true));
        QCOMPARE(readFile(path("folder/target")), QByteArray("old"));
        QVERIFY(setMode(path("folder"), 0755));
    }

    void ownerGetsWritePermissionAndNothingElseChanges_data()
    {
        QTest::addColumn<uint>("before");
        QTest::addColumn<uint>("after");
        QTest::newRow("read only") << 0444U << 0644U;
        QTest::newRow("private, read only") << 0400U << 0600U;
        QTest::newRow("no permission") << 0000U << 0200U;
        QTest::newRow("executable") << 0555U << 0755U;
        QTest::newRow("writable for others only") << 0466U << 0666U;
        QTest::newRow("writable already") << 0644U << 0644U;
        QTest::newRow("all") << 0777U << 0777U;
    }
    void ownerGetsWritePermissionAndNothingElseChanges()
    {
        QFETCH(uint, before);
        QFETCH(uint, after);
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(writeFile(path("file"), "kept"));
        for (const bool argument : {true, false}) {
            QVERIFY(setMode(path("file"), before));
            CFileUtils::SetFileWritable(path("file"), argument);
            QCOMPARE(modeOf(path("file")), after);
        }
    }

    void writableFileIsNotTouched()
    {
        // Setting the flags again would lose this bit, which Qt doesn't know.
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(setMode(path("file"), 04755));
        CFileUtils::SetFileWritable(path("file"), true);
        QCOMPARE(modeOf(path("file")), 04755U);
    }

    void writePermissionThatCannotBeGivenIsNotReported()
    {
        CFileUtils::SetFileWritable(path("missing"), true);
        CFileUtils::SetFileWritable(QString(), true);
        QCOMPARE(entries(), QStringList());
        const OrdinaryUser user;
        if (user.isOrdinary())
            CFileUtils::SetFileWritable(utf8("/proc/version"), true);
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void executableIsExactly0755_data()
    {
        QTest::addColumn<uint>("before");
        QTest::newRow("private") << 0600U;
        QTest::newRow("none") << 0000U;
        QTest::newRow("all") << 0777U;
        QTest::newRow("already") << 0755U;
        QTest::newRow("special bits") << 06644U;
    }
    void executableIsExactly0755()
    {
        QFETCH(uint, before);
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(setMode(path("file"), before));
        QVERIFY(CFileUtils::SetFileExecutable(path("file")));
        QCOMPARE(modeOf(path("file")), 0755U);
    }

    void executableThatCannotBeMadeIsFalse()
    {
        QVERIFY(!CFileUtils::SetFileExecutable(path("missing")));
        QVERIFY(!CFileUtils::SetFileExecutable(QString()));
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(!CFileUtils::SetFileExecutable(utf8("/proc/version")));
    }

    void sameFileIsTheSameCanonicalPath()
    {
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("folder")));
        QVERIFY(writeFile(path("file"), "same"));
        QVERIFY(writeFile(path("copy"), "same"));
        QVERIFY(writeFile(path("FILE"), "same"));
        QVERIFY(QFile::link(path("file"), path("link")));
        QVERIFY(QFile::link(path("folder"), path("folderlink")));
        QVERIFY(QFile::link(path("missing"), path("dangling")));
        QCOMPARE(
            link(QFile::encodeName(path("file")).constData(), QFile::encodeName(path("hard")).constData()),
            0);

        QVERIFY(CFileUtils::IsTheSameFile(path("file"), path("file")));
        QVERIFY(CFileUtils::IsTheSameFile(path("file"), path("link")));
        QVERIFY(CFileUtils::IsTheSameFile(path("link"), path("file")));
        QVERIFY(CFileUtils::IsTheSameFile(path("file"), path("folder/../file")));
        QVERIFY(CFileUtils::IsTheSameFile(path("folder"), path("folderlink/")));
        QVERIFY(!CFileUtils::IsTheSameFile(path("file"), path("hard")));
        QVERIFY(!CFileUtils::IsTheSameFile(path("file"), path("copy")));
        QVERIFY(!CFileUtils::IsTheSameFile(path("file"), path("FILE")));
        QVERIFY(!CFileUtils::IsTheSameFile(path("missing"), path("missing")));
        QVERIFY(!CFileUtils::IsTheSameFile(path("file"), path("missing")));
        QVERIFY(!CFileUtils::IsTheSameFile(path("missing"), path("file")));
        QVERIFY(!CFileUtils::IsTheSameFile(path("dangling"), path("dangling")));
        QVERIFY(!CFileUtils::IsTheSameFile(QString(), QString()));
    }

    // --- Directories -----------------------------------------------------------------------

    void directoryIsMadeWithThoseAboveIt()
    {
        QVERIFY(CFileUtils::MakeDirPath(path("a/b/c")));
        QVERIFY(QFileInfo(path("a/b/c")).isDir());
        QVERIFY(CFileUtils::MakeDirPath(path("a/b/c")));
        QVERIFY(CFileUtils::MakeDirPath(path("d/")));
        QVERIFY(QFileInfo(path("d")).isDir());
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void fileInTheWayIsADirectoryMade()
    {
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(CFileUtils::MakeDirPath(path("file")));
        QVERIFY(QFileInfo(path("file")).isFile());
        QVERIFY(!CFileUtils::MakeDirPath(path("file/below")));
        QVERIFY(QFile::link(path("missing"), path("dangling")));
        QVERIFY(!CFileUtils::MakeDirPath(path("dangling")));
        QCOMPARE(readFile(path("file")), QByteArray("kept"));
    }

    void directoryIsTakenFromTheCurrentOne()
    {
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_directory->path()));
        const bool made = CFileUtils::MakeDirPath(utf8("a/b"));
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(made);
        QVERIFY(QFileInfo(path("a/b")).isDir());
    }

    void directoryWithoutANameIsRefused()
    {
        QVERIFY(!CFileUtils::MakeDirPath(QString()));
        QVERIFY(!CFileUtils::MakeDirPath(utf8("")));
        // All of it Qt's own; the library has no word on it.
        for (const MessageCapture::Message &message : m_messages->messages())
            QVERIFY(message.text.startsWith(utf8("QDir::")));
    }

    void directoryThatMayNotBeMadeIsFalse()
    {
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(setMode(m_directory->path(), 0555));
        QVERIFY(!CFileUtils::MakeDirPath(path("a")));
        QVERIFY(setMode(m_directory->path(), 0755));
    }

    void directoryIsRemovedWithAllItHolds()
    {
        QVERIFY(QDir(m_directory->path()).mkpath(utf8("a/b/c")));
        QVERIFY(writeFile(path("a/b/.hidden"), "gone"));
        QVERIFY(writeFile(path("outside"), "kept"));
        QVERIFY(QFile::link(path("outside"), path("a/link")));
        QVERIFY(CFileUtils::DeleteDirPath(path("a")));
        QCOMPARE(entries(), QStringList {utf8("outside")});
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void linkToADirectoryInsideIsNotFollowed()
    {
        QVERIFY(QDir(m_directory->path()).mkpath(utf8("a")));
        QVERIFY(QDir(m_directory->path()).mkpath(utf8("outside")));
        QVERIFY(writeFile(path("outside/file"), "kept"));
        QVERIFY(QFile::link(path("outside"), path("a/link")));
        QVERIFY(CFileUtils::DeleteDirPath(path("a")));
        QCOMPARE(readFile(path("outside/file")), QByteArray("kept"));
    }

    void linkItselfIsEmptiedAndStays()
    {
        QVERIFY(QDir(m_directory->path()).mkpath(utf8("linked")));
        QVERIFY(writeFile(path("linked/file"), "gone"));
        QVERIFY(QFile::link(path("linked"), path("link")));
        QVERIFY(!CFileUtils::DeleteDirPath(path("link")));
        QCOMPARE(entries(), QStringList({utf8("link"), utf8("linked")}));
        QVERIFY(QDir(path("linked")).isEmpty());
    }

    void whatIsNoDirectoryIsNotRemoved()
    {
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(!CFileUtils::DeleteDirPath(path("missing")));
        QVERIFY(!CFileUtils::DeleteDirPath(path("file")));
        QCOMPARE(readFile(path("file")), QByteArray("kept"));
    }

    void directoryThatCannotBeRemovedIsFalse()
    {
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(QDir(m_directory->path()).mkpath(utf8("a/locked")));
        QVERIFY(writeFile(path("a/locked/file"), "kept"));
        QVERIFY(writeFile(path("a/file"), "gone"));
        QVERIFY(setMode(path("a/locked"), 0555));
        QVERIFY(!CFileUtils::DeleteDirPath(path("a")));
        QVERIFY(setMode(path("a/locked"), 0755));
        QVERIFY(QFile::exists(path("a/locked/file")));
        QVERIFY(!QFile::exists(path("a/file")));
    }

    void emptyPathRemovesTheCurrentDirectory()
    {
        QVERIFY(QDir(m_directory->path()).mkpath(utf8("current/below")));
        QVERIFY(writeFile(path("current/file"), "gone"));
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(path("current")));
        QCOMPARE(QDir::current().dirName(), utf8("current"));
        const bool removed = CFileUtils::DeleteDirPath(QString());
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(removed);
        QCOMPARE(entries(), QStringList());
    }

    void nameIsPutOnTheDirectory_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << "/a"
                               << "b"
                               << "/a/b";
        QTest::newRow("slash at the end") << "/a/"
                                          << "b"
                                          << "/a/b";
        QTest::newRow("root") << "/"
                              << "b"
                              << "/b";
        QTest::newRow("relative") << "a"
                                  << "b"
                                  << "a/b";
        QTest::newRow("empty directory") << ""
                                         << "b"
                                         << "./b";
        QTest::newRow("empty name") << "/a"
                                    << ""
                                    << "/a";
        QTest::newRow("absolute name") << "/a"
                                       << "/b"
                                       << "/b";
        QTest::newRow("up") << "/a"
                            << "../b"
                            << "/a/../b";
        QTest::newRow("backslash") << "/a"
                                   << "b\\c"
                                   << "/a/b\\c";
    }
    void nameIsPutOnTheDirectory()
    {
        QFETCH(QString, directory);
        QFETCH(QString, name);
        QFETCH(QString, expected);
        QCOMPARE(CFileUtils::CombinePath(directory, name), expected);
    }

    // --- The probe and the space -----------------------------------------------------------

    void probeIsNamedBehindTheFolderAndLeavesNothing()
    {
        // Where the file system makes files without a name, Qt's temporary file never shows.
        const auto isProbe = [](const QStringList &events, const QString &name) {
            return events.isEmpty()
                   || (events.size() == 2 && events.at(0).startsWith(utf8("+") + name)
                       && events.at(1) == utf8("-") + events.at(0).mid(1));
        };
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("folder")));
        const Watch inside(path("folder"));
        const Watch beside(m_directory->path());
        QVERIFY(CFileUtils::isFolderWritable(path("folder/")));
        QVERIFY(isProbe(inside.events(), utf8("\\temp_0.")));
        QCOMPARE(beside.events(), QStringList());
        QVERIFY(CFileUtils::isFolderWritable(path("folder")));
        QVERIFY(isProbe(beside.events(), utf8("folder\\temp_0.")));
        QCOMPARE(inside.events(), QStringList());
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void answerWithoutASlashIsThatOfTheParent()
    {
        if (!becomeOrdinary())
            QSKIP("root passes every permission check");
        QVERIFY(QDir(m_directory->path()).mkpath(utf8("locked/open")));
        QVERIFY(setMode(path("locked/open"), 0755));
        QVERIFY(setMode(path("locked"), 0555));
        QVERIFY(CFileUtils::isFolderWritable(path("locked")));
        QVERIFY(!CFileUtils::isFolderWritable(path("locked/")));
        QVERIFY(!CFileUtils::isFolderWritable(path("locked/open")));
        QVERIFY(CFileUtils::isFolderWritable(path("locked/open/")));
        QVERIFY(setMode(path("locked"), 0755));
    }

    void folderThatDoesNotExistIsWritableWithoutASlash()
    {
        QVERIFY(CFileUtils::isFolderWritable(path("missing")));
        QVERIFY(!CFileUtils::isFolderWritable(path("missing/")));
        QVERIFY(!CFileUtils::isFolderWritable(path("missing/folder")));
        QCOMPARE(entries(), QStringList());
    }

    void spaceIsThatOfTheRootWhateverIsAskedFor()
    {
        const qint64 root = CFileUtils::getLeftSpace(utf8("/"));
        QVERIFY(root > 0);
        QCOMPARE(root, QStorageInfo::root().bytesAvailable());
        for (const QString &path : {QString(), utf8(""), utf8("/dev/shm"), utf8("/missing"), utf8("/proc")})
            QCOMPARE(CFileUtils::getLeftSpace(path), root);
    }

    void spaceIsThatOfTheFirstCallInTheProcess()
    {
        if (!Sandbox::isAvailable())
            QSKIP("no sandbox can be made here");
        Sandbox sandbox;
        sandbox.freshRoot();
        HostProcess host;
        QVERIFY(host.start(sandbox));
        const auto space = [&host] { return host.call(utf8("files.leftSpace"), {QString()}).toDouble(); };
        const double before = space();
        host.call(utf8("files.writeFileData"), {utf8("/large"), QString(1 << 20, QLatin1Char('x'))});
        QCOMPARE(space(), before);
        QVERIFY(before > 0);
    }

    void threadsWorkOnTheirOwnFiles()
    {
        std::atomic<int> good {0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([this, i, &good] {
                const QString own = m_directory->filePath(QString::number(i));
                const QString folder = own + utf8("-folder/");
                for (int round = 0; round < 20; ++round) {
                    CFileUtils::WriteFileData(own, QString::number(round));
                    good += CFileUtils::ReadFileData(own) == QString::number(round);
                    good += CFileUtils::MakeDirPath(folder) && CFileUtils::isFolderWritable(folder)
                            && CFileUtils::DeleteDirPath(folder);
                    good += CFileUtils::GetFileMd5(own) == QString::fromLatin1(getBigFileMd5(own).toHex());
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(good.load(), 8 * 20 * 3);
    }
};

QTEST_GUILESS_MAIN(TestFilePrimitives)

#include "tst_file_primitives.moc"
