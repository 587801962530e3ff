// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Sweep.h"

#include <Archives.h>
#include <FakeTools.h>
#include <Files.h>
#include <TemporaryHome.h>

#include <QDir>
#include <QJsonDocument>
#include <QRegularExpression>

#include <unistd.h>

using Faults::Kind;

namespace {

const QJsonObject oldObject {{QStringLiteral("old"), QString(100, QLatin1Char('o'))}};
const QJsonObject newObject {{QStringLiteral("new"), QString(100, QLatin1Char('n'))}};
const QByteArray identifier = QByteArrayLiteral("0123456789abcdef0123456789abcdef");

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

// Describes a file whose content was replaced.
QString describe(const QString &path, const QByteArray &before, const QByteArray &after)
{
    if (!QFile::exists(path))
        return QStringLiteral("missing");
    const QByteArray content = readFile(path);
    if (content == after)
        return QStringLiteral("new");
    if (content == before)
        return QStringLiteral("old");
    if (content.isEmpty())
        return QStringLiteral("empty");
    return after.startsWith(content) ? QStringLiteral("cut") : QStringLiteral("other content");
}

} // namespace

// Calls that use files and tools, if a system call fails.
class TestFaultsFiles : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_directory.filePath(QString::fromLatin1(name)); }

    Operation saveJson() const
    {
        const QString file = path("settings.json");
        Operation operation;
        operation.name = QStringLiteral("JSON save");
        operation.command = QStringLiteral("files.saveJson");
        operation.arguments = {file, newObject};
        operation.prepare = [file](FaultHost &) { writeFile(file, json(oldObject)); };
        operation.outcome = [file](const QJsonValue &) {
            return describe(file, json(oldObject), json(newObject));
        };
        operation.success = QStringLiteral("new");
        operation.promised =
            QStringList {QStringLiteral("old"), QStringLiteral("empty"), QStringLiteral("cut")};
        return operation;
    }
    Operation readJson() const
    {
        const QString file = path("settings.json");
        Operation operation;
        operation.name = QStringLiteral("JSON read");
        operation.command = QStringLiteral("files.readJson");
        operation.arguments = {file};
        operation.prepare = [file](FaultHost &) { writeFile(file, json(oldObject)); };
        operation.outcome = [file](const QJsonValue &answer) {
            if (readFile(file) != json(oldObject))
                return QStringLiteral("file changed");
            if (answer.toObject() == oldObject)
                return QStringLiteral("whole object");
            return answer.toObject().isEmpty() ? QStringLiteral("empty object")
                                               : QStringLiteral("other object");
        };
        operation.success = QStringLiteral("whole object");
        operation.promised = QStringList {QStringLiteral("empty object")};
        return operation;
    }
    Operation writeText() const
    {
        const QString file = path("text");
        Operation operation;
        operation.name = QStringLiteral("text write");
        operation.command = QStringLiteral("files.writeFileData");
        operation.arguments = {file, QStringLiteral("new text")};
        operation.prepare = [file](FaultHost &) { writeFile(file, "old text"); };
        operation.outcome = [file](const QJsonValue &) { return describe(file, "old text", "new text"); };
        operation.success = QStringLiteral("new");
        operation.promised =
            QStringList {QStringLiteral("old"), QStringLiteral("empty"), QStringLiteral("cut")};
        return operation;
    }
    Operation readText() const
    {
        const QString file = path("text");
        Operation operation;
        operation.name = QStringLiteral("text read");
        operation.command = QStringLiteral("files.readFileData");
        operation.arguments = {file};
        operation.prepare = [file](FaultHost &) { writeFile(file, "some text"); };
        operation.outcome = [](const QJsonValue &answer) {
            const QString text = answer.toString();
            if (text == QLatin1String("some text"))
                return QStringLiteral("whole text");
            if (text.isEmpty())
                return QStringLiteral("empty text");
            return QStringLiteral("some text").startsWith(text) ? QStringLiteral("cut text")
                                                                : QStringLiteral("other text");
        };
        operation.success = QStringLiteral("whole text");
        operation.promised = QStringList {QStringLiteral("empty text"), QStringLiteral("cut text")};
        return operation;
    }
    Operation copyFile() const
    {
        const QString source = path("source");
        const QString target = path("target");
        Operation operation;
        operation.name = QStringLiteral("copy");
        operation.command = QStringLiteral("files.copy");
        operation.arguments = {source, target};
        operation.prepare = [=](FaultHost &) {
            writeFile(source, QByteArray(100000, 's'));
            writeFile(target, "old");
        };
        operation.outcome = [=](const QJsonValue &answer) {
            if (readFile(source) != QByteArray(100000, 's'))
                return QStringLiteral("source changed");
            return (answer.toBool() ? QStringLiteral("true, ") : QStringLiteral("false, "))
                   + describe(target, "old", QByteArray(100000, 's'));
        };
        operation.success = QStringLiteral("true, new");
        operation.promised = QStringList {QStringLiteral("false, missing"), QStringLiteral("false, old")};
        return operation;
    }
    Operation unzip() const
    {
        const QString archive = path("archive.zip");
        const QString target = path("extracted");
        const QByteArray content(20000, 'x');
        makeArchive(archive, {{"a", content}, {"b/c", content}, {"d", content}});
        Operation operation;
        operation.name = QStringLiteral("extraction");
        operation.command = QStringLiteral("files.unzip");
        operation.arguments = {archive, target, true};
        operation.prepare = [target](FaultHost &) { QDir(target).removeRecursively(); };
        operation.outcome = [=](const QJsonValue &answer) {
            QStringList states;
            for (const char *name : {"a", "b/c", "d"})
                states << describe(target + QLatin1Char('/') + QLatin1String(name), "old", content);
            states.removeDuplicates();
            states.sort();
            return (answer.toBool() ? QStringLiteral("true, ") : QStringLiteral("false, "))
                   + states.join(QLatin1String(" and "));
        };
        operation.success = QStringLiteral("true, new");
        operation.promised = QStringList {QStringLiteral("false, missing"),
                                          QStringLiteral("true, missing"),
                                          QStringLiteral("true, cut and new"),
                                          QStringLiteral("true, empty and new"),
                                          QStringLiteral("true, missing and new"),
                                          QStringLiteral("true, cut and missing"),
                                          QStringLiteral("true, cut"),
                                          QStringLiteral("true, empty"),
                                          QStringLiteral("true, empty and missing"),
                                          QStringLiteral("true, cut and missing and new"),
                                          QStringLiteral("true, empty and missing and new")};
        return operation;
    }
    QString deviceFile() const { return m_home.filePath(QStringLiteral(".config/maker/reader/device.conf")); }

    // What is in the file "device.conf" besides the key of the function.
    QString describeDeviceFile(const QByteArray &key) const
    {
        const QByteArray content = readFile(deviceFile());
        if (content.isEmpty())
            return QFile::exists(deviceFile()) ? QStringLiteral("empty file") : QStringLiteral("no file");
        QString description = content.contains('\n' + key + '=') ? QStringLiteral("key stored")
                                                                 : QStringLiteral("key not stored");
        if (!content.contains("\nOther=x\n"))
            description += QStringLiteral(", other key lost");
        return description;
    }
    Operation identify() const
    {
        Operation operation;
        operation.name = QStringLiteral("first identifier");
        operation.command = QStringLiteral("identity.pcid");
        operation.arguments = {QStringLiteral("maker/"), QStringLiteral("reader"), 1};
        operation.prepare = [this](FaultHost &) { writeDeviceFile("[General]\nOther=x\n"); };
        operation.outcome = [this](const QJsonValue &answer) {
            const QString stored = describeDeviceFile("PCID");
            static const QRegularExpression digest(QStringLiteral("^[0-9a-f]{32}$"));
            return digest.match(answer.toArray().at(0).toString()).hasMatch()
                       ? QStringLiteral("identifier, ") + stored
                       : QStringLiteral("no identifier, ") + stored;
        };
        operation.success = QStringLiteral("identifier, key stored");
        operation.promised = QStringList {QStringLiteral("identifier, key not stored"),
                                          QStringLiteral("identifier, empty file"),
                                          QStringLiteral("identifier, key stored, other key lost")};
        operation.promisedNext = QStringList {QStringLiteral("identifier, key stored, other key lost")};
        operation.limitMs = 60000;
        return operation;
    }
    Operation identifyAgain() const
    {
        Operation operation = identify();
        operation.name = QStringLiteral("stored identifier");
        operation.prepare = [this](FaultHost &) {
            writeDeviceFile("[General]\nOther=x\nPCID=" + identifier + '\n');
        };
        return operation;
    }
    Operation isNewUser() const
    {
        Operation operation;
        operation.name = QStringLiteral("mark of the first run");
        operation.command = QStringLiteral("identity.isNewUser");
        operation.arguments = {QStringLiteral("maker/"), QStringLiteral("reader")};
        operation.prepare = [this](FaultHost &) { writeDeviceFile("[General]\nOther=x\n"); };
        operation.outcome = [this](const QJsonValue &) { return describeDeviceFile("NewUser"); };
        operation.success = QStringLiteral("key stored");
        operation.promised = QStringList {QStringLiteral("key not stored"), QStringLiteral("empty file"),
                                          QStringLiteral("key stored, other key lost")};
        operation.promisedNext = QStringList {QStringLiteral("key stored, other key lost")};
        operation.limitMs = 60000;
        return operation;
    }
    Operation queryTheme() const
    {
        Operation operation;
        operation.name = QStringLiteral("theme");
        operation.command = QStringLiteral("theme.isDark");
        operation.prepare = [](FaultHost &) {};
        operation.outcome = [](const QJsonValue &answer) {
            return answer.toBool() ? QStringLiteral("dark") : QStringLiteral("light");
        };
        operation.success = QStringLiteral("dark");
        operation.promised = QStringList {QStringLiteral("light")};
        operation.limitMs = 60000;
        operation.setUp = [this](FaultHost &host) {
            host.call(QStringLiteral("process.setVariable"), {QStringLiteral("PATH"), m_tools.path()});
        };
        return operation;
    }
    void writeDeviceFile(const QByteArray &content) const
    {
        QDir().mkpath(QFileInfo(deviceFile()).path());
        writeFile(deviceFile(), content);
    }

    const QTemporaryDir m_directory;
    const TemporaryHome m_home;
    FakeTools m_tools;
    std::unique_ptr<Sweep> m_sweep;

