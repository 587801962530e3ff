// SPDX-License-Identifier: LGPL-2.1-or-later

// Input: switches of the layout (1 byte), time in milliseconds (8 bytes), date format (1 line), message.

#include "Fuzzing.h"

#include <log4qt/level.h>
#include <log4qt/loggingevent.h>
#include <log4qt/ttcclayout.h>

using Log4Qt::Level;
using Log4Qt::LoggingEvent;
using Log4Qt::TTCCLayout;

namespace {

void configure(TTCCLayout *layout, std::uint8_t switches, const QString &dateFormat)
{
    layout->setCategoryPrefixing(switches & 1);
    layout->setContextPrinting(switches & 2);
    layout->setThreadPrinting(switches & 4);
    layout->setDateFormat(dateFormat);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    Input input(data, sizeBytes);
    const std::uint8_t switches = input.takeByte();
    const std::int64_t time = input.takeNumber();
    const QString dateFormat = QString::fromUtf8(input.takeLine());
    const QString message = QString::fromUtf8(input.takeRest());

    TTCCLayout layout;
    configure(&layout, switches, dateFormat);
    const LoggingEvent event(nullptr, Level(Level::INFO_INT), message, time);
    const QString line = layout.format(event);
    FUZZ_VERIFY(line.endsWith(QLatin1String(" - ") + message + QLatin1Char('\n')));

    // The layout stores the string of the last second: a new layout must give the same line.
    const LoggingEvent later(nullptr, Level(Level::INFO_INT), message, time ^ 255);
    TTCCLayout other;
    configure(&other, switches, dateFormat);
    FUZZ_VERIFY(layout.format(later) == other.format(later));
    FUZZ_VERIFY(layout.format(event) == line);
    return 0;
}
