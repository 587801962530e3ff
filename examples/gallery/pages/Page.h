// SPDX-License-Identifier: 0BSD

#pragma once

#include <QScrollArea>
#include <QVBoxLayout>

struct DevelopmentServices;
class Card;
class QPushButton;

/** A page of the gallery: the title and purpose of the service, its header and code, and cards. */
class Page : public QScrollArea
{
    Q_OBJECT

public:
    /** @param source of the page, in pages/; the page shows the code that is marked in it */
    Page(const QString &title, const QString &purpose, const char *header, const char *source,
         QWidget *parent = nullptr);

    QString title() const { return m_title; }

    /** Called when local services run. */
    virtual void useServices(const DevelopmentServices &) {}

    /** Starts to stop everything that runs. Called once, before the application quits. */
    virtual void stop() {}

protected:
    Card *addCard(const QString &title = QString(), int stretch = 0);
    QVBoxLayout *column() const { return m_column; }

private:
    QLayout *createHead(const char *header);
    QWidget *createCodeCard(const char *source);

    const QString m_title;
    QPushButton *m_showCode;
    QVBoxLayout *m_column;
};
