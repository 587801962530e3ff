// SPDX-License-Identifier: 0BSD

#pragma once

/** Sets the dark or the light colours of the whole application. */
void setDark(bool isDark);
