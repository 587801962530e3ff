// SPDX-License-Identifier: 0BSD

#include "Appearance.h"

#include <QApplication>
#include <QFile>
#include <QMap>
#include <QPalette>

namespace {

const Colours &light()
{
    static const Colours colours {0xf3f4f8, 0xfbfbfd, 0xffffff, 0xf8f9fb, 0xdfe3ea, 0x1c2230, 0x5f6980,
                                  0x4153c9, 0xffffff, 0xe8ebfb, 0x1f7a3d, 0x9a5b00, 0xc0282d};
    return colours;
}

const Colours &dark()
{
    static const Colours colours {0x12151c, 0x171b24, 0x1c212c, 0x151922, 0x2d3443, 0xe8ebf2, 0x9aa5ba,
                                  0x8c9bff, 0x11141d, 0x272e4d, 0x6fd592, 0xf2b75a, 0xff8b8b};
    return colours;
}

bool isDarkAppearance = false;

QPalette paletteOf(const Colours &colours)
{
    QPalette palette(colours.text, colours.card, colours.line, colours.line, colours.line, colours.text,
                     colours.text, colours.field, colours.window);
    palette.setColor(QPalette::Highlight, colours.accent);
    palette.setColor(QPalette::HighlightedText, colours.onaccent);
    palette.setColor(QPalette::Link, colours.accent);
    palette.setColor(QPalette::LinkVisited, colours.accent);
#if QT_VERSION >= QT_VERSION_CHECK(5, 12, 0)
    palette.setColor(QPalette::PlaceholderText, colours.quiet);
#endif
    palette.setColor(QPalette::ToolTipBase, colours.card);
    palette.setColor(QPalette::ToolTipText, colours.text);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colours.quiet);
    return palette;
}

// Returns the style sheet, with each "@name" replaced by a colour.
QString styleSheetOf(const Colours &colours)
{
    QFile file(QStringLiteral(":/style.qss"));
    file.open(QIODevice::ReadOnly);
    QString sheet = QString::fromUtf8(file.readAll());
    const QMap<const char *, QColor> names {
        {"@window", colours.window}, {"@side", colours.side},     {"@card", colours.card},
        {"@field", colours.field},   {"@line", colours.line},     {"@text", colours.text},
        {"@quiet", colours.quiet},   {"@accent", colours.accent}, {"@onaccent", colours.onaccent},
        {"@soft", colours.soft},     {"@good", colours.good},     {"@warning", colours.warning},
        {"@bad", colours.bad}};
    for (auto name = names.begin(); name != names.end(); ++name)
        sheet.replace(QLatin1String(name.key()), name.value().name());
    return sheet;
}

} // namespace

const Colours &currentColours()
{
    return isDarkAppearance ? dark() : light();
}

void setAppearance(bool isDark)
{
    isDarkAppearance = isDark;
    QApplication::setPalette(paletteOf(currentColours()));
    qApp->setStyleSheet(styleSheetOf(currentColours()));
}
