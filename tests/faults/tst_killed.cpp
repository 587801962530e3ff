// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FaultHost.h"

#include <Files.h>
#include <TemporaryHome.h>

#include <QDateTime>
#include <QDir>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

#include <functional>

namespace {

constexpr int limitMs = 30000;
constexpr int longestSweep = 500;

const QJsonObject oldObject {{QStringLiteral("old"), QString(100, QLatin1Char('o'))}};
const QJsonObject newObject {{QStringLiteral("new"), QString(100, QLatin1Char('n'))}};

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

// A process that is killed while it creates its lock file leaves it empty. Qt ignores it after half a minute.
void expireEmptyLock(const QString &path)
{
    QFile lock(path);
    if (lock.exists() && lock.size() == 0 && lock.open(QIODevice::ReadWrite))
        lock.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime);
}

} // namespace

// The process is killed before each of its system calls, or while it writes. Another process continues.
class TestKilled : public QObject
{
    Q_OBJECT

private:
    // Kills a process at its first, second ... system call, until the command ends before that. The suite has
    // a sample.
    void forEachCall(const std::function<void()> &prepare, const std::function<void(FaultHost &)> &setUp,
                     const QString &command, const QJsonArray &arguments, const std::function<void()> &verify,
                     int sampleStep = 1)
    {
        const int step = qEnvironmentVariableIsSet("ZYBASE_ALL_FAULTS") ? 1 : sampleStep;
        for (const int action : {Faults::Kill, Faults::Tear}) {
            int nth = 1;
            for (bool isKilled = true; isKilled; nth += step) {
                QVERIFY(nth < longestSweep);
                prepare();
                FaultHost host(false); // Qt recognises the lock file of a process that has ended
                QVERIFY(host.start());
                setUp(host);
                isKilled =
                    !host.run({Faults::Kind::Any, nth, action, false}, command, arguments, limitMs).hasEnded;
                host.kill();
                if (isKilled)
                    verify();
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(QStringLiteral("killed at call %1").arg(nth)));
            }
            m_kills += nth / step - 1;
            QVERIFY(action == Faults::Tear || nth > step + 1);
        }
    }

    int m_kills = 0;

private Q_SLOTS:
    void cleanupTestCase()
    {
        QFile file(QString::fromLocal8Bit(qgetenv("ZYBASE_ALL_FAULTS")));
        if (!file.fileName().isEmpty() && file.open(QIODevice::Append))
            file.write("faults\t" + QByteArray::number(m_kills) + '\n');
    }

    // A line is whole, is missing, or is cut; the next process starts a new line only after a whole one.
    void keepsEarlierLinesOfLog()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("log/app.log"));
        const QJsonArray place {QStringLiteral("app.log"), directory.path()};
        const auto log = [&](HostProcess &host, const char *message) {
            return host.call(QStringLiteral("log.info"), {QLatin1String(message)});
        };
        const auto setUp = [&](FaultHost &host) {
            host.call(QStringLiteral("log.init"), place);
            log(host, "before");
        };
        forEachCall([&] { QFile::remove(file); }, setUp, QStringLiteral("log.info"),
                    {QStringLiteral("killed")},
                    [&] {
                        HostProcess next;
                        QVERIFY(next.start());
                        next.call(QStringLiteral("log.init"), place);
                        log(next, "after");
                        QCOMPARE(next.quit(), 0);
                        static const QRegularExpression lines(
                            QStringLiteral("^[-0-9:. ]{23} INFO   - before\n([-0-9:. ]{0,23}[INFO "
                                           "-]*(k(i(l(led?)?)?)?)?\n?)?[-0-9:. ]{23} "
                                           "INFO   - after\n$"));
                        const QString content = QString::fromUtf8(readFile(file));
                        QVERIFY2(lines.match(content).hasMatch(), qPrintable(content));
                    });
    }

    // The content is the old one, none, a part of the new one, or the new one.
    void leavesOldEmptyCutOrNewJson()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("settings.json"));
        const auto none = [](FaultHost &) {};
        forEachCall([&] { writeFile(file, json(oldObject)); }, none, QStringLiteral("files.saveJson"),
                    {file, newObject},
                    [&] {
                        const QByteArray content = readFile(file);
                        QVERIFY2(content == json(oldObject) || json(newObject).startsWith(content),
                                 content.constData());
                        HostProcess next;
                        QVERIFY(next.start());
                        const QJsonObject found =
                            next.call(QStringLiteral("files.readJson"), {file}).toObject();
                        QVERIFY(found.isEmpty() || found == oldObject || found == newObject);
                        next.call(QStringLiteral("files.saveJson"), {file, newObject});
                        QCOMPARE(next.quit(), 0);
                        QCOMPARE(readFile(file), json(newObject));
                    });
    }

    // The file has its earlier content, or also the identifier. A new process has the same identifier.
    void keepsOtherKeysOfDeviceFile_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("key");
        QTest::newRow("GetPCID") << QStringLiteral("identity.pcid") << QByteArray("PCID=");
        QTest::newRow("IsNewUser") << QStringLiteral("identity.isNewUser") << QByteArray("NewUser=true");
    }
    void keepsOtherKeysOfDeviceFile()
    {
        QFETCH(QString, command);
        QFETCH(QByteArray, key);
        const TemporaryHome home;
        const QString directory = home.filePath(QStringLiteral(".config/reader"));
        const QString file = directory + QStringLiteral("/device.conf");
        const QJsonArray arguments {QString(), QStringLiteral("reader"), 1};
        const auto prepare = [&] {
            QDir(directory).removeRecursively();
            QDir().mkpath(directory);
            writeFile(file, "[General]\nOther=x\n");
        };
        const auto none = [](FaultHost &) {};
        constexpr int sampleStep = 5;
        forEachCall(
            prepare, none, command, arguments,
            [&] {
                const QByteArray content = readFile(file);
                QVERIFY2(content == "[General]\nOther=x\n"
                             || (content.contains("Other=x\n") && content.contains(key)),
                         content.constData());
                expireEmptyLock(file + QStringLiteral(".lock"));
                HostProcess next;
                QVERIFY(next.start());
                QVERIFY(!next.call(command, arguments).isUndefined());
                QCOMPARE(next.quit(), 0);
                const QByteArray later = readFile(file);
                QVERIFY2(later.contains(key) && later.contains("Other=x\n"), later.constData());
            },
            sampleStep);
    }
};

QTEST_GUILESS_MAIN(TestKilled)

#include "tst_killed.moc"
