// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QStringList>

/**
 * A view of the file system for one child process: the machine's, with single places replaced.
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

    /** @p path can be read but not written to, by root neither. */
    void readOnly(const QString &path);

    /** @p path shows the content of @p source. */
    void replace(const QString &path, const QString &source);

    /** The root itself is a fresh folder: what is made at the top of the file system goes there. */
    void freshRoot();

    /** @p path is an empty file system of @p bytes. */
    void sizedFileSystem(const QString &path, int bytes);

    /** The command line that runs @p command inside; @p command itself for a sandbox without a change. */
    QStringList commandLine(const QStringList &command) const;

private:
    bool m_freshRoot = false;
    QStringList m_changes;
};
