// SPDX-License-Identifier: LGPL-2.1-or-later

#include "MemoryFile.h"

#include "Fuzzing.h"

#include <QFile>

#include <sys/mman.h>
#include <unistd.h>

MemoryFile::MemoryFile()
    : m_descriptor(::memfd_create("fuzz", MFD_CLOEXEC))
    , m_path(QStringLiteral("/proc/self/fd/%1").arg(m_descriptor))
{
    FUZZ_VERIFY(m_descriptor >= 0);
}

MemoryFile::~MemoryFile()
{
    ::close(m_descriptor);
}

QByteArray MemoryFile::read() const
{
    QFile file(m_path);
    FUZZ_VERIFY(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void MemoryFile::write(const QByteArray &content)
{
    FUZZ_VERIFY(::ftruncate(m_descriptor, 0) == 0);
    FUZZ_VERIFY(::pwrite(m_descriptor, content.constData(), std::size_t(content.size()), 0)
                == content.size());
}
