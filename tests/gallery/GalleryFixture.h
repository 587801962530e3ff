// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "FakeTools.h"
#include "Gallery.h"
#include "GalleryNetwork.h"
#include "TemporaryHome.h"
#include "VirtualDisplay.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/** Provides a test with a gallery, a display, a home directory, local services and desktop settings. */
class GalleryFixture
{
public:
    static constexpr int timeoutMs = 60000;

    /** Runs the test on a virtual display, or without a display if none can be started. */
    template <class Test> static int run(int argc, char **argv)
    {
        VirtualDisplay display;
        const std::unique_ptr<QCoreApplication> application =
            createApplication(argc, argv, VirtualDisplay::isAvailable() && display.start());
        Test test;
        return QTest::qExec(&test, argc, argv);
    }

    /** Returns why the test must be skipped, or null. */
    static const char *skipReason();

    GalleryFixture();

    GalleryNetwork &network() { return m_network; }
    const DevelopmentServices &services() const { return m_services; }
    QString homePath(const QString &name) const { return m_home.filePath(name); }

    /** Sets the theme of the desktop, for example "Adwaita-dark". */
    void setTheme(const QByteArray &theme);

    /** Blocks all reads of the theme until releaseTheme(). */
    void holdTheme();
    void releaseTheme();

    /** Opens a gallery in an empty directory and waits until it shows its window and the desktop's theme. */
    Gallery &open(const QByteArray &theme = "Adwaita-light");
    /** Opens a gallery in the directory of the previous one. */
    Gallery &reopen(const DevelopmentServices &services);

    Gallery &gallery() { return *m_gallery; }
    QString filePath(const QString &name) const { return m_directory->filePath(name); }
    bool isDark() const;

    void close();

    /** Waits until the requests that have ended are deleted: a request deletes itself one second later. */
    static void waitForDeletionOfRequests();

private:
    Q_DISABLE_COPY(GalleryFixture)
    static std::unique_ptr<QCoreApplication> createApplication(int &argc, char **argv, bool hasDisplay);

    TemporaryHome m_home;
    FakeTools m_tools;
    GalleryNetwork m_network;
    DevelopmentServices m_services;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<Gallery> m_gallery;
};
