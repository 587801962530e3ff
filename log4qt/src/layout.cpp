// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/layout.h>

namespace Log4Qt {
inline namespace zy {

Layout::Layout(QObject *parent)
    : QObject(parent)
{
}

Layout::~Layout() = default;

QString Layout::header() const
{
    return QString();
}

QString Layout::footer() const
{
    return QString();
}

void Layout::activateOptions()
{
}

} // namespace zy
} // namespace Log4Qt
