// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CAssocUtils.h>
#include <ZyBase/platform/COperateSystem.h>

#include "Files.h"
#include "TemporaryHome.h"

#include <QDir>
#include <QStandardPaths>
#include <QTest>

#include <optional>

using ZyBase::CAssocUtils;
using ZyBase::COperateSystem;

namespace {

const QString reader = QStringLiteral("org.example.reader");
const QString viewer = QStringLiteral("org.example.viewer");

} // namespace

// The default application of the real xdg-mime, in a home of its own.
class TestDefaultApplicationDesktop : public QObject
{
    Q_OBJECT

private:
    // xdg-mime skips an entry whose program does not exist. Its version 1.2 does not find a name that is also
    // a builtin of the shell, such as "true", so the entry has a full path.
    void install(const QString &application)
    {
        const QString directory = m_home->filePath(QStringLiteral(".local/share/applications"));
        QVERIFY(QDir().mkpath(directory));
        QVERIFY(writeFile(directory + QLatin1Char('/') + application + QStringLiteral(".desktop"),
                          "[Desktop Entry]\nType=Application\nName=Test\nExec=/bin/sh %f\n"
                          "MimeType=application/pdf;text/plain;\n"));
    }

    std::optional<TemporaryHome> m_home;

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("xdg-mime")).isEmpty())
            QSKIP("xdg-utils are not installed");
    }
    void init()
    {
        // No desktop, whose own tools xdg-mime would use, and no applications of this machine.
        for (const char *variable : {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION",
                                     "GNOME_DESKTOP_SESSION_ID", "DISPLAY", "XDG_CONFIG_DIRS"})
            qunsetenv(variable);
        m_home.emplace();
        qputenv("XDG_DATA_DIRS", QFile::encodeName(m_home->filePath(QStringLiteral("none"))));
        qputenv("XDG_CONFIG_DIRS", QFile::encodeName(m_home->filePath(QStringLiteral("none"))));
        install(reader);
        install(viewer);
    }
    void cleanup() { m_home.reset(); }

    void returnsTrueForApplicationThatWasSet()
    {
        for (const QString &chosen : {reader, viewer, reader}) {
            const QString other = chosen == reader ? viewer : reader;
            QVERIFY(CAssocUtils::SetPdfLauncher(chosen, QString(), false));
            QVERIFY(CAssocUtils::IsPdfLauncher(chosen));
            QVERIFY(CAssocUtils::IsPdfLauncher(chosen + QStringLiteral(".desktop")));
            QVERIFY(!CAssocUtils::IsPdfLauncher(chosen.toUpper()));
            QVERIFY(!CAssocUtils::IsPdfLauncher(other));
        }
    }

    void keepsDefaultsOfOtherTypes()
    {
        const QString text = QStringLiteral("text/plain");
        QVERIFY(CAssocUtils::SetPdfLauncher(reader, QString(), false));
        QVERIFY(COperateSystem::SetDefaultLauncher(viewer, text, QString(), false));
        QVERIFY(CAssocUtils::IsPdfLauncher(reader));
        QVERIFY(COperateSystem::IsDefaultLauncher(viewer, text));
        QVERIFY(!COperateSystem::IsDefaultLauncher(reader, text));
    }

    void setsNoExistingEntryForNameWithSuffix()
    {
        QVERIFY(CAssocUtils::SetPdfLauncher(reader, QString(), false));
        QVERIFY(CAssocUtils::SetPdfLauncher(viewer + QStringLiteral(".desktop"), QString(), false));
        QVERIFY(!CAssocUtils::IsPdfLauncher(viewer));
    }

    void keepsDefaultAfterReset()
    {
        QVERIFY(CAssocUtils::SetPdfLauncher(reader, QString(), false));
        QVERIFY(CAssocUtils::ResetPdfLauncher(reader));
        QVERIFY(CAssocUtils::IsPdfLauncher(reader));
    }
};

QTEST_GUILESS_MAIN(TestDefaultApplicationDesktop)

#include "tst_default_application_desktop.moc"
