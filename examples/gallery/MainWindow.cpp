// SPDX-License-Identifier: 0BSD

#include "MainWindow.h"

#include "Appearance.h"
#include "pages/ArchivePage.h"
#include "pages/DownloadPage.h"
#include "pages/LogPage.h"
#include "pages/MachinePage.h"
#include "pages/QrCodePage.h"
#include "pages/ReportsPage.h"
#include "pages/RequestPage.h"
#include "widgets/Card.h"
#include "widgets/Choice.h"
#include "widgets/controls.h"

#include <ThemeWatcher.h>

#include <QApplication>
#include <QDir>
#include <QListWidget>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>

namespace {

enum Appearances { SameAsDesktop, Light, Dark };

// In heights of a line, so that the window has room for larger fonts.
constexpr int widthInLines = 65;
constexpr int heightInLines = 45;
constexpr int sideInLines = 13;
constexpr int titleBarHeight = 40;
constexpr int ctrl = Qt::CTRL; // enumerations of different types cannot be added

} // namespace

MainWindow::MainWindow(const QString &directory, const DevelopmentServices &services,
                       const QString &badDescription, QWidget *parent)
    : QWidget(parent)
    , m_navigation(new QListWidget)
    , m_pages(new QStackedWidget)
    , m_appearance(new Choice({tr("Same as desktop"), tr("Light"), tr("Dark")}, "appearance"))
    , m_desktopTheme(hint(tr("Reading the desktop …"), "desktopTheme"))
    , m_offer(new QWidget)
    , m_offerText(hint(QString(), "offerText"))
    , m_startServices(button(tr("Start the local ser&vices"), "startServices"))
    , m_launcher(directory + QStringLiteral("/local-services"))
{
    Q_INIT_RESOURCE(gallery);
    QDir().mkpath(directory);
    //: SPDX-License-Identifier: 0BSD is the licence of this catalogue.
    setWindowTitle(tr("ZyBase gallery"));
    setWindowIcon(applicationIcon());
    setAppearance(false);

    auto *const content = new QVBoxLayout;
    content->setSpacing(0);
    fillOffer(badDescription);
    content->addWidget(m_offer);
    content->addWidget(m_pages, 1);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(createSidebar());
    layout->addLayout(content, 1);

    addPages(directory);
    addShortcuts();
    if (!services.downloads.isEmpty())
        useServices(services);
    setGeometry(firstGeometry(QGuiApplication::primaryScreen()->availableGeometry()));
    connect(new ThemeWatcher(this), &ThemeWatcher::darkChanged, this, &MainWindow::showDesktopTheme);
}

QRect MainWindow::firstGeometry(const QRect &available) const
{
    const int line = fontMetrics().height();
    const QSize size = QSize(widthInLines * line, heightInLines * line)
                           .boundedTo(available.size() - QSize(0, titleBarHeight));
    QRect geometry(QPoint(), size);
    geometry.moveCenter(available.center() + QPoint(0, titleBarHeight / 2));
    return geometry;
}

