// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QIcon>

/** The drawings of the navigation. */
enum class Glyph { Log, Request, Download, Archive, QrCode, Machine, Reports };

/** The drawing in the current colours. */
QIcon glyphIcon(Glyph glyph);
