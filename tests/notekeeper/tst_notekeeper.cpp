// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Archives.h"
#include "ChildProcess.h"
#include "FakeTools.h"
#include "Files.h"
#include "LoadedLibrary.h"
#include "TemporaryHome.h"
#include "Utf8.h"
#include "Waiting.h"

#include <MainWindow.h>
#include <Reports.h>
#include <RunningRequests.h>
#include <SafeDownload.h>
#include <UpdateDialog.h>

#include <localservices/FakeNetwork.h>

#include <QAccessible>
#include <QApplication>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTest>

#include <optional>

using LocalServices::FakeNetwork;
using LocalServices::HttpServer;

namespace {

constexpr int quitTimeoutMs =
    6000; // the application quits within two seconds; the rest is for a busy machine

// The visible string without the mark of the shortcut.
QString plain(QString text)
{
    return text.remove(QLatin1Char('&'));
}

QString nameOf(QWidget *widget)
{
    QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(widget);
    return accessible ? accessible->text(QAccessible::Name) : QString();
}

HttpServer::Answer answerWith(const QByteArray &body)
{
    return [body](const HttpServer::Request &) { return HttpServer::Response {200, body}; };
}

QByteArray descriptionOf(const QString &version, const QByteArray &archive, const QUrl &url)
{
    const QByteArray md5 = QCryptographicHash::hash(archive, QCryptographicHash::Md5).toHex();
    const QJsonObject description {
        {utf8("version"), version}, {utf8("url"), url.toString()}, {utf8("md5"), QString::fromLatin1(md5)}};
    return QJsonDocument(description).toJson();
}

} // namespace

class TestNotekeeper : public QObject
{
    Q_OBJECT

private:
    QString path(const char *name) const { return m_home->filePath(utf8(name)); }

    MainWindow &open()
    {
        m_window.reset();
        m_window = std::make_unique<MainWindow>(m_home->path(), m_updates, &*m_reports);
        m_window->show();
        return *m_window;
    }

    QPlainTextEdit *editor() const { return m_window->findChild<QPlainTextEdit *>(); }
    QListWidget *list() const { return m_window->findChild<QListWidget *>(); }
    UpdateDialog *updateDialog() const { return m_window->findChild<UpdateDialog *>(); }

    QStringList titles() const
    {
        QStringList titles;
        for (int row = 0; row < list()->count(); ++row)
            titles << list()->item(row)->text();
        return titles;
    }

    void trigger(const char *menuItem) const
    {
        for (QAction *const menu : m_window->menuBar()->actions()) {
            for (QAction *const action : menu->menu()->actions()) {
                if (plain(action->text()) == utf8(menuItem))
                    return action->trigger();
            }
        }
        QFAIL(menuItem);
    }

    static QPushButton *visibleButton(const QWidget *parent, const char *text)
    {
        for (QPushButton *const button : parent->findChildren<QPushButton *>()) {
            if (button->isVisible() && plain(button->text()) == utf8(text))
                return button;
        }
        return nullptr;
    }

    static bool shows(const QWidget *parent, const QString &text)
    {
        for (const QLabel *const label : parent->findChildren<QLabel *>()) {
            if (label->isVisible() && label->text().contains(text))
                return true;
        }
        return false;
    }

    // Presses a button of the next message box.
    void answerNextQuestion(QMessageBox::StandardButton answer)
    {
        QTimer::singleShot(0, this, [answer] {
            qobject_cast<QMessageBox *>(QApplication::activeModalWidget())->button(answer)->click();
        });
    }

    void answerConsent(QMessageBox::StandardButton answer)
    {
        m_window->askForConsent();
        m_window->findChild<QMessageBox *>()->button(answer)->click();
    }

    void useServices(ChildProcess *notekeeper) const
    {
        notekeeper->setEnvironment(utf8("LOCAL_SERVICES"),
                                   m_network.writeDescription(m_home->path(), m_addresses));
    }

    // Starts the program, which reads its settings in this home directory.
    void start(ChildProcess *notekeeper) const
    {
        QVERIFY(notekeeper->start());
        QTRY_VERIFY_WITH_TIMEOUT(readFile(logPath()).contains("started"), ChildProcess::timeoutMs);
    }

