// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "EnvironmentVariable.h"
#include "Report.h"

#include <ZyBase/platform/CAssocUtils.h>

#include <QFile>
#include <QStandardPaths>

using ZyBase::CAssocUtils;

namespace {

const QString reader = QStringLiteral("org.example.tour-reader");
const QString viewer = QStringLiteral("org.example.tour-viewer");

bool install(const QDir &applications, const QString &application)
{
    QFile file(applications.filePath(application + QStringLiteral(".desktop")));
    return file.open(QIODevice::WriteOnly)
           && file.write("[Desktop Entry]\nType=Application\nName=Reader\nExec=/bin/true %f\n"
                         "MimeType=application/pdf;\n")
                  > 0;
}

bool isDefault(Report &report, const QString &application)
{
    const bool isDefault = CAssocUtils::IsPdfLauncher(application);
    report.line(QStringLiteral("IsPdfLauncher"),
                application + (isDefault ? QStringLiteral(": true") : QStringLiteral(": false")));
    return isDefault;
}

void showDefault(Report &report)
{
    const bool wasViewer = CAssocUtils::SetPdfLauncher(viewer, QString(), false) && isDefault(report, viewer);
    const bool isReader = CAssocUtils::SetPdfLauncher(reader, QString(), false) && isDefault(report, reader);
    report.promise(QStringLiteral("SetPdfLauncher() sets the application that opens PDF files"),
                   wasViewer && isReader && !isDefault(report, viewer));
    report.promise(QStringLiteral("ResetPdfLauncher() returns true and changes nothing"),
                   CAssocUtils::ResetPdfLauncher(reader) && isDefault(report, reader));
}

} // namespace

void showDefaultApplication(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Default application"), QStringLiteral("ZyBase/platform/CAssocUtils.h"));
    if (QStandardPaths::findExecutable(QStringLiteral("xdg-mime")).isEmpty()) {
        return report.skip(QStringLiteral("The application that opens PDF files can be set and read"),
                           QStringLiteral("xdg-mime is not installed"));
    }

    // A user without a desktop, whose settings and applications are in the tour's directory.
    const QDir home(directory.filePath(QStringLiteral("home")));
    const QDir applications(home.filePath(QStringLiteral("applications")));
    const EnvironmentVariable configuration("XDG_CONFIG_HOME", home.path());
    const EnvironmentVariable configurations("XDG_CONFIG_DIRS", home.path());
    const EnvironmentVariable data("XDG_DATA_HOME", home.path());
    const EnvironmentVariable dataDirectories("XDG_DATA_DIRS", home.path());
    const EnvironmentVariable desktop("XDG_CURRENT_DESKTOP", QStringLiteral("X-Generic"));
    if (applications.mkpath(QStringLiteral(".")) && install(applications, reader)
        && install(applications, viewer))
        showDefault(report);
    else
        report.promise(QStringLiteral("Applications can be installed to the tour's directory"), false);
}
