// SPDX-License-Identifier: 0BSD

#pragma once

#include "Page.h"

class QGridLayout;
class QLineEdit;

/** Information about the machine. Blocking calls run on request, in the background. */
class MachinePage : public Page
{
    Q_OBJECT

public:
    explicit MachinePage(QWidget *parent = nullptr);

private:
    /** A call that can block. It runs in the background and returns the text to show. */
    using Call = QString (*)(const QString &application);

    void addFacts(QGridLayout *facts);
    void addRequests(QGridLayout *requests);
    void addRequest(QGridLayout *requests, const QString &subject, const char *name, QPushButton *button,
                    Call call);

    QLineEdit *m_application;
};
