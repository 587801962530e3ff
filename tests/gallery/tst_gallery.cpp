// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "GalleryFixture.h"
#include "HalfServer.h"
#include "Resolver.h"

#include <pages/Page.h>

#include <QDir>
#include <QProcess>
#include <QProgressBar>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QThreadPool>

using LocalServices::HttpServer;

namespace {

constexpr int timeoutMs = GalleryFixture::timeoutMs;

QString scanner()
{
    return QStandardPaths::findExecutable(QStringLiteral("zbarimg"), {QStringLiteral("/usr/bin")});
}

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

    void fitsSmallScreen()
    {
        const QSize screen(1024, 600);
        const QString name(200, QLatin1Char('n'));
        gallery().open(Download);
        gallery().type("downloadUrl", QStringLiteral("http://127.0.0.1:1/") + name);
        gallery().click("downloadStart");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("downloadStart"), timeoutMs);
        QVERIFY(gallery().text("downloadFile").contains(QStringLiteral("…")));
        QVERIFY(gallery().rows("downloadHistory").first().startsWith(name));

        gallery().window().resize(screen);
        QCOMPARE(gallery().window().size(), screen);
        const auto *const pages = gallery().window().findChild<QScrollArea *>();
        QVERIFY(pages->widget()->width() <= pages->viewport()->width());
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
        m_fixture->releaseTheme();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(timeoutMs));
        QCoreApplication::processEvents();
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
        const QString noStatus = QStringLiteral("This form has no status.");
        QTest::newRow("answered") << get << host + QStringLiteral("/echo?q=1") << QStringLiteral("Answered")
                                  << QStringLiteral("Status 200") << QStringLiteral("/echo?q=1");
        QTest::newRow("JSON") << get << host + QStringLiteral("/json") << QStringLiteral("Answered")
                              << QStringLiteral("Status 200") << QStringLiteral("    \"city\": \"Berlin\",");
        QTest::newRow("not found") << get << host + QStringLiteral("/status/404")
                                   << QStringLiteral("Answered") << QStringLiteral("Status 404")
                                   << QStringLiteral("status 404");
        QTest::newRow("posted") << post << host + QStringLiteral("/echo") << QStringLiteral("Finished")
                                << noStatus << QStringLiteral("    \"item\": \"paper\"");
        QTest::newRow("no server") << get << QStringLiteral("http://127.0.0.1:1/")
                                   << QStringLiteral("No answer") << QStringLiteral("Status 0") << QString();
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
        QCOMPARE(gallery().text("requestOutcome"), QStringLiteral("Waiting"));
        QVERIFY(!gallery().isEnabled("requestSend"));
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("requestSend"), timeoutMs);
        QTEST(gallery().text("requestOutcome"), "outcome");
        QTEST(gallery().text("requestStatus"), "status");
        QFETCH(QString, answer);
        QVERIFY2(gallery().document("requestAnswer").contains(answer),
                 qPrintable(gallery().document("requestAnswer")));
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
        QCOMPARE(gallery().text("downloadState"), QStringLiteral("Stopped, partial file removed"));
        QVERIFY(!QFile::exists(filePath("downloads/half.bin")));
        QVERIFY(gallery().isEnabled("downloadStart"));
        QVERIFY(!gallery().isEnabled("downloadReveal"));
    }
    void showsFailedDownload_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("state");
        QTest::newRow("not found") << QStringLiteral("http://downloads.example.org/status/404/file.bin")
                                   << QStringLiteral("Failed, partial file removed");
        QTest::newRow("no name") << QStringLiteral("http://downloads.example.org/")
                                 << QStringLiteral("The address has no file name");
    }
    void showsFailedDownload()
    {
        QFETCH(QString, url);
        gallery().open(Download);
        gallery().type("downloadUrl", url);
        gallery().click("downloadStart");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("downloadStart"), timeoutMs);
        QTEST(gallery().text("downloadState"), "state");
        QVERIFY(QDir(filePath("downloads")).isEmpty());
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
        QCOMPARE(rows.at(1), QStringLiteral("letters/greeting.txt | Skipped, file exists | 53.00 B"));
        QCOMPARE(rows.at(3), QStringLiteral("figures/sales.csv | Extracted | 42.00 B"));

        gallery().check("archiveOverwrite");
        extract();
        QCOMPARE(gallery().text("archiveState"), QStringLiteral("5 extracted, 0 skipped"));
    }
    void showsFailedEntry()
    {
        QVERIFY(QDir().mkpath(filePath("extracted/README.txt")));
        gallery().open(Archive);
        gallery().check("archiveOverwrite");
        gallery().click("archiveExtract");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("archiveState"),
                                  QStringLiteral("4 extracted, 0 skipped, 1 failed"), timeoutMs);
        QVERIFY(gallery().rows("archiveEntries").first().contains(QStringLiteral(" | Failed | ")));
    }
    void showsMissingArchive()
    {
        gallery().open(Archive);
        gallery().type("archivePath", filePath("missing.zip"));
        gallery().click("archiveExtract");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("archiveState"),
                                  QStringLiteral("The archive cannot be extracted"), timeoutMs);
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
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("pdf"), QStringLiteral("No, another application is"),
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
        QVERIFY(gallery().rows("reportSent").at(1).contains(QStringLiteral("event, not sent: print")));
    }
    void sendsNothingWithoutLocalServices()
    {
        m_fixture->reopen({});
        gallery().open(Reports);
        QCOMPARE(gallery().text("reportDestination"), QStringLiteral("Nothing is sent"));
        QVERIFY(gallery().text("reportPage").contains(QStringLiteral("scripts/local-services")));
        QVERIFY(!gallery().isEnabled("reportSendEvent"));
        QVERIFY(!gallery().isEnabled("reportSendRecord"));
    }
};

int main(int argc, char **argv)
{
    return GalleryFixture::run<TestGallery>(argc, argv);
}

#include "tst_gallery.moc"
