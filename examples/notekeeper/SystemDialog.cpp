// SPDX-License-Identifier: 0BSD

#include "SystemDialog.h"

#include <BlockingCalls.h>
#include <TlsSupport.h>

#include <ZyBase/platform/CAssocUtils.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSslSocket>

using ZyBase::CAssocUtils;
using ZyBase::CSystemUtils;

namespace {

// Parts of the names of desktop entries.
const char *const pdfApplications[] = {"Evince",  "evince",  "okular",  "atril",
                                       "xreader", "firefox", "chromium"};

// The library compares the default application with a name; it does not return the name.
QString pdfApplication()
{
    for (const char *name : pdfApplications) {
        if (CAssocUtils::IsPdfLauncher(QLatin1String(name)))
            return QLatin1String(name);
    }
    return CAssocUtils::IsPdfLauncher(QStringLiteral(".desktop")) ? SystemDialog::tr("Another application")
                                                                  : SystemDialog::tr("None is set");
}

} // namespace

SystemDialog::SystemDialog(const QString &directory, QWidget *parent)
    : QDialog(parent)
    , m_facts(new QFormLayout(this))
{
    setWindowTitle(tr("System"));
    setAttribute(Qt::WA_DeleteOnClose);
    addFact(tr("Version:"), QCoreApplication::applicationVersion());
    addFact(tr("System:"), CSystemUtils::GetLinuxOsInfo());
    addFact(tr("Files and log:"), directory);
    const QString problem = tlsProblem();
    addFact(tr("Secure connections:"), problem.isNull() ? QSslSocket::sslLibraryVersionString() : problem);
    m_pdfApplication = addFact(tr("Application for PDF files:"), tr("Searching …"));
    findPdfApplication();

    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_facts->addRow(buttons);
}

QLabel *SystemDialog::addFact(const QString &name, const QString &fact)
{
    auto *const label = new QLabel(fact);
    label->setAccessibleName(name);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    m_facts->addRow(name, label);
    return label;
}

// The call runs a tool of the desktop, which can block for many seconds.
void SystemDialog::findPdfApplication()
{
    runInThread(pdfApplication, this, [this](const QString &name) { m_pdfApplication->setText(name); });
}
