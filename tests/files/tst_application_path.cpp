// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "HostProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using ZyBase::CFileUtils;

namespace {

constexpr int longestPathBytes = 4095;
constexpr int componentBytes = 200;
const QByteArray hostName = "host";

QJsonObject pathsOf(HostProcess *host)
{
    return host->call(QStringLiteral("files.applicationPaths")).toObject();
}

QByteArray bytes(const QJsonValue &latin1)
{
    return latin1.toString().toLatin1();
}

// A directory whose path can be longer than the system accepts in one call, and that need not be UTF-8.
class DeepDirectory
{
public:
    explicit DeepDirectory(const QTemporaryDir &directory)
        : m_path(QFile::encodeName(QDir(directory.path()).canonicalPath()))
        , m_descriptor(open(m_path.constData(), O_DIRECTORY | O_CLOEXEC))
    {
    }
    ~DeepDirectory() { close(m_descriptor); }

    QByteArray path() const { return m_path; }

    bool enter(const QByteArray &component)
    {
        if (mkdirat(m_descriptor, component.constData(), S_IRWXU) != 0)
            return false;
        const int descriptor = openat(m_descriptor, component.constData(), O_DIRECTORY | O_CLOEXEC);
        close(m_descriptor);
        m_descriptor = descriptor;
        m_path += '/' + component;
        return descriptor >= 0;
    }

    // Creates and enters subdirectories until path() has this length.
    bool enterUntilLength(int length)
    {
        while (length - m_path.length() > componentBytes + 2) {
            if (!enter(QByteArray(componentBytes, 'd')))
                return false;
        }
        return enter(QByteArray(length - m_path.length() - 1, 'e'));
    }

    // Copies the host program to this directory and starts the copy with this directory as current one.
    bool start(HostProcess *host) const
    {
        const int previous = open(".", O_DIRECTORY | O_CLOEXEC);
        const QByteArray program = QFile::encodeName(HostProcess::program());
        const int source = open(program.constData(), O_RDONLY | O_CLOEXEC);
        const int target =
            openat(m_descriptor, hostName.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, S_IRWXU);
        char buffer[1 << 16];
        bool good = source >= 0 && target >= 0;
        for (ssize_t count = 0; good && (count = read(source, buffer, sizeof buffer)) > 0;)
            good = write(target, buffer, size_t(count)) == count;
        close(source);
        close(target);
        good = good && fchdir(m_descriptor) == 0;
        host->setCommand({QStringLiteral("./") + QString::fromUtf8(hostName)});
        good = host->start() && good;
        return fchdir(previous) == 0 && close(previous) == 0 && good;
    }

private:
    Q_DISABLE_COPY(DeepDirectory)

    QByteArray m_path;
    int m_descriptor;
};

} // namespace

