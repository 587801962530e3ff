// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "GalleryFixture.h"
#include "HalfServer.h"
#include "Resolver.h"
#include "Utf8.h"

#include <Checks.h>
#include <ThemeWatcher.h>
#include <pages/Page.h>

#include <ZyBase/http/DownloadManager.h>

#include <QDir>
#include <QNetworkProxy>
#include <QProcess>
#include <QProgressBar>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QStandardPaths>

#include <csignal>
#include <netdb.h>
#include <sys/resource.h>
#include <unistd.h>

using LocalServices::HttpServer;

namespace {

constexpr int timeoutMs = GalleryFixture::timeoutMs;

QString scanner()
{
    return QStandardPaths::findExecutable(QStringLiteral("zbarimg"), {QStringLiteral("/usr/bin")});
}

// Limits the size of the files that this process writes, until it is destroyed.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit {bytes, m_previous.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_previous); }

private:
    Q_DISABLE_COPY(FileSizeLimit)

    rlimit m_previous {};
};

} // namespace

class TestGallery : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GalleryFixture> m_fixture;

    Gallery &gallery() { return m_fixture->gallery(); }
    QString filePath(const char *name) const { return m_fixture->filePath(QLatin1String(name)); }

    // Returns what a scanner reads from a picture of the widget.
    QString scan(const char *name)
    {
        const QString path = filePath("code.png");
        gallery().find(name)->grab().save(path);
        QProcess process;
        process.start(scanner(), {QStringLiteral("--quiet"), QStringLiteral("--raw"),
                                  QStringLiteral("--oneshot"), QStringLiteral("-Sbinary"), path});
        process.waitForFinished(timeoutMs);
        return QString::fromUtf8(process.readAllStandardOutput());
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (const char *skipReason = GalleryFixture::skipReason())
            QSKIP(skipReason);
        m_fixture = std::make_unique<GalleryFixture>();
    }
    void init() { m_fixture->open(); }
    void cleanup() { m_fixture->close(); }
    void cleanupTestCase() { GalleryFixture::waitForDeletionOfRequests(); }

    void showsPageForEachService()
    {
        auto *const pages = gallery().window().findChild<QStackedWidget *>();
        QStringList titles;
        for (int page = Log; page <= Reports; ++page) {
            gallery().open(page);
            titles << static_cast<Page *>(pages->currentWidget())->title();
        }
        const QStringList expected {QStringLiteral("File log"),     QStringLiteral("Request"),
                                    QStringLiteral("Download"),     QStringLiteral("Archive"),
                                    QStringLiteral("QR code"),      QStringLiteral("Machine"),
                                    QStringLiteral("Usage reports")};
        QCOMPARE(titles, expected);
    }

    void shortensLongFileName()
    {
        const QString name(200, QLatin1Char('n'));
        const int width = gallery().window().width();
        gallery().open(Download);
        gallery().type("downloadUrl", QStringLiteral("http://127.0.0.1:1/") + name);
        gallery().click("downloadStart");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("downloadStart"), timeoutMs);
        QCOMPARE(gallery().text("downloadFile"), name);
        QVERIFY(gallery().rows("downloadHistory").first().startsWith(name));
        QVERIFY(gallery().find("downloadFile")->width() < width);
        QCOMPARE(gallery().window().width(), width);
    }

    void followsDesktopTheme()
    {
        QCOMPARE(gallery().text("desktopTheme"), QStringLiteral("The desktop is light"));
        QVERIFY(!m_fixture->isDark());
        m_fixture->setTheme("Adwaita-dark");
        m_fixture->reopen(m_fixture->services());
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("desktopTheme"), QStringLiteral("The desktop is dark"),
                                  timeoutMs);
        QVERIFY(m_fixture->isDark());
    }
    void followsDesktopThemeLive()
    {
        m_fixture->setTheme("Adwaita-dark");
        QVERIFY(writeFile(m_fixture->homePath(QStringLiteral(".config/kdeglobals")), "changed"));
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->isDark(), timeoutMs);
        QCOMPARE(gallery().text("desktopTheme"), QStringLiteral("The desktop is dark"));
    }
    void appliesChosenTheme()
    {
        gallery().choose("appearance", QStringLiteral("Dark"));
        QVERIFY(m_fixture->isDark());
        QCOMPARE(gallery().text("desktopTheme"), QString());
        gallery().choose("appearance", QStringLiteral("Light"));
        QVERIFY(!m_fixture->isDark());
        m_fixture->setTheme("Adwaita-dark");
        gallery().choose("appearance", QStringLiteral("Same as desktop"));
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->isDark(), timeoutMs);
    }
    void keepsChosenThemeIfDesktopAnswersLate()
    {
        m_fixture->holdTheme();
        m_fixture->setTheme("Adwaita-dark");
        m_fixture->reopen(m_fixture->services());
        gallery().choose("appearance", QStringLiteral("Light"));
        const auto *const watcher = gallery().window().findChild<ThemeWatcher *>();
        QSignalSpy results(watcher, &ThemeWatcher::darkChanged);
        m_fixture->releaseTheme();
        QTRY_COMPARE_WITH_TIMEOUT(results.size(), 1, timeoutMs);
        QVERIFY(!m_fixture->isDark());
        QCOMPARE(gallery().text("desktopTheme"), QString());
    }

    void showsEachLoggedLine()
    {
        gallery().open(Log);
        gallery().type("logMessage", QStringLiteral("Größe 50%"));
        for (const char *button : {"logInfo", "logWarning", "logDebug", "logError"})
            gallery().click(button);
        QTRY_COMPARE_WITH_TIMEOUT(gallery().document("logFile").count(QStringLiteral(" - Größe 50%\n")), 3,
                                  timeoutMs);
        const QString shown = gallery().document("logFile");
        QVERIFY(shown.contains(QStringLiteral(" INFO   - the gallery was started")));
        for (const char *level : {" INFO   - G", " WARN   - G", " ERROR  - G"})
            QVERIFY2(shown.contains(QLatin1String(level)), level);
        QCOMPARE(QString::fromUtf8(readFile(gallery().text("logPath"))), shown);
    }

    void showsWhyLogIsNotWritten()
    {
        m_fixture->close();
        QVERIFY(QDir(filePath("log")).removeRecursively());
        QVERIFY(writeFile(filePath("log"), "a file"));
        m_fixture->reopen(m_fixture->services());
        QCOMPARE(gallery().text("logProblem"),
                 QStringLiteral("The log is not written. %1 is not a directory.").arg(filePath("log")));
    }

    void showsOutcomeOfRequest_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("answer");
        const QString get = QStringLiteral("GET");
        const QString post = QStringLiteral("POST");
        const QString host = QStringLiteral("http://service.example.org");
        const QString noStatus = QStringLiteral("The status of a POST is not reported.");
        const QString error = QStringLiteral("Answered with an error");
        QTest::newRow("answered") << get << host + QStringLiteral("/echo?q=1") << QStringLiteral("Answered")
                                  << QStringLiteral("Status 200") << QStringLiteral("/echo?q=1");
        QTest::newRow("JSON") << get << host + QStringLiteral("/json") << QStringLiteral("Answered")
                              << QStringLiteral("Status 200") << QStringLiteral("    \"city\": \"Berlin\",");
        QTest::newRow("not found") << get << host + QStringLiteral("/status/404") << error
                                   << QStringLiteral("Status 404: the server has nothing at this address.")
                                   << QStringLiteral("status 404");
        QTest::newRow("denied") << get << host + QStringLiteral("/status/403") << error
                                << QStringLiteral("Status 403: the server denies access.") << QString();
        QTest::newRow("rejected") << get << host + QStringLiteral("/status/422") << error
                                  << QStringLiteral("Status 422: the server rejected the request.")
                                  << QString();
        QTest::newRow("redirected") << get << host + QStringLiteral("/redirect/302?to=/echo") << error
                                    << QStringLiteral("Status 302: the server redirects, and the library "
                                                      "does not follow.")
                                    << QStringLiteral("moved");
        QTest::newRow("server failed")
            << get << host + QStringLiteral("/status/500") << error
            << QStringLiteral("Status 500: the server failed.") << QStringLiteral("status 500");
        QTest::newRow("posted") << post << host + QStringLiteral("/echo") << QStringLiteral("Ended")
                                << noStatus << QStringLiteral("    \"item\": \"paper\"");
        QTest::newRow("no server") << get << QStringLiteral("http://127.0.0.1:1/")
                                   << QStringLiteral("No answer")
                                   << QStringLiteral("No server runs at this address.") << QString();
        QTest::newRow("no server for a POST")
            << post << QStringLiteral("http://127.0.0.1:1/") << QStringLiteral("No answer")
            << QStringLiteral("No server runs at this address.") << QString();
        QTest::newRow("unknown scheme")
            << get << QStringLiteral("gopher://127.0.0.1/") << QStringLiteral("No answer")
            << QStringLiteral("The address begins with an unknown scheme.") << QString();
        QTest::newRow("no address") << get << QString() << QStringLiteral("Not sent")
                                    << QStringLiteral("Enter an address.") << QString();
    }
    void showsOutcomeOfRequest()
    {
        QFETCH(QString, method);
        QFETCH(QString, url);
        gallery().open(Request);
        gallery().choose("requestMethod", method);
        QCOMPARE(gallery().isEnabled("requestBody"), method == QLatin1String("POST"));
        gallery().type("requestUrl", url);
        gallery().click("requestSend");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("requestSend"), timeoutMs);
        QFETCH(QString, outcome);
        QFETCH(QString, status);
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("requestStatus"), status, timeoutMs);
        QCOMPARE(gallery().text("requestOutcome"), outcome);
        QCOMPARE(gallery().tone("requestOutcome") == QLatin1String("good"),
                 outcome == QLatin1String("Answered"));
        QFETCH(QString, answer);
        QVERIFY2(gallery().document("requestAnswer").contains(answer),
                 qPrintable(gallery().document("requestAnswer")));
    }
    void showsThatServerNameIsUnknown()
    {
        const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        Resolver::answerWith(EAI_NONAME);
        gallery().open(Request);
        gallery().type("requestUrl", QStringLiteral("http://missing.example.org/"));
        gallery().click("requestSend");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("requestStatus"),
                                  QStringLiteral("There is no server of this name."), timeoutMs);
        Resolver::answerWith(0);
        QNetworkProxy::setApplicationProxy(proxy);
    }
    void cancelsRequest()
    {
        gallery().open(Request);
        gallery().type("requestUrl", QStringLiteral("http://service.example.org/never"));
        gallery().click("requestSend");
        gallery().click("requestCancel");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("requestOutcome"), QStringLiteral("Cancelled"), timeoutMs);
        QVERIFY(gallery().isEnabled("requestSend"));
        QVERIFY(!gallery().isEnabled("requestCancel"));
    }
    void rejectsBodyThatIsNotAnObject()
    {
        m_fixture->network().server().forgetRequests();
        gallery().open(Request);
        gallery().choose("requestMethod", QStringLiteral("POST"));
        QTest::keyClicks(gallery().find("requestBody"), QStringLiteral("!"));
        gallery().type("requestUrl", QStringLiteral("http://service.example.org/echo"));
        gallery().click("requestSend");
        QCOMPARE(gallery().text("requestOutcome"), QStringLiteral("Not sent"));
        QVERIFY(gallery().isEnabled("requestSend"));
        QCOMPARE(m_fixture->network().server().requests().size(), 0);
    }

    void downloadsFile()
    {
        gallery().open(Download);
        gallery().type("downloadUrl", QStringLiteral("http://downloads.example.org/bytes/3000000/new.bin"));
        gallery().click("downloadStart");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("downloadState"), QStringLiteral("Finished"), timeoutMs);
        QCOMPARE(gallery().text("downloadAmount"), QStringLiteral("2.86 MB of 2.86 MB"));
        QVERIFY(gallery().text("downloadSpeed").contains(QLatin1String("B/s")));
        auto *const bar = gallery().find<QProgressBar>("downloadBar");
        QCOMPARE(bar->value(), bar->maximum());
        QVERIFY(gallery().isEnabled("downloadReveal"));
        QCOMPARE(gallery().rows("downloadHistory"), {QStringLiteral("new.bin | Finished | 2.86 MB")});
        QCOMPARE(readFile(filePath("downloads/new.bin")), HttpServer::content(3000000));
    }
    void stopsDownload()
    {
        const HalfServer server;
        gallery().open(Download);
        gallery().type("downloadUrl", server.url(QStringLiteral("/half.bin")).toString());
        gallery().click("downloadStart");
        auto *const bar = gallery().find<QProgressBar>("downloadBar");
        QTRY_COMPARE_WITH_TIMEOUT(bar->value(), bar->maximum() * 3 / 5, timeoutMs);
        QVERIFY(QFile::exists(filePath("downloads/half.bin")));
        QVERIFY(!gallery().isEnabled("downloadStart"));
        gallery().click("downloadStop");
        QCOMPARE(gallery().text("downloadState"), QStringLiteral("Stopped"));
        QCOMPARE(gallery().text("downloadDetails"), QStringLiteral("The partial file was removed."));
        QVERIFY(!QFile::exists(filePath("downloads/half.bin")));
        QVERIFY(gallery().isEnabled("downloadStart"));
        QVERIFY(!gallery().isEnabled("downloadReveal"));
    }
    void showsFailedDownload_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("details");
        const QString host = QStringLiteral("http://downloads.example.org");
        const QString failed = QStringLiteral("Failed");
        const QString removed = QStringLiteral(" The partial file was removed.");
        QTest::newRow("not found") << host + QStringLiteral("/status/404/file.bin") << failed
                                   << QStringLiteral("Status 404: the server has nothing at this address.")
                                          + removed;
        QTest::newRow("no server") << QStringLiteral("http://127.0.0.1:1/file.bin") << failed
                                   << QStringLiteral("No server runs at this address.") + removed;
        QTest::newRow("broken connection") << host + QStringLiteral("/cut/3000000/file.bin") << failed
                                           << QStringLiteral("The connection ended early.") + removed;
        QTest::newRow("no name") << host + QStringLiteral("/") << QStringLiteral("Not started")
                                 << QStringLiteral("The address has no file name.");
    }
    void showsFailedDownload()
    {
        QFETCH(QString, url);
        QFETCH(QString, details);
        gallery().open(Download);
        gallery().type("downloadUrl", url);
        gallery().click("downloadStart");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("downloadDetails"), details, timeoutMs);
        QTEST(gallery().text("downloadState"), "state");
        QCOMPARE(gallery().find<QProgressBar>("downloadBar")->value(), 0);
        QCOMPARE(gallery().text("downloadAmount"), QStringLiteral("–"));
        QVERIFY(gallery().isEnabled("downloadStart"));
        QVERIFY(QDir(filePath("downloads")).isEmpty());
    }
    void showsThatDirectoryCannotBeWritten()
    {
        QVERIFY(writeFile(filePath("downloads"), "a file"));
        gallery().open(Download);
        gallery().type("downloadUrl", QStringLiteral("http://downloads.example.org/bytes/9/new.bin"));
        gallery().click("downloadStart");
        QCOMPARE(gallery().text("downloadState"), QStringLiteral("Not started"));
        QCOMPARE(gallery().text("downloadDetails"),
                 filePath("downloads") + QStringLiteral(" is not a directory."));
    }
    // A limit of the file size has the same effect as a full disk.
    void removesIncompleteDownload()
    {
        const FileSizeLimit limit(1000000);
        gallery().open(Download);
        gallery().type("downloadUrl", QStringLiteral("http://downloads.example.org/bytes/3000000/new.bin"));
        gallery().click("downloadStart");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("downloadState"), QStringLiteral("Incomplete"), timeoutMs);
        QCOMPARE(gallery().text("downloadDetails"),
                 QStringLiteral("Only 976.56 KB of 2.86 MB are in the file, so it was removed."));
        QCOMPARE(gallery().find<QProgressBar>("downloadBar")->value(), 0);
        QVERIFY(!QFile::exists(filePath("downloads/new.bin")));
    }
    void showsNoSpeedThatIsNotANumber()
    {
        gallery().open(Download);
        auto *const download = gallery().window().findChild<ZyBase::DownloadManager *>();
        for (const char *speed : {"nan MB/s", "inf MB/s"}) {
            Q_EMIT download->signalDownloadProgress(1, 2, QLatin1String(speed));
            QCOMPARE(gallery().text("downloadSpeed"), QStringLiteral("–"));
        }
    }

    void findsWhyFileCannotBeWritten_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("problem");
        QTest::newRow("new file") << QStringLiteral("new/file") << qint64(1) << QString();
        QTest::newRow("existing file") << QStringLiteral("file") << qint64(1) << QString();
        QTest::newRow("directory") << QStringLiteral("directory") << qint64(1)
                                   << QStringLiteral("There is a directory with this name.");
        QTest::newRow("below a file")
            << QStringLiteral("file/new") << qint64(1) << QStringLiteral("%1/file is not a directory.");
        QTest::newRow("no space") << QStringLiteral("new") << (qint64(1) << 60)
                                  << QStringLiteral("There is no space left on the disk.");
        QTest::newRow("no permission") << QStringLiteral("locked/new") << qint64(1)
                                       << QStringLiteral("There is no permission to write to %1/locked.");
    }
    void findsWhyFileCannotBeWritten()
    {
        QFETCH(QString, name);
        QFETCH(qint64, bytes);
        QFETCH(QString, problem);
        const QTemporaryDir directory;
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("directory")));
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("locked")));
        QVERIFY(writeFile(directory.filePath(QStringLiteral("file")), ""));
        QFile::setPermissions(directory.filePath(QStringLiteral("locked")),
                              QFile::ReadOwner | QFile::ExeOwner);
        if (name.startsWith(QLatin1String("locked")) && ::geteuid() == 0)
            QSKIP("root may write everywhere");
        if (problem.contains(QLatin1Char('%')))
            problem = problem.arg(directory.path());
        QCOMPARE(Checks::writeProblem(directory.filePath(name), bytes), problem);
    }

    void showsResultOfEachEntry()
    {
        const auto extract = [this] {
            gallery().click("archiveExtract");
            QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("archiveExtract"), timeoutMs);
        };
        gallery().open(Archive);
        extract();
        QCOMPARE(gallery().text("archiveState"), QStringLiteral("5 extracted, 0 skipped"));
        QVERIFY(readFile(filePath("extracted/letters/greeting.txt")).startsWith("Dear reader"));

        QVERIFY(QFile::remove(filePath("extracted/figures/sales.csv")));
        extract();
        QCOMPARE(gallery().text("archiveState"), QStringLiteral("1 extracted, 4 skipped"));
        const QStringList rows = gallery().rows("archiveEntries");
        QCOMPARE(rows.size(), 5);
        QCOMPARE(rows.at(1), QStringLiteral("letters/greeting.txt | Skipped: the file exists. | 53.00 B"));
        QCOMPARE(rows.at(3), QStringLiteral("figures/sales.csv | Extracted | 42.00 B"));

        gallery().check("archiveOverwrite");
        extract();
        QCOMPARE(gallery().text("archiveState"), QStringLiteral("5 extracted, 0 skipped"));
    }
    void showsFailedEntry_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("details");
        QTest::newRow("directory of that name")
            << QString() << QStringLiteral("Failed: There is a directory with this name.")
            << utf8("创建目标文件失败：");
        QTest::newRow("full disk") << QStringLiteral("/dev/full")
                                   << QStringLiteral("Failed: The file is incomplete.") << utf8("解压成功：");
    }
    void showsFailedEntry()
    {
        QFETCH(QString, target);
        QFETCH(QString, row);
        QFETCH(QString, details);
        const QString path = filePath("extracted/README.txt");
        QVERIFY(QDir().mkpath(target.isEmpty() ? path : filePath("extracted")));
        QVERIFY(target.isEmpty() || QFile::link(target, path));
        gallery().open(Archive);
        gallery().check("archiveOverwrite");
        gallery().click("archiveExtract");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("archiveState"),
                                  QStringLiteral("4 extracted, 0 skipped, 1 failed"), timeoutMs);
        QVERIFY2(gallery().rows("archiveEntries").first().startsWith(QStringLiteral("README.txt | ") + row),
                 qPrintable(gallery().rows("archiveEntries").first()));
        const auto *const entry = gallery().find<QTreeWidget>("archiveEntries")->topLevelItem(0);
        QVERIFY(entry->child(0)->text(0).startsWith(QStringLiteral("Details: ") + details));
    }
    void showsWhyArchiveIsNotExtracted_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("cause");
        QTest::newRow("missing") << QStringLiteral("missing.zip") << QByteArray()
                                 << QStringLiteral("There is no such file: %1");
        QTest::newRow("directory") << QStringLiteral("log") << QByteArray()
                                   << QStringLiteral("This is a directory, not an archive.");
        QTest::newRow("no archive") << QStringLiteral("text.zip") << QByteArray("text")
                                    << QStringLiteral("The file is not a zip archive.");
        QTest::newRow("damaged") << QStringLiteral("damaged.zip") << QByteArray("PK\3\4")
                                 << QStringLiteral("The archive is damaged.");
    }
    void showsWhyArchiveIsNotExtracted()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(QString, cause);
        const QString path = m_fixture->filePath(name);
        if (!content.isEmpty())
            QVERIFY(writeFile(path, content));
        gallery().open(Archive);
        gallery().type("archivePath", path);
        gallery().click("archiveExtract");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("archiveState"), QStringLiteral("Not extracted"), timeoutMs);
        const QStringList lines = gallery().text("archiveDetails").split(QLatin1Char('\n'));
        QCOMPARE(lines.first(), cause.contains(QLatin1Char('%')) ? cause.arg(path) : cause);
        QVERIFY(lines.last().startsWith(QStringLiteral("Details: ")));
    }

    void drawsReadableCodeAtEachSize_data()
    {
        QTest::addColumn<int>("steps");
        QTest::addColumn<int>("side");
        QTest::newRow("initial size") << 0 << 260;
        QTest::newRow("smaller") << -5 << 160;
        QTest::newRow("largest") << 3 << 320;
    }
    void drawsReadableCodeAtEachSize()
    {
        QFETCH(int, steps);
        QFETCH(int, side);
        gallery().open(QrCode);
        gallery().type("qrText", QStringLiteral("Größe 文件"));
        for (int step = 0; step < qAbs(steps); ++step)
            QTest::keyClick(gallery().find("qrSize"), steps < 0 ? Qt::Key_Left : Qt::Key_Right);
        QCOMPARE(gallery().find("qrCode")->property("pixmap").value<QPixmap>().size(), QSize(side, side));
        QVERIFY(gallery().text("qrSizeText").startsWith(QStringLiteral("%1 × %1 pixels").arg(side)));
        if (scanner().isEmpty())
            QSKIP("zbar-tools are not installed");
        QCOMPARE(scan("qrCode"), QStringLiteral("Größe 文件"));
        m_fixture->setTheme("Adwaita-dark");
        gallery().choose("appearance", QStringLiteral("Dark"));
        QCOMPARE(scan("qrCode"), QStringLiteral("Größe 文件"));
    }
    void keepsWhiteMarginInDarkTheme()
    {
        m_fixture->setTheme("Adwaita-dark");
        m_fixture->reopen(m_fixture->services());
        gallery().open(QrCode);
        constexpr int side = 260;
        constexpr int frame = 1;
        const int margin = side * 4 / 25; // four of the 25 modules of the smallest symbol
        const QImage code = gallery().find("qrCode")->grab().toImage();
        QCOMPARE(code.size(), QSize(side + 2 * margin, side + 2 * margin));
        const int middle = code.width() / 2;
        for (int depth = frame; depth < margin; ++depth) {
            QCOMPARE(code.pixelColor(depth, middle), QColor(Qt::white));
            QCOMPARE(code.pixelColor(middle, code.height() - 1 - depth), QColor(Qt::white));
        }
    }
    void showsWhyThereIsNoCode()
    {
        gallery().open(QrCode);
        gallery().type("qrText", QString());
        QCOMPARE(gallery().text("qrState"), QStringLiteral("Enter a text"));
        QVERIFY(!gallery().find("qrCode")->isVisible());
        gallery().find<QLineEdit>("qrText")->setText(QString(1664, QLatin1Char('a')));
        QCOMPARE(gallery().text("qrState"), QStringLiteral("Too long: 1664 bytes"));
        QVERIFY(!gallery().find("qrCode")->isVisible());
    }

    void showsFacts()
    {
        gallery().open(Machine);
        QCOMPARE(gallery().text("system"), QSysInfo::prettyProductName());
        QVERIFY(gallery().text("distribution").contains(QLatin1Char(',')));
        QCOMPARE(gallery().text("processor"), QSysInfo::currentCpuArchitecture());
        QCOMPARE(gallery().text("package"), QStringLiteral("gallery"));
        QCOMPARE(gallery().text("executable"), QCoreApplication::applicationFilePath());
        QCOMPARE(gallery().text("resources"),
                 QCoreApplication::applicationDirPath() + QStringLiteral("/res"));
    }
    void answersQuestions_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<QByteArray>("label");
        QTest::addColumn<QString>("answer");
        QTest::newRow("location") << QByteArray("locate") << QByteArray("location")
                                  << QStringLiteral("Berlin, Land Berlin, Germany (52.52, 13.405)");
        QTest::newRow("network") << QByteArray("online") << QByteArray("network")
                                 << QStringLiteral("Names can be resolved");
        QTest::newRow("PDF") << QByteArray("checkPdf") << QByteArray("pdf")
                             << QStringLiteral("Yes, it is the default");
    }
    void answersQuestions()
    {
        QFETCH(QByteArray, button);
        QFETCH(QByteArray, label);
        Resolver::answerWith(0);
        gallery().open(Machine);
        gallery().click(button.constData());
        QVERIFY(!gallery().isEnabled(button.constData()));
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled(button.constData()), timeoutMs);
        QTEST(gallery().text(label.constData()), "answer");
    }
    void showsThatAnotherApplicationOpensPdf()
    {
        gallery().open(Machine);
        gallery().type("pdfApplication", QStringLiteral("org.example.viewer.desktop"));
        gallery().click("checkPdf");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("pdf"), QStringLiteral("No, it is not the default"),
                                  timeoutMs);
    }
    void createsIdentifierOnlyOnDemand()
    {
        const QString path = m_fixture->homePath(QStringLiteral(".config/zybase-gallery/device.conf"));
        gallery().open(Machine);
        QVERIFY(!QFile::exists(path));
        gallery().click("identify");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("identify"), timeoutMs);
        QCOMPARE(gallery().text("identifier").size(), 32);
        QVERIFY(readFile(path).contains(gallery().text("identifier").toLatin1()));
    }

    void sendsEventsAndRecords()
    {
        gallery().open(Reports);
        QCOMPARE(gallery().text("reportDestination"), QStringLiteral("Sent to the local services"));
        QCOMPARE(gallery().text("reportPage"),
                 QStringLiteral("Arrivals are shown at http://127.0.0.1:8080/"));
        const int events = m_fixture->network().events().size();
        const int records = m_fixture->network().records().size();

        gallery().choose("reportEvent", QStringLiteral("open"));
        gallery().click("reportSendEvent");
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->network().events().size(), events + 1, timeoutMs);
        QCOMPARE(m_fixture->network().events().last().problems, QStringList());
        QVERIFY(m_fixture->network().events().last().request.body.contains("\"event_label\": \"pdf\""));

        gallery().type("reportLabel", QStringLiteral("laser"));
        gallery().choose("reportEvent", QStringLiteral("print"));
        gallery().click("reportSendEvent");
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->network().events().size(), events + 2, timeoutMs);
        QVERIFY(m_fixture->network().events().last().request.body.contains("\"event_label\": \"laser\""));

        gallery().choose("reportAction", QStringLiteral("update"));
        gallery().choose("reportStatus", QStringLiteral("cancel"));
        gallery().click("reportSendRecord");
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->network().records().size(), records + 1, timeoutMs);
        QCOMPARE(m_fixture->network().records().last().problems, QStringList());
        QCOMPARE(m_fixture->network().records().last().body.value(QStringLiteral("action")).toString(),
                 QStringLiteral("update"));

        const QStringList rows = gallery().rows("reportSent");
        QCOMPARE(rows.size(), 3);
        QVERIFY(rows.at(0).startsWith(QStringLiteral("record: update | cancel | ")));
        QVERIFY(rows.at(1).startsWith(QStringLiteral("event: print_file | file, laser | ")));
        QVERIFY(rows.at(2).startsWith(QStringLiteral("event: open_file | file, pdf | ")));
    }
    void skipsEventWithoutLabel()
    {
        const int events = m_fixture->network().events().size();
        gallery().open(Reports);
        gallery().choose("reportEvent", QStringLiteral("print"));
        gallery().click("reportSendEvent");
        gallery().choose("reportEvent", QStringLiteral("share"));
        gallery().click("reportSendEvent");
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->network().events().size(), events + 1, timeoutMs);
        QVERIFY(m_fixture->network().events().last().request.body.contains("share_file"));
        QVERIFY(gallery().rows("reportSent").at(1).contains(QStringLiteral("not sent: print")));
    }
    void sendsNothingWithoutLocalServices()
    {
        m_fixture->reopen({});
        gallery().open(Reports);
        QCOMPARE(gallery().text("reportDestination"), QStringLiteral("Nothing is sent"));
        QVERIFY(gallery().find("offerText")->isVisible());
        QVERIFY(!gallery().isEnabled("reportSendEvent"));
        QVERIFY(!gallery().isEnabled("reportSendRecord"));
    }
    void sendsNothingIfLocalServicesWereKilled()
    {
        DevelopmentServices services = m_fixture->services();
        services.statistics = QStringLiteral("http://127.0.0.1:1/report");
        m_fixture->reopen(services);
        gallery().open(Reports);
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("reportPage"),
                                  QStringLiteral("The local services have ended."), timeoutMs);
        QCOMPARE(gallery().tone("reportDestination"), QStringLiteral("bad"));
        const int events = m_fixture->network().events().size();
        gallery().click("reportSendEvent");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().rows("reportSent").size(), 1, timeoutMs);
        QVERIFY(gallery().rows("reportSent").first().startsWith(QStringLiteral("not sent: start | ")));
        QCOMPARE(m_fixture->network().events().size(), events);
    }
};

int main(int argc, char **argv)
{
    return GalleryFixture::run<TestGallery>(argc, argv);
}

#include "tst_gallery.moc"
