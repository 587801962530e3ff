// SPDX-License-Identifier: 0BSD

#pragma once

#include "../widgets/Pill.h"
#include "Page.h"

#include <ZyBase/http/DownloadManager.h>

class Card;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTreeWidget;

/** Runs one download at a time and shows its progress. */
class DownloadPage : public Page
{
    Q_OBJECT

public:
    /** @param address shown first; may be empty @param directory parent of the directory of downloads */
    DownloadPage(const QString &address, const QString &directory, QWidget *parent = nullptr);

    void stop() override;

private:
    void fillProgressCard(Card *card);
    void fillHistoryCard(Card *card);
    void start();
    void showProgress(qint64 received, qint64 total, const QString &speed);
    void finish(bool isDone, const QString &path);
    void showOutcome(Pill::Tone tone, const QString &outcome);
    void showFileName(const QString &name);
    void setRunning(bool isRunning);

    const QString m_directory;
    ZyBase::DownloadManager m_download;
    bool m_isStopped = false;
    QString m_fileName;
    QString m_path; ///< of the last downloaded file
    QLineEdit *m_url;
    QPushButton *m_start;
    QPushButton *m_stop;
    Pill *m_state;
    QLabel *m_file;
    QLabel *m_amount;
    QLabel *m_speed;
    QProgressBar *m_bar;
    QPushButton *m_reveal;
    QTreeWidget *m_history;
};
