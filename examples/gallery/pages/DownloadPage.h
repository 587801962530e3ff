// SPDX-License-Identifier: 0BSD

#pragma once

#include "../widgets/Pill.h"
#include "Page.h"

#include <ZyBase/http/DownloadManager.h>

class Card;
class ElidedLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class Table;

/** Runs one download at a time and shows its progress. */
class DownloadPage : public Page
{
    Q_OBJECT

public:
    /** @param directory parent of the directory of downloads */
    explicit DownloadPage(const QString &directory, QWidget *parent = nullptr);

    void useServices(const DevelopmentServices &services) override;
    void stop() override;

private:
    void fillProgressCard(Card *card);
    void start();
    void begin(const QUrl &url);
    void showProgress(qint64 received, qint64 total, const QString &speed);
    void finish(bool isDone, const QString &path);
    void showFile(const QString &path);
    void discard(const QString &path);
    void explain(const QUrl &url);
    void showOutcome(Pill::Tone tone, const QString &outcome, const QString &details, const QString &size);
    void setRunning(bool isRunning);

    const QString m_directory;
    ZyBase::DownloadManager m_download;
    QUrl m_address; ///< of the last download
    qint64 m_total = 0; ///< bytes of the last download
    bool m_isStopped = false;
    QString m_path; ///< of the last downloaded file
    QLineEdit *m_url;
    QPushButton *m_start;
    QPushButton *m_stop;
    Pill *m_state;
    ElidedLabel *m_file;
    QLabel *m_amount;
    QLabel *m_speed;
    QLabel *m_details;
    QProgressBar *m_bar;
    QPushButton *m_reveal;
    Table *m_history;
};