QWidget *MainWindow::createSidebar()
{
    auto *const side = new QFrame;
    side->setObjectName(QStringLiteral("side"));
    side->setFixedWidth(sideInLines * fontMetrics().height());
    m_navigation->setObjectName(QStringLiteral("navigation"));
    m_navigation->setAccessibleName(tr("Pages"));
    m_navigation->setIconSize(QSize(20, 20));
    m_navigation->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(m_navigation, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    connect(m_appearance, QOverload<int>::of(&Choice::activated), this, &MainWindow::chooseAppearance);

    auto *const layout = new QVBoxLayout(side);
    layout->setContentsMargins(14, 22, 14, 18);
    QLabel *const name = heading(tr("ZyBase"));
    QLabel *const motto = hint(tr("All services in one window"));
    for (QLabel *const label : {name, motto})
        label->setContentsMargins(10, 0, 0, 0);
    layout->addWidget(name);
    layout->addWidget(motto);
    layout->addSpacing(14);
    layout->addWidget(m_navigation, 1);
    layout->addLayout(labelled(tr("Colo&urs"), m_appearance));
    layout->addWidget(m_desktopTheme);
    return side;
}

void MainWindow::fillOffer(const QString &badDescription)
{
    auto *const card = new Card;
    QHBoxLayout *const row = card->addRow();
    row->addWidget(m_offerText, 1);
    row->addWidget(m_startServices);
    auto *const layout = new QVBoxLayout(m_offer);
    layout->setContentsMargins(28, 14, 28, 8);
    layout->addWidget(card);
    QString text = tr("No local services run. They answer requests, offer files to download and show the "
                      "reports that arrive, all on this machine.");
    if (!badDescription.isEmpty())
        text = tr("LOCAL_SERVICES is %1, which describes no running services.").arg(badDescription)
               + QLatin1Char('\n') + text;
    m_offerText->setText(text);
    connect(m_startServices, &QPushButton::clicked, this, [this] {
        setAvailable(m_startServices, false);
        m_offerText->setText(tr("Starting the local services …"));
        m_launcher.start();
    });
    connect(&m_launcher, &ServicesLauncher::started, this, &MainWindow::useServices);
    connect(&m_launcher, &ServicesLauncher::failed, this, &MainWindow::showLaunchFailure);
}

void MainWindow::addPages(const QString &directory)
{
    add(Glyph::Log, new LogPage(directory));
    add(Glyph::Request, new RequestPage);
    add(Glyph::Download, new DownloadPage(directory));
    add(Glyph::Archive, new ArchivePage(directory));
    add(Glyph::QrCode, new QrCodePage);
    add(Glyph::Machine, new MachinePage);
    add(Glyph::Reports, new ReportsPage);
    m_navigation->setCurrentRow(0);
}

void MainWindow::add(Glyph glyph, Page *page)
{
    auto *const item = new QListWidgetItem(glyphIcon(glyph), page->title(), m_navigation);
    item->setData(Qt::UserRole, int(glyph));
    item->setToolTip(QStringLiteral("Ctrl+%1").arg(m_navigation->count()));
    m_pages->addWidget(page);
}

void MainWindow::addShortcuts()
{
    const auto add = [this](int key, auto action) {
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this, action);
    };
    for (int page = 0; page < m_pages->count(); ++page)
        add(ctrl + Qt::Key_1 + page, [this, page] { m_navigation->setCurrentRow(page); });
    add(ctrl + Qt::Key_Return, [this] { pressButton("primary"); });
    add(ctrl + Qt::Key_Enter, [this] { pressButton("primary"); });
    add(Qt::Key_Escape, [this] { pressButton("cancel"); });
}

// If the page has several such buttons, the one beside the control with the focus is pressed.
void MainWindow::pressButton(const char *kind) const
{
    QPushButton *found = nullptr;
    const auto buttons = m_pages->currentWidget()->findChildren<QPushButton *>();
    for (QPushButton *const button : buttons) {
        if (button->property("kind") != QLatin1String(kind))
            continue;
        if (!found || button->parentWidget()->isAncestorOf(focusWidget()))
            found = button;
    }
    if (found)
        found->click();
}

QList<Page *> MainWindow::pages() const
{
    return m_pages->findChildren<Page *>(QString(), Qt::FindDirectChildrenOnly);
}

void MainWindow::useServices(const DevelopmentServices &services)
{
    m_offer->hide();
    for (Page *const page : pages())
        page->useServices(services);
}

void MainWindow::showLaunchFailure(const QString &cause)
{
    m_offer->show();
    m_offerText->setText(tr("The local services have ended: %1").arg(cause));
    setAvailable(m_startServices, true);
}

void MainWindow::stopServices()
{
    for (Page *const page : pages())
        page->stop();
}

void MainWindow::chooseAppearance()
{
    const int choice = m_appearance->currentIndex();
    QString theme;
    if (choice == SameAsDesktop && !m_isDesktopDark)
        theme = tr("Reading the desktop …");
    else if (choice == SameAsDesktop)
        theme = *m_isDesktopDark ? tr("The desktop is dark") : tr("The desktop is light");
    m_desktopTheme->setText(theme);
    showAppearance(choice == SameAsDesktop ? m_isDesktopDark.value_or(false) : choice == Dark);
}

void MainWindow::showDesktopTheme(bool isDark)
{
    m_isDesktopDark = isDark;
    chooseAppearance();
}

void MainWindow::showAppearance(bool isDark)
{
    setAppearance(isDark);
    for (int row = 0; row < m_navigation->count(); ++row) {
        QListWidgetItem *const item = m_navigation->item(row);
        item->setIcon(glyphIcon(Glyph(item->data(Qt::UserRole).toInt())));
    }
}
