// SPDX-License-Identifier: LGPL-2.1-or-later

// A host application that uses each service of the library once on real input and says what came back.
//
//     tour [DIRECTORY]    files go to DIRECTORY, by default to a new folder that is kept

#include "Report.h"
#include "services.h"

#include <QCoreApplication>
#include <QTemporaryDir>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QString path = QCoreApplication::arguments().value(1);
    if (path.isEmpty()) {
        QTemporaryDir folder(QDir::temp().filePath(QStringLiteral("ZyBase-tour-XXXXXX")));
        folder.setAutoRemove(false);
        path = folder.path();
    }
    const QDir directory(QDir(path).absolutePath());

    Report report;
    report.line(QStringLiteral("Files of this tour"), directory.path());
    if (!directory.mkpath(QStringLiteral("."))) {
        report.promise(QStringLiteral("the folder can be made"), false);
        return report.finish();
    }
    showLog(report, directory);
    showJson(report, directory);
    showFiles(report, directory);
    showZip(report, directory);
    showHttp(report, directory);
    showIdentity(report, directory);
    showSystem(report, directory);
    showTheme(report, directory);
    showDefaultApplication(report, directory);
    showQrCode(report, directory);
    showLocation(report, directory);
    showReports(report, directory);
    return report.finish();
}
