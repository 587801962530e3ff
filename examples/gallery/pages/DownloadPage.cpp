// SPDX-License-Identifier: 0BSD

#include "DownloadPage.h"

#include "../Checks.h"
#include "../widgets/Card.h"
#include "../widgets/ElidedLabel.h"
#include "../widgets/Table.h"
#include "../widgets/controls.h"

#include <DevelopmentServices.h>

#include <ZyBase/files/CFileUtils.h>

#include <QDir>
#include <QFileInfo>
#include <QProgressBar>

using ZyBase::CFileUtils;
using ZyBase::DownloadManager;

namespace {

constexpr int maxProgress = 1000;
const QString nothing = QStringLiteral("–");

} // namespace

DownloadPage::DownloadPage(const QString &directory, QWidget *parent)
    : Page(tr("Download"), tr("Writes data of any size directly to a file."), "ZyBase/http/DownloadManager.h",
           "DownloadPage.cpp", parent)
    , m_directory(directory + QStringLiteral("/downloads"))
    , m_download(this)
    , m_url(field(QString(), QStringLiteral("https://downloads.example.org/file.zip"), "downloadUrl"))
    , m_start(primaryButton(tr("&Download"), "downloadStart"))
    , m_stop(cancelButton(tr("&Stop"), "downloadStop"))
    , m_state(new Pill(tr("Nothing yet"), "downloadState"))
    , m_file(new ElidedLabel(QString(), "heading", "downloadFile"))
    , m_amount(figure(nothing, "downloadAmount"))
    , m_speed(figure(nothing, "downloadSpeed"))
    , m_details(hint(QString(), "downloadDetails"))
    , m_bar(new QProgressBar)
    , m_reveal(button(tr("Show in &folder"), "downloadReveal"))
    , m_history(new Table({tr("File"), tr("Outcome"), tr("Size")}, tr("Each download will be listed here."),
                          "downloadHistory"))
{
    QHBoxLayout *const row = addCard()->addRow();
    row->addLayout(labelled(tr("&Address"), m_url), 1);
    row->addWidget(m_start, 0, Qt::AlignBottom);
    row->addWidget(m_stop, 0, Qt::AlignBottom);
    fillProgressCard(addCard());
    Card *const history = addCard(tr("Downloads"), 1);
    history->column()->addWidget(m_history, 1);
    history->column()->addWidget(new ElidedLabel(m_directory, "hint", "downloadDirectory"));
    m_history->setAccessibleName(tr("Downloads"));

    connect(m_url, &QLineEdit::returnPressed, m_start, &QPushButton::click);
    connect(m_start, &QPushButton::clicked, this, &DownloadPage::start);
    connect(m_stop, &QPushButton::clicked, this, &DownloadPage::stop);
    connect(m_reveal, &QPushButton::clicked, this, [this] { CFileUtils::OpenFolderAndSelectFile(m_path); });
    connect(&m_download, &DownloadManager::signalDownloadProgress, this, &DownloadPage::showProgress);
    connect(&m_download, &DownloadManager::signalDownloadFinished, this, &DownloadPage::finish);
    setRunning(false);
}

void DownloadPage::useServices(const DevelopmentServices &services)
{
    m_url->setText(services.downloads + QStringLiteral("bytes/40000000/holiday.zip?rate=4000000"));
}

