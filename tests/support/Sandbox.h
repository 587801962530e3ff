// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QStringList>

/**
 * A view of the machine for one child process: the machine's own, with single places of the file system
 * replaced, and its network where wanted.
 *
 * @code
 * Sandbox sandbox;
 * sandbox.readOnly(directory);
 * host.start(sandbox);
 * @endcode
 */
class Sandbox
{
public:
    /** False where the machine lets this user make none; tests that need one are skipped by name. */
    static bool isAvailable();

    /** True where fullDisk() can be had. */
    static bool hasSizedFileSystems();

    /** True where ownNetwork() can be had and the commands succeed in it. */
    static bool hasNetwork(const QString &setUp);

    /** @p path can be read but not written to, by root neither. */
    void readOnly(const QString &path);

    /** @p path shows the content of @p source. */
    void replace(const QString &path, const QString &source);

    /** The root itself is a fresh folder: what is made at the top of the file system goes there. */
    void freshRoot();

    /** @p path is an empty file system of @p bytes. */
    void sizedFileSystem(const QString &path, int bytes);

    /**
     * A network of its own, with nothing but the loopback interface and what the shell commands @p setUp
     * add to it as root of the sandbox. They have to succeed for the child to be started.
     */
    void ownNetwork(const QString &setUp);

    /** The command line that runs @p command inside; @p command itself for a sandbox without a change. */
    QStringList commandLine(const QStringList &command) const;

private:
    bool m_freshRoot = false;
    QString m_networkSetUp; ///< null for the machine's network
    QStringList m_changes;
};
