// SPDX-License-Identifier: LGPL-2.1-or-later

#include "WriteGuard.h"

#include "Fuzzing.h"

#include <QDir>
#include <QFile>

#include <dlfcn.h>
#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

char directory[PATH_MAX] = ""; // empty if there is no guard
bool hasWritten = false;

// A path with ".." can lead out of the directory, also if it starts there.
bool isAllowed(const char *path)
{
    const std::size_t length = std::strlen(directory);
    const bool isInside = std::strncmp(path, directory, length) == 0 && path[length] == '/';
    return isInside && !std::strstr(path, "/..");
}

// Returns true if the call must fail. Sets errno then.
bool refuses(const char *path)
{
    if (*directory == '\0')
        return false;
    hasWritten = true;
    if (isAllowed(path))
        return false;
    errno = EACCES;
    return true;
}

int removeEntry(const char *path, const struct stat *, int, FTW *)
{
    return std::remove(path);
}

void removeAll(const char *path)
{
    constexpr int descriptors = 16;
    ::nftw(path, removeEntry, descriptors, FTW_DEPTH | FTW_PHYS);
}

template <typename Function> Function nextFunction(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

WriteGuard::WriteGuard()
{
    QByteArray path = QFile::encodeName(QDir::tempPath()) + "/fuzz.XXXXXX";
    FUZZ_VERIFY(::mkdtemp(path.data()));
    FUZZ_VERIFY(path.size() < PATH_MAX);
    std::strcpy(directory, path.constData());
    m_path = QFile::decodeName(path);

    // Make sure that Qt calls the functions below.
    FUZZ_VERIFY(!QFile(QStringLiteral("/dev/null")).open(QIODevice::WriteOnly));
    FUZZ_VERIFY(!QDir().mkdir(QStringLiteral("/dev/null")) && errno == EACCES);
}

WriteGuard::~WriteGuard()
{
    removeAll(directory);
    *directory = '\0';
}

void WriteGuard::clear() const
{
    if (hasWritten)
        removeAll((QFile::encodeName(m_path) + "/target").constData());
    hasWritten = false;
}

// Qt calls these functions of the program instead of those of the C library: they are exported.

extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    using Open = int (*)(const char *, int, ...);
    static const auto next = nextFunction<Open>("open64");
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    const bool isForWriting = (flags & O_ACCMODE) != O_RDONLY || (flags & O_CREAT) != 0;
    return isForWriting && refuses(path) ? -1 : next(path, flags, mode);
}

extern "C" Q_DECL_EXPORT int mkdir(const char *path, mode_t mode) noexcept
{
    using Mkdir = int (*)(const char *, mode_t);
    static const auto next = nextFunction<Mkdir>("mkdir");
    return refuses(path) ? -1 : next(path, mode);
}
