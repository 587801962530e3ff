// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Sweep.h"

#include <FakeClock.h>
#include <Files.h>

#include <QDir>

using Faults::Kind;

namespace {

// The clock of the host stops, so each line is known.
QString line(int month, const char *message)
{
    return QStringLiteral("2026-%1-15 12:00:00.000 INFO   - %2")
        .arg(month, 2, 10, QLatin1Char('0'))
        .arg(QLatin1String(message));
}

constexpr int firstMonth = 3;

} // namespace

// The log, if a system call fails.
class TestFaultsLog : public QObject
{
    Q_OBJECT

private:
    QString file(const QString &suffix = QString()) const
    {
        return m_directory->filePath(QStringLiteral("log/app.log") + suffix);
    }
    QString finishedFile() const
    {
        return file(QStringLiteral(".2026-%1").arg(firstMonth, 2, 10, QLatin1Char('0')));
    }
    void setMonth(int month) { m_clock->set(QDateTime(QDate(2026, month, 15), QTime(12, 0), Qt::UTC)); }
    QJsonArray place() const { return {QStringLiteral("app.log"), m_directory->path()}; }

    // The log contains one line of the first month.
    void startLog(FaultHost &host)
    {
        host.call(QStringLiteral("log.release"));
        QDir(m_directory->filePath(QStringLiteral("log"))).removeRecursively();
        setMonth(firstMonth);
        host.call(QStringLiteral("log.init"), place());
        host.call(QStringLiteral("log.info"), {QStringLiteral("before")});
    }

    // Describes a file whose first line must be kept.
    static QString describe(const QStringList &lines, const QString &before, const QString &after)
    {
        if (lines.isEmpty() || lines.first() != before)
            return QStringLiteral("earlier line lost");
        QStringList added = lines.mid(1);
        const int whole = added.removeAll(after);
        if (whole > 1)
            return added.isEmpty() ? QStringLiteral("line written again")
                                   : QStringLiteral("line written after a cut one");
        if (whole == 1)
            return added.isEmpty() ? QStringLiteral("line written")
                                   : QStringLiteral("line written after a cut one");
        if (added.isEmpty())
            return QStringLiteral("line lost");
        const QString cut = added.first().remove(QStringLiteral("<cut>"));
        return added.size() == 1 && after.startsWith(cut)
                   ? QStringLiteral("line cut")
                   : QStringLiteral("wrong lines: ") + lines.join(QLatin1Char('|'));
    }

    Operation writeLine()
    {
        Operation operation;
        operation.name = QStringLiteral("log line");
        operation.command = QStringLiteral("log.info");
        operation.arguments = {QStringLiteral("line")};
        operation.prepare = [this](FaultHost &host) { startLog(host); };
        operation.outcome = [this](const QJsonValue &) {
            return describe(readLines(file()), line(firstMonth, "before"), line(firstMonth, "line"));
        };
        operation.success = QStringLiteral("line written");
        operation.promised = QStringList {QStringLiteral("line lost"), QStringLiteral("line cut")};
        operation.promisedNext = QStringList {QStringLiteral("line written again"),
                                              QStringLiteral("line written after a cut one")};
        operation.install = [this](FaultHost &host) { m_clock->install(&host); };
        return operation;
    }
    Operation startMonth()
    {
        Operation operation = writeLine();
        operation.name = QStringLiteral("month roll");
        operation.prepare = [this](FaultHost &host) {
            startLog(host);
            setMonth(firstMonth + 1);
        };
        operation.outcome = [this](const QJsonValue &) {
            const bool isRenamed = QFile::exists(finishedFile());
            QStringList lines = readLines(finishedFile());
            if (isRenamed && lines.size() != 1)
                return QStringLiteral("wrong lines in the finished file");
            lines += readLines(file());
            return (isRenamed ? QStringLiteral("file renamed, ") : QStringLiteral("file kept, "))
                   + describe(lines, line(firstMonth, "before"), line(firstMonth + 1, "line"));
        };
        operation.success = QStringLiteral("file renamed, line written");
        operation.promised.clear();
        operation.promisedNext.clear();
        const QStringList files {QStringLiteral("file renamed, "), QStringLiteral("file kept, ")};
        for (const QString &state : files) {
            for (const char *end : {"line written", "line lost", "line cut"})
                operation.promised << state + QLatin1String(end);
            for (const char *end : {"line written", "line written again", "line written after a cut one"})
                operation.promisedNext << state + QLatin1String(end);
        }
        return operation;
    }
    // The log is switched on in a process that has it off. A line follows without a fault.
    Operation switchOn()
    {
        Operation operation = writeLine();
        operation.name = QStringLiteral("log start");
        operation.command = QStringLiteral("log.init");
        operation.arguments = place();
        operation.prepare = [this](FaultHost &host) {
            startLog(host);
            host.call(QStringLiteral("log.release"));
            m_current = &host;
        };
        operation.outcome = [this](const QJsonValue &) {
            m_current->call(QStringLiteral("log.info"), {QStringLiteral("line")});
            m_current->call(QStringLiteral("log.release"));
            return describe(readLines(file()), line(firstMonth, "before"), line(firstMonth, "line"));
        };
        return operation;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<Sweep> m_sweep;
    FaultHost *m_current = nullptr;

private Q_SLOTS:
    void initTestCase()
    {
        const QString reason = Sweep::reasonToSkip();
        if (!reason.isEmpty())
            QSKIP(qPrintable(reason));
        if (!FakeClock::isAvailable())
            QSKIP("faketime is not installed");
        qputenv("TZ", "UTC0");
        m_directory = std::make_unique<QTemporaryDir>();
        m_clock = std::make_unique<FakeClock>(QDateTime::currentDateTimeUtc());
        m_sweep.reset(new Sweep({writeLine(), startMonth(), switchOn()}));
    }
    void cleanupTestCase() { m_sweep.reset(); }

    void keepsItsPromises_data()
    {
        if (m_sweep)
            m_sweep->addRows({Kind::Open, Kind::Write, Kind::Close, Kind::Seek, Kind::Rename,
                              Kind::MakeDirectory, Kind::Stat});
    }
    void keepsItsPromises() { m_sweep->testRow(); }
};

QTEST_GUILESS_MAIN(TestFaultsLog)

#include "tst_faults_log.moc"
