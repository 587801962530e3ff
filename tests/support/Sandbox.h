// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QStringList>

/**
 * A restricted view of the machine for one child process: some paths of the file system are replaced, and
 * optionally the network.
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
    /** Returns false if bubblewrap is not installed or not allowed for this user. */
    static bool isAvailable();

    /** Returns true if sizedFileSystem() is supported. */
    static bool hasSizedFileSystems();

    /** Returns true if ownNetwork() is supported and the commands succeed. */
    static bool hasNetwork(const QString &setUp);

    /** Returns true if inOwnProcesses() is supported. */
    static bool hasOwnProcesses();

    /**
     * Returns the command line that runs @p command in a process namespace of its own. A signal to all
     * processes reaches no other process.
     */
    static QStringList inOwnProcesses(const QStringList &command);

    /** Makes the path read-only, also for root. */
    void readOnly(const QString &path);

    /** Replaces the path by @p source. */
    void replace(const QString &path, const QString &source);

    /** Makes the root directory writable. Files created in it are deleted with the sandbox. */
    void freshRoot();

    /** Replaces the path by an empty file system of this size. */
    void sizedFileSystem(const QString &path, int bytes);

    /**
     * Replaces the network by one that has only a loopback interface. The shell commands @p setUp can add
     * interfaces; they run as root of the sandbox. If one fails, the child is not started.
     */
    void ownNetwork(const QString &setUp);

    /** Returns the command line that runs @p command in the sandbox; @p command itself without changes. */
    QStringList commandLine(const QStringList &command) const;

private:
    bool m_freshRoot = false;
    QString m_networkSetUp; ///< null for the machine's network
    QStringList m_changes;
};
