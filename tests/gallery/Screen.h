// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

/** Checks the layout of the gallery on a screen, in a process whose environment sets the scale factor. */
namespace Screen {

/** The first argument of such a process. The others are the screen's name, and its width and height in
 * pixels. */
const QString option = QStringLiteral("--screen");

/** Begins the lines of check(); the library prints other lines. */
constexpr const char *mark = "screen: ";

/**
 * Prints each control that does not fit, in each language. Saves pictures of the pages if ZYBASE_SAVE_SCREENS
 * is set.
 *
 * @return the exit code
 */
int check(int argc, char **argv);

} // namespace Screen
