// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

// The gallery's plain controls. Texts are shown as they stand: what comes from outside is never taken for
// HTML. The name, where one is given, is the objectName.

QPushButton *button(const QString &text, const char *name);

/** The one button of a page that its service is started by. */
QPushButton *primaryButton(const QString &text, const char *name);

QLineEdit *field(const QString &text, const QString &placeholder, const char *name);

/** A text of several lines in letters of one width, to be read only. */
QPlainTextEdit *textView(const char *name);

/** A list with these columns, of which the first takes what room there is. */
QTreeWidget *table(const QStringList &columns, const char *name);

QLabel *heading(const QString &text);
QLabel *quiet(const QString &text);

/** A value that can be marked and copied. */
QLabel *value(const QString &text, const char *name);

/** A large one. */
QLabel *figure(const QString &text, const char *name);

/** Small explaining text, as many lines as it takes. */
QLabel *hint(const QString &text, const char *name = "");
