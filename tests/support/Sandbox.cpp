// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Sandbox.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>

namespace {

const QLatin1String program("bwrap");

bool succeeds(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
           && process.exitCode() == 0;
}

QStringList bindRoot()
{
    return {QStringLiteral("--dev-bind"), QStringLiteral("/"), QStringLiteral("/")};
}

// Inside the sandbox the user is root, so that an ordinary user can create network interfaces too.
QStringList unshareNetwork()
{
    return {QStringLiteral("--unshare-user"),
            QStringLiteral("--uid"),
            QStringLiteral("0"),
            QStringLiteral("--gid"),
            QStringLiteral("0"),
            QStringLiteral("--unshare-net"),
            QStringLiteral("--cap-add"),
            QStringLiteral("CAP_NET_ADMIN")};
}

// The arguments after these are a command, which is run if the shell commands succeed.
QStringList afterCommands(const QString &commands)
{
    return {QStringLiteral("sh"), QStringLiteral("-ec"), commands + QStringLiteral("\nexec \"$@\""),
            QStringLiteral("sh")};
}

// Binds all entries of the root directory to an empty, writable file system.
QStringList bindFreshRoot()
{
    QStringList arguments {QStringLiteral("--tmpfs"), QStringLiteral("/")};
    const QFileInfoList entries =
        QDir::root().entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    for (const QFileInfo &entry : entries) {
        const QString path = entry.absoluteFilePath();
        if (entry.isSymLink())
            arguments << QStringLiteral("--symlink") << entry.symLinkTarget() << path;
        else if (entry.isReadable())
            arguments << QStringLiteral("--dev-bind") << path << path;
    }
    return arguments;
}

} // namespace

bool Sandbox::isAvailable()
{
    static const bool available =
        !QStandardPaths::findExecutable(program).isEmpty() && succeeds(bindRoot() << QStringLiteral("true"));
    return available;
}

bool Sandbox::hasSizedFileSystems()
{
    static const bool available =
        isAvailable()
        && succeeds(bindRoot() << QStringLiteral("--size") << QStringLiteral("65536")
                               << QStringLiteral("--tmpfs") << QDir::tempPath() << QStringLiteral("true"));
    return available;
}

bool Sandbox::hasNetwork(const QString &setUp)
{
    Sandbox sandbox;
    sandbox.ownNetwork(setUp);
    QStringList command = sandbox.commandLine({QStringLiteral("true")});
    command.removeFirst();
    return isAvailable() && succeeds(command);
}

bool Sandbox::hasOwnProcesses()
{
    static const bool has = isAvailable() && succeeds(inOwnProcesses({QStringLiteral("true")}).mid(1));
    return has;
}

QStringList Sandbox::inOwnProcesses(const QStringList &command)
{
    return QStringList {program} + bindRoot()
           + QStringList {QStringLiteral("--unshare-pid"), QStringLiteral("--proc"), QStringLiteral("/proc"),
                          QStringLiteral("--die-with-parent")}
           + command;
}

void Sandbox::readOnly(const QString &path)
{
    m_changes << QStringLiteral("--ro-bind") << path << path;
}

void Sandbox::replace(const QString &path, const QString &source)
{
    m_changes << QStringLiteral("--bind") << source << path;
}

void Sandbox::freshRoot()
{
    m_freshRoot = true;
}

void Sandbox::sizedFileSystem(const QString &path, int bytes)
{
    m_changes << QStringLiteral("--size") << QString::number(bytes) << QStringLiteral("--tmpfs") << path;
}

void Sandbox::ownNetwork(const QString &setUp)
{
    m_networkSetUp = setUp;
}

QStringList Sandbox::commandLine(const QStringList &command) const
{
    const bool hasOwnNetwork = !m_networkSetUp.isNull();
    if (m_changes.isEmpty() && !m_freshRoot && !hasOwnNetwork)
        return command;
    QStringList line {program};
    line << (m_freshRoot ? bindFreshRoot() : bindRoot()) << m_changes << QStringLiteral("--die-with-parent");
    if (hasOwnNetwork)
        line << unshareNetwork() << afterCommands(m_networkSetUp);
    return line << command;
}
