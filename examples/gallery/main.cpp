// SPDX-License-Identifier: 0BSD

#include "MainWindow.h"

#include <DevelopmentServices.h>
#include <QuitInTime.h>
#include <RunningRequests.h>

#include <ZyBase/platform/CSystemUtils.h>

#include <QApplication>
#include <QStandardPaths>
#include <QStyleFactory>

namespace {

constexpr std::chrono::milliseconds timeToStop(500);
constexpr std::chrono::milliseconds timeToQuit(2000);

int runGallery(int &argc, char **argv)
{
    const DevelopmentServices services = useDevelopmentServices();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("zybase-gallery"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    MainWindow window(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation), services);
    window.show();
    const int exitCode = QApplication::exec();
    endProcessAfter(timeToQuit, exitCode);
    window.stopServices();
    RunningRequests().stopAll(timeToStop); // stops reports too
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    ZyBase::CSystemUtils::EnableHighDPISupport(true);
    endProcess(runGallery(argc, argv));
}
