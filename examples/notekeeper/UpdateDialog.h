// SPDX-License-Identifier: 0BSD

#pragma once

#include "Update.h"

#include <FollowedRequest.h>
#include <SafeDownload.h>

#include <QDialog>
#include <QDir>

class QDialogButtonBox;
class QLabel;
class QProgressBar;
class QPushButton;
class UsageReports;

/**
 * Asks a server for a newer version, downloads its archive, compares the digest and extracts the archive.
 *
 * A closed dialog continues its work. Open it again to see the result.
 */
class UpdateDialog : public QDialog
{
    Q_OBJECT

public:
    /**
     * @param address of the description of the latest version
     * @param directory an existing directory for the archive and its content
     */
    UpdateDialog(const QUrl &address, const QString &directory, UsageReports *reports,
                 QWidget *parent = nullptr);

    /** Shows the dialog and asks the server, unless the dialog is still busy. */
    void open() override;

private:
    void requestDescription();
    void readDescription(const QUrl &address, int status, const QByteArray &json);
    void showCheckFailure(const QString &reason);
    void startDownload();
    void cancelDownload();
    void showProgress(qint64 bytesReceived, qint64 bytesTotal, const QString &speed);
    void extract(const QString &archive);
    void endExtraction(const QString &problem);
    void endWithProblem(const QString &problem);
    void showInFileManager();

    void showStep(const QString &message, QPushButton *button);
    QPushButton *addButton(const QString &text, void (UpdateDialog::*slot)());

    const QUrl m_address;
    const QDir m_directory;
    UsageReports *const m_reports;
    FollowedRequest *const m_request;
    SafeDownload *const m_download;
    Update m_update;
    QString m_target; ///< the directory of the extracted files
    bool m_isBusy = false;

    QLabel *const m_message;
    QProgressBar *const m_progress;
    QDialogButtonBox *const m_buttons;
    QPushButton *const m_checkButton;
    QPushButton *const m_downloadButton;
    QPushButton *const m_cancelButton;
    QPushButton *const m_showButton;
};
