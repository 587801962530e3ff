// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Screen.h"

#include "Gallery.h"
#include "Pictures.h"

#include <Language.h>
#include <pages/Page.h>

#include <QApplication>
#include <QScrollBar>
#include <QStackedWidget>
#include <QStyleFactory>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

void print(const QString &problem)
{
    std::puts(qUtf8Printable(QLatin1String(Screen::mark) + problem));
}

// Whether the widget has less room than its text needs.
bool isClipped(const QWidget *widget)
{
    const bool hasText = qobject_cast<const QLabel *>(widget) || qobject_cast<const QAbstractButton *>(widget)
                         || qobject_cast<const QComboBox *>(widget);
    return hasText && widget->width() < widget->minimumSizeHint().width();
}

void checkControls(const QWidget *parent, const QString &page)
{
    const QRect room(QPoint(), parent->size());
    const auto widgets = parent->findChildren<QWidget *>();
    for (const QWidget *const widget : widgets) {
        if (!widget->isVisible())
            continue;
        const QRect area(widget->mapTo(parent, QPoint()), widget->size());
        const bool isContent =
            widget->parentWidget()->objectName() == QLatin1String("qt_scrollarea_viewport");
        if (isClipped(widget) || (!isContent && (area.left() < 0 || area.right() > room.right())))
            print(QStringLiteral("%1: %2 %3 does not fit")
                      .arg(page, QLatin1String(widget->metaObject()->className()), widget->objectName()));
    }
}

void checkPage(Gallery &gallery, const Page *page, const QString &name)
{
    QApplication::processEvents();
    if (page->horizontalScrollBar()->maximum() > 0)
        print(QStringLiteral("%1 is %2 pixels wider than its area")
                  .arg(name)
                  .arg(page->horizontalScrollBar()->maximum()));
    checkControls(page->widget(), name);
    if (qEnvironmentVariableIsSet("ZYBASE_SAVE_SCREENS"))
        Pictures::save(gallery.picture(), name);
}

void checkWindow(const QString &screen, const QSize &size, const QString &language)
{
    const QTemporaryDir directory;
    Gallery gallery(directory.path(), {});
    gallery.window().resize(size);
    QApplication::processEvents();
    if (gallery.window().size() != size)
        print(QStringLiteral("the window is larger than ") + screen);
    gallery.type("downloadUrl", QStringLiteral("http://127.0.0.1:1/") + QString(200, QLatin1Char('n')));
    gallery.click("downloadStart");
    auto *const pages = gallery.window().findChild<QStackedWidget *>();
    for (int number = 0; number < pages->count(); ++number) {
        gallery.open(number);
        auto *const page = static_cast<Page *>(pages->widget(number));
        const QString name = QStringLiteral("%1-%2-%3").arg(number + 1).arg(screen, language);
        checkPage(gallery, page, name);
        page->findChild<QAbstractButton *>(QStringLiteral("showCode"))->click();
        checkPage(gallery, page, name + QStringLiteral("-code"));
    }
    checkControls(gallery.find("side"), screen);
}

} // namespace

int Screen::check(int argc, char **argv)
{
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    const QStringList arguments = QCoreApplication::arguments();
    const QSize size(arguments.value(3).toInt(), arguments.value(4).toInt());
    const double factor = qEnvironmentVariable("QT_SCALE_FACTOR").toDouble();
    if (application.devicePixelRatio() < factor)
        print(QStringLiteral("the scale factor is not used"));
    for (const char *language : {"en", "zh_CN"}) {
        setLanguage(QLatin1String(language));
        checkWindow(arguments.value(2), size / factor, QLatin1String(language));
    }
    // A query of the desktop's theme may still run in its thread.
    std::fflush(stdout);
    std::_Exit(0);
}
