// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/platform/CAssocUtils.h>

#include <QDirIterator>
#include <QStandardPaths>

using ZyBase::CAssocUtils;

namespace {

const char *const tool = "xdg-mime";

bool opensPdf(const QString &desktopFile)
{
    QFile file(desktopFile);
    return file.open(QIODevice::ReadOnly) && file.readAll().contains("application/pdf");
}

// The first of the installed applications that is the default.
QString defaultApplication()
{
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
    for (const QString &folder : folders) {
        QDirIterator files(folder, {QStringLiteral("*.desktop")}, QDir::Files);
        while (files.hasNext()) {
            const QString path = files.next();
            if (opensPdf(path) && CAssocUtils::IsPdfLauncher(files.fileName()))
                return files.fileName();
        }
    }
    return QStringLiteral("none");
}

} // namespace

void showDefaultApplication(Report &report, const QDir &)
{
    report.heading(QStringLiteral("Default application"), QStringLiteral("ZyBase/platform/CAssocUtils.h"));

    if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
        report.line(QString::fromLatin1(tool), QStringLiteral("not installed: no default can be told"));
    report.line(QStringLiteral("opens PDF files"), defaultApplication());
    const QString none = QStringLiteral("org.example.no-such-application");
    report.promise(QStringLiteral("an application that is not installed is not the default"),
                   !CAssocUtils::IsPdfLauncher(none));
    report.promise(QStringLiteral("a reset reports success and leaves the user's choice alone"),
                   CAssocUtils::ResetPdfLauncher(none));
}
