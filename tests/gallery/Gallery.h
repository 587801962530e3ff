// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <MainWindow.h>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTest>
#include <QTreeWidget>

enum Pages { Log, Request, Download, Archive, QrCode, Machine, Reports };

/** A gallery, and the actions of its user. */
class Gallery
{
public:
    Gallery(const QString &directory, const DevelopmentServices &services)
        : m_window(directory, services)
    {
        m_window.show();
    }

    template <class Widget = QWidget> Widget *find(const char *name) const
    {
        auto *const widget = m_window.findChild<Widget *>(QLatin1String(name));
        if (!widget)
            qFatal("The gallery has no widget \"%s\"", name);
        return widget;
    }

    void open(int page) const
    {
        auto *const list = find<QListWidget>("navigation");
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                          list->visualItemRect(list->item(page)).center());
    }
    void click(const char *name) const { QTest::mouseClick(find(name), Qt::LeftButton); }
    void check(const char *name) const
    {
        auto *const box = find<QAbstractButton>(name);
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box->height() / 2));
    }
    void type(const char *name, const QString &text) const
    {
        auto *const line = find<QLineEdit>(name);
        line->selectAll();
        QTest::keyClick(line, Qt::Key_Delete);
        if (text == QString::fromLatin1(text.toLatin1()) && text == QString::fromUtf8(text.toLatin1()))
            return QTest::keyClicks(line, text);
        QApplication::clipboard()->setText(text); // QTest can only type Latin-1 characters
        QTest::keyClick(line, Qt::Key_V, Qt::ControlModifier);
    }
    void choose(const char *name, const QString &item) const
    {
        auto *const choice = find<QComboBox>(name);
        QTest::keyClick(choice, Qt::Key_Home);
        while (choice->currentText() != item && choice->currentIndex() < choice->count() - 1)
            QTest::keyClick(choice, Qt::Key_Down);
    }

    QString text(const char *name) const { return find<QLabel>(name)->text(); }
    QString tone(const char *name) const { return find(name)->property("tone").toString(); }
    QString document(const char *name) const { return find<QPlainTextEdit>(name)->toPlainText(); }
    bool isEnabled(const char *name) const { return find(name)->isEnabled(); }

    /** Returns the rows of a table, with the columns joined by " | ". */
    QStringList rows(const char *name) const
    {
        QStringList result;
        auto *const tree = find<QTreeWidget>(name);
        for (int row = 0; row < tree->topLevelItemCount(); ++row) {
            QStringList columns;
            for (int column = 0; column < tree->columnCount(); ++column)
                columns << tree->topLevelItem(row)->text(column);
            result << columns.join(QStringLiteral(" | "));
        }
        return result;
    }

    MainWindow &window() { return m_window; }

    QImage picture()
    {
        if (QWidget *const focus = QApplication::focusWidget())
            focus->clearFocus();
        QCoreApplication::processEvents(); // a page has its layout after it was shown
        return m_window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

private:
    MainWindow m_window;
};
