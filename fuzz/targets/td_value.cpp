// SPDX-License-Identifier: LGPL-2.1-or-later

// The input is one line of the page with the location.

#include "Fuzzing.h"

#include <ZyBase/netinfo/CNetworkUtils.h>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    const QString line = QString::fromUtf8(reinterpret_cast<const char *>(data), int(sizeBytes));
    const QString value = ParseTdValue(line);
    FUZZ_VERIFY(!value.contains(QLatin1Char('<')));
    FUZZ_VERIFY(line.contains(value));
    return 0;
}
