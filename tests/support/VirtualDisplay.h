// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QProcess>

/** An X display without a screen, for this process and all that it starts. What runs on it ends with it. */
class VirtualDisplay
{
public:
    /** False where Xvfb isn't installed; tests that need it are skipped by name. */
    static bool isAvailable();

    VirtualDisplay() = default;
    ~VirtualDisplay();

    /** Before the application object is made. @return false when this user can start none */
    bool start();

private:
    Q_DISABLE_COPY(VirtualDisplay)

    QProcess m_process;
};
