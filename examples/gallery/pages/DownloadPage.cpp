// SPDX-License-Identifier: 0BSD

#include "DownloadPage.h"

#include "../widgets/Card.h"
#include "../widgets/controls.h"

#include <ZyBase/files/CFileUtils.h>

#include <QDir>
#include <QFileInfo>
#include <QProgressBar>
#include <QTreeWidget>

using ZyBase::CFileUtils;
using ZyBase::DownloadManager;

namespace {

constexpr int fileNameWidth = 400;
constexpr int maxProgress = 1000;

} // namespace

DownloadPage::DownloadPage(const QString &address, const QString &directory, QWidget *parent)
    : Page(tr("Download"), tr("Writes data of any size directly to a file."), "ZyBase/http/DownloadManager.h",
           parent)
    , m_directory(directory + QStringLiteral("/downloads"))
    , m_url(field(address, tr("https://downloads.example.org/file.zip"), "downloadUrl"))
    , m_start(primaryButton(tr("Download"), "downloadStart"))
    , m_stop(button(tr("Stop"), "downloadStop"))
    , m_state(new Pill(tr("Nothing yet"), "downloadState"))
    , m_file(heading(QString()))
    , m_amount(figure(QStringLiteral("–"), "downloadAmount"))
    , m_speed(figure(QStringLiteral("–"), "downloadSpeed"))
    , m_bar(new QProgressBar)
    , m_reveal(button(tr("Show in folder"), "downloadReveal"))
    , m_history(table({tr("File"), tr("Outcome"), tr("Size")}, "downloadHistory"))
{
    QHBoxLayout *const row = addCard()->addRow();
    row->addWidget(m_url, 1);
    row->addWidget(m_start);
    row->addWidget(m_stop);
    fillProgressCard(addCard());
    fillHistoryCard(addCard(tr("Downloads"), 1));

    connect(m_url, &QLineEdit::returnPressed, m_start, &QPushButton::click);
    connect(m_start, &QPushButton::clicked, this, &DownloadPage::start);
    connect(m_stop, &QPushButton::clicked, this, &DownloadPage::stop);
    connect(m_reveal, &QPushButton::clicked, this, [this] { CFileUtils::OpenFolderAndSelectFile(m_path); });
    connect(&m_download, &DownloadManager::signalDownloadProgress, this, &DownloadPage::showProgress);
    connect(&m_download, &DownloadManager::signalDownloadFinished, this, &DownloadPage::finish);
    setRunning(false);
}

void DownloadPage::fillProgressCard(Card *card)
{
    m_file->setObjectName(QStringLiteral("downloadFile"));
    m_bar->setObjectName(QStringLiteral("downloadBar"));
    m_bar->setTextVisible(false);
    m_bar->setRange(0, maxProgress);
    QHBoxLayout *const head = card->addRow();
    head->addWidget(m_file);
    head->addStretch(1);
    head->addWidget(m_state);
    card->column()->addWidget(m_bar);

    auto *const figures = new QGridLayout;
    figures->addWidget(quiet(tr("Received")), 0, 0);
    figures->addWidget(quiet(tr("Average speed")), 0, 1);
    figures->addWidget(m_amount, 1, 0);
    figures->addWidget(m_speed, 1, 1);
    figures->addWidget(m_reveal, 0, 2, 2, 1, Qt::AlignRight | Qt::AlignBottom);
    figures->setColumnStretch(0, 1);
    figures->setColumnStretch(1, 1);
    card->column()->addLayout(figures);
}

void DownloadPage::fillHistoryCard(Card *card)
{
    card->column()->addWidget(m_history, 1);
    card->column()->addWidget(hint(m_directory, "downloadDirectory"));
}

void DownloadPage::start()
{
    const QUrl url = QUrl::fromUserInput(m_url->text());
    m_isStopped = false;
    m_path.clear();
    showFileName(url.fileName());
    m_bar->setValue(0);
    QDir().mkpath(m_directory);
    const bool isRunning = m_download.StartDownload(url, m_directory);
    setRunning(isRunning);
    if (isRunning)
        m_state->setState(Pill::Busy, tr("Running"));
    else
        m_state->setState(Pill::Bad, tr("The address has no file name"));
}

// If the total is unknown, the bar shows activity only.
void DownloadPage::showProgress(qint64 received, qint64 total, const QString &speed)
{
    const bool isKnown = total > 0;
    const QString amount = CFileUtils::FormatFileSize(received);
    m_amount->setText(isKnown ? tr("%1 of %2").arg(amount, CFileUtils::FormatFileSize(total)) : amount);
    m_speed->setText(speed);
    m_bar->setRange(0, isKnown ? maxProgress : 0);
    if (isKnown)
        m_bar->setValue(int(received * maxProgress / total));
}

void DownloadPage::finish(bool isDone, const QString &path)
{
    m_path = path;
    m_bar->setRange(0, maxProgress);
    setRunning(false);
    if (isDone)
        showOutcome(Pill::Good, tr("Finished"));
    else if (m_isStopped)
        showOutcome(Pill::Neutral, tr("Stopped, partial file removed"));
    else
        showOutcome(Pill::Bad, tr("Failed, partial file removed"));
}

void DownloadPage::showOutcome(Pill::Tone tone, const QString &outcome)
{
    m_state->setState(tone, outcome);
    const QString size = m_path.isEmpty() ? QStringLiteral("–") : CFileUtils::GetFileSize(m_path);
    m_history->insertTopLevelItem(0, new QTreeWidgetItem({m_fileName, outcome, size}));
}

void DownloadPage::showFileName(const QString &name)
{
    m_fileName = name;
    m_file->setText(m_file->fontMetrics().elidedText(name, Qt::ElideMiddle, fileNameWidth));
    m_file->setToolTip(name);
}

void DownloadPage::setRunning(bool isRunning)
{
    m_start->setEnabled(!isRunning);
    m_stop->setEnabled(isRunning);
    m_reveal->setEnabled(!m_path.isEmpty());
}

void DownloadPage::stop()
{
    m_isStopped = true;
    m_download.StopDownload();
}
