// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "ChildProcess.h"
#include "Files.h"
#include "MessageCapture.h"
#include "RecordedPrograms.h"
#include "TemporaryHome.h"
#include "VirtualDisplay.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QSet>
#include <QStandardPaths>
#include <QTest>
#include <QUrl>

#include <optional>

using ZyBase::CFileUtils;

namespace {

constexpr int timeoutMs = 60000;
// An empty display has fewer colours, a window has more.
constexpr int coloursOfWindow = 30;

bool isInstalled(const char *program)
{
    return !QStandardPaths::findExecutable(QLatin1String(program)).isEmpty();
}

// A virtual display, a session bus and a home directory for the programs that this process starts. They end
// with the display.
class Desktop
{
public:
    static const char *missingTool()
    {
        for (const char *program : {"Xvfb", "dbus-daemon", "thunar", "xwininfo"}) {
            if (!isInstalled(program))
                return program;
        }
        return nullptr;
    }

    bool start() { return m_display.start() && startBus(); }

private:
    bool startBus()
    {
        // Created here, because it starts programs with the environment of this moment.
        m_bus.emplace(QStringList {QStringLiteral("dbus-daemon"), QStringLiteral("--session"),
                                   QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        if (!m_bus->start() || !m_bus->waitForLine(timeoutMs))
            return false;
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus->readLine().trimmed());
        return true;
    }

    TemporaryHome m_home;
    VirtualDisplay m_display;
    std::optional<ChildProcess> m_bus;
};

QImage screenshot()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

int colourCount(const QImage &image)
{
    QSet<QRgb> found;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2)
            found.insert(image.pixel(x, y));
    }
    return found.size();
}

} // namespace

// Runs a real file manager on a virtual display.
class TestRevealDesktop : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void initTestCase()
    {
        if (const char *tool = Desktop::missingTool())
            QSKIP(qPrintable(QLatin1String(tool) + QStringLiteral(" is not installed")));
        if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
            QSKIP("this user cannot start a display");
    }
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    // Saves a picture of the window as "reveal.png" in the build directory of the tests.
    void showsDirectoryOfFile()
    {
        const QDir folder(m_directory->filePath(QStringLiteral("folder of the file")));
        QVERIFY(folder.mkpath(QStringLiteral(".")));
        QVERIFY(writeFile(folder.filePath(QStringLiteral("report.txt")), "shown"));
        QVERIFY(writeFile(folder.filePath(QStringLiteral("other.txt")), "beside"));
        const int before = colourCount(screenshot());
        qputenv("XDG_CURRENT_DESKTOP", "XFCE");
        const MessageCapture messages;
        CFileUtils::OpenFolderAndSelectFile(folder.filePath(QStringLiteral("report.txt")));
        QVERIFY(QTest::qWaitFor([] { return colourCount(screenshot()) > coloursOfWindow; }, timeoutMs));
        QVERIFY(before < coloursOfWindow);
        QCOMPARE(messages.messages().size(), 0);
        QVERIFY(QTest::qWaitFor([&] { return windowTitles().contains(folder.dirName()); }, timeoutMs));
        screenshot().save(QStringLiteral(ZYBASE_ARTEFACTS "/reveal.png"));
    }

    void opensDirectoryWithQtIfFileManagerIsMissing()
    {
        const RecordedPrograms programs({QStringLiteral("xdg-open")});
        qputenv("XDG_CURRENT_DESKTOP", "GNOME");
        const MessageCapture messages;
        const QString file = m_directory->filePath(QStringLiteral("file.txt"));
        QVERIFY(writeFile(file, "shown"));
        CFileUtils::OpenFolderAndSelectFile(file);
        QVERIFY(QTest::qWaitFor([&] { return !programs.calls().isEmpty(); }, timeoutMs));
        QCOMPARE(messages.messages().size(), 1);
        const QStringList command = programs.calls().first().command;
        QCOMPARE(QUrl(command.value(1)).toLocalFile(), m_directory->path());
    }

private:
    // Returns the titles of all windows.
    static QString windowTitles()
    {
        ChildProcess process({QStringLiteral("xwininfo"), QStringLiteral("-root"), QStringLiteral("-tree")});
        process.start();
        process.finish();
        return QString::fromUtf8(process.standardOutput());
    }
};

int main(int argc, char **argv)
{
    Desktop desktop;
    const bool hasDisplay = !Desktop::missingTool() && desktop.start();
    std::unique_ptr<QCoreApplication> application;
    if (hasDisplay)
        application = std::make_unique<QGuiApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);
    TestRevealDesktop test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_reveal_desktop.moc"
