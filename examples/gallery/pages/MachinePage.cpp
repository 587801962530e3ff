// SPDX-License-Identifier: 0BSD

#include "MachinePage.h"

#include "../Background.h"
#include "../widgets/Card.h"
#include "../widgets/ElidedLabel.h"
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

void addFact(QGridLayout *facts, const QString &what, QLabel *fact)
{
    const int row = facts->rowCount();
    facts->addWidget(quiet(what), row, 0, Qt::AlignTop);
    facts->addWidget(fact, row, 1);
}

QGridLayout *addGrid(Card *card)
{
    auto *const grid = new QGridLayout;
    grid->setHorizontalSpacing(18);
    grid->setVerticalSpacing(10);
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

//! [code]
// Each of these calls can block, so it runs in another thread. This one stores the identifier in
// ~/.config/zybase-gallery/device.conf.
QString identifier(const QString &)
{
    return CSystemUtils::GetPCID(QString(), QStringLiteral("zybase-gallery"));
}

QString location(const QString &)
{
    QString country;
    QString location;
    double latitude = 0;
    double longitude = 0;
    if (!CNetworkUtils::GetIPInfo(country, location, latitude, longitude))
        return MachinePage::tr("No service returned a location");
    return MachinePage::tr("%1 (%2, %3)").arg(location).arg(latitude).arg(longitude);
}

QString network(const QString &)
{
    return CNetworkUtils::IsNetWorkOnline() ? MachinePage::tr("Names can be resolved")
                                            : MachinePage::tr("Names cannot be resolved");
}

QString pdfLauncher(const QString &application)
{
    return CAssocUtils::IsPdfLauncher(application) ? MachinePage::tr("Yes, it is the default")
                                                   : MachinePage::tr("No, it is not the default");
}
//! [code]

} // namespace

MachinePage::MachinePage(QWidget *parent)
    : Page(tr("Machine"), tr("Fast calls run at once. Calls that may block run in the background."),
           "ZyBase/platform/CSystemUtils.h", "MachinePage.cpp", parent)
    , m_application(
          field(QStringLiteral("org.example.reader.desktop"), tr("Desktop entry"), "pdfApplication"))
{
    addFacts(addGrid(addCard(tr("Facts"))));
    addRequests(addGrid(addCard(tr("On request"))));
    column()->addStretch(1);
}

void MachinePage::addFacts(QGridLayout *facts)
{
    addFact(facts, tr("System"), value(CSystemUtils::GetSystemVersion(), "system"));
    addFact(facts, tr("Distribution"),
            value(tr("%1, %2").arg(CSystemUtils::GetLinuxOsInfo(), distributionFamily()), "distribution"));
    addFact(facts, tr("Processor"), value(CSystemUtils::GetHardwareCpuArchitecture(), "processor"));
    addFact(facts, tr("Package"), value(CSystemUtils::GetBundleIdentifier(), "package"));
    addFact(facts, tr("Executable"),
            new ElidedLabel(CFileUtils::GetApplicationFilePath(), "value", "executable"));
    addFact(facts, tr("Resources"), new ElidedLabel(CFileUtils::GetResDirPath(), "value", "resources"));
}

void MachinePage::addRequests(QGridLayout *requests)
{
    addRequest(requests, tr("Identifier"), "identifier", button(tr("&Read"), "identify"), &identifier);
    addRequest(requests, tr("Location"), "location", button(tr("&Locate"), "locate"), &location);
    addRequest(requests, tr("Network"), "network", button(tr("&Test"), "online"), &network);
    const int row = requests->rowCount();
    requests->addWidget(quiet(tr("&Application"), m_application), row, 0);
    requests->addWidget(m_application, row, 1, 1, 2);
    QPushButton *const check = button(tr("Chec&k"), "checkPdf");
    addRequest(requests, tr("Opens PDF"), "pdf", check, &pdfLauncher);
    connect(m_application, &QLineEdit::returnPressed, check, &QPushButton::click);
}

void MachinePage::addRequest(QGridLayout *requests, const QString &subject, const char *name,
                             QPushButton *button, Call call)
{
    const int row = requests->rowCount();
    QLabel *const answer = value(QStringLiteral("–"), name);
    requests->addWidget(quiet(subject), row, 0);
    requests->addWidget(answer, row, 1);
    requests->addWidget(button, row, 2);
    button->setAccessibleDescription(subject);
    connect(button, &QPushButton::clicked, this, [this, answer, button, call] {
        answer->setText(tr("Checking …"));
        setAvailable(button, false);
        inBackground(
            this, [call, application = m_application->text()] { return call(application); },
            [answer, button](const QString &text) {
                answer->setText(text);
                setAvailable(button, true);
            });
    });
}
