// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "FaultHost.h"
#include "Files.h"
#include "FilesTest.h"

#include <QDir>
#include <QRegularExpression>
#include <QStorageInfo>

#include <cerrno>
#include <sys/inotify.h>
#include <sys/stat.h>
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

// Records which names are created ("+name") and removed ("-name") in a directory.
class DirectoryWatch
{
public:
    explicit DirectoryWatch(const QString &directory)
        : m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        inotify_add_watch(m_descriptor, QFile::encodeName(directory).constData(), IN_CREATE | IN_DELETE);
    }
    ~DirectoryWatch() { close(m_descriptor); }

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
    Q_DISABLE_COPY(DirectoryWatch)

    int m_descriptor;
};

// Whether one file was created and removed again. Its name is this one, with a dot and letters after it.
bool isProbe(const QStringList &events, const QString &name)
{
    const QRegularExpression created(utf8("^\\+%1\\.[A-Za-z]{6}$").arg(QRegularExpression::escape(name)));
    return events.size() == 2 && created.match(events.at(0)).hasMatch()
           && events.at(1) == utf8("-") + events.at(0).mid(1);
}

} // namespace

class TestFilePrimitives : public FilesTest
{
    Q_OBJECT

private Q_SLOTS:
    // --- ReadFileData, WriteFileData ---

