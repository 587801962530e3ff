// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "Files.h"
#include "FilesTest.h"
#include "RecordedPrograms.h"

#include <QDesktopServices>
#include <QDir>
#include <QUrl>

#include <csignal>

using ZyBase::CFileUtils;

namespace {

constexpr const char *desktopVariable = "XDG_CURRENT_DESKTOP";
constexpr int timeoutMs = 60000;
const QStringList fileManagers {QStringLiteral("nautilus"), QStringLiteral("dolphin"),
                                QStringLiteral("thunar"), QStringLiteral("xdg-open")};

} // namespace

// Records the addresses that QDesktopServices opens.
class UrlHandler : public QObject
{
    Q_OBJECT

public:
    UrlHandler() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "handle"); }
    ~UrlHandler() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QList<QUrl> urls;

public Q_SLOTS:
    void handle(const QUrl &url) { urls << url; }
};

class TestReveal : public FilesTest
{
    Q_OBJECT

private:
    // Returns the command that is started for the path.
    static QStringList startedCommand(const QString &path)
    {
        const RecordedPrograms programs(fileManagers);
        CFileUtils::OpenFolderAndSelectFile(path);
        if (!QTest::qWaitFor([&] { return !programs.calls().isEmpty(); }, timeoutMs))
            return {};
        return programs.calls().size() == 1 ? programs.calls().first().command : QStringList();
    }

    // Verifies that one warning was logged, in the default category and without a source location.
    void verifyOnlyWarning(const QString &text) const
    {
        QCOMPARE(messages().size(), 1);
        const Message message = messages().first();
        QCOMPARE(message.type, QtWarningMsg);
        QCOMPARE(message.text, text);
        QCOMPARE(message.category, utf8("default"));
        QVERIFY(message.file.isNull());
        QVERIFY(message.function.isNull());
        QCOMPARE(message.line, 0);
    }

    std::unique_ptr<UrlHandler> m_urls;

private Q_SLOTS:
    void init()
    {
        FilesTest::init();
        m_urls = std::make_unique<UrlHandler>();
        QVERIFY(writeFile(path("file.txt"), "shown"));
        QVERIFY(QDir(directoryPath()).mkdir(utf8("folder")));
        qunsetenv(desktopVariable);
    }
    void cleanup()
    {
        m_urls.reset();
        FilesTest::cleanup();
    }

    void startsFileManagerOfDesktop_data()
    {
        QTest::addColumn<QByteArray>("desktop");
        QTest::addColumn<QString>("program");
        const auto row = [](const char *desktop, const char *program) {
            QTest::newRow(*desktop == '\0' ? "empty" : desktop) << QByteArray(desktop) << utf8(program);
        };
        row("GNOME", "nautilus");
        row("gnome", "nautilus");
        row("GnOmE", "nautilus");
        row("ubuntu:GNOME", "nautilus");
        row("Unity:Ubuntu", "nautilus");
        row("ubuntu", "nautilus");
        row("gnome-classic", "nautilus");
        row("xgnomex", "nautilus");
        row("GNOME:KDE", "nautilus");
        row("KDE:GNOME", "nautilus");
        row("XFCE:ubuntu", "nautilus");
        row("KDE", "dolphin");
        row("kde", "dolphin");
        row("blackdesk", "dolphin");
        row("XFCE:KDE", "dolphin");
        row("XFCE", "thunar");
        row("xfce4", "thunar");
        row("UKUI", "xdg-open");
        row("MATE", "xdg-open");
        row("X-Cinnamon", "xdg-open");
        row("GNOM:E", "xdg-open");
        row("\xff\xfe:KDE", "dolphin");
        row("", "xdg-open");
    }
    void startsFileManagerOfDesktop()
    {
        QFETCH(QByteArray, desktop);
        QFETCH(QString, program);
        qputenv(desktopVariable, desktop);
        QStringList expected {program};
        if (program == utf8("nautilus") || program == utf8("dolphin"))
            expected << utf8("--select") << path("file.txt");
        else if (program == utf8("thunar"))
            expected << path("file.txt");
        else
            expected << directoryPath();
        QCOMPARE(startedCommand(path("file.txt")), expected);
        QCOMPARE(messages().size(), 0);
        QCOMPARE(m_urls->urls.size(), 0);
    }

    void opensDirectoryWithoutDesktop()
    {
        QCOMPARE(startedCommand(path("file.txt")), QStringList({utf8("xdg-open"), directoryPath()}));
    }

