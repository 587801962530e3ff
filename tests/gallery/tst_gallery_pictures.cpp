// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Browser.h"
#include "GalleryFixture.h"
#include "HalfServer.h"
#include "LocalServicesProcess.h"
#include "Pictures.h"

#include <Language.h>

#include <QDir>
#include <QFontDatabase>
#include <QPainter>
#include <QProgressBar>
#include <QSslConfiguration>
#include <QTranslator>

namespace {

constexpr int timeoutMs = GalleryFixture::timeoutMs;
const QSize windowSize(1040, 720);
const QSize animationSize(1380, 620);
constexpr int galleryWidth = 900;

bool hasChinese()
{
#ifdef GALLERY_TRANSLATED
    return !QFontDatabase().families(QFontDatabase::SimplifiedChinese).isEmpty();
#else
    return false;
#endif
}

} // namespace

// Saves a picture of each page in both themes, with a service at work, in the build directory.
class TestGalleryPictures : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GalleryFixture> m_fixture;
    QMap<QString, QImage> m_pictures;
    // What the fixture replaces.
    QByteArray m_path;
    QSslConfiguration m_authorities;

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
        QTRY_COMPARE_WITH_TIMEOUT(gallery().tone("requestOutcome"), QStringLiteral("good"), timeoutMs);
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
    // The sender and the receiver of the reports side by side, for the animation.
    QImage both(Browser &browser)
    {
        browser.waitFor(QStringLiteral("return document.getAnimations().length"), 0);
        const QImage sent = gallery().picture();
        const QImage arrived = QImage::fromData(browser.screenshot());
        QImage result(sent.width() + arrived.width(), sent.height(), QImage::Format_RGB32);
        QPainter painter(&result);
        painter.drawImage(0, 0, sent);
        painter.drawImage(sent.width(), 0, arrived);
        return result;
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
        m_path = qgetenv("PATH");
        m_authorities = QSslConfiguration::defaultConfiguration();
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
        QTest::addColumn<QString>("language");
        QTest::newRow("light") << QStringLiteral("light") << QStringLiteral("en");
        QTest::newRow("dark") << QStringLiteral("dark") << QStringLiteral("en");
        QTest::newRow("zh_CN") << QStringLiteral("light") << QStringLiteral("zh_CN");
    }
    void drawsPages()
    {
        QFETCH(QString, look);
        QFETCH(QString, language);
        if (language == QLatin1String("zh_CN") && !hasChinese())
            QSKIP("qttools5-dev or a Chinese font is not installed");
        const HalfServer files;
        m_fixture->network().route("files.example.org", files.url());
        setLanguage(language);
        m_fixture->open("Adwaita-" + look.toLatin1());
        gallery().window().setFixedSize(windowSize);
        fillPages();
        const char *const names[] = {"log", "request", "download", "archive", "qrcode", "machine", "reports"};
        for (int page = Log; page <= Reports; ++page) {
            gallery().open(page);
            replaceVaryingTexts();
            const QString name = QStringLiteral("%1-%2").arg(QLatin1String(names[page]),
                                                             QLatin1String(QTest::currentDataTag()));
            m_pictures.insert(name, gallery().picture());
            QCOMPARE(m_pictures.value(name).size(), windowSize);
            Pictures::save(m_pictures.value(name), name);
        }
        m_fixture->close();
        qDeleteAll(qApp->findChildren<QTranslator *>());
    }

    void drawsAnimation()
    {
        if (qgetenv("ZYBASE_ANIMATION") != "1")
            QSKIP("ZYBASE_ANIMATION is not 1");
        qputenv("PATH", m_path);
        QSslConfiguration::setDefaultConfiguration(m_authorities); // two authorities of the same name
        LocalServicesProcess services;
        Browser browser;
        QVERIFY(services.start());
        QVERIFY2(browser.start(), qPrintable(browser.error()));
        QVERIFY2(browser.open(services.page()), qPrintable(browser.error()));
        browser.setSize(animationSize.width() - galleryWidth, animationSize.height());
        qputenv("LOCAL_SERVICES", QFile::encodeName(services.filePath(QStringLiteral("services.json"))));
        m_fixture->open();
        m_fixture->reopen(useDevelopmentServices());
        gallery().window().setFixedSize(galleryWidth, animationSize.height());
        gallery().open(Reports);

        QList<Pictures::Frame> frames;
        const auto show = [&](int durationMs) { frames.append({both(browser), durationMs}); };
        const auto send = [&](const char *button) {
            gallery().click(button);
            const int sent = gallery().rows("reportSent").size() + 1;
            QVERIFY(QTest::qWaitFor([&] { return services.arrivals().size() == sent; }, timeoutMs));
            QVERIFY(browser.waitFor(
                QStringLiteral("return document.querySelectorAll('#list > details').length"), sent));
            show(1600);
        };
        show(1200);
        gallery().choose("reportEvent", QStringLiteral("open"));
        show(700);
        send("reportSendEvent");
        gallery().choose("reportEvent", QStringLiteral("print"));
        gallery().type("reportLabel", QStringLiteral("laser"));
        show(900);
        send("reportSendEvent");
        gallery().choose("reportAction", QStringLiteral("update"));
        gallery().choose("reportStatus", QStringLiteral("end"));
        show(900);
        send("reportSendRecord");
        frames.last().durationMs = 4000;
        QVERIFY(Pictures::saveAnimation(frames, QStringLiteral("animation")));
        m_fixture->close();
    }

    void matchesCommittedPictures_data()
    {
        QTest::addColumn<QString>("page");
        QTest::newRow("gallery-light") << QStringLiteral("download-light");
        QTest::newRow("gallery-dark") << QStringLiteral("qrcode-dark");
        QTest::newRow("gallery-zh_CN") << QStringLiteral("download-zh_CN");
    }
    void matchesCommittedPictures()
    {
        if (qgetenv("ZYBASE_COMPARE_PICTURES") != "1")
            QSKIP("ZYBASE_COMPARE_PICTURES is not 1");
        QFETCH(QString, page);
        if (!m_pictures.contains(page))
            QSKIP("the picture was not drawn");
        QCOMPARE(Pictures::difference(m_pictures.value(page), QString::fromLatin1(QTest::currentDataTag())),
                 QString());
    }
};

int main(int argc, char **argv)
{
    return GalleryFixture::run<TestGalleryPictures>(argc, argv);
}

#include "tst_gallery_pictures.moc"
