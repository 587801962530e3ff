// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/ttcclayout.h>

#include "timestampformat.h"

#include <log4qt/loggingevent.h>

namespace Log4Qt {
inline namespace zy {

namespace {

constexpr int levelWidth = 5;
// Time, level, spaces and line feed. Reserving them makes one allocation per line.
constexpr int usualFrameSize = 48;

void appendField(QString *line, const QString &text)
{
    *line += QLatin1Char(' ');
    *line += text;
}

void appendLevel(QString *line, Level level)
{
    const QString word = level.toString();
    appendField(line, word);
    for (int width = word.size(); width < levelWidth; ++width)
        *line += QLatin1Char(' ');
}

} // namespace

TTCCLayout::TTCCLayout(QObject *parent)
    : Layout(parent)
    , m_dateFormat(QStringLiteral("RELATIVE"))
{
    updatePatternFormatter();
}

TTCCLayout::~TTCCLayout() = default;

bool TTCCLayout::categoryPrefixing() const
{
    return m_categoryPrefixing;
}

bool TTCCLayout::contextPrinting() const
{
    return m_contextPrinting;
}

QString TTCCLayout::dateFormat() const
{
    return m_dateFormat;
}

bool TTCCLayout::threadPrinting() const
{
    return m_threadPrinting;
}

void TTCCLayout::setCategoryPrefixing(bool categoryPrefixing)
{
    m_categoryPrefixing = categoryPrefixing;
    updatePatternFormatter();
}

void TTCCLayout::setContextPrinting(bool contextPrinting)
{
    m_contextPrinting = contextPrinting;
    updatePatternFormatter();
}

void TTCCLayout::setDateFormat(const QString &dateFormat)
{
    m_dateFormat = dateFormat;
    updatePatternFormatter();
}

void TTCCLayout::setDateFormat(DateFormat dateFormat)
{
    switch (dateFormat) {
    case NONE:
        return setDateFormat(QStringLiteral("NONE"));
    case ISO8601:
        return setDateFormat(QStringLiteral("ISO8601"));
    case ABSOLUTE:
        return setDateFormat(QStringLiteral("ABSOLUTE"));
    case DATE:
        return setDateFormat(QStringLiteral("DATE"));
    case RELATIVE:
        return setDateFormat(QStringLiteral("RELATIVE"));
    }
}

void TTCCLayout::setThreadPrinting(bool threadPrinting)
{
    m_threadPrinting = threadPrinting;
    updatePatternFormatter();
}

QString TTCCLayout::format(const LoggingEvent &event)
{
    const QString message = event.message();
    QString line;
    line.reserve(usualFrameSize + message.size());
    appendTime(&line, event);
    if (m_threadPrinting)
        line += QLatin1String(" [") + event.threadName() + QLatin1Char(']');
    appendLevel(&line, event.level());
    if (m_categoryPrefixing)
        appendField(&line, event.loggername());
    if (m_contextPrinting)
        appendField(&line, event.ndc());
    line += QLatin1String(" - ");
    line += message;
    line += QLatin1Char('\n');
    return line;
}

void TTCCLayout::updatePatternFormatter()
{
    const std::lock_guard<std::mutex> lock(m_timeMutex);
    m_time = std::make_unique<TimestampFormat>(m_dateFormat);
}

void TTCCLayout::appendTime(QString *line, const LoggingEvent &event)
{
    const std::lock_guard<std::mutex> lock(m_timeMutex);
    m_time->append(line, event);
}

} // namespace zy
} // namespace Log4Qt