    QString logPath() const { return path(".local/share/example/notekeeper/log/notekeeper.log"); }

    int arrivedReports() const
    {
        return m_network.collector().events().size() + m_network.statistics().records().size();
    }

    std::optional<TemporaryHome> m_home;
    std::optional<FakeTools> m_tools;
    FakeNetwork m_network;
    FakeNetwork::Addresses m_addresses;
    std::optional<UsageReports> m_reports;
    std::unique_ptr<MainWindow> m_window;
    QUrl m_updates;
    QByteArray m_archive;
    QByteArray m_badArchive; ///< with an entry outside the directory
    const QByteArray m_path = qgetenv("PATH");

private Q_SLOTS:
    void initTestCase()
    {
        m_network.install();
        if (!canMakeArchives())
            return;
        const QTemporaryDir directory;
        const QString archive = directory.filePath(utf8("a.zip"));
        QVERIFY(makeArchive(archive, {{"bin/notekeeper", "program"}, {"README", "read"}}));
        m_archive = readFile(archive);
        QVERIFY(makeArchive(archive, {{"../outside", "bad"}}));
        m_badArchive = readFile(archive);
    }
    void cleanupTestCase() { RunningRequests().stopAll(std::chrono::milliseconds(500)); }

    void init()
    {
        m_home.emplace();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           path(".config")); // Qt keeps the first home
        m_tools.emplace();
        m_tools->add(utf8("which"), "exit 0");
        m_tools->add(utf8("gsettings"), "/bin/cat \"$HOME/theme\"");
        m_tools->add(utf8("xdg-mime"), "echo okularApplication_pdf.desktop");
        m_tools->add(utf8("xdg-open"), "exit 0");
        qputenv("PATH", QFile::encodeName(m_tools->path()));
        writeFile(path("theme"), "Adwaita-light");
        m_reports.emplace(reportSettings(m_network.statistics().url().toString()));
        m_updates = QUrl(utf8("http://127.0.0.1:1/version.json"));
    }
    void cleanup()
    {
        m_window.reset();
        m_reports.reset();
        qputenv("PATH", m_path);
        m_tools.reset();
        m_home.reset();
    }

    // --- Notes

    void keepsNotesAfterRestart()
    {
        open();
        editor()->setPlainText(utf8("Milk\nand bread"));
        trigger("New");
        QTest::keyClicks(editor(), utf8("Second"));
        list()->setCurrentRow(0);
        QVERIFY(m_window->close());

        open();
        QCOMPARE(titles(), QStringList({utf8("Milk"), utf8("Second")}));
        QCOMPARE(list()->currentRow(), 0);
        QCOMPARE(editor()->toPlainText(), utf8("Milk\nand bread"));
    }

    void savesWithoutQuitting()
    {
        open();
        editor()->setPlainText(utf8("Not lost in a crash"));
        QTRY_VERIFY_WITH_TIMEOUT(readFile(path("notes.json")).contains("Not lost in a crash"), longestWaitMs);
    }

    void deletesNoteAfterQuestion()
    {
        open();
        editor()->setPlainText(utf8("First"));
        answerNextQuestion(QMessageBox::No);
        trigger("Delete");
        QCOMPARE(titles(), QStringList {utf8("First")});
        answerNextQuestion(QMessageBox::Yes);
        trigger("Delete");
        QCOMPARE(titles(), QStringList {utf8("New note")});
        QCOMPARE(editor()->toPlainText(), QString());
    }

    void keepsDamagedFile()
    {
        QVERIFY(writeFile(path("notes.json"), "{\"notes\": [\"cut"));
        open();
        QVERIFY(m_window->close());
        QCOMPARE(readFile(path("notes.json.damaged")), QByteArray("{\"notes\": [\"cut"));
    }

    void asksBeforeChangesAreLost()
    {
        open();
        editor()->setPlainText(utf8("Important"));
        QVERIFY(QDir().mkpath(path("notes.json/directory"))); // no file can replace it
        answerNextQuestion(QMessageBox::Cancel);
        QVERIFY(!m_window->close());
        QVERIFY(m_window->statusBar()->currentMessage().startsWith(utf8("The notes are not saved: ")));
        answerNextQuestion(QMessageBox::Discard);
        QVERIFY(m_window->close());
    }

    // --- Update

    void extractsUpdate()
    {
        if (m_archive.isEmpty())
            QSKIP("Python's zipfile is not installed");
        const QUrl relative(utf8("files/a.zip"));
        const HttpServer server(
            {}, {{utf8("/version.json"), answerWith(descriptionOf(utf8("1.1.0"), m_archive, relative))},
                 {utf8("/files/a.zip"), answerWith(m_archive)}});
        m_updates = server.url(utf8("/version.json"));
        open();
        trigger("Check for Updates …");
        QTRY_VERIFY_WITH_TIMEOUT(shows(updateDialog(), utf8("Version 1.1.0 is available.")), longestWaitMs);
        visibleButton(updateDialog(), "Download")->click();
        QTRY_VERIFY_WITH_TIMEOUT(visibleButton(updateDialog(), "Show in File Manager"), longestWaitMs);

        QCOMPARE(readFile(path("notekeeper-1.1.0/bin/notekeeper")), QByteArray("program"));
        QVERIFY(!QFile::exists(path("notekeeper-1.1.0.zip")));
        visibleButton(updateDialog(), "Show in File Manager")->click();
        QTRY_VERIFY_WITH_TIMEOUT(m_tools->calls().contains(utf8("xdg-open [%1]").arg(m_home->path())),
                                 longestWaitMs);
    }

    void showsWhyNoUpdateIsOffered_data()
    {
        QTest::addColumn<QByteArray>("description");
        QTest::addColumn<QString>("message");
        const QUrl url(utf8("a.zip"));
        const QString latest = utf8("This is the latest version.");
        QTest::newRow("same version") << descriptionOf(utf8("1.0.0"), "", url) << latest;
        QTest::newRow("older version") << descriptionOf(utf8("0.9.9"), "", url) << latest;
        QTest::newRow("no digest") << QByteArray("{\"version\": \"1.1.0\", \"url\": \"a.zip\"}")
                                   << utf8("no description");
        QTest::newRow("no version") << descriptionOf(utf8("../x"), "", url) << utf8("no description");
        QTest::newRow("no JSON") << QByteArray("<html>") << utf8("no description");
        QTest::newRow("no file") << QByteArray() << utf8("The server answered with status 404.");
    }
    void showsWhyNoUpdateIsOffered()
    {
        QFETCH(QByteArray, description);
        QFETCH(QString, message);
        const QString name = description.isEmpty() ? utf8("/other") : utf8("/version.json");
        const HttpServer server({}, {{name, answerWith(description)}});
        m_updates = server.url(utf8("/version.json"));
        open();
        trigger("Check for Updates …");
        QTRY_VERIFY_WITH_TIMEOUT(shows(updateDialog(), message), longestWaitMs);
        QVERIFY(visibleButton(updateDialog(), "Check Again"));
        QVERIFY(!visibleButton(updateDialog(), "Download"));
    }

    void showsThatServerCannotBeReached()
    {
        open();
        trigger("Check for Updates …");
        QTRY_VERIFY_WITH_TIMEOUT(shows(updateDialog(), utf8("Connection refused")), longestWaitMs);
    }

    void showsWhyUpdateFailed_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("archive"); // whose digest is in the description
        QTest::addColumn<QString>("message");
        QTest::newRow("wrong digest")
            << utf8("/a.zip") << QByteArray("other") << utf8("not the expected one");
        QTest::newRow("unsafe archive") << utf8("/bad.zip") << m_badArchive << utf8("outside the directory");
        QTest::newRow("not an archive")
            << utf8("/bytes/5000/c.zip") << HttpServer::content(5000) << utf8("not an archive");
        QTest::newRow("no file") << utf8("/status/404") << m_archive << utf8("Not Found");
        QTest::newRow("server stops sending") << utf8("/never") << m_archive << utf8("stopped sending");
    }
    void showsWhyUpdateFailed()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, archive);
        QFETCH(QString, message);
        if (m_archive.isEmpty())
            QSKIP("Python's zipfile is not installed");
        const HttpServer files(
            {}, {{utf8("/a.zip"), answerWith(m_archive)}, {utf8("/bad.zip"), answerWith(m_badArchive)}});
        const QByteArray description = descriptionOf(utf8("1.1.0"), archive, files.url(file));
        const HttpServer server({}, {{utf8("/version.json"), answerWith(description)}});
        m_updates = server.url(utf8("/version.json"));
        open();
        updateDialog()->findChild<SafeDownload *>()->setStallTimeout(500);
        trigger("Check for Updates …");
        QTRY_VERIFY_WITH_TIMEOUT(visibleButton(updateDialog(), "Download"), longestWaitMs);
        visibleButton(updateDialog(), "Download")->click();
        QTRY_VERIFY_WITH_TIMEOUT(shows(updateDialog(), message), longestWaitMs);
        QVERIFY(visibleButton(updateDialog(), "Download"));
        QCOMPARE(QDir(m_home->path())
                     .entryList({utf8("*notekeeper-*"), utf8(".download*"), utf8("outside")},
                                QDir::AllEntries | QDir::Hidden),
                 QStringList());
    }

    void cancelsDownload()
    {
        const HttpServer files;
        const QByteArray description =
            descriptionOf(utf8("1.1.0"), "", files.url(utf8("/bytes/60000000/c.zip?rate=1000000")));
        const HttpServer server({}, {{utf8("/version.json"), answerWith(description)}});
        m_updates = server.url(utf8("/version.json"));
        open();
        trigger("Check for Updates …");
        QTRY_VERIFY_WITH_TIMEOUT(visibleButton(updateDialog(), "Download"), longestWaitMs);
        visibleButton(updateDialog(), "Download")->click();
        QTRY_VERIFY_WITH_TIMEOUT(shows(updateDialog(), utf8("B/s")), longestWaitMs); // the speed
        updateDialog()->close(); // the download continues
        trigger("Check for Updates …");
        visibleButton(updateDialog(), "Cancel")->click();
        QTRY_VERIFY_WITH_TIMEOUT(shows(updateDialog(), utf8("was cancelled")), longestWaitMs);
        QVERIFY(visibleButton(updateDialog(), "Download"));
    }

    // --- Reports

    void sendsNothingWithoutConsent()
    {
        const int before = m_network.requestLines().size() + arrivedReports();
        open();
        trigger("New");
        answerConsent(QMessageBox::No);
        trigger("New");
        QVERIFY(staysTrueFor(std::chrono::milliseconds(300),
                             [&] { return m_network.requestLines().size() + arrivedReports() == before; }));
        QVERIFY(UsageReports(reportSettings(QString())).hasChosen()); // it is not asked again
    }

    void sendsBothReportsWithConsent()
    {
        const int before = arrivedReports();
        open();
        answerConsent(QMessageBox::Yes);
        trigger("New");
        QTRY_COMPARE_WITH_TIMEOUT(arrivedReports(), before + 3, longestWaitMs);
        QCOMPARE(m_network.collector().events().last().problems, QStringList());
        QCOMPARE(m_network.statistics().records().last().problems, QStringList());
        QVERIFY(UsageReports(reportSettings(QString())).hasChosen());

        trigger("Send Usage Reports"); // withdraws the consent
        trigger("New");
        QVERIFY(staysTrueFor(std::chrono::milliseconds(300), [&] { return arrivedReports() == before + 3; }));
    }

    // --- Desktop

    void followsTheme()
    {
        const auto isDark = [] { return qApp->palette().color(QPalette::Window).lightness() < 128; };
        open();
        QVERIFY(writeFile(path("theme"), "Adwaita-dark"));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path(".config")), longestWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(writeFile(path(".config/kdeglobals"), "") && isDark(), longestWaitMs);
        QVERIFY(writeFile(path("theme"), "Adwaita-light"));
        QTRY_VERIFY_WITH_TIMEOUT(writeFile(path(".config/kdeglobals"), "") && !isDark(), longestWaitMs);
    }

    void showsApplicationForPdf()
    {
        open();
        trigger("System …");
        QTRY_VERIFY_WITH_TIMEOUT(shows(&*m_window, utf8("okular")), longestWaitMs);
    }

    void showsQrCode_data()
    {
        QTest::addColumn<QString>("note");
        QTest::addColumn<QString>("message"); // instead of a code
        QTest::newRow("short note") << utf8("https://www.example.org") << QString();
        QTest::newRow("long note") << QString(4000, QLatin1Char('x')) << utf8("too long");
        QTest::newRow("empty note") << QString() << utf8("empty");
    }
    void showsQrCode()
    {
        QFETCH(QString, note);
        QFETCH(QString, message);
        open();
        editor()->setPlainText(note);
        trigger("Show QR Code …");
        const QDialog *const dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        const QLabel *const code = dialog->findChild<QLabel *>();
        QCOMPARE(code->accessibleName().isEmpty(), !message.isNull()); // only a code has this name
        QVERIFY(code->text().contains(message));
    }

    void namesAllControlsForScreenReaders()
    {
        open();
        for (const char *const item : {"Check for Updates …", "System …", "Show QR Code …"})
            trigger(item);
        int controls = 0;
        for (QWidget *const widget : m_window->findChildren<QWidget *>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible())
                continue;
            ++controls;
            QVERIFY2(!nameOf(widget).isEmpty(), widget->metaObject()->className());
        }
        QVERIFY(controls > 5);
    }

    // --- The whole program

    void quitsInTimeDuringRequests()
    {
        QSettings().setValue(utf8("UsageReports/Allowed"), true);
        const HttpServer silent;
        m_addresses.statistics = silent.url(utf8("/never"));
        ChildProcess notekeeper({utf8(CLOSING_NOTEKEEPER)});
        useServices(&notekeeper);
        start(&notekeeper);
        QTRY_COMPARE_WITH_TIMEOUT(silent.openConnections(), 1, longestWaitMs); // the report of the start
        QElapsedTimer timer;
        timer.start();
        notekeeper.closeInput();
        QCOMPARE(notekeeper.finish(), 0);
        QVERIFY2(timer.elapsed() < quitTimeoutMs, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(QFile::exists(path(".local/share/example/notekeeper/notes.json")));
    }

    // Closing the question is a "no".
    void asksForConsentOnce()
    {
        const int before = m_network.requestLines().size() + arrivedReports();
        for (const bool isFirstRun : {true, false}) {
            QCOMPARE(QSettings().contains(utf8("UsageReports/Allowed")), !isFirstRun);
            ChildProcess notekeeper({utf8(CLOSING_NOTEKEEPER)});
            useServices(&notekeeper);
            start(&notekeeper);
            notekeeper.closeInput();
            QCOMPARE(notekeeper.finish(), 0);
            QCOMPARE(readFile(logPath()).count("Usage reports: forbidden"), 1);
        }
        QCOMPARE(m_network.requestLines().size() + arrivedReports(), before);
    }

    void logsThatTlsIsMissing()
    {
        qputenv("PATH", m_path); // for the tools of the sandbox
        if (!Sandbox::isAvailable() || loadedLibrary("libssl.so").isNull())
            QSKIP("no sandbox without OpenSSL can be created here");
        QVERIFY(writeFile(path("nothing"), QByteArray()));
        Sandbox sandbox;
        sandbox.replace(loadedLibrary("libssl.so"), path("nothing"));
        ChildProcess notekeeper({utf8(CLOSING_NOTEKEEPER)});
        notekeeper.setSandbox(sandbox);
        start(&notekeeper);
        QVERIFY(readFile(logPath()).contains("Secure connections don't work on this machine."));
        notekeeper.closeInput();
        QCOMPARE(notekeeper.finish(), 0);
    }

    void rejectsSecondProcess()
    {
        ChildProcess first({utf8(CLOSING_NOTEKEEPER)});
        start(&first);
        ChildProcess second({utf8(CLOSING_NOTEKEEPER)});
        start(&second);
        second.closeInput();
        QCOMPARE(second.finish(), 1);
        first.closeInput();
        QCOMPARE(first.finish(), 0);
    }
};

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const char *variable : {"XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORMTHEME", "LOCAL_SERVICES"})
        qunsetenv(variable);
    QApplication application(argc, argv);
    QApplication::setOrganizationName(utf8("example"));
    QApplication::setApplicationName(utf8("notekeeper"));
    QApplication::setApplicationVersion(utf8("1.0.0"));
    QApplication::setStyle(utf8("Fusion"));
    TestNotekeeper test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_notekeeper.moc"
