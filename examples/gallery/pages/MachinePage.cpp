// SPDX-License-Identifier: LGPL-2.1-or-later

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

QString kinship()
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
        return MachinePage::tr("No service answers");
    return MachinePage::tr("%1 (%2, %3)").arg(location).arg(latitude).arg(longitude);
}

} // namespace

MachinePage::MachinePage(QWidget *parent)
    : Page(tr("Machine"),
           tr("Facts are read at once. What asks others, and may wait for them, is asked in the background."),
           "ZyBase/platform/CSystemUtils.h", parent)
    , m_application(
          field(QStringLiteral("org.example.reader.desktop"), tr("Desktop entry"), "pdfApplication"))
{
    QGridLayout *const facts = addGrid(addCard(tr("Facts")));
    addFact(facts, tr("System"), CSystemUtils::GetSystemVersion(), "system");
    addFact(facts, tr("Distribution"), tr("%1, %2").arg(CSystemUtils::GetLinuxOsInfo(), kinship()),
            "distribution");
    addFact(facts, tr("Processor"), CSystemUtils::GetHardwareCpuArchitecture(), "processor");
    addFact(facts, tr("Package"), CSystemUtils::GetBundleIdentifier(), "package");
    addFact(facts, tr("Executable"), CFileUtils::GetApplicationFilePath(), "executable");
    addFact(facts, tr("Resources"), CFileUtils::GetResDirPath(), "resources");
    fillQuestions(addGrid(addCard(tr("Questions"))));
    column()->addStretch(1);
}

void MachinePage::fillQuestions(QGridLayout *questions)
{
    ask(questions, tr("Identifier"), "identifier", button(tr("Read"), "identify"), &MachinePage::identify);
    ask(questions, tr("Location"), "location", button(tr("Locate"), "locate"), &MachinePage::locate);
    ask(questions, tr("Network"), "network", button(tr("Test"), "online"), &MachinePage::askForNetwork);
    const int row = questions->rowCount();
    questions->addWidget(quiet(tr("Application")), row, 0);
    questions->addWidget(m_application, row, 1, 1, 2);
    ask(questions, tr("Opens PDF"), "pdf", button(tr("Ask"), "askForPdf"), &MachinePage::askForPdf);
}

void MachinePage::ask(QGridLayout *questions, const QString &subject, const char *name, QPushButton *button,
                      void (MachinePage::*question)(QLabel *, QPushButton *))
{
    const int row = questions->rowCount();
    QLabel *const answer = value(QStringLiteral("–"), name);
    questions->addWidget(quiet(subject), row, 0);
    questions->addWidget(answer, row, 1);
    questions->addWidget(button, row, 2);
    connect(button, &QPushButton::clicked, this,
            [this, answer, button, question] { (this->*question)(answer, button); });
}

template <typename Work> void MachinePage::answer(QLabel *answer, QPushButton *button, Work work)
{
    answer->setText(tr("Asking …"));
    button->setEnabled(false);
    inBackground(this, work, [answer, button](const QString &text) {
        answer->setText(text);
        button->setEnabled(true);
    });
}

// Made and kept in ~/.config/zybase-gallery/device.conf.
void MachinePage::identify(QLabel *label, QPushButton *button)
{
    answer(label, button, [] { return CSystemUtils::GetPCID(QString(), QStringLiteral("zybase-gallery")); });
}

void MachinePage::askForPdf(QLabel *label, QPushButton *button)
{
    answer(label, button, [application = m_application->text()] {
        return CAssocUtils::IsPdfLauncher(application) ? tr("Yes, it is the default") : tr("No, another one");
    });
}

void MachinePage::locate(QLabel *label, QPushButton *button)
{
    answer(label, button, &locationText);
}

void MachinePage::askForNetwork(QLabel *label, QPushButton *button)
{
    answer(label, button, [] {
        return CNetworkUtils::IsNetWorkOnline() ? tr("Names are resolved") : tr("No name is resolved");
    });
}
