// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>

/**
 * Returns the marked lines of a source of pages/, as they are in the source that was built.
 *
 * The lines are between two lines "//! [code]". Several parts are separated by an empty line.
 */
QString codeOf(const char *source);
