// SPDX-License-Identifier: 0BSD

#pragma once

#include <QByteArray>
#include <QDir>
#include <QStringList>

/** How the window was left. */
struct Settings
{
    QByteArray geometry;
    int note = 0; ///< the selected note
};

/** The notes and the settings of the user, each in a JSON file of one directory. */
class Storage
{
public:
    explicit Storage(const QString &directory)
        : m_directory(directory)
    {
    }

    QString directory() const { return m_directory.path(); }

    /** Returns the notes. A damaged file is renamed first, so that saving does not replace it. */
    QStringList notes() const;
    Settings settings() const;

    // The next two return why the file is not saved, as a message for the user; null on success.
    QString saveNotes(const QStringList &notes) const;
    QString saveSettings(const Settings &settings) const;

private:
    QString notesPath() const { return m_directory.filePath(QStringLiteral("notes.json")); }
    QString settingsPath() const { return m_directory.filePath(QStringLiteral("settings.json")); }

    QDir m_directory;
};
