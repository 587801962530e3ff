// SPDX-License-Identifier: LGPL-2.1-or-later

#include "MainWindow.h"

#include <DevelopmentServices.h>

#include <ZyBase/platform/CSystemUtils.h>

#include <QApplication>
#include <QEventLoop>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTimer>

namespace {

constexpr int lastMomentMs = 1500;

// What was told to stop ends while the event loop runs.
void runForALastMoment()
{
    QEventLoop loop;
    QTimer::singleShot(lastMomentMs, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int main(int argc, char **argv)
{
    ZyBase::CSystemUtils::EnableHighDPISupport(true);
    const DevelopmentServices services = useDevelopmentServices();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("zybase-gallery"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    MainWindow window(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation), services);
    window.show();
    const int result = QApplication::exec();
    window.stopServices();
    runForALastMoment();
    return result;
}
