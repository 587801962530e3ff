// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Page.h"

class Pill;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class Tick;
struct Extraction;

/** An archive, and what became of each of its entries. */
class ArchivePage : public Page
{
    Q_OBJECT

public:
    /** @param directory where archives go to, in a folder there */
    explicit ArchivePage(const QString &directory, QWidget *parent = nullptr);

private:
    void choose();
    void start();
    void showExtraction(const Extraction &extraction);

    const QString m_directory;
    QLineEdit *m_archive;
    Tick *m_overwrite;
    QPushButton *m_extract;
    Pill *m_state;
    QTreeWidget *m_entries;
};