void DownloadPage::fillProgressCard(Card *card)
{
    m_bar->setObjectName(QStringLiteral("downloadBar"));
    m_bar->setAccessibleName(tr("Progress"));
    m_bar->setTextVisible(false);
    m_bar->setRange(0, maxProgress);
    QHBoxLayout *const head = card->addRow();
    head->addWidget(m_file, 1);
    head->addWidget(m_state);
    card->column()->addWidget(m_bar);
    card->column()->addWidget(m_details);

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

void DownloadPage::start()
{
    m_address = QUrl::fromUserInput(m_url->text());
    m_isStopped = false;
    m_total = 0;
    m_file->setText(m_address.fileName());
    m_details->clear();
    m_bar->setValue(0);
    begin(m_address);
}

//! [code]
void DownloadPage::begin(const QUrl &url)
{
    QDir().mkpath(m_directory); // the library creates no directory
    const bool isRunning = m_download.StartDownload(url, m_directory);
    setRunning(isRunning);
    if (isRunning)
        m_state->setState(Pill::Busy, tr("Running"));
    else if (url.fileName().isEmpty())
        showOutcome(Pill::Bad, tr("Not started"), tr("The address has no file name."), nothing);
    else
        showOutcome(Pill::Bad, tr("Not started"), Checks::writeProblem(m_directory + QStringLiteral("/new")),
                    nothing);
}

// A full disk and a broken connection can look like success, so the sizes are compared.
void DownloadPage::finish(bool isDone, const QString &path)
{
    setRunning(false);
    if (isDone && QFileInfo(path).size() >= m_total)
        showFile(path);
    else if (isDone)
        discard(path);
    else if (m_isStopped)
        showOutcome(Pill::Neutral, tr("Stopped"), tr("The partial file was removed."), nothing);
    else
        explain(m_address);
}
//! [code]

// If the total is unknown, the bar shows activity only. The first speed can be infinite or no number.
void DownloadPage::showProgress(qint64 received, qint64 total, const QString &speed)
{
    m_total = total;
    const bool isKnown = total > 0;
    const QString amount = CFileUtils::FormatFileSize(received);
    m_amount->setText(isKnown ? tr("%1 of %2").arg(amount, CFileUtils::FormatFileSize(total)) : amount);
    m_speed->setText(speed.at(0).isDigit() ? speed : nothing);
    m_bar->setRange(0, isKnown ? maxProgress : 0);
    if (isKnown)
        m_bar->setValue(int(received * maxProgress / total));
}

void DownloadPage::showFile(const QString &path)
{
    m_path = path;
    m_reveal->setEnabled(true);
    showOutcome(Pill::Good, tr("Finished"), QString(), CFileUtils::GetFileSize(path));
    m_bar->setValue(maxProgress);
}

void DownloadPage::discard(const QString &path)
{
    const qint64 size = QFileInfo(path).size();
    const QString written = tr("Only %1 of %2 are in the file, so it was removed.")
                                .arg(CFileUtils::FormatFileSize(size), CFileUtils::FormatFileSize(m_total));
    const QString cause = Checks::writeProblem(path, m_total - size);
    QFile::remove(path);
    showOutcome(Pill::Bad, tr("Incomplete"), cause.isEmpty() ? written : cause + QLatin1Char(' ') + written,
                nothing);
}

// The row stays if another download starts before the cause is found.
void DownloadPage::explain(const QUrl &url)
{
    showOutcome(Pill::Bad, tr("Failed"), tr("Looking for the cause …"), nothing);
    Checks::findCause(url, this, [this, row = m_history->topLevelItem(0)](const QString &cause, bool) {
        Table::setText(row, 1, tr("Failed: %1").arg(cause));
        if (row == m_history->topLevelItem(0) && m_start->isEnabled())
            m_details->setText(tr("%1 The partial file was removed.").arg(cause));
    });
}

void DownloadPage::showOutcome(Pill::Tone tone, const QString &outcome, const QString &details,
                               const QString &size)
{
    m_state->setState(tone, outcome);
    m_details->setText(details);
    m_bar->setRange(0, maxProgress);
    if (size == nothing) {
        m_bar->setValue(0);
        m_amount->setText(nothing);
        m_speed->setText(nothing);
    }
    m_history->insert(
        0, {m_file->text(), details.isEmpty() ? outcome : tr("%1: %2").arg(outcome, details), size});
}

void DownloadPage::setRunning(bool isRunning)
{
    setAvailable(m_stop, true);
    setAvailable(m_start, !isRunning);
    setAvailable(m_stop, isRunning);
    m_reveal->setEnabled(false);
}

void DownloadPage::stop()
{
    m_isStopped = true;
    m_download.StopDownload();
}
