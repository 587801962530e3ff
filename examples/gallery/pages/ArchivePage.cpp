// SPDX-License-Identifier: 0BSD

#include "ArchivePage.h"

#include "../Background.h"
#include "../Checks.h"
#include "../widgets/Card.h"
#include "../widgets/ElidedLabel.h"
#include "../widgets/Pill.h"
#include "../widgets/Table.h"
#include "../widgets/Tick.h"
#include "../widgets/controls.h"
#include "Extraction.h"

#include <ZyBase/files/CFileUtils.h>

#include <QFileDialog>

namespace {

// A resource of the gallery: ZipManager reads archives with QFile.
constexpr const char *sample = ":/sample.zip";

QString describe(const Extraction::Entry &entry)
{
    if (entry.result == Extraction::Extracted)
        return ArchivePage::tr("Extracted");
    if (entry.result == Extraction::Skipped)
        return ArchivePage::tr("Skipped: the file exists.");
    return ArchivePage::tr("Failed: %1").arg(entry.cause);
}

} // namespace

ArchivePage::ArchivePage(const QString &directory, QWidget *parent)
    : Page(tr("Archive"),
           tr("Extracts a whole zip archive in a separate thread. Use it only for archives that you trust."),
           "ZyBase/files/ZipManager.h", "Extraction.cpp", parent)
    , m_directory(directory + QStringLiteral("/extracted"))
    , m_archive(field(QLatin1String(sample), tr("/path/of/archive.zip"), "archivePath"))
    , m_overwrite(new Tick(tr("&Overwrite existing files"), "archiveOverwrite"))
    , m_extract(primaryButton(tr("E&xtract"), "archiveExtract"))
    , m_state(new Pill(tr("Nothing yet"), "archiveState"))
    , m_details(hint(QString(), "archiveDetails"))
    , m_entries(new Table({tr("Name"), tr("Result"), tr("Size")},
                          tr("Each file of the archive will be listed here, with its result."),
                          "archiveEntries"))
{
    Card *const choice = addCard();
    QHBoxLayout *const row = choice->addRow();
    QPushButton *const browse = button(tr("&Browse …"), "archiveBrowse");
    row->addLayout(labelled(tr("&Archive"), m_archive), 1);
    row->addWidget(browse, 0, Qt::AlignBottom);
    row->addWidget(m_extract, 0, Qt::AlignBottom);
    choice->column()->addWidget(m_overwrite, 0, Qt::AlignLeft);

    Card *const entries = addCard(QString(), 1);
    QHBoxLayout *const head = entries->addRow();
    head->addWidget(heading(tr("Entries")), 1);
    head->addWidget(m_state);
    entries->column()->addWidget(m_details);
    entries->column()->addWidget(m_entries, 1);
    entries->column()->addWidget(new ElidedLabel(m_directory, "hint", "archiveDirectory"));
    m_entries->setAccessibleName(tr("Entries"));

    connect(browse, &QPushButton::clicked, this, &ArchivePage::choose);
    connect(m_archive, &QLineEdit::returnPressed, m_extract, &QPushButton::click);
    connect(m_extract, &QPushButton::clicked, this, &ArchivePage::start);
}

// Qt's own dialog has the colours of the gallery.
void ArchivePage::choose()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Choose an archive"), QString(), tr("Zip archives (*.zip)"),
                                     nullptr, QFileDialog::DontUseNativeDialog);
    if (!path.isEmpty())
        m_archive->setText(path);
}

void ArchivePage::start()
{
    setAvailable(m_extract, false);
    m_entries->clear();
    m_details->clear();
    m_state->setState(Pill::Busy, tr("Extracting"));
    inBackground(
        this,
        [archive = m_archive->text(), directory = m_directory, overwrite = m_overwrite->isChecked()] {
            return extract(archive, directory, overwrite);
        },
        [this](const Extraction &extraction) {
            setAvailable(m_extract, true);
            showEntries(extraction);
            showSummary(extraction);
        });
}

void ArchivePage::showEntries(const Extraction &extraction)
{
    for (const Extraction::Entry &entry : extraction.entries) {
        const QString path = ZyBase::CFileUtils::CombinePath(m_directory, entry.name);
        const QString size = ZyBase::CFileUtils::GetFileSize(path);
        QTreeWidgetItem *const row =
            m_entries->insert(m_entries->topLevelItemCount(), {entry.name, describe(entry), size});
        if (entry.result != Extraction::Failed)
            continue;
        auto *const details = new QTreeWidgetItem(row, {tr("Details: %1").arg(entry.message)});
        details->setFirstColumnSpanned(true);
        row->setExpanded(true);
    }
}

void ArchivePage::showSummary(const Extraction &extraction)
{
    if (!extraction.isDone) {
        m_state->setState(Pill::Bad, tr("Not extracted"));
        return m_details->setText(tr("%1\nDetails: %2").arg(extraction.cause, extraction.message));
    }
    const int failed = extraction.count(Extraction::Failed);
    QString text = tr("%1 extracted, %2 skipped")
                       .arg(extraction.count(Extraction::Extracted))
                       .arg(extraction.count(Extraction::Skipped));
    if (failed > 0)
        text = tr("%1, %2 failed").arg(text).arg(failed);
    m_state->setState(failed > 0 ? Pill::Bad : Pill::Good, text);
}
