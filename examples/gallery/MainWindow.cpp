// SPDX-License-Identifier: 0BSD

#include "MainWindow.h"

#include "Appearance.h"
#include "Background.h"
#include "pages/ArchivePage.h"
#include "pages/DownloadPage.h"
#include "pages/LogPage.h"
#include "pages/MachinePage.h"
#include "pages/QrCodePage.h"
#include "pages/ReportsPage.h"
#include "pages/RequestPage.h"
#include "widgets/Choice.h"
#include "widgets/controls.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QDir>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QListWidget>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>

namespace {

enum Appearances { SameAsDesktop, Light, Dark };

constexpr int sideWidth = 212;
constexpr int navigationHeight = 40;
const QSize initialSize(1040, 720);

// Files of the local services.
constexpr const char *smallFile = "files/version.json";
constexpr const char *slowFile = "bytes/40000000/holiday.zip?rate=4000000";

// Returns an empty string if there are no local services.
QString urlBelow(const QString &address, const char *path)
{
    return address.isEmpty() ? QString() : address + QLatin1String(path);
}

} // namespace

MainWindow::MainWindow(const QString &directory, const DevelopmentServices &services, QWidget *parent)
    : QWidget(parent)
    , m_navigation(new QListWidget)
    , m_pages(new QStackedWidget)
    , m_appearance(new Choice({tr("Same as desktop"), tr("Light"), tr("Dark")}, "appearance"))
    , m_desktopTheme(hint(QString(), "desktopTheme"))
{
    Q_INIT_RESOURCE(gallery);
    QDir().mkpath(directory);
    setWindowTitle(tr("ZyBase gallery"));
    setAppearance(false);

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(createSidebar());
    layout->addWidget(createScrollArea(), 1);

    add(Glyph::Log, new LogPage(directory));
    add(Glyph::Request, new RequestPage(urlBelow(services.downloads, smallFile)));
    add(Glyph::Download, new DownloadPage(urlBelow(services.downloads, slowFile), directory));
    add(Glyph::Archive, new ArchivePage(directory));
    add(Glyph::QrCode, new QrCodePage);
    add(Glyph::Machine, new MachinePage);
    add(Glyph::Reports, new ReportsPage(services.statistics));
    m_navigation->setCurrentRow(0);
    resize(initialSize.boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    followDesktop();
}

QWidget *MainWindow::createSidebar()
{
    auto *const side = new QFrame;
    side->setObjectName(QStringLiteral("side"));
    side->setFixedWidth(sideWidth);
    m_navigation->setObjectName(QStringLiteral("navigation"));
    m_navigation->setIconSize(QSize(20, 20));
    m_navigation->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(m_navigation, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    connect(m_appearance, QOverload<int>::of(&Choice::activated), this, &MainWindow::chooseAppearance);

    auto *const layout = new QVBoxLayout(side);
    layout->setContentsMargins(14, 26, 14, 20);
    QLabel *const name = heading(tr("ZyBase"));
    QLabel *const motto = hint(tr("All services in one window"));
    for (QLabel *const label : {name, motto, m_desktopTheme})
        label->setContentsMargins(10, 0, 0, 0);
    layout->addWidget(name);
    layout->addWidget(motto);
    layout->addSpacing(18);
    layout->addWidget(m_navigation, 1);
    layout->addWidget(m_appearance);
    layout->addWidget(m_desktopTheme);
    return side;
}

// A small screen shows a part of a page.
QWidget *MainWindow::createScrollArea()
{
    auto *const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(m_pages);
    return area;
}

void MainWindow::add(Glyph glyph, Page *page)
{
    auto *const item = new QListWidgetItem(glyphIcon(glyph), page->title(), m_navigation);
    item->setData(Qt::UserRole, int(glyph));
    item->setSizeHint(QSize(0, navigationHeight));
    m_pages->addWidget(page);
}

void MainWindow::stopServices()
{
    for (Page *const page : m_pages->findChildren<Page *>(QString(), Qt::FindDirectChildrenOnly))
        page->stop();
}

void MainWindow::chooseAppearance(int choice)
{
    if (choice == SameAsDesktop)
        return followDesktop();
    m_desktopTheme->clear();
    showAppearance(choice == Dark);
}

// IsDarkTheme() starts up to eight programs, each of which may run for 30 seconds.
void MainWindow::followDesktop()
{
    m_desktopTheme->setText(tr("Reading the desktop …"));
    inBackground(this, &ZyBase::CSystemUtils::IsDarkTheme, [this](bool isDark) {
        if (m_appearance->currentIndex() != SameAsDesktop)
            return;
        m_desktopTheme->setText(isDark ? tr("The desktop is dark") : tr("The desktop is light"));
        showAppearance(isDark);
    });
}

void MainWindow::showAppearance(bool isDark)
{
    setAppearance(isDark);
    for (int row = 0; row < m_navigation->count(); ++row) {
        QListWidgetItem *const item = m_navigation->item(row);
        item->setIcon(glyphIcon(Glyph(item->data(Qt::UserRole).toInt())));
    }
}
