// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FilesTest.h"

#include <ZyBase/base/LoggerObjectPrivate.h>

#include <QDir>

QStringList FilesTest::entries() const
{
    return QDir(directoryPath())
        .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
}

bool FilesTest::becomeOrdinaryUser()
{
    m_directory.reset();
    m_user = std::make_unique<OrdinaryUser>();
    m_directory = std::make_unique<QTemporaryDir>();
    return m_user->isOrdinary();
}

void FilesTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_messages = std::make_unique<MessageCapture>();
    m_standardError = std::make_unique<StandardErrorCapture>();
}

void FilesTest::cleanup()
{
    const QStringList printed = m_standardError->lines();
    m_standardError.reset();
    m_messages.reset();
    m_user.reset();
    m_directory.reset();
    QCOMPARE(printed, QStringList());
    QVERIFY(!LoggerObjectPrivate::s_pLogger); // the log is not used
}
