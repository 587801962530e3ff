// SPDX-License-Identifier: LGPL-2.1-or-later

// Input: time in milliseconds (8 bytes), date pattern of the file suffix.

#include "Fuzzing.h"

#include "rolloverperiod.h"

using Log4Qt::RollOverPeriod;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    // The years 1 to 9999: clocks show no others.
    constexpr std::int64_t firstTime = -62135596800000;
    constexpr std::int64_t lastTime = 253402300799999;
    Input input(data, sizeBytes);
    const std::int64_t milliseconds = qBound(firstTime, input.takeNumber(), lastTime);
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);

    const RollOverPeriod period(QString::fromUtf8(input.takeRest()));
    const QDateTime start = period.start(time);
    const QDateTime next = period.next(time);
    FUZZ_VERIFY(start <= time && time < next);
    FUZZ_VERIFY(period.start(start) == start && period.next(start) == next);
    FUZZ_VERIFY(period.suffix(start) == period.suffix(time));
    return 0;
}
