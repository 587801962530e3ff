// SPDX-License-Identifier: 0BSD

#pragma once

#include <QVBoxLayout>
#include <QWidget>

class Card;

/** A page of the gallery: the title and purpose of the service, its header, and cards. */
class Page : public QWidget
{
    Q_OBJECT

public:
    Page(const QString &title, const QString &purpose, const char *header, QWidget *parent = nullptr);

    QString title() const { return m_title; }

    /** Starts to stop everything that runs. Called once, before the application quits. */
    virtual void stop() {}

protected:
    Card *addCard(const QString &title = QString(), int stretch = 0);
    QVBoxLayout *column() const { return m_column; }

private:
    const QString m_title;
    QVBoxLayout *m_column;
};
