// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "FakeTools.h"
#include "Gallery.h"
#include "LocalWorld.h"
#include "TemporaryHome.h"
#include "VirtualDisplay.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/** What a test of the gallery plays on: a display, a home, the local services and a desktop's settings. */
class Stage
{
public:
    static constexpr int patience = 60000;

    /** Runs the test on a display of its own, or without one where there can be none. */
    template <class Test> static int run(int argc, char **argv)
    {
        VirtualDisplay display;
        const std::unique_ptr<QCoreApplication> application =
            createApplication(argc, argv, VirtualDisplay::isAvailable() && display.start());
        Test test;
        return QTest::qExec(&test, argc, argv);
    }

    /** Why the test must be skipped; null when it needn't. */
    static const char *obstacle();

    Stage();

    LocalWorld &world() { return m_world; }
    const DevelopmentServices &services() const { return m_services; }
    QString homePath(const QString &name) const { return m_home.filePath(name); }

    /** What the desktop's settings say, such as "Adwaita-dark"; not while they hang. */
    void setTheme(const QByteArray &theme);
    void holdTheme();
    void releaseTheme();

    /** A gallery in an empty folder, or in that of the last one, once it shows and knows the desktop's look.
     */
    Gallery &open(const QByteArray &theme = "Adwaita-light");
    Gallery &reopen(const DevelopmentServices &services);

    Gallery &gallery() { return *m_gallery; }
    QString filePath(const QString &name) const { return m_directory->filePath(name); }
    bool isDark() const;

    void close();

    /** What the gallery's own main() gives at the end to all that was stopped. */
    static void lastMoment();

private:
    Q_DISABLE_COPY(Stage)
    static std::unique_ptr<QCoreApplication> createApplication(int &argc, char **argv, bool hasDisplay);

    TemporaryHome m_home;
    FakeTools m_tools;
    LocalWorld m_world;
    DevelopmentServices m_services;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<Gallery> m_gallery;
};
