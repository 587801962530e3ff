// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QVBoxLayout>
#include <QWidget>

class Card;

/** A page of the gallery: what the service is for, its header, and cards below that. */
class Page : public QWidget
{
    Q_OBJECT

public:
    Page(const QString &title, const QString &purpose, const char *header, QWidget *parent = nullptr);

    QString title() const { return m_title; }

    /** Has what runs stop. Once, at the application's end; the event loop runs on for a moment. */
    virtual void stop() {}

protected:
    Card *addCard(const QString &title = QString(), int stretch = 0);
    QVBoxLayout *column() const { return m_column; }

private:
    const QString m_title;
    QVBoxLayout *m_column;
};
