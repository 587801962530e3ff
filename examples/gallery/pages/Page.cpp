// SPDX-License-Identifier: 0BSD

#include "Page.h"

#include "../widgets/Card.h"
#include "../widgets/ElidedLabel.h"
#include "../widgets/controls.h"
#include "Code.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QVariant>

namespace {

constexpr int maxWidthInLines = 76;

} // namespace

Page::Page(const QString &title, const QString &purpose, const char *header, const char *source,
           QWidget *parent)
    : QScrollArea(parent)
    , m_title(title)
    , m_showCode(button(tr("Show the &code"), "showCode"))
    , m_column(new QVBoxLayout)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // it scrolls to the control that has the focus
    setWidgetResizable(true);
    setAlignment(Qt::AlignHCenter);

    auto *const content = new QWidget;
    content->setMaximumWidth(maxWidthInLines * fontMetrics().height());
    auto *const cards = new QWidget;
    cards->setLayout(m_column);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(14);
    QWidget *const code = createCodeCard(source);
    QLabel *const text = quiet(purpose);
    text->setWordWrap(true);

    auto *const layout = new QVBoxLayout(content);
    layout->setContentsMargins(28, 22, 28, 24);
    layout->setSpacing(14);
    layout->addLayout(createHead(header));
    layout->addWidget(text);
    layout->addWidget(cards, 1);
    layout->addWidget(code, 1);
    setWidget(content);

    m_showCode->setCheckable(true);
    code->hide();
    connect(m_showCode, &QPushButton::toggled, code, &QWidget::setVisible);
    connect(m_showCode, &QPushButton::toggled, cards, &QWidget::setHidden);
}

QLayout *Page::createHead(const char *header)
{
    auto *const row = new QHBoxLayout;
    QLabel *const name = heading(m_title);
    name->setProperty("kind", QStringLiteral("title"));
    auto *const path = new ElidedLabel(QLatin1String(header), "path", "");
    path->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    row->setSpacing(14);
    row->addWidget(name);
    row->addWidget(path, 1);
    row->addWidget(m_showCode);
    return row;
}

QWidget *Page::createCodeCard(const char *source)
{
    auto *const card = new Card;
    QHBoxLayout *const row = card->addRow();
    QPlainTextEdit *const code = textView(tr("Code"), "code");
    QPushButton *const copy = button(tr("Cop&y"), "copyCode");
    code->setPlainText(codeOf(source));
    row->addWidget(hint(tr("The page runs this code. Its licence, 0BSD, has no conditions.")), 1);
    row->addWidget(copy);
    card->column()->addWidget(code, 1);
    connect(copy, &QPushButton::clicked, this,
            [code] { QGuiApplication::clipboard()->setText(code->toPlainText()); });
    return card;
}

Card *Page::addCard(const QString &title, int stretch)
{
    auto *const card = new Card(title);
    m_column->addWidget(card, stretch);
    return card;
}
