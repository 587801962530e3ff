// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Page.h"

class Card;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

/** What the library knows of the machine: at once what is quick, on demand what asks others. */
class MachinePage : public Page
{
    Q_OBJECT

public:
    explicit MachinePage(QWidget *parent = nullptr);

private:
    void fillQuestions(QGridLayout *questions);
    void ask(QGridLayout *questions, const QString &subject, const char *name, QPushButton *button,
             void (MachinePage::*question)(QLabel *answer, QPushButton *button));
    void identify(QLabel *answer, QPushButton *button);
    void askForPdf(QLabel *answer, QPushButton *button);
    void locate(QLabel *answer, QPushButton *button);
    void askForNetwork(QLabel *answer, QPushButton *button);

    /** Has @p work give the text of @p answer in the background; the button waits with it. */
    template <typename Work> void answer(QLabel *answer, QPushButton *button, Work work);

    QLineEdit *m_application;
};
