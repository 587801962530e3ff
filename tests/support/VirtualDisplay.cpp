// SPDX-License-Identifier: LGPL-2.1-or-later

#include "VirtualDisplay.h"

#include <QStandardPaths>

namespace {

constexpr int timeoutMs = 60000;
const QString program = QStringLiteral("Xvfb");

} // namespace

bool VirtualDisplay::isAvailable()
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

VirtualDisplay::~VirtualDisplay()
{
    m_process.terminate();
    m_process.waitForFinished(timeoutMs);
}

// Xvfb prints the number of a free display when it is ready. It ends with its last client, so it does not
// remain if the test is killed.
bool VirtualDisplay::start()
{
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(program, {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                              QStringLiteral("0"), QStringLiteral("1280x1024x24"), QStringLiteral("-dpi"),
                              QStringLiteral("96"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                              QStringLiteral("-terminate")});
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(timeoutMs))
            return false;
    }
    qputenv("DISPLAY", ":" + m_process.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    // Without OpenGL: its driver is unloaded early and then its memory looks lost to the leak sanitizer.
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    return true;
}
