// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QIcon>

/** The icons of the navigation. */
enum class Glyph { Log, Request, Download, Archive, QrCode, Machine, Reports };

/** Returns the icon in the colours of the current theme. */
QIcon glyphIcon(Glyph glyph);
