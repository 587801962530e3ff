// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CJsonReader.h>

#include "Files.h"
#include "RecipeRun.h"

#include <QDir>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>

#include <csignal>

using ZyBase::CJsonReader;

namespace {

const QLatin1String runs("runs");

// Qt buffers small files and writes large ones directly.
QJsonObject settings(int sizeBytes)
{
    return {{QStringLiteral("notes"), QString(sizeBytes, QLatin1Char('x'))}, {runs, 7}};
}

// While it exists, this process can write files only up to a size.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t sizeBytes)
        : m_action(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit {sizeBytes, m_previous.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_action);
    }

private:
    Q_DISABLE_COPY(FileSizeLimit)

    void (*m_action)(int);
    rlimit m_previous {};
};

void addSizes()
{
    QTest::addColumn<int>("sizeBytes");
    QTest::newRow("small") << 10000;
    QTest::newRow("large") << 100000;
}

} // namespace

class TestSavingJsonAtomically : public QObject
{
    Q_OBJECT

private:
    QString path() const { return m_directory->filePath(QStringLiteral("settings.json")); }

    // Runs the recipe after the shell commands.
    RecipeRun runAfter(const QString &commands) const
    {
        return RecipeRun({QStringLiteral("sh"), QStringLiteral("-c"),
                          commands + QStringLiteral("; exec \"$0\" \"$1\""), QStringLiteral(RECIPE), path()});
    }

    void verifyOnlyOldFile(int sizeBytes) const
    {
        QCOMPARE(CJsonReader::ParseJsonFileToObject(path()), settings(sizeBytes));
        QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void writesSameBytesAsSaveJsonFile()
    {
        const RecipeRun run({QStringLiteral(RECIPE), path(), QStringLiteral("2")});
        QCOMPARE(run.lines, QStringList({QStringLiteral("saved: run 1"), QStringLiteral("saved: run 2")}));
        QCOMPARE(run.exitCode, 0);
        const QByteArray saved = readFile(path());
        CJsonReader::SaveJsonFile(path(), {{runs, 2}});
        QCOMPARE(saved, readFile(path()));
    }

    void keepsOtherKeysAndPermissions()
    {
        CJsonReader::SaveJsonFile(path(), settings(10));
        const QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
        QVERIFY(QFile::setPermissions(path(), permissions));
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE), path()}).exitCode, 0);
        QJsonObject expected = settings(10);
        expected.insert(runs, 8);
        QCOMPARE(CJsonReader::ParseJsonFileToObject(path()), expected);
        QCOMPARE(QFile::permissions(path()) & QFile::Permissions(0x0777),
                 QFile::Permissions(permissions | QFile::ReadUser | QFile::WriteUser) & 0x0777);
    }

    void keepsOldFileWhenKilledWhileSaving_data() { addSizes(); }
    void keepsOldFileWhenKilledWhileSaving()
    {
        QFETCH(int, sizeBytes);
        CJsonReader::SaveJsonFile(path(), settings(sizeBytes));
        // The system kills the process at the 4097th byte of a file.
        const RecipeRun run = runAfter(QStringLiteral("ulimit -c 0; ulimit -f 8"));
        QCOMPARE(run.exitCode, -1);
        verifyOnlyOldFile(sizeBytes);
    }

    void keepsOldFileAfterShortWrite_data() { addSizes(); }
    void keepsOldFileAfterShortWrite()
    {
        QFETCH(int, sizeBytes);
        CJsonReader::SaveJsonFile(path(), settings(sizeBytes));
        const RecipeRun run = runAfter(QStringLiteral("trap '' XFSZ; ulimit -f 8"));
        QCOMPARE(run.exitCode, 1);
        QVERIFY(run.lines.value(0).startsWith(QStringLiteral("not saved: ")));
        verifyOnlyOldFile(sizeBytes);
    }

    void keepsOldFileOnFullDisk_data()
    {
        QTest::addColumn<int>("sizeBytes");
        QTest::addColumn<int>("diskBytes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no free byte") << 4000 << 4096 << "No space left on device";
        QTest::newRow("space for a part of a small file") << 10000 << 16384 << "";
        QTest::newRow("space for a part of a large file")
            << 50000 << 65536 << "There is not enough space on the disk.";
    }
    void keepsOldFileOnFullDisk()
    {
        QFETCH(int, sizeBytes);
        QFETCH(int, diskBytes);
        QFETCH(QString, reason);
        if (!Sandbox::hasSizedFileSystems())
            QSKIP("no sandbox with a sized file system can be made here");
        const QTemporaryDir elsewhere;
        const QString source = elsewhere.filePath(QStringLiteral("settings.json"));
        CJsonReader::SaveJsonFile(source, settings(sizeBytes));
        Sandbox sandbox;
        sandbox.sizedFileSystem(m_directory->path(), diskBytes);
        const QString script =
            QStringLiteral("cp \"$1\" \"$2\"; \"$0\" \"$2\"; cmp \"$1\" \"$2\" && echo kept");
        const RecipeRun run(
            {QStringLiteral("sh"), QStringLiteral("-c"), script, QStringLiteral(RECIPE), source, path()},
            sandbox);
        QCOMPARE(run.lines.size(), 2);
        QVERIFY(run.lines.first().startsWith(QStringLiteral("not saved: ") + reason));
        QCOMPARE(run.lines.last(), QStringLiteral("kept"));
    }

    // The hazard that the recipe avoids.
    void losesFileAfterShortWriteWithSaveJsonFile()
    {
        CJsonReader::SaveJsonFile(path(), settings(10));
        {
            const FileSizeLimit limit(20);
            CJsonReader::SaveJsonFile(path(), settings(10000));
        }
        QCOMPARE(QFileInfo(path()).size(), 20);
        QVERIFY(CJsonReader::ParseJsonFileToObject(path()).isEmpty());
    }

    void showsNoPartialFileToReaders()
    {
        CJsonReader::SaveJsonFile(path(), settings(100000));
        QProcess recipe;
        recipe.start(QStringLiteral(RECIPE), {path(), QStringLiteral("50")});
        QVERIFY(recipe.waitForStarted());
        int last = 7;
        while (!recipe.waitForFinished(0)) {
            const QJsonObject object = CJsonReader::ParseJsonFileToObject(path());
            QCOMPARE(object.size(), 2);
            QVERIFY(object.value(runs).toInt() >= last);
            last = object.value(runs).toInt();
        }
        QCOMPARE(recipe.exitCode(), 0);
        QCOMPARE(CJsonReader::ParseJsonFile(path(), runs).toInt(), 57);
    }

    void reportsMissingDirectory()
    {
        const RecipeRun run({QStringLiteral(RECIPE), m_directory->filePath(QStringLiteral("none/a.json"))});
        QCOMPARE(run.lines, QStringList {QStringLiteral("not saved: No such file or directory")});
    }

    void savesTargetOfSymbolicLink()
    {
        const QString link = m_directory->filePath(QStringLiteral("link.json"));
        CJsonReader::SaveJsonFile(path(), settings(10));
        QVERIFY(QFile::link(path(), link));
        QCOMPARE(RecipeRun({QStringLiteral(RECIPE), link}).exitCode, 0);
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(CJsonReader::ParseJsonFile(path(), runs).toInt(), 8);
    }
};

QTEST_GUILESS_MAIN(TestSavingJsonAtomically)

#include "tst_saving_json_atomically.moc"
