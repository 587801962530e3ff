// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "Files.h"
#include "MessageCapture.h"
#include "RecordedPrograms.h"
#include "Utf8.h"

#include <QDesktopServices>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <csignal>

using ZyBase::CFileUtils;

namespace {

constexpr const char *desktopVariable = "XDG_CURRENT_DESKTOP";
constexpr int patience = 60000;
const QStringList fileManagers {QStringLiteral("nautilus"), QStringLiteral("dolphin"),
                                QStringLiteral("thunar"), QStringLiteral("xdg-open")};

} // namespace

// Takes what Qt is asked to open.
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

class TestReveal : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_directory->filePath(utf8(name)); }

    // The one call that comes of showing this path.
    static QStringList shown(const QString &path)
    {
        const RecordedPrograms programs(fileManagers);
        CFileUtils::OpenFolderAndSelectFile(path);
        if (!QTest::qWaitFor([&] { return !programs.calls().isEmpty(); }, patience))
            return {};
        return programs.calls().size() == 1 ? programs.calls().first().command : QStringList();
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<MessageCapture> m_messages;
    std::unique_ptr<UrlHandler> m_urls;

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_messages = std::make_unique<MessageCapture>();
        m_urls = std::make_unique<UrlHandler>();
        QVERIFY(writeFile(path("file.txt"), "shown"));
        QVERIFY(QDir(m_directory->path()).mkdir(utf8("folder")));
        qunsetenv(desktopVariable);
    }
    void cleanup()
    {
        m_urls.reset();
        m_messages.reset();
    }

    void desktopDecidesOnTheFileManager_data()
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
    void desktopDecidesOnTheFileManager()
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
            expected << m_directory->path();
        QCOMPARE(shown(path("file.txt")), expected);
        QCOMPARE(m_messages->messages().size(), 0);
        QCOMPARE(m_urls->urls.size(), 0);
    }

    void noDesktopOpensTheFolder()
    {
        QCOMPARE(shown(path("file.txt")), QStringList({utf8("xdg-open"), m_directory->path()}));
    }

    void relativePathReachesTheFileManagerAsAnAbsoluteOne()
    {
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_directory->path()));
        const QString here = QDir::currentPath();
        qputenv(desktopVariable, "XFCE");
        const QStringList thunar = shown(utf8("file.txt"));
        qputenv(desktopVariable, "MATE");
        const QStringList opened = shown(utf8("file.txt"));
        QVERIFY(QDir::setCurrent(previous));
        QCOMPARE(thunar, QStringList({utf8("thunar"), here + utf8("/file.txt")}));
        QCOMPARE(opened, QStringList({utf8("xdg-open"), here}));
    }

    void directoryIsSelectedOrItsParentOpened()
    {
        for (const char *desktop : {"GNOME", "KDE"}) {
            qputenv(desktopVariable, desktop);
            QCOMPARE(shown(path("folder")).mid(1), QStringList({utf8("--select"), path("folder")}));
        }
        qputenv(desktopVariable, "UKUI");
        QCOMPARE(shown(path("folder")), QStringList({utf8("xdg-open"), m_directory->path()}));
        QCOMPARE(shown(path("folder/")), QStringList({utf8("xdg-open"), path("folder")}));
    }

    void oddNamesArriveAsTheyAre_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("blanks") << utf8("a b  c.txt");
        QTest::newRow("quotes") << utf8("a'b\"c.txt");
        QTest::newRow("shell") << utf8("$(touch x);`y`&|*.txt");
        QTest::newRow("Chinese") << utf8("文件.txt");
        QTest::newRow("option") << utf8("--quit");
        QTest::newRow("percent") << utf8("%u %20.txt");
    }
    void oddNamesArriveAsTheyAre()
    {
        QFETCH(QString, name);
        const QString file = m_directory->filePath(name);
        QVERIFY(writeFile(file, "shown"));
        qputenv(desktopVariable, "KDE");
        QCOMPARE(shown(file), QStringList({utf8("dolphin"), utf8("--select"), file}));
    }

    void missingFileIsAWarningAndNothingStarts_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << "/nowhere/missing file.txt";
        QTest::newRow("relative") << "no such file.txt";
        QTest::newRow("empty") << "";
    }
    void missingFileIsAWarningAndNothingStarts()
    {
        // A start would fail here, and say so.
        QFETCH(QString, path);
        const RecordedPrograms none;
        CFileUtils::OpenFolderAndSelectFile(path);
        QCOMPARE(m_messages->messages().size(), 1);
        const MessageCapture::Message message = m_messages->messages().first();
        QCOMPARE(message.type, QtWarningMsg);
        QCOMPARE(message.text, utf8("File does not exist: \"%1\"").arg(path));
        QCOMPARE(message.category, utf8("default"));
        QVERIFY(message.file.isNull());
        QVERIFY(message.function.isNull());
        QCOMPARE(message.line, 0);
        QCOMPARE(m_urls->urls.size(), 0);
    }

    void linkToNothingIsMissing()
    {
        QVERIFY(QFile::link(path("missing"), path("link")));
        CFileUtils::OpenFolderAndSelectFile(path("link"));
        QCOMPARE(m_messages->messages().size(), 1);
    }

    void fileManagerThatIsNotInstalledIsAWarningAndQtOpensTheFolder_data()
    {
        QTest::addColumn<QByteArray>("desktop");
        QTest::addColumn<QString>("command");
        QTest::newRow("GNOME") << QByteArray("GNOME") << utf8("\"nautilus\" (\"--select\", \"FILE\")");
        QTest::newRow("KDE") << QByteArray("KDE") << utf8("\"dolphin\" (\"--select\", \"FILE\")");
        QTest::newRow("XFCE") << QByteArray("XFCE") << utf8("\"thunar\" (\"FILE\")");
        QTest::newRow("UKUI") << QByteArray("UKUI") << utf8("\"xdg-open\" (\"FOLDER\")");
    }
    void fileManagerThatIsNotInstalledIsAWarningAndQtOpensTheFolder()
    {
        QFETCH(QByteArray, desktop);
        QFETCH(QString, command);
        qputenv(desktopVariable, desktop);
        const RecordedPrograms none;
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        command.replace(utf8("FILE"), path("file.txt")).replace(utf8("FOLDER"), m_directory->path());
        QCOMPARE(m_messages->messages().size(), 1);
        const MessageCapture::Message message = m_messages->messages().first();
        QCOMPARE(message.type, QtWarningMsg);
        QCOMPARE(message.text, utf8("Failed to execute: ") + command);
        QCOMPARE(message.category, utf8("default"));
        QVERIFY(message.file.isNull());
        QVERIFY(message.function.isNull());
        QCOMPARE(message.line, 0);
        QCOMPARE(m_urls->urls, QList<QUrl> {QUrl::fromLocalFile(m_directory->path())});
    }

    void onlyTheChosenFileManagerIsTried()
    {
        const RecordedPrograms others({utf8("dolphin"), utf8("thunar"), utf8("xdg-open")});
        qputenv(desktopVariable, "GNOME");
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QCOMPARE(m_messages->messages().size(), 1);
        QCOMPARE(m_urls->urls.size(), 1);
    }

    void lastResortWithoutAGuiApplicationIsQtsWarning()
    {
        m_urls.reset();
        const RecordedPrograms none;
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QCOMPARE(m_messages->messages().size(), 2);
        QVERIFY(m_messages->messages().last().text.startsWith(utf8("QDesktopServices::openUrl")));
    }

    void fileManagerThatFailsIsNotNoticed()
    {
        RecordedPrograms programs;
        programs.addFailing(utf8("dolphin"));
        qputenv(desktopVariable, "KDE");
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QVERIFY(QTest::qWaitFor([&] { return !programs.calls().isEmpty(); }, patience));
        QCOMPARE(m_messages->messages().size(), 0);
        QCOMPARE(m_urls->urls.size(), 0);
    }

    void callReturnsWhileTheFileManagerRuns()
    {
        RecordedPrograms programs;
        programs.addEndless(utf8("dolphin"));
        qputenv(desktopVariable, "KDE");
        CFileUtils::OpenFolderAndSelectFile(path("file.txt"));
        QVERIFY(QTest::qWaitFor([&] { return !programs.calls().isEmpty(); }, patience));
        const auto processId = pid_t(programs.calls().first().processId);
        QCOMPARE(kill(processId, 0), 0);
        QCOMPARE(kill(processId, SIGKILL), 0);
        QCOMPARE(m_messages->messages().size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestReveal)

#include "tst_reveal.moc"
