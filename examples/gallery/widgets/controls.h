// SPDX-License-Identifier: 0BSD

#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

// Creates the controls of the gallery. Texts are plain text, never HTML. The name is the objectName.

QPushButton *button(const QString &text, const char *name);

/** Creates the button that starts the service of a page; Ctrl+Return presses it. */
QPushButton *primaryButton(const QString &text, const char *name);

/** Creates the button that stops the service of a page; Escape presses it. */
QPushButton *cancelButton(const QString &text, const char *name);

/** Enables or disables a button. If it loses the focus by that, it has it again when it is enabled. */
void setAvailable(QPushButton *button, bool isAvailable);

QLineEdit *field(const QString &text, const QString &placeholder, const char *name);

/** Creates a read-only view of several lines in a monospace font. */
QPlainTextEdit *textView(const QString &accessibleName, const char *name);

/** Puts a label above the control. "&" marks the character that moves the focus to the control. */
QBoxLayout *labelled(const QString &label, QWidget *control);

QLabel *heading(const QString &text);
QLabel *quiet(const QString &text, QWidget *buddy = nullptr);

/** Creates a label whose text can be selected. */
QLabel *value(const QString &text, const char *name);

/** Creates a label in a large font. */
QLabel *figure(const QString &text, const char *name);

/** Creates a label in a small font that wraps its lines. */
QLabel *hint(const QString &text, const char *name = "");
