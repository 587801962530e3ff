// SPDX-License-Identifier: 0BSD

#include "Theme.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>

namespace {

QPalette darkPalette()
{
    const QColor window(0x24, 0x26, 0x2b);
    const QColor accent(0x7f, 0xb0, 0xff);
    QPalette palette(window.lighter(140), window); // Qt derives the other colours
    palette.setColor(QPalette::Base, window.darker(125));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::black);
    palette.setColor(QPalette::Link, accent);
    return palette;
}

} // namespace

void setDark(bool isDark)
{
    QApplication::setPalette(isDark ? darkPalette() : QApplication::style()->standardPalette());
}