private Q_SLOTS:
    void initTestCase()
    {
        const QString reason = Sweep::reasonToSkip();
        if (!reason.isEmpty())
            QSKIP(qPrintable(reason));
        for (const char *variable : {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION"})
            qunsetenv(variable);
        m_tools.add(QStringLiteral("which"), "exit 0");
        m_tools.add(QStringLiteral("gsettings"), FakeTools::print("'Adwaita-dark'\n"));
        const QString leftLock =
            QStringLiteral("Qt waits half a minute for a lock file that was not removed");
        QList<Exclusion> exclusions {
            {QStringLiteral("(identifier|run), unlink: (Input|.*(later|first))"), leftLock},
            {QStringLiteral("(first identifier|run), unlink"), leftLock, true}};
        if (::geteuid() != 0) {
            exclusions.append(
                {QStringLiteral("(identifier|run), stat"),
                 QStringLiteral("Qt takes all permissions from a file that it cannot query, and "
                                "then only root can open it")});
        }
        m_sweep.reset(new Sweep({saveJson(), readJson(), writeText(), readText(), copyFile(), unzip(),
                                 identify(), identifyAgain(), isNewUser(), queryTheme()},
                                exclusions));
    }
    void cleanupTestCase() { m_sweep.reset(); }

    void keepsItsPromises_data()
    {
        if (m_sweep)
            m_sweep->addRows({Kind::Open, Kind::Read, Kind::Write, Kind::Close, Kind::Sync, Kind::Seek,
                              Kind::Truncate, Kind::Rename, Kind::MakeDirectory, Kind::Remove, Kind::Stat,
                              Kind::Permissions, Kind::Lock, Kind::Descriptor, Kind::Poll, Kind::Thread,
                              Kind::Process});
    }
    void keepsItsPromises() { m_sweep->testRow(); }
};

QTEST_GUILESS_MAIN(TestFaultsFiles)

#include "tst_faults_files.moc"
