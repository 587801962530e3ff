// SPDX-License-Identifier: 0BSD

#include "UpdateDialog.h"

#include "Log.h"
#include "Reports.h"

#include <ArchiveCheck.h>
#include <BlockingCalls.h>
#include <TlsSupport.h>

#include <ZyBase/files/CFileUtils.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

using ZyBase::CFileUtils;

namespace {

constexpr int statusOk = 200;

// A process that was killed during a download leaves its directory.
void deleteUnfinishedDownloads(const QDir &directory)
{
    for (const QString &name :
         directory.entryList({QStringLiteral(".download-*")}, QDir::Dirs | QDir::Hidden))
        QDir(directory.filePath(name)).removeRecursively();
}

// Blocks. The directory of an earlier extraction is replaced.
QString extractAgain(const QString &archive, const QString &directory)
{
    QDir(directory).removeRecursively();
    QString problem = extractArchive(archive, directory);
    if (!problem.isNull())
        QDir(directory).removeRecursively();
    QFile::remove(archive);
    return problem;
}

} // namespace

UpdateDialog::UpdateDialog(const QUrl &address, const QString &directory, UsageReports *reports,
                           QWidget *parent)
    : QDialog(parent)
    , m_address(address)
    , m_directory(directory)
    , m_reports(reports)
    , m_request(new FollowedRequest(this))
    , m_download(new SafeDownload(this))
    , m_message(new QLabel)
    , m_progress(new QProgressBar)
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Close))
    , m_checkButton(addButton(tr("Check &Again"), &UpdateDialog::requestDescription))
    , m_downloadButton(addButton(tr("&Download"), &UpdateDialog::startDownload))
    , m_cancelButton(addButton(tr("Cancel"), &UpdateDialog::cancelDownload))
    , m_showButton(addButton(tr("&Show in File Manager"), &UpdateDialog::showInFileManager))
{
    setWindowTitle(tr("Update"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->setAlignment(Qt::AlignTop);
    m_message->setMinimumSize(50 * fontMetrics().averageCharWidth(), 3 * fontMetrics().lineSpacing());
    m_progress->setAccessibleName(tr("Progress of the download"));
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_message);
    layout->addWidget(m_progress);
    layout->addWidget(m_buttons);

    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_request, &FollowedRequest::answered, this, &UpdateDialog::readDescription);
    connect(m_request, &FollowedRequest::failed, this, [this](const QString &reason) {
        showCheckFailure(tlsProblem().isNull() ? reason : tlsProblem());
    });
    connect(m_download, &SafeDownload::progressed, this, &UpdateDialog::showProgress);
    connect(m_download, &SafeDownload::finished, this, &UpdateDialog::extract);
    connect(m_download, &SafeDownload::failed, this, &UpdateDialog::endWithProblem);
    connect(m_download, &SafeDownload::cancelled, this,
            [this] { showStep(tr("The download was cancelled."), m_downloadButton); });
    deleteUnfinishedDownloads(m_directory);
}

QPushButton *UpdateDialog::addButton(const QString &text, void (UpdateDialog::*slot)())
{
    QPushButton *const button = m_buttons->addButton(text, QDialogButtonBox::ActionRole);
    connect(button, &QPushButton::clicked, this, slot);
    return button;
}

// Without a button, the dialog is waiting for the server or the disk.
void UpdateDialog::showStep(const QString &message, QPushButton *button)
{
    m_message->setText(message);
    for (QPushButton *const other : {m_checkButton, m_downloadButton, m_cancelButton, m_showButton})
        other->hide();
    if (button)
        button->show();
    m_progress->setVisible(button == m_cancelButton);
    m_isBusy = !button || button == m_cancelButton;
}

void UpdateDialog::open()
{
    if (!m_isBusy)
        requestDescription();
    show();
    raise();
    activateWindow();
}

void UpdateDialog::requestDescription()
{
    showStep(tr("Asking for the latest version …"), nullptr);
    m_request->get(m_address);
}

void UpdateDialog::showCheckFailure(const QString &reason)
{
    showStep(tr("The latest version is not known: %1").arg(reason), m_checkButton);
}

void UpdateDialog::readDescription(const QUrl &address, int status, const QByteArray &json)
{
    m_update = readUpdate(json, address);
    if (status != statusOk)
        showCheckFailure(tr("The server answered with status %1.").arg(status));
    else if (m_update.version.isNull())
        showCheckFailure(tr("The server sent no description of a version."));
    else if (!m_update.isNewer())
        showStep(tr("This is the latest version."), m_checkButton);
    else
        showStep(tr("Version %1 is available.").arg(m_update.version.toString()), m_downloadButton);
}

// The number, not the server's string, is part of the file name.
void UpdateDialog::startDownload()
{
    m_progress->setRange(0, 0);
    showStep(tr("Downloading …"), m_cancelButton);
    m_target = m_directory.filePath(QStringLiteral("notekeeper-") + m_update.version.toString());
    m_download->start(m_update.url, m_target + QStringLiteral(".zip"), m_update.md5);
}

void UpdateDialog::cancelDownload()
{
    m_download->cancel();
}

void UpdateDialog::showProgress(qint64 bytesReceived, qint64 bytesTotal, const QString &speed)
{
    if (bytesTotal > 0) {
        m_progress->setRange(0, 100);
        m_progress->setValue(int(100 * bytesReceived / bytesTotal));
    }
    m_message->setText(tr("Downloading: %1, %2").arg(CFileUtils::FormatFileSize(bytesReceived), speed));
}

void UpdateDialog::extract(const QString &archive)
{
    showStep(tr("Extracting …"), nullptr);
    runInThread([archive, target = m_target] { return extractAgain(archive, target); }, this,
                [this](const QString &problem) { endExtraction(problem); });
}

void UpdateDialog::endExtraction(const QString &problem)
{
    if (!problem.isNull())
        return endWithProblem(problem);
    reportUpdate(m_reports, true);
    showStep(tr("Version %1 is in %2.").arg(m_update.version.toString(), m_target), m_showButton);
}

void UpdateDialog::endWithProblem(const QString &problem)
{
    qCWarning(notekeeper, "The update failed: %s", qUtf8Printable(problem));
    reportUpdate(m_reports, false);
    showStep(tr("The update failed: %1").arg(problem), m_downloadButton);
}

void UpdateDialog::showInFileManager()
{
    CFileUtils::OpenFolderAndSelectFile(m_target);
}
