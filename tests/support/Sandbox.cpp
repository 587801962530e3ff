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

// All that lies in the root, on an empty file system that can be written to.
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

QStringList Sandbox::commandLine(const QStringList &command) const
{
    if (m_changes.isEmpty() && !m_freshRoot)
        return command;
    const QStringList root = m_freshRoot ? bindFreshRoot() : bindRoot();
    return QStringList {program} + root + m_changes + QStringList {QStringLiteral("--die-with-parent")}
           + command;
}
