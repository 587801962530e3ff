// SPDX-License-Identifier: 0BSD

#pragma once

#include <QIcon>

/** The icons of the navigation. */
enum class Glyph { Log, Request, Download, Archive, QrCode, Machine, Reports };

/** Returns the icon in the colours of the current theme. */
QIcon glyphIcon(Glyph glyph);

/** Returns the icon of the application, as in resources/zybase-gallery.svg. */
QIcon applicationIcon();