class TestApplicationPath : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }
    void cleanup()
    {
        // QTemporaryDir cannot remove paths that are too long.
        QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), m_directory->path()});
        m_directory.reset();
    }

    void returnsPathsOfRunningExecutable()
    {
        const QString file = QCoreApplication::applicationFilePath();
        const QString directory = QCoreApplication::applicationDirPath();
        QCOMPARE(QString::fromStdString(GetAppFilePath()), file);
        QCOMPARE(QString::fromStdString(GetAppDirPath()), directory);
        QCOMPARE(CFileUtils::GetApplicationFilePath(), file);
        QCOMPARE(CFileUtils::GetApplicationDirPath(), directory);
        QCOMPARE(CFileUtils::GetResDirPath(), directory + QStringLiteral("/res"));
        QVERIFY(!QFile::exists(CFileUtils::GetResDirPath()));
    }

    void returnsEmptyAndNullForPathsMissingOnLinux()
    {
        QVERIFY(CFileUtils::GetMacResourcesDirPath().isEmpty());
        QVERIFY(!CFileUtils::GetMacResourcesDirPath().isNull());
        QVERIFY(CFileUtils::GetPublicDesktopPath().isNull());
    }

    void resolvesSymbolicLinkToExecutable()
    {
        const QString link = m_directory->filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(HostProcess::program(), link));
        HostProcess host;
        host.setCommand({link});
        QVERIFY(host.start());
        QCOMPARE(pathsOf(&host).value(QStringLiteral("filePath")).toString(),
                 QFileInfo(HostProcess::program()).canonicalFilePath());
    }

    void returnsEmptyDirectoryForExecutableInRootDirectory()
    {
        if (!Sandbox::isAvailable())
            QSKIP("this machine does not allow a sandbox");
        HostProcess host;
        QVERIFY(host.startInRootDirectory());
        const QJsonObject paths = pathsOf(&host);
        QCOMPARE(bytes(paths.value(QStringLiteral("filePathBytes"))), QByteArray("/host"));
        QCOMPARE(paths.value(QStringLiteral("filePath")).toString(), QStringLiteral("/host"));
        QCOMPARE(paths.value(QStringLiteral("dirPathBytes")), QJsonValue(QString()));
        QCOMPARE(paths.value(QStringLiteral("dirPath")), QJsonValue(QString()));
        QCOMPARE(paths.value(QStringLiteral("dirPathIsNull")), QJsonValue(false));
        QCOMPARE(paths.value(QStringLiteral("resDirPath")).toString(), QStringLiteral("/res"));
    }

    void returnsEmptyPathsWithoutProc()
    {
        if (!Sandbox::isAvailable())
            QSKIP("this machine does not allow a sandbox");
        if (ZYBASE_SANITIZED || ZYBASE_EMULATED)
            QSKIP("sanitizers and emulators need /proc");
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/proc"), m_directory->path());
        HostProcess host;
        QVERIFY(host.start(sandbox));
        const QJsonObject paths = pathsOf(&host);
        for (const char *name : {"filePathBytes", "dirPathBytes", "filePath", "dirPath"})
            QCOMPARE(paths.value(QLatin1String(name)), QJsonValue(QString()));
        QCOMPARE(paths.value(QStringLiteral("filePathIsNull")), QJsonValue(false));
        QCOMPARE(paths.value(QStringLiteral("dirPathIsNull")), QJsonValue(false));
        QCOMPARE(paths.value(QStringLiteral("resDirPath")).toString(), QStringLiteral("/res"));
    }

    void replacesBackslashesOnlyInQStrings()
    {
        DeepDirectory deep(*m_directory);
        QVERIFY(deep.enter("a\\b"));
        QVERIFY(deep.enter("\\c"));
        HostProcess host;
        QVERIFY(deep.start(&host));
        const QJsonObject paths = pathsOf(&host);
        QCOMPARE(bytes(paths.value(QStringLiteral("dirPathBytes"))), deep.path());
        QCOMPARE(bytes(paths.value(QStringLiteral("filePathBytes"))), deep.path() + "/host");
        const QString directory = QDir(m_directory->path()).canonicalPath() + QStringLiteral("/a/b//c");
        QCOMPARE(paths.value(QStringLiteral("dirPath")).toString(), directory);
        QCOMPARE(paths.value(QStringLiteral("filePath")).toString(), directory + QStringLiteral("/host"));
        QCOMPARE(paths.value(QStringLiteral("resDirPath")).toString(), directory + QStringLiteral("/res"));
    }

    void decodesPathsAsUtf8()
    {
        DeepDirectory deep(*m_directory);
        QVERIFY(deep.enter("文件 \xff"));
        HostProcess host;
        host.setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("C"));
        QVERIFY(deep.start(&host));
        const QJsonObject paths = pathsOf(&host);
        QCOMPARE(bytes(paths.value(QStringLiteral("dirPathBytes"))), deep.path());
        QCOMPARE(paths.value(QStringLiteral("dirPath")).toString(),
                 QDir(m_directory->path()).canonicalPath() + QStringLiteral("/文件 \ufffd"));
    }

    void returnsLongestPath()
    {
        DeepDirectory deep(*m_directory);
        QVERIFY(deep.enterUntilLength(longestPathBytes - 1 - hostName.length()));
        HostProcess host;
        QVERIFY(deep.start(&host));
        const QJsonObject paths = pathsOf(&host);
        QCOMPARE(bytes(paths.value(QStringLiteral("filePathBytes"))), deep.path() + '/' + hostName);
        QCOMPARE(bytes(paths.value(QStringLiteral("dirPathBytes"))), deep.path());
        QCOMPARE(paths.value(QStringLiteral("filePath")).toString().length(), longestPathBytes);
    }

    void returnsEmptyStringForLongerPath()
    {
        DeepDirectory deep(*m_directory);
        QVERIFY(deep.enterUntilLength(longestPathBytes - hostName.length()));
        HostProcess host;
        QVERIFY(deep.start(&host));
        const QJsonObject paths = pathsOf(&host);
        QCOMPARE(paths.value(QStringLiteral("filePathBytes")), QJsonValue(QString()));
        QCOMPARE(paths.value(QStringLiteral("dirPathBytes")), QJsonValue(QString()));
        QCOMPARE(paths.value(QStringLiteral("resDirPath")).toString(), QStringLiteral("/res"));
    }

    void readsPathAtEachCall()
    {
        if (ZYBASE_EMULATED)
            QSKIP("the emulator does not update /proc/self/exe");
        DeepDirectory deep(*m_directory);
        QVERIFY(deep.enter("before"));
        HostProcess host;
        QVERIFY(deep.start(&host));
        QCOMPARE(bytes(pathsOf(&host).value(QStringLiteral("filePathBytes"))), deep.path() + "/host");
        QVERIFY(QDir(m_directory->path()).rename(QStringLiteral("before"), QStringLiteral("after")));
        const QString after = QDir(m_directory->path()).canonicalPath() + QStringLiteral("/after");
        const QJsonObject renamed = pathsOf(&host);
        QCOMPARE(renamed.value(QStringLiteral("filePath")).toString(), after + QStringLiteral("/host"));
        QCOMPARE(renamed.value(QStringLiteral("dirPath")).toString(), after);
        QCOMPARE(renamed.value(QStringLiteral("resDirPath")).toString(), after + QStringLiteral("/res"));
        QVERIFY(QFile::remove(after + QStringLiteral("/host")));
        QCOMPARE(pathsOf(&host).value(QStringLiteral("filePath")).toString(),
                 after + QStringLiteral("/host (deleted)"));
    }
};

QTEST_GUILESS_MAIN(TestApplicationPath)

#include "tst_application_path.moc"