    void readsUpToFirstNul_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << QByteArray("hello") << utf8("hello");
        QTest::newRow("UTF-8") << QByteArray("Größe 文件 😀") << utf8("Größe 文件 😀");
        QTest::newRow("line endings") << QByteArray("a\r\nb\nc\r\n") << utf8("a\r\nb\nc\r\n");
        QTest::newRow("NUL between characters") << QByteArray("ab\0cd", 5) << utf8("ab");
        QTest::newRow("NUL first") << QByteArray("\0abc", 4) << utf8("");
        QTest::newRow("NUL last") << QByteArray("abc\0", 4) << utf8("abc");
        QTest::newRow("invalid UTF-8") << QByteArray("a\xff\xfe z") << utf8("a\ufffd\ufffd z");
        QTest::newRow("incomplete character") << QByteArray("a\xe6\x96") << utf8("a\ufffd\ufffd");
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf"
                                                       "abc")
                                         << utf8("abc");
        QTest::newRow("large") << QByteArray(1000000, 'x') << QString(1000000, QLatin1Char('x'));
    }
    void readsUpToFirstNul()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QVERIFY(writeFile(path("file"), content));
        const QString read = CFileUtils::ReadFileData(path("file"));
        QCOMPARE(read, expected);
        QVERIFY(!read.isNull());
        QCOMPARE(messages().size(), 0);
    }

    void returnsNullStringForEmptyFile()
    {
        QVERIFY(writeFile(path("file"), QByteArray()));
        QVERIFY(CFileUtils::ReadFileData(path("file")).isNull());
    }

    void returnsNullStringForFileOf2GiB()
    {
        QVERIFY(writeFile(path("file"), QByteArray()));
        if (!QFile::resize(path("file"), 2LL << 30))
            QSKIP("this file system does not allow a file of 2 GiB");
        QVERIFY(CFileUtils::ReadFileData(path("file")).isNull());
    }

    void returnsEmptyStringIfFileCannotBeRead_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << "missing";
        QTest::newRow("is a directory") << ".";
        QTest::newRow("below a plain file") << "secret/file";
        QTest::newRow("no permission") << "secret";
    }
    void returnsEmptyStringIfFileCannotBeRead()
    {
        QFETCH(QString, name);
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(path("secret"), "secret"));
        QVERIFY(setMode(path("secret"), 0));
        const QString read = CFileUtils::ReadFileData(path(name));
        QCOMPARE(read, QString());
        QVERIFY(!read.isNull());
        QCOMPARE(messages().size(), 0);
    }

    void readsWhatWasWritten_data()
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
    void readsWhatWasWritten()
    {
        QFETCH(QString, data);
        CFileUtils::WriteFileData(path("file"), data);
        QCOMPARE(readFile(path("file")), data.toUtf8());
        QCOMPARE(CFileUtils::ReadFileData(path("file")), data);
        QCOMPARE(messages().size(), 0);
    }

    void dropsWhatUtf8CannotRepresent()
    {
        // Qt drops a byte order mark at the start, and half of a surrogate pair has no UTF-8 form.
        CFileUtils::WriteFileData(path("file"), QChar(0xfeff) + utf8("abc"));
        QCOMPARE(readFile(path("file")), QByteArray("\xef\xbb\xbf"
                                                    "abc"));
        QCOMPARE(CFileUtils::ReadFileData(path("file")), utf8("abc"));
        CFileUtils::WriteFileData(path("file"), QString(QChar(0xd800)));
        QCOMPARE(CFileUtils::ReadFileData(path("file")), utf8("?"));
    }

    void writesStringWithNul()
    {
        CFileUtils::WriteFileData(path("file"), utf8("ab") + QChar(0) + utf8("cd"));
        QCOMPARE(readFile(path("file")), QByteArray("ab\0cd", 5));
    }

    void writesShorterContentOverLonger()
    {
        QVERIFY(writeFile(path("file"), QByteArray(100000, 'x')));
        CFileUtils::WriteFileData(path("file"), utf8("short"));
        QCOMPARE(readFile(path("file")), QByteArray("short"));
    }

    void writesInPlace()
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

    void writesFileThatCannotBeRead()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(path("file"), "old content"));
        QVERIFY(setMode(path("file"), 0200));
        CFileUtils::WriteFileData(path("file"), utf8("new"));
        QVERIFY(setMode(path("file"), 0600));
        QCOMPARE(readFile(path("file")), QByteArray("new"));
    }

    void ignoresFileThatCannotBeWritten_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("in a missing directory") << "missing/file";
        QTest::newRow("is a directory") << "folder";
        QTest::newRow("below a plain file") << "locked/file";
        QTest::newRow("no permission") << "locked";
    }
    void ignoresFileThatCannotBeWritten()
    {
        QFETCH(QString, name);
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(QDir(directoryPath()).mkdir(utf8("folder")));
        QVERIFY(writeFile(path("locked"), "kept"));
        QVERIFY(setMode(path("locked"), 0444));
        CFileUtils::WriteFileData(path(name), utf8("new"));
        QCOMPARE(entries(), QStringList({utf8("folder"), utf8("locked")}));
        QCOMPARE(readFile(path("locked")), QByteArray("kept"));
        QCOMPARE(messages().size(), 0);
    }

    void ignoresEmptyPath()
    {
        CFileUtils::WriteFileData(QString(), utf8("new"));
        QVERIFY(!CFileUtils::ReadFileData(QString()).isNull());
        // Only Qt logs a warning.
        for (const Message &message : messages())
            QVERIFY(message.text.startsWith(utf8("QFSFileEngine::open")));
    }

    void returnsIfDiskIsFull()
    {
        CFileUtils::WriteFileData(utf8("/dev/full"), utf8("data"));
        QCOMPARE(messages().size(), 0);
    }

    // --- Bytes, sizes, fixed results ---

    void xorsEachByteWithKey_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<int>("key");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("characters") << QByteArray("abc") << 1 << QByteArray("`cb");
        QTest::newRow("key 0") << QByteArray("abc\0\xff", 5) << 0 << QByteArray("abc\0\xff", 5);
        QTest::newRow("key 255") << QByteArray("\0\x01\x80\xff", 4) << 255 << QByteArray("\xff\xfe\x7f\0", 4);
        QTest::newRow("key 128") << QByteArray("\0\x7f\x80", 3) << 128 << QByteArray("\x80\xff\0", 3);
        QTest::newRow("key equal to the bytes") << QByteArray("aaa") << int('a') << QByteArray("\0\0\0", 3);
        QTest::newRow("one byte") << QByteArray("a") << 32 << QByteArray("A");
        QTest::newRow("empty") << QByteArray("") << 7 << QByteArray("");
    }
    void xorsEachByteWithKey()
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

    void keepsNullAndEmptyArrays()
    {
        QVERIFY(CFileUtils::getEncryptDecryptByte(QByteArray(), 'k').isNull());
        QVERIFY(!CFileUtils::getEncryptDecryptByte(QByteArray(""), 'k').isNull());
    }

    void acceptsKeyInsideData()
    {
        const QByteArray data("abc");
        QCOMPARE(CFileUtils::getEncryptDecryptByte(data, *data.constData()), QByteArray("\0\3\2", 3));
    }

    void returnsSizeAsString_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty") << 0 << "0.00 B";
        QTest::newRow("1023") << 1023 << "1023.00 B";
        QTest::newRow("1536") << 1536 << "1.50 KB";
        QTest::newRow("1 MiB") << 1048576 << "1.00 MB";
    }
    void returnsSizeAsString()
    {
        QFETCH(int, size);
        QFETCH(QString, expected);
        QVERIFY(writeFile(path("file"), QByteArray(size, 'x')));
        QCOMPARE(CFileUtils::GetFileSize(path("file")), expected);
    }

    void returnsLengthOfSparseFile()
    {
        QVERIFY(writeFile(path("file"), QByteArray()));
        if (!QFile::resize(path("file"), 5LL << 30))
            QSKIP("this file system does not allow a file of 5 GiB");
        QCOMPARE(CFileUtils::GetFileSize(path("file")), utf8("5.00 GB"));
    }

    void returnsEmptyStringForSizeOfMissingFile()
    {
        QCOMPARE(CFileUtils::GetFileSize(path("missing")), QString());
        QVERIFY(!CFileUtils::GetFileSize(path("missing")).isNull());
        QVERIFY(!CFileUtils::GetFileSize(QString()).isNull());
        QVERIFY(QFile::link(path("missing"), path("link")));
        QVERIFY(CFileUtils::GetFileSize(path("link")).isEmpty());
    }

    void returnsSizeOfLinkTargetAndOfDirectory()
    {
        QVERIFY(writeFile(path("file"), QByteArray(1536, 'x')));
        QVERIFY(QFile::link(path("file"), path("link")));
        QCOMPARE(CFileUtils::GetFileSize(path("link")), utf8("1.50 KB"));
        QCOMPARE(CFileUtils::GetFileSize(directoryPath()),
                 CFileUtils::FormatFileSize(QFileInfo(directoryPath()).size()));
    }

    void keepsVersionArgument()
    {
        std::string version = "unchanged";
        QVERIFY(CFileUtils::GetFileVersion(path("missing"), version));
        QCOMPARE(version, std::string("unchanged"));
        QVERIFY(writeFile(path("file"), "1.2.3"));
        QVERIFY(CFileUtils::GetFileVersion(path("file"), version));
        QCOMPARE(version, std::string("unchanged"));
    }

    void returnsTrueWithoutCreatingDesktopLink()
    {
        QVERIFY(CFileUtils::CreateDesktopLink(path("a"), path("b"), path("c"), path("d")));
        QVERIFY(CFileUtils::CreateDesktopLink(QString(), QString(), QString(), QString()));
        QCOMPARE(entries(), QStringList());
    }

    // --- Copies and permissions ---

    void copiesContentAndPermissions()
    {
        QVERIFY(writeFile(path("source"), QByteArray(100000, 'x')));
        QVERIFY(setMode(path("source"), 0750));
        for (const bool overwrite : {false, true}) {
            QVERIFY(CFileUtils::CopyFileHandle(path("source"), path("target"), overwrite));
            QCOMPARE(readFile(path("target")), QByteArray(100000, 'x'));
            QCOMPARE(modeOf(path("target")), 0750U);
            QVERIFY(QFile::remove(path("target")));
        }
        QCOMPARE(messages().size(), 0);
    }

    void keepsExistingTargetWithoutOverwrite()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(writeFile(path("target"), "old"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("target"), false));
        QCOMPARE(readFile(path("target")), QByteArray("old"));
    }

    void replacesExistingTargetWithOverwrite()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(writeFile(path("target"), "longer and old"));
        QVERIFY(CFileUtils::CopyFileHandle(path("source"), path("target"), true));
        QCOMPARE(readFile(path("target")), QByteArray("new"));
        QCOMPARE(readFile(path("source")), QByteArray("new"));
    }

    void removesTargetWithOverwriteIfSourceIsMissing()
    {
        QVERIFY(writeFile(path("target"), "old"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("missing"), path("target"), true));
        QCOMPARE(entries(), QStringList());
    }

    void keepsTargetWithoutOverwriteIfSourceIsMissing()
    {
        QVERIFY(writeFile(path("target"), "old"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("missing"), path("target"), false));
        QVERIFY(!CFileUtils::CopyFileHandle(path("missing"), path("other"), false));
        QCOMPARE(entries(), QStringList {utf8("target")});
    }

    void removesFileCopiedOntoItselfWithOverwrite()
    {
        QVERIFY(writeFile(path("file"), "lost"));
        QVERIFY(!CFileUtils::CopyFileHandle(path("file"), path("file"), true));
        QCOMPARE(entries(), QStringList());
    }

    void replacesLinkAndKeepsItsTarget()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(writeFile(path("linked"), "old"));
        QVERIFY(QFile::link(path("linked"), path("target")));
        QVERIFY(CFileUtils::CopyFileHandle(path("source"), path("target"), true));
        QVERIFY(!QFileInfo(path("target")).isSymLink());
        QCOMPARE(readFile(path("linked")), QByteArray("old"));
    }

    void rejectsCopyOfOrOntoDirectory()
    {
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(QDir(directoryPath()).mkdir(utf8("folder")));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("folder"), true));
        QVERIFY(QFileInfo(path("folder")).isDir());
        QVERIFY(!CFileUtils::CopyFileHandle(path("folder"), path("copy"), true));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("missing/copy"), true));
        QCOMPARE(entries(), QStringList({utf8("folder"), utf8("source")}));
    }

    void rejectsCopyIfTargetCannotBeRemoved()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(path("source"), "new"));
        QVERIFY(QDir(directoryPath()).mkdir(utf8("folder")));
        QVERIFY(writeFile(path("folder/target"), "old"));
        QVERIFY(setMode(path("folder"), 0555));
        QVERIFY(!CFileUtils::CopyFileHandle(path("source"), path("folder/target"), true));
        QCOMPARE(readFile(path("folder/target")), QByteArray("old"));
        QVERIFY(setMode(path("folder"), 0755));
    }

    void addsOnlyWritePermissionOfOwner_data()
    {
        QTest::addColumn<uint>("before");
        QTest::addColumn<uint>("after");
        QTest::newRow("read only") << 0444U << 0644U;
        QTest::newRow("private, read only") << 0400U << 0600U;
        QTest::newRow("no permission") << 0000U << 0200U;
        QTest::newRow("executable") << 0555U << 0755U;
        QTest::newRow("writable for others only") << 0466U << 0666U;
        QTest::newRow("already writable") << 0644U << 0644U;
        QTest::newRow("all permissions") << 0777U << 0777U;
    }
    void addsOnlyWritePermissionOfOwner()
    {
        QFETCH(uint, before);
        QFETCH(uint, after);
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(path("file"), "kept"));
        for (const bool argument : {true, false}) {
            QVERIFY(setMode(path("file"), before));
            CFileUtils::SetFileWritable(path("file"), argument);
            QCOMPARE(modeOf(path("file")), after);
        }
    }

    void keepsPermissionsOfWritableFile()
    {
        // Qt does not support the setuid bit, so setting the permissions again would clear it.
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(setMode(path("file"), 04755));
        CFileUtils::SetFileWritable(path("file"), true);
        QCOMPARE(modeOf(path("file")), 04755U);
    }

    void ignoresFileWhosePermissionsCannotBeSet()
    {
        CFileUtils::SetFileWritable(path("missing"), true);
        CFileUtils::SetFileWritable(QString(), true);
        QCOMPARE(entries(), QStringList());
        const OrdinaryUser user;
        if (user.isOrdinary())
            CFileUtils::SetFileWritable(utf8("/proc/version"), true);
        QCOMPARE(messages().size(), 0);
    }

    void setsPermissionsTo0755_data()
    {
        QTest::addColumn<uint>("before");
        QTest::newRow("private file") << 0600U;
        QTest::newRow("no permission") << 0000U;
        QTest::newRow("all permissions") << 0777U;
        QTest::newRow("already 0755") << 0755U;
        QTest::newRow("special bits") << 06644U;
    }
    void setsPermissionsTo0755()
    {
        QFETCH(uint, before);
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(setMode(path("file"), before));
        QVERIFY(CFileUtils::SetFileExecutable(path("file")));
        QCOMPARE(modeOf(path("file")), 0755U);
    }

    void returnsFalseIfPermissionsCannotBeSet()
    {
        QVERIFY(!CFileUtils::SetFileExecutable(path("missing")));
        QVERIFY(!CFileUtils::SetFileExecutable(QString()));
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(!CFileUtils::SetFileExecutable(utf8("/proc/version")));
    }

    void comparesCanonicalPaths()
    {
        QVERIFY(QDir(directoryPath()).mkdir(utf8("folder")));
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

    // --- Directories ---

    void createsParentDirectories()
    {
        QVERIFY(CFileUtils::MakeDirPath(path("a/b/c")));
        QVERIFY(QFileInfo(path("a/b/c")).isDir());
        QVERIFY(CFileUtils::MakeDirPath(path("a/b/c")));
        QVERIFY(CFileUtils::MakeDirPath(path("d/")));
        QVERIFY(QFileInfo(path("d")).isDir());
        QCOMPARE(messages().size(), 0);
    }

    void returnsTrueIfFileExistsInsteadOfDirectory()
    {
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(CFileUtils::MakeDirPath(path("file")));
        QVERIFY(QFileInfo(path("file")).isFile());
        QVERIFY(!CFileUtils::MakeDirPath(path("file/below")));
        QVERIFY(QFile::link(path("missing"), path("dangling")));
        QVERIFY(!CFileUtils::MakeDirPath(path("dangling")));
        QCOMPARE(readFile(path("file")), QByteArray("kept"));
    }

    void createsDirectoryRelativeToCurrentDirectory()
    {
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(directoryPath()));
        const bool made = CFileUtils::MakeDirPath(utf8("a/b"));
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(made);
        QVERIFY(QFileInfo(path("a/b")).isDir());
    }

    void rejectsEmptyDirectoryPath()
    {
        QVERIFY(!CFileUtils::MakeDirPath(QString()));
        QVERIFY(!CFileUtils::MakeDirPath(utf8("")));
        // Only Qt logs warnings.
        for (const Message &message : messages())
            QVERIFY(message.text.startsWith(utf8("QDir::")));
    }

    void returnsFalseIfDirectoryCannotBeCreated()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(setMode(directoryPath(), 0555));
        QVERIFY(!CFileUtils::MakeDirPath(path("a")));
        QVERIFY(setMode(directoryPath(), 0755));
    }

    void removesDirectoryWithContent()
    {
        QVERIFY(QDir(directoryPath()).mkpath(utf8("a/b/c")));
        QVERIFY(writeFile(path("a/b/.hidden"), "gone"));
        QVERIFY(writeFile(path("outside"), "kept"));
        QVERIFY(QFile::link(path("outside"), path("a/link")));
        QVERIFY(CFileUtils::DeleteDirPath(path("a")));
        QCOMPARE(entries(), QStringList {utf8("outside")});
        QCOMPARE(messages().size(), 0);
    }

    void keepsTargetOfLinkInRemovedDirectory()
    {
        QVERIFY(QDir(directoryPath()).mkpath(utf8("a")));
        QVERIFY(QDir(directoryPath()).mkpath(utf8("outside")));
        QVERIFY(writeFile(path("outside/file"), "kept"));
        QVERIFY(QFile::link(path("outside"), path("a/link")));
        QVERIFY(CFileUtils::DeleteDirPath(path("a")));
        QCOMPARE(readFile(path("outside/file")), QByteArray("kept"));
    }

    void emptiesTargetOfLinkAndKeepsLink()
    {
        QVERIFY(QDir(directoryPath()).mkpath(utf8("linked")));
        QVERIFY(writeFile(path("linked/file"), "gone"));
        QVERIFY(QFile::link(path("linked"), path("link")));
        QVERIFY(!CFileUtils::DeleteDirPath(path("link")));
        QCOMPARE(entries(), QStringList({utf8("link"), utf8("linked")}));
        QVERIFY(QDir(path("linked")).isEmpty());
    }

    void keepsFileThatIsNotADirectory()
    {
        QVERIFY(writeFile(path("file"), "kept"));
        QVERIFY(!CFileUtils::DeleteDirPath(path("missing")));
        QVERIFY(!CFileUtils::DeleteDirPath(path("file")));
        QCOMPARE(readFile(path("file")), QByteArray("kept"));
    }

    void returnsFalseIfDirectoryCannotBeRemoved()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(QDir(directoryPath()).mkpath(utf8("a/locked")));
        QVERIFY(writeFile(path("a/locked/file"), "kept"));
        QVERIFY(writeFile(path("a/file"), "gone"));
        QVERIFY(setMode(path("a/locked"), 0555));
        QVERIFY(!CFileUtils::DeleteDirPath(path("a")));
        QVERIFY(setMode(path("a/locked"), 0755));
        QVERIFY(QFile::exists(path("a/locked/file")));
        QVERIFY(!QFile::exists(path("a/file")));
    }

    void removesCurrentDirectoryForEmptyPath()
    {
        QVERIFY(QDir(directoryPath()).mkpath(utf8("current/below")));
        QVERIFY(writeFile(path("current/file"), "gone"));
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(path("current")));
        QCOMPARE(QDir::current().dirName(), utf8("current"));
        const bool removed = CFileUtils::DeleteDirPath(QString());
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(removed);
        QCOMPARE(entries(), QStringList());
    }

    void combinesDirectoryAndName_data()
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
        QTest::newRow("parent directory in the name") << "/a"
                                                      << "../b"
                                                      << "/a/../b";
        QTest::newRow("backslash") << "/a"
                                   << "b\\c"
                                   << "/a/b\\c";
    }
    void combinesDirectoryAndName()
    {
        QFETCH(QString, directory);
        QFETCH(QString, name);
        QFETCH(QString, expected);
        QCOMPARE(CFileUtils::CombinePath(directory, name), expected);
    }

    // --- isFolderWritable, getLeftSpace ---

    void appendsProbeNameToDirectoryAndRemovesProbe()
    {
        // Some file systems create temporary files without a name: then there are no events.
        const auto isProbeOrUnseen = [](const QStringList &events, const QString &name) {
            return events.isEmpty() || isProbe(events, name);
        };
        QVERIFY(QDir(directoryPath()).mkdir(utf8("folder")));
        const DirectoryWatch inside(path("folder"));
        const DirectoryWatch beside(directoryPath());
        QVERIFY(CFileUtils::isFolderWritable(path("folder/")));
        QVERIFY(isProbeOrUnseen(inside.events(), utf8("\\temp_0")));
        QCOMPARE(beside.events(), QStringList());
        QVERIFY(CFileUtils::isFolderWritable(path("folder")));
        QVERIFY(isProbeOrUnseen(beside.events(), utf8("folder\\temp_0")));
        QCOMPARE(inside.events(), QStringList());
        QCOMPARE(messages().size(), 0);
    }

    void createsNamedProbeIfFileSystemRequiresNames_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("probe");
        QTest::newRow("in the directory") << utf8("folder/") << utf8("\\temp_0");
        QTest::newRow("beside the directory") << utf8("folder") << utf8("folder\\temp_0");
    }
    void createsNamedProbeIfFileSystemRequiresNames()
    {
        QFETCH(QString, folder);
        QFETCH(QString, probe);
        const QString target = QDir(directoryPath()).filePath(folder);
        QVERIFY(QDir(directoryPath()).mkdir(utf8("folder")));
        FaultHost host(false);
        QVERIFY(host.start());
        const DirectoryWatch watch(QFileInfo(target).path());
        const FaultHost::Outcome outcome =
            host.run({Faults::Kind::Open, 1, EOPNOTSUPP}, utf8("files.isFolderWritable"), {target},
                     ChildProcess::timeoutMs);
        QVERIFY(!outcome.failed.isEmpty());
        QCOMPARE(outcome.answer, QJsonValue(true));
        QVERIFY(isProbe(watch.events(), probe));
    }

    void checksParentDirectoryWithoutTrailingSlash()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(QDir(directoryPath()).mkpath(utf8("locked/open")));
        QVERIFY(setMode(path("locked/open"), 0755));
        QVERIFY(setMode(path("locked"), 0555));
        QVERIFY(CFileUtils::isFolderWritable(path("locked")));
        QVERIFY(!CFileUtils::isFolderWritable(path("locked/")));
        QVERIFY(!CFileUtils::isFolderWritable(path("locked/open")));
        QVERIFY(CFileUtils::isFolderWritable(path("locked/open/")));
        QVERIFY(setMode(path("locked"), 0755));
    }

    void acceptsMissingDirectoryWithoutTrailingSlash()
    {
        QVERIFY(CFileUtils::isFolderWritable(path("missing")));
        QVERIFY(!CFileUtils::isFolderWritable(path("missing/")));
        QVERIFY(!CFileUtils::isFolderWritable(path("missing/folder")));
        QCOMPARE(entries(), QStringList());
    }

    void returnsSpaceOfRootFileSystemForEveryPath()
    {
        // In a chroot whose root directory is not a mount point, Qt finds no root file system.
        const QStorageInfo root = QStorageInfo::root();
        const qint64 expected = root.isValid() && root.isReady() ? root.bytesAvailable() : 0;
        QVERIFY(expected > 0 || !root.isValid() || !root.isReady());
        for (const QString &path :
             {utf8("/"), QString(), utf8(""), utf8("/dev/shm"), utf8("/missing"), utf8("/proc")})
            QCOMPARE(CFileUtils::getLeftSpace(path), expected);
    }

    void keepsSpaceOfFirstCall()
    {
        if (!Sandbox::isAvailable())
            QSKIP("this machine does not allow a sandbox");
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

    void isThreadSafe()
    {
        const int successes = sumOfEightThreads([this](int i) {
            int count = 0;
            const QString own = path(QString::number(i));
            const QString folder = own + utf8("-folder/");
            for (int round = 0; round < 20; ++round) {
                CFileUtils::WriteFileData(own, QString::number(round));
                count += CFileUtils::ReadFileData(own) == QString::number(round);
                count += CFileUtils::MakeDirPath(folder) && CFileUtils::isFolderWritable(folder)
                         && CFileUtils::DeleteDirPath(folder);
                count += CFileUtils::GetFileMd5(own) == QString::fromLatin1(getBigFileMd5(own).toHex());
            }
            return count;
        });
        QCOMPARE(successes, 8 * 20 * 3);
    }
};

QTEST_GUILESS_MAIN(TestFilePrimitives)

#include "tst_file_primitives.moc"
