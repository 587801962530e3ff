// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Glyphs.h"

#include <DevelopmentServices.h>

#include <QWidget>

class Choice;
class Page;
class QLabel;
class QListWidget;
class QStackedWidget;

/** The gallery: a page for each service, and the choice of light or dark. */
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    /** @param directory the folder that log, downloads and extracted files go to; it is made */
    MainWindow(const QString &directory, const DevelopmentServices &services, QWidget *parent = nullptr);

    /** Has all that runs stop, which it does while the event loop runs on for a moment. */
    void stopServices();

private:
    QWidget *createSide();
    void add(Glyph glyph, Page *page);
    void chooseAppearance(int choice);
    void followDesktop();
    void showAppearance(bool isDark);

    QListWidget *m_navigation;
    QStackedWidget *m_pages;
    Choice *m_appearance;
    QLabel *m_verdict;
};
