// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "GalleryFixture.h"
#include "Screen.h"
#include "Utf8.h"

#include <Language.h>
#include <pages/Page.h>

#include <QAccessible>
#include <QNetworkProxy>
#include <QProcess>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSettings>
#include <QStackedWidget>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

constexpr int timeoutMs = GalleryFixture::timeoutMs;
constexpr int maxTabs = 60;

QString nameOf(QWidget *widget)
{
    QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(widget);
    return accessible ? accessible->text(QAccessible::Name) : QString();
}

bool takesFocus(const QWidget *widget)
{
    return (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible();
}

// The controls that a user reaches by the Tab key, in this order, from the navigation until there again.
QWidgetList tabOrder(QWidget *window)
{
    QWidgetList order;
    window->findChild<QWidget *>(QStringLiteral("navigation"))->setFocus();
    for (int tabs = 0; tabs < maxTabs && !order.contains(QApplication::focusWidget()); ++tabs) {
        order << QApplication::focusWidget();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    return order;
}

QImage pictureOf(QWidget *widget)
{
    return widget->grab().toImage();
}

} // namespace

// What does not depend on a single service: size, keyboard, screen reader, code, languages, local services.
class TestGalleryInterface : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GalleryFixture> m_fixture;

    Gallery &gallery() { return m_fixture->gallery(); }
    QStackedWidget *pages() { return gallery().window().findChild<QStackedWidget *>(); }
    Page *page() { return static_cast<Page *>(pages()->currentWidget()); }

    // For a test with a row for each page.
    void addPageRows()
    {
        QTest::addColumn<int>("page");
        for (int number = Log; number <= Reports; ++number) {
            const QString title = static_cast<Page *>(pages()->widget(number))->title();
            QTest::newRow(qPrintable(title)) << number;
        }
    }
    void openPageOfRow()
    {
        QFETCH(int, page);
        QApplication::setActiveWindow(&gallery().window());
        gallery().open(page);
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (const char *skipReason = GalleryFixture::skipReason())
            QSKIP(skipReason);
        m_fixture = std::make_unique<GalleryFixture>();
        m_fixture->open();
    }
    void cleanupTestCase()
    {
        if (m_fixture)
            m_fixture->close();
        GalleryFixture::waitForDeletionOfRequests();
    }

    void fitsScreen_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QString>("scaleFactor");
        QTest::addColumn<QString>("dpi");
        QTest::newRow("1024x600") << QSize(1024, 600) << QStringLiteral("1") << QStringLiteral("96");
        QTest::newRow("1366x768-144dpi") << QSize(1366, 768) << QStringLiteral("1") << QStringLiteral("144");
        QTest::newRow("1920x1080-factor2")
            << QSize(1920, 1080) << QStringLiteral("2") << QStringLiteral("96");
    }
    // In a process of its own, because Qt reads both settings once.
    void fitsScreen()
    {
        QFETCH(QSize, size);
        QFETCH(QString, scaleFactor);
        QFETCH(QString, dpi);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scaleFactor);
        environment.insert(QStringLiteral("QT_FONT_DPI"), dpi);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(),
                      {Screen::option, QString::fromLatin1(QTest::currentDataTag()),
                       QString::number(size.width()), QString::number(size.height())});
        QVERIFY(process.waitForFinished(timeoutMs));
        const QStringList lines = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'));
        QCOMPARE(lines.filter(QRegularExpression(QLatin1Char('^') + QLatin1String(Screen::mark))),
                 QStringList());
        QCOMPARE(process.exitCode(), 0);
    }
    void opensWithinAvailableGeometry_data()
    {
        QTest::addColumn<QRect>("available");
        QTest::newRow("large") << QRect(0, 0, 3840, 2160);
        QTest::newRow("small, beside a panel") << QRect(64, 28, 960, 572);
    }
    void opensWithinAvailableGeometry()
    {
        QFETCH(QRect, available);
        constexpr int titleBar = 30;
        const QRect geometry = gallery().window().firstGeometry(available);
        QVERIFY(available.contains(geometry.adjusted(0, -titleBar, 0, 0)));
        QVERIFY(gallery().window().minimumSizeHint().boundedTo(geometry.size())
                == gallery().window().minimumSizeHint());
    }

    void reachesEachControlByTab_data() { addPageRows(); }
    void reachesEachControlByTab()
    {
        openPageOfRow();
        gallery().choose("requestMethod", QStringLiteral("POST")); // enables the body
        const QWidgetList reached = tabOrder(&gallery().window());
        const auto controls = page()->findChildren<QWidget *>();
        for (QWidget *const control : controls) {
            if (takesFocus(control) && control->isEnabled())
                QVERIFY2(reached.contains(control), qPrintable(control->objectName()));
        }
        for (QWidget *const control : reached) {
            QVERIFY2(takesFocus(control), qPrintable(control->objectName()));
            control->setFocus();
            const QImage withFocus = pictureOf(control);
            control->clearFocus();
            QVERIFY2(withFocus != pictureOf(control), qPrintable(control->objectName()));
        }
    }
    void namesEachControl_data() { addPageRows(); }
    void namesEachControl()
    {
        openPageOfRow();
        gallery().find("showCode");
        const auto controls = gallery().window().findChildren<QWidget *>();
        for (QWidget *const control : controls) {
            if (takesFocus(control))
                QVERIFY2(!nameOf(control).isEmpty(), qPrintable(control->objectName()));
        }
    }
    void hasNoTwoEqualMnemonics_data() { addPageRows(); }
    void hasNoTwoEqualMnemonics()
    {
        openPageOfRow();
        QStringList found;
        const auto controls = gallery().window().findChildren<QWidget *>();
        for (QWidget *const control : controls) {
            const bool isLabel = qobject_cast<QLabel *>(control) && qobject_cast<QLabel *>(control)->buddy();
            const QString key = QKeySequence::mnemonic(isLabel || qobject_cast<QAbstractButton *>(control)
                                                           ? control->property("text").toString()
                                                           : QString())
                                    .toString();
            if (key.isEmpty() || !control->isVisible())
                continue;
            QVERIFY2(!found.contains(key), qPrintable(key + QLatin1Char(' ') + control->objectName()));
            found << key;
        }
        QVERIFY(found.size() > 1);
    }
    void opensPageByShortcut()
    {
        QApplication::setActiveWindow(&gallery().window());
        for (int number = Reports; number >= Log; --number) {
            QTest::keyClick(&gallery().window(), Qt::Key(Qt::Key_1 + number), Qt::ControlModifier);
            QCOMPARE(pages()->currentIndex(), number);
        }
    }
    void sendsAndCancelsByShortcutAndReturnsFocus()
    {
        QApplication::setActiveWindow(&gallery().window());
        gallery().open(Request);
        gallery().choose("requestMethod", QStringLiteral("POST"));
        gallery().type("requestUrl", QStringLiteral("http://service.example.org/never"));
        gallery().find("requestBody")->setFocus();
        QTest::keyClick(gallery().find("requestBody"), Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(gallery().text("requestOutcome"), QStringLiteral("Waiting"));
        QTest::keyClick(&gallery().window(), Qt::Key_Escape);
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("requestOutcome"), QStringLiteral("Cancelled"), timeoutMs);
        QVERIFY(gallery().find("requestBody")->hasFocus());

        gallery().find("requestSend")->setFocus();
        QTest::keyClick(gallery().find("requestSend"), Qt::Key_Space);
        QVERIFY(gallery().find("requestCancel")->hasFocus());
        QTest::keyClick(gallery().find("requestCancel"), Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(gallery().isEnabled("requestSend"), timeoutMs);
        QVERIFY(gallery().find("requestSend")->hasFocus());
    }
    void writesLineByReturn()
    {
        gallery().open(Log);
        gallery().type("logMessage", QStringLiteral("by the Return key"));
        QTest::keyClick(gallery().find("logMessage"), Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(
            gallery().document("logFile").endsWith(QStringLiteral(" INFO   - by the Return key\n")),
            timeoutMs);
    }

    void opensLogAtNewestLine()
    {
        const QByteArray line = "2026-11-20 07:37:57.106 INFO   - an older line\n";
        QVERIFY(writeFile(m_fixture->filePath(QStringLiteral("log/gallery.log")), line.repeated(200)));
        m_fixture->reopen(m_fixture->services());
        gallery().open(Log);
        auto *const bar = gallery().find<QPlainTextEdit>("logFile")->verticalScrollBar();
        QTRY_VERIFY_WITH_TIMEOUT(bar->maximum() > 0, timeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(bar->value(), bar->maximum(), timeoutMs);
    }
    void hasIconAndDesktopFile()
    {
        QVERIFY(!gallery().window().windowIcon().isNull());
        QSettings file(QStringLiteral(GALLERY_DESKTOP_FILE), QSettings::IniFormat);
        file.beginGroup(QStringLiteral("Desktop Entry"));
        QCOMPARE(file.value(QStringLiteral("Exec")).toString(), QStringLiteral(GALLERY_PROGRAM));
        QVERIFY(QFile::exists(file.value(QStringLiteral("Icon")).toString()));
    }
    void placesButtonBesideField_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QByteArray>("button");
        QTest::newRow("log") << int(Log) << QByteArray("logMessage") << QByteArray("logInfo");
        QTest::newRow("request") << int(Request) << QByteArray("requestUrl") << QByteArray("requestSend");
        QTest::newRow("download") << int(Download) << QByteArray("downloadUrl")
                                  << QByteArray("downloadStart");
        QTest::newRow("archive") << int(Archive) << QByteArray("archivePath") << QByteArray("archiveBrowse");
        QTest::newRow("event") << int(Reports) << QByteArray("reportLabel") << QByteArray("reportSendEvent");
    }
    void placesButtonBesideField()
    {
        QFETCH(int, page);
        QFETCH(QByteArray, field);
        QFETCH(QByteArray, button);
        gallery().window().resize(2400, 900);
        gallery().open(page);
        QCoreApplication::processEvents();
        const auto area = [this](const QByteArray &name) {
            const QWidget *const widget = gallery().find(name.constData());
            return QRect(widget->mapTo(&gallery().window(), QPoint()), widget->size());
        };
        QVERIFY(area(button).left() - area(field).right() < 20);
        QVERIFY(area(button).left() > area(field).right());
        QCOMPARE(area(button).bottom(), area(field).bottom());
    }
    void describesEmptyTable_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<QByteArray>("table");
        QTest::newRow("downloads") << int(Download) << QByteArray("downloadHistory");
        QTest::newRow("entries") << int(Archive) << QByteArray("archiveEntries");
        QTest::newRow("reports") << int(Reports) << QByteArray("reportSent");
    }
    void describesEmptyTable()
    {
        QFETCH(int, page);
        QFETCH(QByteArray, table);
        gallery().open(page);
        auto *const tree = gallery().find<QTreeWidget>(table.constData());
        const QImage described = pictureOf(tree->viewport());
        tree->addTopLevelItem(new QTreeWidgetItem);
        tree->topLevelItem(0)->setHidden(true);
        QVERIFY(described != pictureOf(tree->viewport()));
        tree->clear();
    }

    void showsCodeThatPageRuns_data() { addPageRows(); }
    void showsCodeThatPageRuns()
    {
        constexpr int maxLines = 50;
        openPageOfRow();
        const auto button = [this](const char *name) {
            return page()->findChild<QAbstractButton *>(QLatin1String(name));
        };
        auto *const view = page()->findChild<QPlainTextEdit *>(QStringLiteral("code"));
        QVERIFY(!view->isVisible());
        button("showCode")->click();
        QVERIFY(view->isVisible());
        const QString code = view->toPlainText();
        QVERIFY(code.contains(
            QRegularExpression(QStringLiteral("LoggerObject::|createRequest|StartDownload|QuaUnzipFile|"
                                              "GenerateQRCode|GetIPInfo|SendXdReport"))));
        QVERIFY(!code.contains(QStringLiteral("//!")));
        QVERIFY2(code.count(QLatin1Char('\n')) <= maxLines, qPrintable(code));
        button("copyCode")->click();
        QCOMPARE(QApplication::clipboard()->text(), code);
        button("showCode")->click();
        QVERIFY(!view->isVisible());
    }

    void showsEachTextInChinese()
    {
#ifndef GALLERY_TRANSLATED
        QSKIP("qttools5-dev is not installed");
#endif
        setLanguage(QStringLiteral("zh_CN"));
        m_fixture->reopen(m_fixture->services());
        const QRegularExpression chinese(QStringLiteral("[\\x{4e00}-\\x{9fff}]"));
        const QStringList names {QStringLiteral("ZyBase"), QStringLiteral("gallery")};
        const QStringList kinds {QStringLiteral("heading"), QStringLiteral("title"), QStringLiteral("quiet")};
        const auto controls = gallery().window().findChildren<QWidget *>();
        for (QWidget *const control : controls) {
            const bool isText = qobject_cast<QAbstractButton *>(control)
                                || control->property("tone").isValid()
                                || kinds.contains(control->property("kind").toString());
            const QString text = control->property("text").toString();
            if (isText && !text.isEmpty() && !names.contains(text))
                QVERIFY2(text.contains(chinese), qPrintable(text));
        }
        qDeleteAll(qApp->findChildren<QTranslator *>());
        m_fixture->reopen(m_fixture->services());
    }
    // lupdate adds what is new in the sources as unfinished.
    void translatesEachTextOfTheSources()
    {
#ifndef GALLERY_TRANSLATED
        QSKIP("qttools5-dev is not installed");
#else
        const QString catalogue = m_fixture->filePath(QStringLiteral("gallery.ts"));
        const QString sources = QStringLiteral(GALLERY_SOURCES);
        QVERIFY(QFile::copy(sources + QStringLiteral("/translations/gallery_zh_CN.ts"), catalogue));
        QVERIFY(QFile::setPermissions(catalogue, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(QProcess::execute(QStringLiteral(LUPDATE),
                                   {QStringLiteral("-silent"), sources, QStringLiteral("-ts"), catalogue}),
                 0);
        QFile file(catalogue);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QRegularExpression marks(QStringLiteral("&[a-zA-Z]|%[0-9]"));
        QString source;
        int translations = 0;
        for (QXmlStreamReader reader(&file); !reader.atEnd(); reader.readNext()) {
            if (reader.isStartElement() && reader.name() == QLatin1String("source"))
                source = reader.readElementText();
            if (!reader.isStartElement() || reader.name() != QLatin1String("translation"))
                continue;
            QVERIFY2(!reader.attributes().hasAttribute(QLatin1String("type")), qPrintable(source));
            const QString translation = reader.readElementText();
            QVERIFY2(!translation.isEmpty(), qPrintable(source));
            QVERIFY2(translation.count(marks) == source.count(marks), qPrintable(source));
            ++translations;
        }
        QVERIFY(translations > 0);
#endif
    }

    void startsLocalServices()
    {
        const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
        const QByteArray description = qgetenv("LOCAL_SERVICES");
        m_fixture->reopen({});
        gallery().open(Request);
        QVERIFY(gallery().find("startServices")->isVisible());
        gallery().click("startServices");
        QTRY_VERIFY_WITH_TIMEOUT(!gallery().find("startServices")->isVisible(), timeoutMs);
        gallery().click("requestSend");
        QTRY_COMPARE_WITH_TIMEOUT(gallery().text("requestOutcome"), QStringLiteral("Answered"), timeoutMs);
        gallery().open(Reports);
        QCOMPARE(gallery().text("reportDestination"), QStringLiteral("Sent to the local services"));
        m_fixture->close();
        qputenv("LOCAL_SERVICES", description);
        QNetworkProxy::setApplicationProxy(proxy);
        m_fixture->reopen(m_fixture->services());
    }
    void showsBrokenDescription()
    {
        const QByteArray description = qgetenv("LOCAL_SERVICES");
        QCOMPARE(brokenDescription(), QString());
        qputenv("LOCAL_SERVICES", "/missing/services.json");
        QCOMPARE(brokenDescription(), QStringLiteral("/missing/services.json"));
        QCOMPARE(QProcess::execute(QStringLiteral(GALLERY_PROGRAM), {QStringLiteral("--help")}), 0);
        m_fixture->close();
        {
            const MainWindow window(m_fixture->filePath(QStringLiteral("other")), {}, brokenDescription());
            const auto *const text = window.findChild<QLabel *>(QStringLiteral("offerText"));
            QVERIFY(
                text->text().startsWith(QStringLiteral("LOCAL_SERVICES is /missing/services.json, which")));
        }
        qputenv("LOCAL_SERVICES", description);
        m_fixture->reopen(m_fixture->services());
    }
};

int main(int argc, char **argv)
{
    if (argc > 1 && QString::fromLatin1(argv[1]) == Screen::option)
        return Screen::check(argc, argv);
    return GalleryFixture::run<TestGalleryInterface>(argc, argv);
}

#include "tst_gallery_interface.moc"
