// SPDX-License-Identifier: 0BSD

#pragma once

#include "Glyphs.h"
#include "ServicesLauncher.h"

#include <DevelopmentServices.h>

#include <QWidget>

#include <optional>

class Choice;
class Page;
class QLabel;
class QListWidget;
class QPushButton;
class QStackedWidget;

/** The gallery: a page for each service, and the choice of a light or dark theme. */
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    /**
     * @param directory of log, downloads and extracted files; it is created
     * @param services empty if none run; the window then offers to start them
     * @param badDescription the path in LOCAL_SERVICES if it describes no services
     */
    MainWindow(const QString &directory, const DevelopmentServices &services,
               const QString &badDescription = QString(), QWidget *parent = nullptr);

    /** Starts to stop everything that runs. The event loop must run until it has stopped. */
    void stopServices();

    /** Returns the geometry of a new window on a screen with this available geometry. */
    QRect firstGeometry(const QRect &available) const;

private:
    QWidget *createSidebar();
    void fillOffer(const QString &badDescription);
    void addPages(const QString &directory);
    void add(Glyph glyph, Page *page);
    void addShortcuts();
    void pressButton(const char *kind) const;
    void useServices(const DevelopmentServices &services);
    void showLaunchFailure(const QString &cause);
    void chooseAppearance();
    void showDesktopTheme(bool isDark);
    void showAppearance(bool isDark);
    QList<Page *> pages() const;

    QListWidget *m_navigation;
    QStackedWidget *m_pages;
    Choice *m_appearance;
    QLabel *m_desktopTheme;
    QWidget *m_offer; ///< to start the local services
    QLabel *m_offerText;
    QPushButton *m_startServices;
    ServicesLauncher m_launcher;
    std::optional<bool> m_isDesktopDark; ///< nothing until it is read
};
