// SPDX-License-Identifier: 0BSD

#pragma once

#include "Page.h"

class Card;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

/** Information about the machine. Blocking calls run on request, in the background. */
class MachinePage : public Page
{
    Q_OBJECT

public:
    explicit MachinePage(QWidget *parent = nullptr);

private:
    void fillRequests(QGridLayout *requests);
    void addRequest(QGridLayout *requests, const QString &subject, const char *name, QPushButton *button,
                    void (MachinePage::*request)(QLabel *answer, QPushButton *button));
    void identify(QLabel *answer, QPushButton *button);
    void checkPdf(QLabel *answer, QPushButton *button);
    void locate(QLabel *answer, QPushButton *button);
    void testNetwork(QLabel *answer, QPushButton *button);

    /** Calls @p work in the background and shows its result; the button is disabled meanwhile. */
    template <typename Work> void answer(QLabel *answer, QPushButton *button, Work work);

    QLineEdit *m_application;
};
