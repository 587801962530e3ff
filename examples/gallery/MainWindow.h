// SPDX-License-Identifier: 0BSD

#pragma once

#include "Glyphs.h"

#include <DevelopmentServices.h>

#include <QWidget>

class Choice;
class Page;
class QLabel;
class QListWidget;
class QStackedWidget;

/** The gallery: a page for each service, and the choice of a light or dark theme. */
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    /** @param directory of log, downloads and extracted files; it is created */
    MainWindow(const QString &directory, const DevelopmentServices &services, QWidget *parent = nullptr);

    /** Starts to stop everything that runs. The event loop must run until it has stopped. */
    void stopServices();

private:
    QWidget *createSidebar();
    QWidget *createScrollArea();
    void add(Glyph glyph, Page *page);
    void chooseAppearance(int choice);
    void followDesktop();
    void showAppearance(bool isDark);

    QListWidget *m_navigation;
    QStackedWidget *m_pages;
    Choice *m_appearance;
    QLabel *m_desktopTheme;
};
