// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "RecipeRun.h"
#include "TemporaryHome.h"
#include "Utf8.h"

#include <QDateTime>
#include <QDir>
#include <QTest>

#include <optional>

class TestTheDirectoryOfTheLog : public QObject
{
    Q_OBJECT

private:
    QString folder() const { return m_home->filePath(utf8(".local/share/example/reader/log")); }
    QString path(const QString &name) const { return folder() + QLatin1Char('/') + name; }

    // Writes a file with this modification time.
    void write(const QString &name, const QByteArray &content, const QDateTime &time) const
    {
        QVERIFY(QDir().mkpath(folder()));
        QVERIFY(writeFile(path(name), content));
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::Append));
        QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
    }

    void verifyNoLog(const QString &problem, const Sandbox &sandbox = Sandbox()) const
    {
        const RecipeRun run({QStringLiteral(RECIPE)}, sandbox);
        QCOMPARE(run.lines, QStringList {utf8("no log: ") + problem});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(!run.standardError.contains(utf8("log4qt")));
    }

    std::optional<TemporaryHome> m_home;

private Q_SLOTS:
    void init() { m_home.emplace(); }
    void cleanup() { m_home.reset(); }

    void writesLogOfNewUser()
    {
        const RecipeRun run({QStringLiteral(RECIPE)});
        QCOMPARE(run.lines, QStringList {utf8("the log is ") + path(utf8("reader.log"))});
        const QStringList lines = readLines(path(utf8("reader.log")));
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().endsWith(utf8(" INFO   - started")));
    }

    void writesLogToPathWithNonAsciiCharacters()
    {
        qputenv("LC_ALL", "C.UTF-8");
        const QString data = m_home->filePath(utf8("Größe 文件"));
        qputenv("XDG_DATA_HOME", QFile::encodeName(data));
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE)}).exitCode, 0);
        QCOMPARE(readLines(data + utf8("/example/reader/log/reader.log")).size(), 1);
    }

    void restrictsDirectoryToUser()
    {
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE)}).exitCode, 0);
        QVERIFY((QFile::permissions(folder()) & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther))
                == 0);
    }

    void appendsSecondRun()
    {
        for (int i = 0; i < 2; ++i)
            QCOMPARE(RecipeRun({QStringLiteral(RECIPE)}).exitCode, 0);
        QCOMPARE(readLines(path(utf8("reader.log"))).size(), 2);
        QCOMPARE(QDir(folder()).entryList(QDir::Files).size(), 1);
    }

    void reportsFileInPlaceOfDirectory()
    {
        QVERIFY(QDir(m_home->filePath(utf8(".local/share"))).removeRecursively());
        QVERIFY(writeFile(m_home->filePath(utf8(".local/share")), "file"));
        verifyNoLog(utf8("The directory %1 can't be created.").arg(folder()));
    }

    void reportsDirectoryInPlaceOfFile()
    {
        QVERIFY(QDir().mkpath(path(utf8("reader.log"))));
        const RecipeRun run({QStringLiteral(RECIPE)});
        QCOMPARE(run.lines.size(), 1);
        QVERIFY(run.lines.first().startsWith(utf8("no log: ") + path(utf8("reader.log"))));
    }

    void reportsReadOnlyDirectory()
    {
        if (!Sandbox::isAvailable())
            QSKIP("no sandbox can be created here");
        Sandbox sandbox;
        QVERIFY(QDir().mkpath(folder()));
        sandbox.readOnly(folder());
        verifyNoLog(path(utf8("reader.log")) + utf8(": Read-only file system."), sandbox);
    }

    void renamesFileOfEarlierMonth()
    {
        const QDateTime then = QDateTime::currentDateTime().addMonths(-3);
        const QString month = then.toString(utf8("yyyy-MM"));
        write(utf8("reader.log"), "old\n", then);
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE)}).exitCode, 0);
        QCOMPARE(readFile(path(utf8("reader.log.") + month)), QByteArray("old\n"));
        QCOMPARE(readLines(path(utf8("reader.log"))).size(), 1);
    }

    void appendsToFileOfLaterMonth()
    {
        write(utf8("reader.log"), "wrong\n", QDateTime::currentDateTime().addMonths(2));
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE)}).exitCode, 0);
        QCOMPARE(readLines(path(utf8("reader.log"))).size(), 2);
        QCOMPARE(QDir(folder()).entryList(QDir::Files).size(), 1);
    }

    void keepsExistingFileOfMonth()
    {
        const QDateTime then = QDateTime::currentDateTime().addMonths(-1);
        const QString kept = utf8("reader.log.") + then.toString(utf8("yyyy-MM"));
        write(kept, "kept\n", then);
        write(utf8("reader.log"), "old\n", then);
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE)}).exitCode, 0);
        QCOMPARE(readFile(path(kept)), QByteArray("kept\n"));
        QCOMPARE(readLines(path(utf8("reader.log"))).size(), 2);
    }

    void keepsSixMonthsAndOtherFiles()
    {
        const QDateTime now = QDateTime::currentDateTime();
        for (const char *month :
             {"2024-11", "2024-12", "2025-01", "2025-02", "2025-03", "2025-04", "2025-05"})
            write(utf8("reader.log.") + utf8(month), "", now);
        for (const char *name : {"reader.log.bak", "other.log.2020-01", "reader.log.2020-1"})
            write(utf8(name), "", now);
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE)}).exitCode, 0);
        QStringList expected;
        for (const char *name : {"other.log.2020-01", "reader.log", "reader.log.2020-1", "reader.log.2024-12",
                                 "reader.log.2025-01", "reader.log.2025-02", "reader.log.2025-03",
                                 "reader.log.2025-04", "reader.log.2025-05", "reader.log.bak"})
            expected << utf8(name);
        QCOMPARE(QDir(folder()).entryList(QDir::Files, QDir::Name), expected);
    }
};

QTEST_GUILESS_MAIN(TestTheDirectoryOfTheLog)

#include "tst_the_directory_of_the_log.moc"
