// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "HostProcess.h"

#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

namespace {

const QString fileName = QStringLiteral("app.log");

} // namespace

// A host whose log can't be written as it wishes: the calls return, the host goes on.
class TestLoggerFailures : public QObject
{
    Q_OBJECT

private:
    // Every call of a log's life is made and answered, and the host ends as usual.
    static void driveWholeLife(HostProcess *host, const QJsonValue &name, const QJsonValue &directory)
    {
        QVERIFY(host->call(QStringLiteral("log.init"), {name, directory}).toBool());
        for (const char *level : {"log.error", "log.warn", "log.info"})
            QVERIFY(host->call(QLatin1String(level), {QStringLiteral("x")}).toBool());
        QVERIFY(host->call(QStringLiteral("log.release")).toBool());
        QVERIFY(host->call(QStringLiteral("log.info"), {QStringLiteral("late")}).toBool());
        QCOMPARE(host->quit(), 0);
    }

private Q_SLOTS:
    void hostGoesOnWithoutItsLogFile_data()
    {
        QTest::addColumn<QString>("prepared");
        QTest::addColumn<QJsonValue>("name");
        QTest::addColumn<QString>("base");
        const QJsonValue null;
        QTest::newRow("base directory is missing") << "" << QJsonValue(fileName) << "missing";
        QTest::newRow("base directory and the one above are missing")
            << "" << QJsonValue(fileName) << "missing/twice";
        QTest::newRow("log file is a directory") << "base/log/app.log/" << QJsonValue(fileName) << "base";
        QTest::newRow("log folder is a file") << "base/log" << QJsonValue(fileName) << "base";
        QTest::newRow("base directory is a file") << "base" << QJsonValue(fileName) << "base";
        QTest::newRow("folder inside log is missing twice")
            << "base/log/" << QJsonValue(QStringLiteral("a/b/app.log")) << "base";
        QTest::newRow("file name is empty") << "base/" << QJsonValue(QString::fromLatin1("")) << "base";
        QTest::newRow("file name is a null pointer") << "base/" << null << "base";
    }
    void hostGoesOnWithoutItsLogFile()
    {
        QFETCH(QString, prepared);
        QFETCH(QJsonValue, name);
        QFETCH(QString, base);
        const QTemporaryDir directory;
        const QString target = directory.filePath(prepared);
        QVERIFY(QDir().mkpath(QFileInfo(target).path()));
        if (prepared.endsWith(QLatin1Char('/')))
            QVERIFY(QDir().mkpath(target));
        else if (!prepared.isEmpty())
            QVERIFY(writeFile(target, "kept"));

        HostProcess host;
        QVERIFY(host.start());
        driveWholeLife(&host, name, directory.filePath(base));
        if (QTest::currentTestFailed())
            return;
        // One complaint of log4qt's for the file, one for each line that is dropped.
        QCOMPARE(host.standardError().count(QLatin1Char('\n')), 4);
        if (QFileInfo(target).isFile())
            QCOMPARE(readFile(target), QByteArray("kept"));
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("missing"))));
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("base/log/a"))));
    }

    void onlyTheLogFolderItselfIsMade()
    {
        const QTemporaryDir directory;
        HostProcess host;
        QVERIFY(host.start());
        driveWholeLife(&host, fileName, directory.path());
        QCOMPARE(readLines(directory.filePath(QStringLiteral("log/app.log"))).size(), 3);
        QCOMPARE(host.standardError(), QString());
    }

    void nullBaseDirectoryIsTheRoot()
    {
        if (!Sandbox::isAvailable())
            QSKIP("no sandbox can be made here");
        // What stands at the root of the sandbox goes with it, so the host reads its log back itself.
        Sandbox sandbox;
        sandbox.freshRoot();
        HostProcess host;
        QVERIFY(host.start(sandbox));
        QVERIFY(host.call(QStringLiteral("log.init"), {fileName, QJsonValue()}).toBool());
        QVERIFY(host.call(QStringLiteral("log.info"), {QStringLiteral("at the root")}).toBool());
        const QString content =
            host.call(QStringLiteral("process.readFile"), {QStringLiteral("/log/app.log")}).toString();
        QVERIFY2(content.endsWith(QStringLiteral(" INFO   - at the root\n")), qPrintable(content));
        QCOMPARE(host.quit(), 0);
    }

    void readOnlyDirectoryCostsOnlyTheLines()
    {
        if (!Sandbox::isAvailable())
            QSKIP("no sandbox can be made here");
        const QTemporaryDir directory;
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("log")));
        const QString log = directory.filePath(QStringLiteral("log/app.log"));
        QVERIFY(writeFile(log, "from an earlier run\n"));
        Sandbox sandbox;
        sandbox.readOnly(directory.path());
        HostProcess host;
        QVERIFY(host.start(sandbox));
        driveWholeLife(&host, fileName, directory.path());
        QCOMPARE(readFile(log), QByteArray("from an earlier run\n"));
        QCOMPARE(host.standardError().count(QLatin1Char('\n')), 4);
    }

    void unwritableDirectoryCostsOnlyTheLines()
    {
        if (geteuid() == 0)
            QSKIP("root passes every permission check");
        const QTemporaryDir directory;
        QVERIFY(QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::ExeOwner));
        HostProcess host;
        QVERIFY(host.start());
        driveWholeLife(&host, fileName, directory.path());
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("log"))));
        QVERIFY(
            QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    void fullDiskLosesNothingThatWasWritten()
    {
        if (!Sandbox::hasSizedFileSystems())
            QSKIP("no small file system can be made here");
        const QTemporaryDir directory;
        const QString log = directory.filePath(QStringLiteral("log/app.log"));
        Sandbox sandbox;
        sandbox.sizedFileSystem(directory.path(), 65536);
        HostProcess host;
        QVERIFY(host.start(sandbox));
        QVERIFY(host.call(QStringLiteral("log.init"), {fileName, directory.path()}).toBool());
        const QString text(1000, QLatin1Char('x'));
        for (int i = 0; i < 100; ++i)
            QVERIFY(host.call(QStringLiteral("log.info"), {QString::number(i) + text}).toBool());
        QVERIFY(host.standardError().contains(QStringLiteral("No space left on device")));

        const QString full = host.call(QStringLiteral("process.readFile"), {log}).toString();
        QStringList lines = full.split(QLatin1Char('\n'));
        lines.removeLast(); // cut by the full disk
        QVERIFY(lines.size() > 40);
        for (int i = 0; i < lines.size(); ++i)
            QVERIFY(lines.at(i).endsWith(QStringLiteral(" INFO   - ") + QString::number(i) + text));

        // With room again the log goes on, and the line that was cut does not swallow the next.
        QVERIFY(host.call(QStringLiteral("process.resizeFile"), {log, full.size() - 2000}).toBool());
        QVERIFY(host.call(QStringLiteral("log.info"), {QStringLiteral("room again")}).toBool());
        const QStringList after =
            host.call(QStringLiteral("process.readFile"), {log}).toString().split(QLatin1Char('\n'));
        QVERIFY(after.at(after.size() - 2).endsWith(QStringLiteral(" INFO   - room again")));
        QCOMPARE(after.at(after.size() - 2).size(), 23 + QStringLiteral(" INFO   - room again").size());
        QCOMPARE(host.quit(), 0);
    }
};

QTEST_GUILESS_MAIN(TestLoggerFailures)

#include "tst_logger_failures.moc"
