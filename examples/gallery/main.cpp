// SPDX-License-Identifier: 0BSD
//
// The gallery of the library's services.
//
//     gallery [--language LANGUAGE]    LANGUAGE: such as zh_CN or en; by default that of the locale

#include "Language.h"
#include "MainWindow.h"

#include <QuitInTime.h>
#include <RunningRequests.h>

#include <ZyBase/platform/CSystemUtils.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QStandardPaths>
#include <QStyleFactory>

namespace {

constexpr std::chrono::milliseconds timeToStop(500);
constexpr std::chrono::milliseconds timeToQuit(2000);

QString languageOption(const QApplication &application)
{
    const QCommandLineOption language(QStringLiteral("language"),
                                      QStringLiteral("the language of the window, such as zh_CN or en"),
                                      QStringLiteral("LANGUAGE"), QLocale().name());
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption(language);
    parser.process(application);
    return parser.value(language);
}

int runGallery(int &argc, char **argv)
{
    const QString badDescription = brokenDescription();
    const DevelopmentServices services =
        badDescription.isEmpty() ? useDevelopmentServices() : DevelopmentServices();
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("zybase-gallery"));
    QGuiApplication::setDesktopFileName(QStringLiteral("zybase-gallery"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    setLanguage(languageOption(application));

    MainWindow window(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation), services,
                      badDescription);
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
