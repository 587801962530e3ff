// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Resolver.h"

#include <dlfcn.h>
#include <netdb.h>

#include <condition_variable>
#include <mutex>

namespace {

std::mutex mutex;
std::condition_variable isReleased;
bool isHeld = false;
int code = 0;
QList<QByteArray> names;

} // namespace

extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char *node, const char *service,
                                                                  const addrinfo *hints, addrinfo **result)
{
    std::unique_lock<std::mutex> lock(mutex);
    names.append(QByteArray(node));
    isReleased.wait(lock, [] { return !isHeld; });
    if (code != 0)
        return code;
    static const auto original = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return original("192.0.2.1", service, hints, result);
}

namespace Resolver {

void answerWith(int newCode)
{
    const std::lock_guard<std::mutex> lock(mutex);
    code = newCode;
}

void hold()
{
    const std::lock_guard<std::mutex> lock(mutex);
    isHeld = true;
}

void release()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isHeld = false;
    }
    isReleased.notify_all();
}

QList<QByteArray> lookups()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return names;
}

} // namespace Resolver
