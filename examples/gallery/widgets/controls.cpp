// SPDX-License-Identifier: 0BSD

#include "controls.h"

#include <QHeaderView>
#include <QVariant>

namespace {

QLabel *label(const QString &text, const char *kind, const char *name = "")
{
    auto *const result = new QLabel(text);
    result->setObjectName(QLatin1String(name));
    result->setTextFormat(Qt::PlainText);
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
    QPushButton *const result = button(text, name);
    result->setProperty("kind", QStringLiteral("primary"));
    return result;
}

QLineEdit *field(const QString &text, const QString &placeholder, const char *name)
{
    auto *const result = new QLineEdit(text);
    result->setObjectName(QLatin1String(name));
    result->setPlaceholderText(placeholder);
    result->setCursorPosition(0);
    return result;
}

QPlainTextEdit *textView(const char *name)
{
    auto *const result = new QPlainTextEdit;
    result->setObjectName(QLatin1String(name));
    result->setReadOnly(true);
    result->setLineWrapMode(QPlainTextEdit::NoWrap);
    return result;
}

QTreeWidget *table(const QStringList &columns, const char *name)
{
    auto *const result = new QTreeWidget;
    result->setObjectName(QLatin1String(name));
    result->setHeaderLabels(columns);
    result->setRootIsDecorated(false);
    result->setFocusPolicy(Qt::NoFocus);
    result->setSelectionMode(QAbstractItemView::NoSelection);
    result->header()->setStretchLastSection(false);
    result->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    result->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    return result;
}

QLabel *heading(const QString &text)
{
    return label(text, "heading");
}

QLabel *quiet(const QString &text)
{
    return label(text, "quiet");
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
