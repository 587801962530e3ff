// SPDX-License-Identifier: LGPL-2.1-or-later

#include "HalfServer.h"
#include "Pictures.h"
#include "Stage.h"

#include <QDir>
#include <QProgressBar>

namespace {

constexpr int patience = Stage::patience;
const QSize windowSize(1040, 720);

} // namespace

// Each page in both looks, in the middle of its work, as a picture in the build folder.
class TestGalleryPictures : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Stage> m_stage;
    QMap<QString, QImage> m_pictures;

    Gallery &gallery() { return m_stage->gallery(); }

    void writeLog()
    {
        gallery().type("logMessage", QStringLiteral("opened letter.pdf"));
        gallery().click("logInfo");
        gallery().type("logMessage", QStringLiteral("the printer is low on ink"));
        gallery().click("logWarning");
        gallery().type("logMessage", QStringLiteral("page 3 can't be printed"));
        gallery().click("logError");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().document("logFile").contains(QStringLiteral(" ERROR ")), patience);
    }
    void request()
    {
        gallery().type("requestUrl", QStringLiteral("http://service.example.org/orders/4711"));
        gallery().click("requestSend");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("requestOutcome"), QStringLiteral("Answered"), patience);
    }
    void download()
    {
        startDownload(QStringLiteral("http://downloads.example.org/bytes/3000000/manual.pdf"));
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("downloadStart"), patience);
        startDownload(QStringLiteral("http://files.example.org/holiday.zip"));
        gallery().click("downloadStop");
        startDownload(QStringLiteral("http://files.example.org/holiday.zip"));
        auto *const bar = gallery().find<QProgressBar>("downloadBar");
        QTRY_COMPARE_WITH_TIMEOUT(bar->value(), bar->maximum() * 3 / 5, patience);
    }
    void startDownload(const QString &url)
    {
        gallery().type("downloadUrl", url);
        gallery().click("downloadStart");
    }
    void extract()
    {
        gallery().click("archiveExtract");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("archiveExtract"), patience);
        QVERIFY(QFile::remove(m_stage->filePath(QStringLiteral("extracted/figures/sales.csv"))));
        gallery().click("archiveExtract");
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("archiveExtract"), patience);
    }
    void ask()
    {
        for (const char *question : {"identify", "locate", "askForPdf"}) {
            gallery().click(question);
            QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled(question), patience);
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
    // Of the pages that docs/pictures shows.
    void hideWhatVaries()
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
            {Log, &TestGalleryPictures::writeLog},      {Request, &TestGalleryPictures::request},
            {Download, &TestGalleryPictures::download}, {Archive, &TestGalleryPictures::extract},
            {Machine, &TestGalleryPictures::ask},       {Reports, &TestGalleryPictures::report}};
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
        if (const char *obstacle = Stage::obstacle())
            QSKIP(obstacle);
        m_stage = std::make_unique<Stage>();
    }
    void cleanupTestCase()
    {
        if (m_stage)
            m_stage->close();
        Stage::lastMoment();
    }

    void pages_data()
    {
        QTest::addColumn<QString>("look");
        QTest::newRow("light") << QStringLiteral("light");
        QTest::newRow("dark") << QStringLiteral("dark");
    }
    void pages()
    {
        QFETCH(QString, look);
        const HalfServer files;
        m_stage->world().route("files.example.org", files.url());
        m_stage->open("Adwaita-" + look.toLatin1());
        gallery().window().setFixedSize(windowSize);
        fillPages();
        const char *const names[] = {"log", "request", "download", "archive", "qrcode", "machine", "reports"};
        for (int page = Log; page <= Reports; ++page) {
            gallery().open(page);
            hideWhatVaries();
            const QString name = QStringLiteral("%1-%2").arg(QLatin1String(names[page]), look);
            m_pictures.insert(name, gallery().picture());
            QCOMPARE(m_pictures.value(name).size(), windowSize);
            Pictures::keep(m_pictures.value(name), name);
        }
        m_stage->close();
    }

    void committedPicturesAreOfToday_data()
    {
        QTest::addColumn<QString>("page");
        QTest::newRow("gallery-light") << QStringLiteral("download-light");
        QTest::newRow("gallery-dark") << QStringLiteral("qrcode-dark");
    }
    void committedPicturesAreOfToday()
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
    return Stage::run<TestGalleryPictures>(argc, argv);
}

#include "tst_gallery_pictures.moc"
