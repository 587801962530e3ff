// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QColor>

/** The gallery's colours. The style sheet knows them by these names. */
struct Colours
{
    QColor window;
    QColor side;
    QColor card;
    QColor field;
    QColor line;
    QColor text;
    QColor quiet; ///< text of second rank
    QColor accent;
    QColor onaccent; ///< text on the accent
    QColor soft; ///< a breath of the accent, behind what is selected
    QColor good;
    QColor warning;
    QColor bad;
};

/** Gives the whole application the light or the dark look. */
void setAppearance(bool isDark);

/** The colours of the look that was set last. */
const Colours &currentColours();
