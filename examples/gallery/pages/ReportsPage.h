// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Page.h"

class Card;
class Choice;
class QLineEdit;
class QTreeWidget;

/** Events and records, sent in the background; with local services only, so that none leaves the machine. */
class ReportsPage : public Page
{
    Q_OBJECT

public:
    /** @param statistics the address for records; empty where there are no local services */
    explicit ReportsPage(const QString &statistics, QWidget *parent = nullptr);

    void stop() override;

private:
    QWidget *createEventCard(bool canSend);
    QWidget *createRecordCard(bool canSend);
    void addWay(bool hasServices);
    void sendEvent();
    void sendRecord();
    void note(const QString &kind, const QString &what, const QString &how);

    Choice *m_event;
    QLineEdit *m_label;
    Choice *m_action;
    Choice *m_status;
    QTreeWidget *m_sent;
};
