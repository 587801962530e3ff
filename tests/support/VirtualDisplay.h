// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QProcess>

/** An X display without a screen, for this process and its child processes. */
class VirtualDisplay
{
public:
    /** Returns false if Xvfb is not installed. */
    static bool isAvailable();

    VirtualDisplay() = default;
    ~VirtualDisplay();

    /** Starts Xvfb. Call it before the application object is created. Returns false after a failure. */
    bool start();

private:
    Q_DISABLE_COPY(VirtualDisplay)

    QProcess m_process;
};
