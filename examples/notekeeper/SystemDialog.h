// SPDX-License-Identifier: 0BSD

#pragma once

#include <QDialog>

class QFormLayout;
class QLabel;

/** Facts about the application and the system, for questions to the support. */
class SystemDialog : public QDialog
{
    Q_OBJECT

public:
    /** @p directory contains the user's files */
    explicit SystemDialog(const QString &directory, QWidget *parent = nullptr);

private:
    QLabel *addFact(const QString &name, const QString &fact);
    void findPdfApplication();

    QFormLayout *m_facts;
    QLabel *m_pdfApplication;
};
