// SPDX-License-Identifier: 0BSD

#include "MachinePage.h"

#include "../Background.h"
#include "../widgets/Card.h"
#include "../widgets/controls.h"

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/platform/CAssocUtils.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <QGridLayout>

using ZyBase::CAssocUtils;
using ZyBase::CFileUtils;
using ZyBase::CNetworkUtils;
using ZyBase::CSystemUtils;

namespace {

constexpr int subjectWidth = 96;

void addFact(QGridLayout *facts, const QString &what, const QString &fact, const char *name)
{
    const int row = facts->rowCount();
    facts->addWidget(quiet(what), row, 0, Qt::AlignTop);
    facts->addWidget(value(fact, name), row, 1);
}

QGridLayout *addGrid(Card *card)
{
    auto *const grid = new QGridLayout;
    grid->setHorizontalSpacing(18);
    grid->setVerticalSpacing(10);
    grid->setColumnMinimumWidth(0, subjectWidth);
    grid->setColumnStretch(1, 1);
    card->column()->addLayout(grid);
    return grid;
}

QString distributionFamily()
{
    if (CSystemUtils::IsKylinOs())
        return MachinePage::tr("Kylin");
    return CSystemUtils::IsUOS() ? MachinePage::tr("UOS") : MachinePage::tr("neither Kylin nor UOS");
}

QString locationText()
{
    QString country;
    QString location;
    double latitude = 0;
    double longitude = 0;
    if (!CNetworkUtils::GetIPInfo(country, location, latitude, longitude))
        return MachinePage::tr("No service answered");
    return MachinePage::tr("%1 (%2, %3)").arg(location).arg(latitude).arg(longitude);
}

} // namespace

MachinePage::MachinePage(QWidget *parent)
    : Page(tr("Machine"), tr("Fast calls run at once. Calls that may block run in the background."),
           "ZyBase/platform/CSystemUtils.h", parent)
    , m_application(
          field(QStringLiteral("org.example.reader.desktop"), tr("Desktop entry"), "pdfApplication"))
{
    QGridLayout *const facts = addGrid(addCard(tr("Facts")));
    addFact(facts, tr("System"), CSystemUtils::GetSystemVersion(), "system");
    addFact(facts, tr("Distribution"), tr("%1, %2").arg(CSystemUtils::GetLinuxOsInfo(), distributionFamily()),
            "distribution");
    addFact(facts, tr("Processor"), CSystemUtils::GetHardwareCpuArchitecture(), "processor");
    addFact(facts, tr("Package"), CSystemUtils::GetBundleIdentifier(), "package");
    addFact(facts, tr("Executable"), CFileUtils::GetApplicationFilePath(), "executable");
    addFact(facts, tr("Resources"), CFileUtils::GetResDirPath(), "resources");
    fillRequests(addGrid(addCard(tr("On request"))));
    column()->addStretch(1);
}

void MachinePage::fillRequests(QGridLayout *requests)
{
    addRequest(requests, tr("Identifier"), "identifier", button(tr("Read"), "identify"),
               &MachinePage::identify);
    addRequest(requests, tr("Location"), "location", button(tr("Locate"), "locate"), &MachinePage::locate);
    addRequest(requests, tr("Network"), "network", button(tr("Test"), "online"), &MachinePage::testNetwork);
    const int row = requests->rowCount();
    requests->addWidget(quiet(tr("Application")), row, 0);
    requests->addWidget(m_application, row, 1, 1, 2);
    addRequest(requests, tr("Opens PDF"), "pdf", button(tr("Check"), "checkPdf"), &MachinePage::checkPdf);
}

void MachinePage::addRequest(QGridLayout *requests, const QString &subject, const char *name,
                             QPushButton *button, void (MachinePage::*request)(QLabel *, QPushButton *))
{
    const int row = requests->rowCount();
    QLabel *const answer = value(QStringLiteral("–"), name);
    requests->addWidget(quiet(subject), row, 0);
    requests->addWidget(answer, row, 1);
    requests->addWidget(button, row, 2);
    connect(button, &QPushButton::clicked, this,
            [this, answer, button, request] { (this->*request)(answer, button); });
}

template <typename Work> void MachinePage::answer(QLabel *answer, QPushButton *button, Work work)
{
    answer->setText(tr("Checking …"));
    button->setEnabled(false);
    inBackground(this, work, [answer, button](const QString &text) {
        answer->setText(text);
        button->setEnabled(true);
    });
}

// The identifier is stored in ~/.config/zybase-gallery/device.conf.
void MachinePage::identify(QLabel *label, QPushButton *button)
{
    answer(label, button, [] { return CSystemUtils::GetPCID(QString(), QStringLiteral("zybase-gallery")); });
}

void MachinePage::checkPdf(QLabel *label, QPushButton *button)
{
    answer(label, button, [application = m_application->text()] {
        return CAssocUtils::IsPdfLauncher(application) ? tr("Yes, it is the default")
                                                       : tr("No, another application is");
    });
}

void MachinePage::locate(QLabel *label, QPushButton *button)
{
    answer(label, button, &locationText);
}

void MachinePage::testNetwork(QLabel *label, QPushButton *button)
{
    answer(label, button, [] {
        return CNetworkUtils::IsNetWorkOnline() ? tr("Names can be resolved")
                                                : tr("Names cannot be resolved");
    });
}
