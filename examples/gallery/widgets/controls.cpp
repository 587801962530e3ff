// SPDX-License-Identifier: 0BSD

#include "controls.h"

#include <QVariant>

namespace {

constexpr const char *lostFocusTo = "lostFocusTo";

QLabel *label(const QString &text, const char *kind, const char *name = "")
{
    auto *const result = new QLabel(text);
    result->setObjectName(QLatin1String(name));
    result->setTextFormat(Qt::PlainText);
    result->setProperty("kind", QLatin1String(kind));
    return result;
}

QPushButton *buttonOfKind(const char *kind, const QString &text, const char *name)
{
    QPushButton *const result = button(text, name);
    result->setProperty("kind", QLatin1String(kind));
    return result;
}

} // namespace

QPushButton *button(const QString &text, const char *name)
{
    auto *const result = new QPushButton(text);
    result->setObjectName(QLatin1String(name));
    result->setCursor(Qt::PointingHandCursor);
    return result;
}

QPushButton *primaryButton(const QString &text, const char *name)
{
    return buttonOfKind("primary", text, name);
}

QPushButton *cancelButton(const QString &text, const char *name)
{
    return buttonOfKind("cancel", text, name);
}

// The focus does not return if the user has moved it meanwhile.
void setAvailable(QPushButton *button, bool isAvailable)
{
    if (button->isEnabled() == isAvailable)
        return;
    const QWidget *const window = button->window();
    const bool hadFocus = window->focusWidget() == button;
    button->setEnabled(isAvailable);
    if (hadFocus)
        button->setProperty(lostFocusTo, quintptr(window->focusWidget()));
    const QVariant other = button->property(lostFocusTo);
    if (!isAvailable || !other.isValid())
        return;
    button->setProperty(lostFocusTo, QVariant());
    if (other.value<quintptr>() == quintptr(window->focusWidget()))
        button->setFocus();
}

QLineEdit *field(const QString &text, const QString &placeholder, const char *name)
{
    auto *const result = new QLineEdit(text);
    result->setObjectName(QLatin1String(name));
    result->setPlaceholderText(placeholder);
    result->setCursorPosition(0);
    return result;
}

QPlainTextEdit *textView(const QString &accessibleName, const char *name)
{
    auto *const result = new QPlainTextEdit;
    result->setObjectName(QLatin1String(name));
    result->setAccessibleName(accessibleName);
    result->setReadOnly(true);
    result->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    result->setLineWrapMode(QPlainTextEdit::NoWrap);
    result->setTabChangesFocus(true);
    return result;
}

QBoxLayout *labelled(const QString &label, QWidget *control)
{
    auto *const column = new QVBoxLayout;
    column->setSpacing(4);
    column->addWidget(quiet(label, control));
    column->addWidget(control);
    return column;
}

QLabel *heading(const QString &text)
{
    return label(text, "heading");
}

QLabel *quiet(const QString &text, QWidget *buddy)
{
    QLabel *const result = label(text, "quiet");
    result->setBuddy(buddy);
    return result;
}

QLabel *value(const QString &text, const char *name)
{
    QLabel *const result = label(text, "value", name);
    result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    result->setWordWrap(true);
    return result;
}

QLabel *figure(const QString &text, const char *name)
{
    return label(text, "figure", name);
}

QLabel *hint(const QString &text, const char *name)
{
    QLabel *const result = label(text, "hint", name);
    result->setWordWrap(true);
    return result;
}
