// SPDX-License-Identifier: LGPL-2.1-or-later

#include "GalleryFixture.h"
#include "HalfServer.h"
#include "Pictures.h"

#include <QDir>
#include <QProgressBar>

namespace {

constexpr int timeoutMs = GalleryFixture::timeoutMs;
const QSize windowSize(1040, 720);

} // namespace

// Saves a picture of each page in both themes, with a service at work, in the build directory.
class TestGalleryPictures : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GalleryFixture> m_fixture;
    QMap<QString, QImage> m_pictures;

    Gallery &gallery() { return m_fixture->gallery(); }

    void writeLog()
    {
        gallery().type("logMessage", QStringLiteral("opened letter.pdf"));
        gallery().click("logInfo");
        gallery().type("logMessage", QStringLiteral("the printer is low on ink"));
        gallery().click("logWarning");
        gallery().type("logMessage", QStringLiteral("page 3 can't be printed"));
        gallery().click("logError");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().document("logFile").contains(QStringLiteral(" ERROR ")),
                                 timeoutMs);
    }
    void request()
    {
        gallery().type("requestUrl", QStringLiteral("http://service.example.org/orders/4711"));
        gallery().click("requestSend");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("requestOutcome"), QStringLiteral("Answered"), timeoutMs);
    }
    void download()
    {
        startDownload(QStringLiteral("http://downloads.example.org/bytes/3000000/manual.pdf"));
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("downloadStart"), timeoutMs);
        startDownload(QStringLiteral("http://files.example.org/holiday.zip"));
        gallery().click("downloadStop");
        startDownload(QStringLiteral("http://files.example.org/holiday.zip"));
        auto *const bar = gallery().find<QProgressBar>("downloadBar");
        QTRY_COMPARE_WITH_TIMEOUT(bar->value(), bar->maximum() * 3 / 5, timeoutMs);
    }
    void startDownload(const QString &url)
    {
        gallery().type("downloadUrl", url);
        gallery().click("downloadStart");
    }
    void extract()
    {
        gallery().click("archiveExtract");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("archiveExtract"), timeoutMs);
        QVERIFY(QFile::remove(m_fixture->filePath(QStringLiteral("extracted/figures/sales.csv"))));
        gallery().click("archiveExtract");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("archiveExtract"), timeoutMs);
    }
    void requestFacts()
    {
        for (const char *button : {"identify", "locate", "checkPdf"}) {
            gallery().click(button);
            QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled(button), timeoutMs);
        }
    }
    void report()
    {
        gallery().choose("reportEvent", QStringLiteral("open"));
        gallery().click("reportSendEvent");
        gallery().choose("reportAction", QStringLiteral("update"));
        gallery().choose("reportStatus", QStringLiteral("end"));
        gallery().click("reportSendRecord");
    }
    // On the pages in docs/pictures.
    void replaceVaryingTexts()
    {
        gallery().find<QLabel>("downloadSpeed")->setText(QStringLiteral("4.2 MB/s"));
        gallery()
            .find<QLabel>("downloadDirectory")
            ->setText(QStringLiteral("/home/user/.local/share/zybase-gallery/downloads"));
    }
    void fillPages()
    {
        using Fill = void (TestGalleryPictures::*)();
        const QMap<int, Fill> pages {
            {Log, &TestGalleryPictures::writeLog},         {Request, &TestGalleryPictures::request},
            {Download, &TestGalleryPictures::download},    {Archive, &TestGalleryPictures::extract},
            {Machine, &TestGalleryPictures::requestFacts}, {Reports, &TestGalleryPictures::report}};
        for (auto page = pages.begin(); page != pages.end(); ++page) {
            gallery().open(page.key());
            (this->*page.value())();
            if (QTest::currentTestFailed())
                return;
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (const char *skipReason = GalleryFixture::skipReason())
            QSKIP(skipReason);
        m_fixture = std::make_unique<GalleryFixture>();
    }
    void cleanupTestCase()
    {
        if (m_fixture)
            m_fixture->close();
        GalleryFixture::waitForDeletionOfRequests();
    }

    void drawsPages_data()
    {
        QTest::addColumn<QString>("look");
        QTest::newRow("light") << QStringLiteral("light");
        QTest::newRow("dark") << QStringLiteral("dark");
    }
    void drawsPages()
    {
        QFETCH(QString, look);
        const HalfServer files;
        m_fixture->network().route("files.example.org", files.url());
        m_fixture->open("Adwaita-" + look.toLatin1());
        gallery().window().setFixedSize(windowSize);
        fillPages();
        const char *const names[] = {"log", "request", "download", "archive", "qrcode", "machine", "reports"};
        for (int page = Log; page <= Reports; ++page) {
            gallery().open(page);
            replaceVaryingTexts();
            const QString name = QStringLiteral("%1-%2").arg(QLatin1String(names[page]), look);
            m_pictures.insert(name, gallery().picture());
            QCOMPARE(m_pictures.value(name).size(), windowSize);
            Pictures::save(m_pictures.value(name), name);
        }
        m_fixture->close();
    }

    void matchesCommittedPictures_data()
    {
        QTest::addColumn<QString>("page");
        QTest::newRow("gallery-light") << QStringLiteral("download-light");
        QTest::newRow("gallery-dark") << QStringLiteral("qrcode-dark");
    }
    void matchesCommittedPictures()
    {
        if (qgetenv("ZYBASE_COMPARE_PICTURES") != "1")
            QSKIP("ZYBASE_COMPARE_PICTURES is not 1");
        QFETCH(QString, page);
        QCOMPARE(Pictures::difference(m_pictures.value(page), QString::fromLatin1(QTest::currentDataTag())),
                 QString());
    }
};

int main(int argc, char **argv)
{
    return GalleryFixture::run<TestGalleryPictures>(argc, argv);
}

#include "tst_gallery_pictures.moc"
