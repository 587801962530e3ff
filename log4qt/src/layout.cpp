// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/layout.h>

namespace Log4Qt {
inline namespace zy {

Layout::Layout(QObject *parent)
    : QObject(parent)
{
}

Layout::~Layout() = default;

QString Layout::footer() const
{
    return m_footer;
}

QString Layout::header() const
{
    return m_header;
}

void Layout::setFooter(const QString &footer)
{
    m_footer = footer;
}

void Layout::setHeader(const QString &header)
{
    m_header = header;
}

void Layout::activateOptions()
{
}

} // namespace zy
} // namespace Log4Qt
