// SPDX-License-Identifier: 0BSD

#include "ArchivePage.h"

#include "../Background.h"
#include "../widgets/Card.h"
#include "../widgets/Pill.h"
#include "../widgets/Tick.h"
#include "../widgets/controls.h"
#include "Extraction.h"

#include <ZyBase/files/CFileUtils.h>

#include <QFileDialog>
#include <QTreeWidget>

namespace {

// A resource of the gallery: ZipManager reads archives with QFile.
constexpr const char *sample = ":/sample.zip";

QString describe(Extraction::Result result)
{
    switch (result) {
    case Extraction::Extracted:
        return ArchivePage::tr("Extracted");
    case Extraction::Skipped:
        return ArchivePage::tr("Skipped, file exists");
    case Extraction::Failed:
        return ArchivePage::tr("Failed");
    }
    return QString();
}

} // namespace

ArchivePage::ArchivePage(const QString &directory, QWidget *parent)
    : Page(tr("Archive"),
           tr("Extracts a whole zip archive in a separate thread. Use it only for archives that you trust."),
           "ZyBase/files/ZipManager.h", parent)
    , m_directory(directory + QStringLiteral("/extracted"))
    , m_archive(field(QLatin1String(sample), tr("/path/of/archive.zip"), "archivePath"))
    , m_overwrite(new Tick(tr("Overwrite existing files"), "archiveOverwrite"))
    , m_extract(primaryButton(tr("Extract"), "archiveExtract"))
    , m_state(new Pill(tr("Nothing yet"), "archiveState"))
    , m_entries(table({tr("Name"), tr("Result"), tr("Size")}, "archiveEntries"))
{
    Card *const choice = addCard();
    QHBoxLayout *const row = choice->addRow();
    QPushButton *const browse = button(tr("Browse …"), "archiveBrowse");
    row->addWidget(m_archive, 1);
    row->addWidget(browse);
    row->addWidget(m_extract);
    choice->column()->addWidget(m_overwrite);

    Card *const entries = addCard(QString(), 1);
    QHBoxLayout *const head = entries->addRow();
    head->addWidget(heading(tr("Entries")), 1);
    head->addWidget(m_state);
    entries->column()->addWidget(m_entries, 1);
    entries->column()->addWidget(hint(m_directory, "archiveDirectory"));

    connect(browse, &QPushButton::clicked, this, &ArchivePage::choose);
    connect(m_extract, &QPushButton::clicked, this, &ArchivePage::start);
}

void ArchivePage::choose()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Choose an archive"), QString(), tr("Zip archives (*.zip)"));
    if (!path.isEmpty())
        m_archive->setText(path);
}

void ArchivePage::start()
{
    m_extract->setEnabled(false);
    m_entries->clear();
    m_state->setState(Pill::Busy, tr("Extracting"));
    inBackground(
        this,
        [archive = m_archive->text(), directory = m_directory, overwrite = m_overwrite->isChecked()] {
            return extract(archive, directory, overwrite);
        },
        [this](const Extraction &extraction) { showExtraction(extraction); });
}

void ArchivePage::showExtraction(const Extraction &extraction)
{
    m_extract->setEnabled(true);
    for (const Extraction::Entry &entry : extraction.entries) {
        const QString size =
            ZyBase::CFileUtils::GetFileSize(ZyBase::CFileUtils::CombinePath(m_directory, entry.name));
        new QTreeWidgetItem(m_entries, {entry.name, describe(entry.result), size});
    }
    if (!extraction.isDone)
        return m_state->setState(Pill::Bad, tr("The archive cannot be extracted"));
    const int failed = extraction.count(Extraction::Failed);
    QString text = tr("%1 extracted, %2 skipped")
                       .arg(extraction.count(Extraction::Extracted))
                       .arg(extraction.count(Extraction::Skipped));
    if (failed > 0)
        text += tr(", %1 failed").arg(failed);
    m_state->setState(failed > 0 ? Pill::Warning : Pill::Good, text);
}
