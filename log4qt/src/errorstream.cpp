// SPDX-License-Identifier: LGPL-2.1-or-later

#include "errorstream.h"

#include <cstdio>

namespace Log4Qt {
inline namespace zy {

void reportError(const QString &message)
{
    std::fprintf(stderr, "log4qt: %s\n", message.toLocal8Bit().constData());
}

} // namespace zy
} // namespace Log4Qt
