// SPDX-License-Identifier: LGPL-2.1-or-later

#include "HostProcess.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString command = QStringLiteral("system.bundleIdentifier");

// Both classes return the same name.
QJsonValue inBoth(const QString &name)
{
    return QJsonArray {name, name};
}

} // namespace

// The name that applications in various directories get for themselves.
class TestBundleIdentifier : public QObject
{
    Q_OBJECT

private:
    // Copies the host program to a directory and returns the path of the copy.
    QString install(const QString &directory)
    {
        const QDir target(m_directory->filePath(directory));
        const QString program = target.filePath(QStringLiteral("host"));
        return target.mkpath(QStringLiteral(".")) && QFile::copy(HostProcess::program(), program) ? program
                                                                                                  : QString();
    }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void returnsNameOfPackageDirectory_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("name");
        QTest::newRow("directory of its own") << "org.example.reader"
                                              << "org.example.reader";
        QTest::newRow("subdirectory of a package") << "org.example.reader/bin"
                                                   << "bin";
        QTest::newRow("directory files") << "org.example.reader/files"
                                         << "org.example.reader";
        QTest::newRow("subdirectory of files") << "org.example.reader/files/bin"
                                               << "bin";
        QTest::newRow("files in capitals") << "org.example.reader/FILES"
                                           << "org.example.reader";
        QTest::newRow("files in mixed case") << "org.example.reader/Files"
                                             << "org.example.reader";
        QTest::newRow("files within a word") << "user/myProfiles2"
                                             << "user";
        QTest::newRow("files in files: only one step up") << "reader/files/files"
                                                          << "files";
        QTest::newRow("file is not files") << "reader/file"
                                           << "file";
        QTest::newRow("spaces and dots") << " a. b ./files"
                                         << " a. b .";
        QTest::newRow("not ASCII") << "Größe 文件 😀/files"
                                   << "Größe 文件 😀";
    }
    void returnsNameOfPackageDirectory()
    {
        QFETCH(QString, directory);
        QFETCH(QString, name);
        HostProcess host;
        host.setCommand({install(directory)});
        QVERIFY(host.start());
        QCOMPARE(host.call(command), inBoth(name));
    }

    void followsLinkToExecutable()
    {
        const QString program = install(QStringLiteral("reader/files"));
        const QString link = m_directory->filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(program, link));
        HostProcess host;
        host.setCommand({link});
        QVERIFY(host.start());
        QCOMPARE(host.call(command), inBoth(QStringLiteral("reader")));
    }

    void keepsNameFilesIfParentDirectoryIsGone()
    {
        HostProcess host;
        host.setCommand({install(QStringLiteral("reader/files"))});
        QVERIFY(host.start());
        QCOMPARE(host.call(command), inBoth(QStringLiteral("reader")));
        QVERIFY(QDir(m_directory->filePath(QStringLiteral("reader"))).removeRecursively());
        QCOMPARE(host.call(command), inBoth(QStringLiteral("files")));
    }

    void returnsDotForExecutableInRootDirectory()
    {
        if (!Sandbox::isAvailable())
            QSKIP("this machine does not allow a sandbox");
        HostProcess host;
        QVERIFY(host.startInRootDirectory());
        QCOMPARE(host.call(command), inBoth(QStringLiteral(".")));
    }

    void returnsDotAndLogsNothingIfLinkCannotBeRead()
    {
        if (ZYBASE_SANITIZED || ZYBASE_EMULATED)
            QSKIP("sanitizers and emulators need /proc");
        if (!Sandbox::isAvailable())
            QSKIP("this machine does not allow a sandbox");
        const QTemporaryDir empty;
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/proc"), empty.path());
        HostProcess host;
        host.setCommand({install(QStringLiteral("reader/bin"))});
        QVERIFY(host.start(sandbox));
        QCOMPARE(host.call(command), inBoth(QStringLiteral(".")));
        host.quit();
        QCOMPARE(host.standardError(), QString());
    }
};

QTEST_GUILESS_MAIN(TestBundleIdentifier)

#include "tst_bundle_identifier.moc"
