// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "EightThreads.h"
#include "MessageCapture.h"
#include "OrdinaryUser.h"
#include "StandardErrorCapture.h"
#include "Utf8.h"

#include <QObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/**
 * Base of the tests of files. Each function has its own temporary directory, keeps all Qt messages, and fails
 * if the process writes anything else to its standard error stream.
 */
class FilesTest : public QObject
{
    Q_OBJECT

protected:
    using Message = MessageCapture::Message;

    /** Returns the path of @p name in the temporary directory. */
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QString path(const char *name) const { return path(utf8(name)); }

    QString directoryPath() const { return m_directory->path(); }

    /** Returns the names of everything in the temporary directory, sorted. */
    QStringList entries() const;

    QList<Message> messages() const { return m_messages->messages(); }

    /**
     * Lets permission checks apply to this process until the end of the test function, with a new temporary
     * directory. Returns false if it cannot, because it runs as root and cannot change the user.
     */
    bool becomeOrdinaryUser();

protected Q_SLOTS:
    void init();
    void cleanup();

private:
    std::unique_ptr<OrdinaryUser> m_user;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<MessageCapture> m_messages;
    std::unique_ptr<StandardErrorCapture> m_standardError;
};
