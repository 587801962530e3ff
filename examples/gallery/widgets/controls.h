// SPDX-License-Identifier: 0BSD

#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

// Creates the controls of the gallery. Texts are plain text, never HTML. The name is the objectName.

QPushButton *button(const QString &text, const char *name);

/** Creates the button that starts the service of a page. */
QPushButton *primaryButton(const QString &text, const char *name);

QLineEdit *field(const QString &text, const QString &placeholder, const char *name);

/** Creates a read-only view of several lines in a monospace font. */
QPlainTextEdit *textView(const char *name);

/** Creates a table whose first column takes the remaining width. */
QTreeWidget *table(const QStringList &columns, const char *name);

QLabel *heading(const QString &text);
QLabel *quiet(const QString &text);

/** Creates a label whose text can be selected. */
QLabel *value(const QString &text, const char *name);

/** Creates a label in a large font. */
QLabel *figure(const QString &text, const char *name);

/** Creates a label in a small font that wraps its lines. */
QLabel *hint(const QString &text, const char *name = "");
