// SPDX-License-Identifier: LGPL-2.1-or-later

#include "StandardErrorCapture.h"

#include "Files.h"

#include <unistd.h>

#include <cstdio>

StandardErrorCapture::StandardErrorCapture()
{
    if (ZYBASE_SANITIZED || !m_file.open())
        return;
    m_previous = ::dup(STDERR_FILENO);
    ::dup2(m_file.handle(), STDERR_FILENO);
}

StandardErrorCapture::~StandardErrorCapture()
{
    if (m_previous == -1)
        return;
    std::fflush(stderr);
    ::dup2(m_previous, STDERR_FILENO);
    ::close(m_previous);
}

QStringList StandardErrorCapture::lines()
{
    std::fflush(stderr);
    return m_previous == -1 ? QStringList() : readLines(m_file.fileName());
}
