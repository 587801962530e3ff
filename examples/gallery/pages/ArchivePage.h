// SPDX-License-Identifier: 0BSD

#pragma once

#include "Page.h"

class Pill;
class QLabel;
class QLineEdit;
class QPushButton;
class Table;
class Tick;
struct Extraction;

/** Extracts an archive and shows the result of each entry. */
class ArchivePage : public Page
{
    Q_OBJECT

public:
    /** @param directory parent of the directory of extracted files */
    explicit ArchivePage(const QString &directory, QWidget *parent = nullptr);

private:
    void choose();
    void start();
    void showEntries(const Extraction &extraction);
    void showSummary(const Extraction &extraction);

    const QString m_directory;
    QLineEdit *m_archive;
    Tick *m_overwrite;
    QPushButton *m_extract;
    Pill *m_state;
    QLabel *m_details;
    Table *m_entries;
};
