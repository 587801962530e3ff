// SPDX-License-Identifier: 0BSD

#pragma once

#include "Storage.h"

#include <QMainWindow>
#include <QTimer>

class QListWidget;
class QListWidgetItem;
class QPlainTextEdit;
class QUrl;
class UpdateDialog;
class UsageReports;

/** The list of notes and an editor for the selected one. Changes are saved a second later. */
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /**
     * @param directory an existing directory for the user's files
     * @param updates the address of the description of the latest version
     */
    MainWindow(const QString &directory, const QUrl &updates, UsageReports *reports,
               QWidget *parent = nullptr);

    /** Asks the user whether usage reports may be sent. */
    void askForConsent();

    /** Shows and logs a problem; does nothing if the string is null. */
    void showProblem(const QString &problem);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void createMenus();
    void createEditor();
    void restore();

    void addNote();
    void deleteNote();
    void editNote();
    void showNote(QListWidgetItem *note);
    QListWidgetItem *appendNote(const QString &text);

    bool save();
    bool mayQuit();

    void allowReports(bool allowed);
    void showQrCode();
    void showSystem();

    const Storage m_storage;
    UsageReports *const m_reports;
    UpdateDialog *const m_updates;
    QListWidget *const m_notes;
    QPlainTextEdit *const m_editor;
    QAction *m_reportsAction;
    QTimer m_saveTimer;
};
