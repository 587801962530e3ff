// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "HostProcess.h"

#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

namespace {

const QString fileName = QStringLiteral("app.log");

// A file that cannot be opened has an error line, and so has each dropped line. An installed log4qt also
// reports that it did not activate the appender.
constexpr int errorLinesOfThreeLostLines = OWN_LOG4QT ? 4 : 5;

} // namespace

// The log of an application cannot be written: every call returns, and the application continues.
class TestLoggerFailures : public QObject
{
    Q_OBJECT

private:
    // Every log function returns, and the application ends normally.
    static void callEveryFunction(HostProcess *host, const QJsonValue &name, const QJsonValue &directory)
    {
        QVERIFY(host->call(QStringLiteral("log.init"), {name, directory}).toBool());
        for (const char *level : {"log.error", "log.warn", "log.info"})
            QVERIFY(host->call(QLatin1String(level), {QStringLiteral("x")}).toBool());
        QVERIFY(host->call(QStringLiteral("log.release")).toBool());
        QVERIFY(host->call(QStringLiteral("log.info"), {QStringLiteral("late")}).toBool());
        QCOMPARE(host->quit(), 0);
    }

private Q_SLOTS:
    void continuesWithoutLogFile_data()
    {
        QTest::addColumn<QString>("prepared");
        QTest::addColumn<QJsonValue>("name");
        QTest::addColumn<QString>("base");
        const QJsonValue null;
        QTest::newRow("base directory is missing") << "" << QJsonValue(fileName) << "missing";
        QTest::newRow("base directory and its parent are missing")
            << "" << QJsonValue(fileName) << "missing/twice";
        QTest::newRow("log file is a directory") << "base/log/app.log/" << QJsonValue(fileName) << "base";
        QTest::newRow("log directory is a file") << "base/log" << QJsonValue(fileName) << "base";
        QTest::newRow("base directory is a file") << "base" << QJsonValue(fileName) << "base";
        QTest::newRow("two directories inside log are missing")
            << "base/log/" << QJsonValue(QStringLiteral("a/b/app.log")) << "base";
        QTest::newRow("file name is empty") << "base/" << QJsonValue(QString::fromLatin1("")) << "base";
        QTest::newRow("file name is a null pointer") << "base/" << null << "base";
    }
    void continuesWithoutLogFile()
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
        callEveryFunction(&host, name, directory.filePath(base));
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(host.standardError().count(QLatin1Char('\n')), errorLinesOfThreeLostLines);
        if (QFileInfo(target).isFile())
            QCOMPARE(readFile(target), QByteArray("kept"));
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("missing"))));
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("base/log/a"))));
    }

    void createsOnlyLogDirectory()
    {
        const QTemporaryDir directory;
        HostProcess host;
        QVERIFY(host.start());
        callEveryFunction(&host, fileName, directory.path());
        QCOMPARE(readLines(directory.filePath(QStringLiteral("log/app.log"))).size(), 3);
        QCOMPARE(host.standardError(), QString());
    }

    void usesRootDirectoryForNullBaseDirectory()
    {
        if (!Sandbox::isAvailable())
            QSKIP("sandboxes are not available");
        // The root directory of the sandbox is removed with it, so the application reads the file itself.
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

    void dropsLinesInReadOnlyDirectory()
    {
        if (!Sandbox::isAvailable())
            QSKIP("sandboxes are not available");
        const QTemporaryDir directory;
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("log")));
        const QString log = directory.filePath(QStringLiteral("log/app.log"));
        QVERIFY(writeFile(log, "from an earlier run\n"));
        Sandbox sandbox;
        sandbox.readOnly(directory.path());
        HostProcess host;
        QVERIFY(host.start(sandbox));
        callEveryFunction(&host, fileName, directory.path());
        QCOMPARE(readFile(log), QByteArray("from an earlier run\n"));
        QCOMPARE(host.standardError().count(QLatin1Char('\n')), errorLinesOfThreeLostLines);
    }

    void dropsLinesWithoutPermission()
    {
        if (geteuid() == 0)
            QSKIP("root ignores permissions");
        const QTemporaryDir directory;
        QVERIFY(QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::ExeOwner));
        HostProcess host;
        QVERIFY(host.start());
        callEveryFunction(&host, fileName, directory.path());
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("log"))));
        QVERIFY(
            QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    void keepsWrittenLinesOnFullDisk()
    {
        if (!Sandbox::hasSizedFileSystems())
            QSKIP("small file systems are not available");
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
        const QString error = OWN_LOG4QT ? QStringLiteral("No space left on device")
                                         : QStringLiteral("Unable to write to file");
        QVERIFY2(host.standardError().contains(error), qPrintable(host.standardError()));

        const QString full = host.call(QStringLiteral("process.readFile"), {log}).toString();
        QStringList lines = full.split(QLatin1Char('\n'));
        lines.removeLast(); // the full disk cut it
        QVERIFY(lines.size() > 40);
        for (int i = 0; i < lines.size(); ++i)
            QVERIFY(lines.at(i).endsWith(QStringLiteral(" INFO   - ") + QString::number(i) + text));

        // With free space our log4qt continues, and the cut line is not joined with the next one.
        if (!OWN_LOG4QT)
            QSKIP("an installed log4qt does not continue after a full disk");
        QVERIFY(host.call(QStringLiteral("process.resizeFile"), {log, full.size() - 2000}).toBool());
        QVERIFY(host.call(QStringLiteral("log.info"), {QStringLiteral("space again")}).toBool());
        const QStringList after =
            host.call(QStringLiteral("process.readFile"), {log}).toString().split(QLatin1Char('\n'));
        QVERIFY(after.at(after.size() - 2).endsWith(QStringLiteral(" INFO   - space again")));
        QCOMPARE(after.at(after.size() - 2).size(), 23 + QStringLiteral(" INFO   - space again").size());
        QCOMPARE(host.quit(), 0);
    }
};

QTEST_GUILESS_MAIN(TestLoggerFailures)

#include "tst_logger_failures.moc"
