// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeClock.h"
#include "Files.h"
#include "HostProcess.h"

#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

namespace {

// The offset is defined by a rule, so the tests do not depend on the time zone files of the machine.
const QString centralEurope = QStringLiteral("CET-1CEST,M3.5.0,M10.5.0/3");
const QString utc = QStringLiteral("UTC0");

const QString zoneFiles = QStringLiteral("/usr/share/zoneinfo/Etc/");

QDateTime atUtc(int year, int month, int day, int hour = 12, int minute = 0, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
}

} // namespace

// The clock of the application stops until the test moves it.
class TestLoggerMonths : public QObject
{
    Q_OBJECT

private:
    void startHost(const QDateTime &now, const QString &zone)
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_clock = std::make_unique<FakeClock>(now);
        restartHost(zone);
    }
    void restartHost(const QString &zone)
    {
        m_host = std::make_unique<HostProcess>();
        m_clock->install(m_host.get());
        m_host->setEnvironment(QStringLiteral("TZ"), zone);
        QVERIFY(m_host->start());
        QVERIFY(m_host->call(QStringLiteral("log.init"), {QStringLiteral("app.log"), m_directory->path()})
                    .toBool());
    }
    // The time zone of the machine is the file GMT-5, five hours east of UTC.
    void startHostInTheEast(const QTemporaryDir &etc, const QDateTime &now, const QString &zone = QString())
    {
        const QString zoneFile = zoneFiles + QStringLiteral("GMT-5");
        if (!QFile::exists(zoneFile))
            QSKIP("time zone files are not installed");
        if (!Sandbox::isAvailable())
            QSKIP("sandboxes are not available");
        QVERIFY(QFile::copy(zoneFile, etc.filePath(QStringLiteral("localtime"))));
        m_directory = std::make_unique<QTemporaryDir>();
        m_clock = std::make_unique<FakeClock>(now);
        m_host = std::make_unique<HostProcess>();
        m_clock->install(m_host.get());
        m_host->setEnvironment(QStringLiteral("TZ"), zone);
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/etc"), etc.path());
        QVERIFY(m_host->start(sandbox));
        QVERIFY(m_host->call(QStringLiteral("log.init"), {QStringLiteral("app.log"), m_directory->path()})
                    .toBool());
    }
    void setZone(const QJsonValue &zone)
    {
        m_host->call(QStringLiteral("process.setVariable"), {QStringLiteral("TZ"), zone});
    }

    // The line for November that cannot be renamed.
    QString renameError() const
    {
        const QString file = m_directory->filePath(QStringLiteral("log/app.log"));
        return QStringLiteral("log4qt: appender 'My Appender' can't rename '%1' to '%1.2026-11'\n").arg(file);
    }
    void info(const QString &message)
    {
        QVERIFY(m_host->call(QStringLiteral("log.info"), {message}).toBool());
    }
    QStringList files() const
    {
        return QDir(m_directory->filePath(QStringLiteral("log"))).entryList(QDir::Files, QDir::Name);
    }
    QStringList lines(const QString &file = QStringLiteral("app.log")) const
    {
        return readLines(m_directory->filePath(QStringLiteral("log/") + file));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<HostProcess> m_host;

private Q_SLOTS:
    void initTestCase()
    {
        if (!FakeClock::isAvailable())
            QSKIP("faketime is not installed");
    }
    void cleanup()
    {
        if (m_host)
            m_host->quit();
        m_host.reset();
    }

    void renamesFileOfFinishedMonth()
    {
        startHost(atUtc(2026, 11, 30, 23, 59, 59), utc);
        info(QStringLiteral("november"));
        QCOMPARE(files(), QStringList {QStringLiteral("app.log")});
        m_clock->advance(2);
        info(QStringLiteral("december"));
        info(QStringLiteral("december too"));
        QCOMPARE(files(), QStringList({QStringLiteral("app.log"), QStringLiteral("app.log.2026-11")}));
        QCOMPARE(lines(QStringLiteral("app.log.2026-11")),
                 QStringList {QStringLiteral("2026-11-30 23:59:59.000 INFO   - november")});
        QCOMPARE(lines(), QStringList({QStringLiteral("2026-12-01 00:00:01.000 INFO   - december"),
                                       QStringLiteral("2026-12-01 00:00:01.000 INFO   - december too")}));
    }

    void renamesFileAfterFirstMomentOfMonth()
    {
        startHost(atUtc(2026, 11, 30, 23, 59, 59), utc);
        m_clock->advance(1);
        info(QStringLiteral("midnight itself"));
        QCOMPARE(files(), QStringList {QStringLiteral("app.log")});
        m_clock->advance(1);
        info(QStringLiteral("after it"));
        QCOMPARE(lines(QStringLiteral("app.log.2026-11")),
                 QStringList {QStringLiteral("2026-12-01 00:00:00.000 INFO   - midnight itself")});
    }

    void keepsFileWithinMonth()
    {
        startHost(atUtc(2026, 12, 1, 0, 0, 1), utc);
        for (int day = 0; day < 30; ++day) {
            info(QString::number(day));
            m_clock->advance(24 * 3600);
        }
        info(QStringLiteral("on the last day"));
        QCOMPARE(files(), QStringList {QStringLiteral("app.log")});
        QCOMPARE(lines().size(), 31);
    }

    void keepsFileAtDroppedLevel()
    {
        startHost(atUtc(2026, 11, 30), utc);
        info(QStringLiteral("november"));
        m_clock->set(atUtc(2026, 12, 5));
        QVERIFY(m_host->call(QStringLiteral("log.debug"), {QStringLiteral("x")}).toBool());
        QCOMPARE(files(), QStringList {QStringLiteral("app.log")});
    }

    void writesOneFilePerMonth()
    {
        startHost(atUtc(2026, 1, 15), utc);
        for (int month = 1; month <= 12; ++month) {
            m_clock->set(atUtc(2026, month, 15));
            info(QString::number(month));
        }
        m_clock->set(atUtc(2027, 1, 1));
        info(QStringLiteral("13"));
        QCOMPARE(files().size(), 13);
        for (int month = 1; month <= 12; ++month) {
            const QString file = QStringLiteral("app.log.2026-%1").arg(month, 2, 10, QLatin1Char('0'));
            QCOMPARE(lines(file).size(), 1);
            QVERIFY(lines(file).first().endsWith(QStringLiteral(" - %1").arg(month)));
        }
    }

    void writesNoFileForMonthWithoutLines()
    {
        startHost(atUtc(2026, 8, 15), utc);
        info(QStringLiteral("august"));
        m_clock->set(atUtc(2026, 11, 15));
        info(QStringLiteral("november"));
        QCOMPARE(files(), QStringList({QStringLiteral("app.log"), QStringLiteral("app.log.2026-08")}));
    }

    void continuesOldFileAfterRestart()
    {
        startHost(atUtc(2026, 11, 30), utc);
        info(QStringLiteral("november"));
        QCOMPARE(m_host->quit(), 0);
        m_clock->set(atUtc(2026, 12, 2));
        restartHost(utc);
        info(QStringLiteral("december"));
        QCOMPARE(files(), QStringList {QStringLiteral("app.log")});
        QCOMPARE(lines().size(), 2);
        // The file is then renamed as that of December.
        m_clock->set(atUtc(2027, 1, 1));
        info(QStringLiteral("january"));
        QCOMPARE(files(), QStringList({QStringLiteral("app.log"), QStringLiteral("app.log.2026-12")}));
        QCOMPARE(lines(QStringLiteral("app.log.2026-12")).size(), 2);
    }

    void replacesFileOfFinishedMonth()
    {
        startHost(atUtc(2026, 11, 30), utc);
        QVERIFY(writeFile(m_directory->filePath(QStringLiteral("log/app.log.2026-11")), "an old copy\n"));
        info(QStringLiteral("november"));
        m_clock->set(atUtc(2026, 12, 1));
        info(QStringLiteral("december"));
        QCOMPARE(lines(QStringLiteral("app.log.2026-11")),
                 QStringList {QStringLiteral("2026-11-30 12:00:00.000 INFO   - november")});
    }

    void continuesMonthThatCannotBeRenamed()
    {
        if (!OWN_LOG4QT)
            QSKIP("an installed log4qt crashes here");
        startHost(atUtc(2026, 11, 30), utc);
        QVERIFY(QDir(m_directory->path()).mkpath(QStringLiteral("log/app.log.2026-11")));
        info(QStringLiteral("november"));
        m_clock->set(atUtc(2026, 12, 1));
        info(QStringLiteral("december"));
        QCOMPARE(lines().size(), 2);
        QCOMPARE(m_host->standardError(), renameError());
    }

    void continuesAfterDirectoryWasRemoved_data()
    {
        QTest::addColumn<bool>("isReplacedByFile");
        QTest::newRow("no directory") << false;
        QTest::newRow("file instead of directory") << true;
    }
    void continuesAfterDirectoryWasRemoved()
    {
        QFETCH(bool, isReplacedByFile);
        if (!OWN_LOG4QT)
            QSKIP("an installed log4qt crashes here");
        startHost(atUtc(2026, 11, 30), utc);
        info(QStringLiteral("november"));
        QVERIFY(QDir(m_directory->path()).removeRecursively());
        if (isReplacedByFile)
            QVERIFY(writeFile(m_directory->path(), "kept"));
        m_clock->set(atUtc(2026, 12, 1));
        info(QStringLiteral("dropped"));
        info(QStringLiteral("dropped, too"));
        const QString openError =
            QStringLiteral("log4qt: appender 'My Appender' can't open file '%1/log/app.log': %2\n")
                .arg(m_directory->path(), isReplacedByFile ? QStringLiteral("Not a directory")
                                                           : QStringLiteral("No such file or directory"));
        QCOMPARE(m_host->standardError(), renameError() + openError + openError);

        QFile::remove(m_directory->path());
        QVERIFY(QDir().mkdir(m_directory->path()));
        info(QStringLiteral("december"));
        QCOMPARE(files(), QStringList {QStringLiteral("app.log")});
        QCOMPARE(lines(), QStringList {QStringLiteral("2026-12-01 12:00:00.000 INFO   - december")});

        m_clock->set(atUtc(2027, 1, 1));
        info(QStringLiteral("january"));
        QCOMPARE(files(), QStringList({QStringLiteral("app.log"), QStringLiteral("app.log.2026-12")}));
        QCOMPARE(m_host->standardError(), renameError() + openError + openError);
    }

    void usesMonthsOfLocalTime()
    {
        // 23:30 UTC on 30 November is 00:30 on 1 December in the time zone.
        startHost(atUtc(2026, 11, 30, 22, 59, 59), centralEurope);
        info(QStringLiteral("november"));
        m_clock->set(atUtc(2026, 11, 30, 23, 30));
        info(QStringLiteral("december"));
        QCOMPARE(files(), QStringList({QStringLiteral("app.log"), QStringLiteral("app.log.2026-11")}));
        QCOMPARE(lines(), QStringList {QStringLiteral("2026-12-01 00:30:00.000 INFO   - december")});
    }

    void usesOffsetAtEndOfMonth()
    {
        // The month begins in summer time. With that offset it would end one hour early.
        startHost(atUtc(2026, 10, 1), centralEurope);
        info(QStringLiteral("summer"));
        m_clock->set(atUtc(2026, 10, 31, 22, 30));
        info(QStringLiteral("still october"));
        QCOMPARE(files(), QStringList {QStringLiteral("app.log")});
        m_clock->set(atUtc(2026, 10, 31, 23, 30));
        info(QStringLiteral("november"));
        QCOMPARE(files(), QStringList({QStringLiteral("app.log"), QStringLiteral("app.log.2026-10")}));
    }

    void writesLocalTimeAtOffsetChanges()
    {
        startHost(atUtc(2026, 10, 25, 0, 59, 59), centralEurope);
        info(QStringLiteral("summer"));
        m_clock->advance(1);
        info(QStringLiteral("winter"));
        m_clock->set(atUtc(2026, 3, 29, 0, 59, 59));
        info(QStringLiteral("winter"));
        m_clock->advance(1);
        info(QStringLiteral("summer"));
        QCOMPARE(lines(), QStringList({QStringLiteral("2026-10-25 02:59:59.000 INFO   - summer"),
                                       QStringLiteral("2026-10-25 02:00:00.000 INFO   - winter"),
                                       QStringLiteral("2026-03-29 01:59:59.000 INFO   - winter"),
                                       QStringLiteral("2026-03-29 03:00:00.000 INFO   - summer")}));
    }

    void writesNewZoneAfterChangeOfTz()
    {
        startHost(atUtc(2026, 11, 20, 12), utc);
        info(QStringLiteral("UTC"));
        setZone(QStringLiteral("JST-9"));
        info(QStringLiteral("Japan"));
        setZone(QStringLiteral("IST-5:30"));
        info(QStringLiteral("India"));
        setZone(QStringLiteral(""));
        info(QStringLiteral("empty is UTC"));
        QCOMPARE(lines(), QStringList({QStringLiteral("2026-11-20 12:00:00.000 INFO   - UTC"),
                                       QStringLiteral("2026-11-20 21:00:00.000 INFO   - Japan"),
                                       QStringLiteral("2026-11-20 17:30:00.000 INFO   - India"),
                                       QStringLiteral("2026-11-20 12:00:00.000 INFO   - empty is UTC")}));
    }

    void renamesFileAfterChangeOfTzToNextMonth()
    {
        startHost(atUtc(2026, 11, 30, 23, 30), utc);
        info(QStringLiteral("november"));
        setZone(QStringLiteral("JST-9"));
        info(QStringLiteral("december"));
        QCOMPARE(lines(QStringLiteral("app.log.2026-11")),
                 QStringList {QStringLiteral("2026-11-30 23:30:00.000 INFO   - november")});
        QCOMPARE(lines(), QStringList {QStringLiteral("2026-12-01 08:30:00.000 INFO   - december")});
    }

    void renamesFileIfTzIsRemovedBeforeFirstLine()
    {
        const QTemporaryDir etc;
        startHostInTheEast(etc, atUtc(2026, 11, 30, 23, 30), utc);
        if (QTest::currentTestFailed() || !m_host)
            return;
        setZone(QJsonValue());
        info(QStringLiteral("december"));
        QCOMPARE(files(), QStringList({QStringLiteral("app.log"), QStringLiteral("app.log.2026-11")}));
        QCOMPARE(lines(), QStringList {QStringLiteral("2026-12-01 04:30:00.000 INFO   - december")});
    }

    void writesNewZoneAfterChangeOfZoneFile()
    {
        const QTemporaryDir etc;
        startHostInTheEast(etc, atUtc(2026, 11, 20, 12));
        if (QTest::currentTestFailed() || !m_host)
            return;
        info(QStringLiteral("east"));
        // Package managers replace the file in this way.
        const QString fresh = etc.filePath(QStringLiteral("localtime.new"));
        QVERIFY(QFile::copy(zoneFiles + QStringLiteral("GMT-9"), fresh));
        QCOMPARE(std::rename(QFile::encodeName(fresh).constData(),
                             QFile::encodeName(etc.filePath(QStringLiteral("localtime"))).constData()),
                 0);
        m_clock->advance(1);
        // faketime reads its file as local time and follows after one more change.
        info(QStringLiteral("skipped"));
        m_clock->advance(1);
        info(QStringLiteral("further east"));
        QCOMPARE(lines().first(), QStringLiteral("2026-11-20 17:00:00.000 INFO   - east"));
        QCOMPARE(lines().last(), QStringLiteral("2026-11-20 21:00:02.000 INFO   - further east"));
    }

    void distinguishesEmptyTzFromMissingTz()
    {
        const QTemporaryDir etc;
        startHostInTheEast(etc, atUtc(2026, 11, 20, 12));
        if (QTest::currentTestFailed() || !m_host)
            return;
        info(QStringLiteral("east"));
        setZone(QString::fromLatin1(""));
        info(QStringLiteral("UTC"));
        setZone(QJsonValue());
        info(QStringLiteral("east again"));
        QCOMPARE(lines(), QStringList({QStringLiteral("2026-11-20 17:00:00.000 INFO   - east"),
                                       QStringLiteral("2026-11-20 12:00:00.000 INFO   - UTC"),
                                       QStringLiteral("2026-11-20 17:00:00.000 INFO   - east again")}));
    }
};

QTEST_GUILESS_MAIN(TestLoggerMonths)

#include "tst_logger_months.moc"
