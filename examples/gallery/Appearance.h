// SPDX-License-Identifier: 0BSD

#pragma once

#include <QColor>

/** The gallery's colours. The style sheet uses these names. */
struct Colours
{
    QColor window;
    QColor side;
    QColor card;
    QColor field;
    QColor line;
    QColor text;
    QColor quiet; ///< less important text
    QColor accent;
    QColor onaccent; ///< text on the accent
    QColor soft; ///< background of the selection
    QColor good;
    QColor warning;
    QColor bad;
};

/** Sets the light or the dark theme for the whole application. */
void setAppearance(bool isDark);

/** Returns the colours of the current theme. */
const Colours &currentColours();