    void passesAbsolutePath()
    {
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(directoryPath()));
        const QString here = QDir::currentPath();
        qputenv(desktopVariable, "XFCE");
        const QStringList thunar = startedCommand(utf8("file.txt"));
        qputenv(desktopVariable, "MATE");
        const QStringList opened = startedCommand(utf8("file.txt"));
        QVERIFY(QDir::setCurrent(previous));
        QCOMPARE(thunar, QStringList({utf8("thunar"), here + utf8("/file.txt")}));
        QCOMPARE(opened, QStringList({utf8("xdg-open"), here}));
    }

    void selectsDirectoryOrOpensItsParent()
    {
        for (const char *desktop : {"GNOME", "KDE"}) {
            qputenv(desktopVariable, desktop);
            QCOMPARE(startedCommand(path("folder")).mid(1), QStringList({utf8("--select"), path("folder")}));
        }
        qputenv(desktopVariable, "UKUI");
        QCOMPARE(startedCommand(path("folder")), QStringList({utf8("xdg-open"), directoryPath()}));
        QCOMPARE(startedCommand(path("folder/")), QStringList({utf8("xdg-open"), path("folder")}));
    }

    void selectsLinkInsteadOfItsTarget()
    {
        const QString link = path("folder/link");
        QVERIFY(QFile::link(path("file.txt"), link));
        qputenv(desktopVariable, "KDE");
        QCOMPARE(startedCommand(link), QStringList({utf8("dolphin"), utf8("--select"), link}));
        qputenv(desktopVariable, "UKUI");
        QCOMPARE(startedCommand(link), QStringList({utf8("xdg-open"), path("folder")}));
    }

    void passesUnusualNamesUnchanged_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("spaces") << utf8("a b  c.txt");
        QTest::newRow("quotes") << utf8("a'b\"c.txt");
        QTest::newRow("shell characters") << utf8("$(touch x);`y`&|*.txt");
        QTest::newRow("Chinese") << utf8("文件.txt");
        QTest::newRow("looks like an option") << utf8("--quit");
        QTest::newRow("percent signs") << utf8("%u %20.txt");
    }
    void passesUnusualNamesUnchanged()
    {
        QFETCH(QString, name);
        const QString file = path(name);
        QVERIFY(writeFile(file, "shown"));
        qputenv(desktopVariable, "KDE");
        QCOMPARE(startedCommand(file), QStringList({utf8("dolphin"), utf8("--select"), file}));
    }

    void logsWarningForMissingFile_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << "/nowhere/missing file.txt";
        QTest::newRow("relative") << "no such file.txt";
        QTest::newRow("empty") << "";
    }
    void logsWarningForMissingFile()
    {
        // No program is on the search path, so an attempt to start one would log a second warning.
        QFETCH(QString, path);
        const RecordedPrograms none;
        CFileUtils::OpenFolderAndSelectFile(path);
        verifyOnlyWarning(utf8("File does not exist: \"%1\"").arg(path));
        QCOMPARE(m_urls->urls.size(), 0);
    }

    void logsWarningForDanglingLink()
    {
        QVERIFY(QFile::link(path("missing"), path("link")));
        CFileUtils::OpenFolderAndSelectFile(path("link"));
        QCOMPARE(messages().size(), 1);
    }

    void logsWarningAndOpensDirectoryIfFileManagerIsMissing_data()
    {
        QTest::addColumn<QByteArray>("desktop");
        QTest::addColumn<QString>("command");
        QTest::newRow("GNOME") << QByteArray("GNOME") << utf8("\"nautilus\" (\"--select\", \"FILE\")");
        QTest::newRow("KDE") << QByteArray("KDE") << utf8("\"dolphin\" (\"--select\", \"FILE\")");
        QTest::newRow("XFCE") << QByteArray("XFCE") << utf8("\"thunar\" (\"FILE\")");
        QTest::newRow("UKUI") << QByteArray("UKUI") << utf8("\"xdg-open\" (\"FOLDER\")");
    }
    void logsWarningAndOpensDirectoryIfFileManagerIsMissing()
    {
        QFETCH(QByteArray, desktop);
        QFETCH(QString, command);
        qputenv(desktopVariable, desktop);
        const RecordedPrograms none;
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        command.replace(utf8("FILE"), path("file.txt")).replace(utf8("FOLDER"), directoryPath());
        verifyOnlyWarning(utf8("Failed to execute: ") + command);
        QCOMPARE(m_urls->urls, QList<QUrl> {QUrl::fromLocalFile(directoryPath())});
    }

    void startsNoOtherFileManager()
    {
        const RecordedPrograms others({utf8("dolphin"), utf8("thunar"), utf8("xdg-open")});
        qputenv(desktopVariable, "GNOME");
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QCOMPARE(messages().size(), 1);
        QCOMPARE(m_urls->urls.size(), 1);
    }

    void logsWarningOfQtWithoutGuiApplication()
    {
        m_urls.reset();
        const RecordedPrograms none;
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QCOMPARE(messages().size(), 2);
        QVERIFY(messages().last().text.startsWith(utf8("QDesktopServices::openUrl")));
    }

    void logsNothingIfFileManagerFails()
    {
        RecordedPrograms programs;
        programs.addFailing(utf8("dolphin"));
        qputenv(desktopVariable, "KDE");
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QVERIFY(QTest::qWaitFor([&] { return !programs.calls().isEmpty(); }, timeoutMs));
        QCOMPARE(messages().size(), 0);
        QCOMPARE(m_urls->urls.size(), 0);
    }

    void returnsWhileFileManagerRuns()
    {
        RecordedPrograms programs;
        programs.addEndless(utf8("dolphin"));
        qputenv(desktopVariable, "KDE");
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QVERIFY(QTest::qWaitFor([&] { return !programs.calls().isEmpty(); }, timeoutMs));
        const auto processId = pid_t(programs.calls().first().processId);
        QCOMPARE(kill(processId, 0), 0);
        QCOMPARE(kill(processId, SIGKILL), 0);
        QCOMPARE(messages().size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestReveal)

#include "tst_reveal.moc"
