// SPDX-License-Identifier: 0BSD

#include "Page.h"

#include "../widgets/Card.h"
#include "../widgets/controls.h"

#include <QLabel>
#include <QVariant>

namespace {

QLabel *withKind(QLabel *label, const char *kind)
{
    label->setProperty("kind", QLatin1String(kind));
    return label;
}

} // namespace

Page::Page(const QString &title, const QString &purpose, const char *header, QWidget *parent)
    : QWidget(parent)
    , m_title(title)
    , m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins(32, 26, 32, 28);
    m_column->setSpacing(16);

    auto *const head = new QHBoxLayout;
    head->addWidget(withKind(heading(title), "title"));
    head->addStretch(1);
    QLabel *const path = withKind(value(QLatin1String(header), ""), "path");
    path->setWordWrap(false);
    head->addWidget(path, 0, Qt::AlignBottom);
    QLabel *const text = quiet(purpose);
    text->setWordWrap(true);
    m_column->addLayout(head);
    m_column->addWidget(text);
}

Card *Page::addCard(const QString &title, int stretch)
{
    auto *const card = new Card(title);
    m_column->addWidget(card, stretch);
    return card;
}
