// SPDX-License-Identifier: LGPL-2.1-or-later

#include "GalleryFixture.h"

#include "Files.h"

#include <QScreen>
#include <QStyleFactory>

namespace {

// Longer than the second after which a request of the gallery deletes itself.
constexpr int requestLifetimeMs = 1500;
const QString themeFile = QStringLiteral("theme");
const QString holdFile = QStringLiteral("hold");

} // namespace

const char *GalleryFixture::skipReason()
{
    if (!VirtualDisplay::isAvailable())
        return "Xvfb is not installed";
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return "this user can start no display";
    return nullptr;
}

// The settings of the machine's desktop must not change how the gallery looks.
std::unique_ptr<QCoreApplication> GalleryFixture::createApplication(int &argc, char **argv, bool hasDisplay)
{
    if (!hasDisplay)
        return std::make_unique<QCoreApplication>(argc, argv);
    for (const char *variable : {"XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE",
                                 "QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI"})
        qunsetenv(variable);
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    QApplication::setCursorFlashTime(0);
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight()); // not over a control
    return application;
}

GalleryFixture::GalleryFixture()
{
    m_tools.add(QStringLiteral("which"), "exit 0");
    m_tools.add(QStringLiteral("gsettings"), "while [ -e \"$HOME/hold\" ]; do /bin/sleep 0.05; done\n"
                                             "/bin/cat \"$HOME/theme\"");
    m_tools.add(QStringLiteral("xdg-mime"), "echo org.example.reader.desktop");
    qputenv("PATH", QFile::encodeName(m_tools.path()));
    m_services = useDevelopmentServices();
}

void GalleryFixture::setTheme(const QByteArray &theme)
{
    writeFile(homePath(themeFile), theme);
}

void GalleryFixture::holdTheme()
{
    writeFile(homePath(holdFile), "");
}

void GalleryFixture::releaseTheme()
{
    QFile::remove(homePath(holdFile));
}

Gallery &GalleryFixture::open(const QByteArray &theme)
{
    close();
    m_directory = std::make_unique<QTemporaryDir>();
    setTheme(theme);
    return reopen(m_services);
}

Gallery &GalleryFixture::reopen(const DevelopmentServices &services)
{
    close();
    m_gallery = std::make_unique<Gallery>(m_directory->path(), services);
    if (!QTest::qWaitForWindowExposed(&m_gallery->window(), timeoutMs))
        qFatal("The window of the gallery is not shown");
    const auto isThemeRead = [this] {
        return m_gallery->text("desktopTheme") != QStringLiteral("Reading the desktop …");
    };
    if (!QFile::exists(homePath(holdFile)) && !QTest::qWaitFor(isThemeRead, timeoutMs))
        qFatal("The theme of the desktop is not read");
    return *m_gallery;
}

bool GalleryFixture::isDark() const
{
    return m_gallery->window().palette().color(QPalette::Window).lightness() < 128;
}

void GalleryFixture::close()
{
    if (m_gallery)
        m_gallery->window().stopServices();
    m_gallery.reset();
}

void GalleryFixture::waitForDeletionOfRequests()
{
    QTest::qWait(requestLifetimeMs);
}
