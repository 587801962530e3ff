// SPDX-License-Identifier: 0BSD

#pragma once

#include "Page.h"

#include <QFileSystemWatcher>

class QHBoxLayout;
class QLineEdit;
class QPlainTextEdit;
class QSyntaxHighlighter;

/** The log file of the application. The log is on until the page is destroyed. */
class LogPage : public Page
{
    Q_OBJECT

public:
    explicit LogPage(const QString &directory, QWidget *parent = nullptr);
    ~LogPage() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void startLog(const QString &directory);
    void addButtons(QHBoxLayout *row);
    void showFile();

    const QString m_path;
    QLineEdit *m_message;
    QPlainTextEdit *m_file;
    QSyntaxHighlighter *m_levels;
    QFileSystemWatcher m_watcher;
};
