// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../widgets/Pill.h"
#include "Page.h"

#include <QPointer>
#include <QTimer>

class Card;
class Choice;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace ZyBase {
class CHttpPostRequest;
}

/** One request at a time, in the background, and its outcome. */
class RequestPage : public Page
{
    Q_OBJECT

public:
    /** @param address what requests go to at first, or empty */
    explicit RequestPage(const QString &address, QWidget *parent = nullptr);

    void stop() override;

private:
    void fillRequestCard(Card *card);
    void fillOutcomeCard(Card *card);
    void chooseMethod();
    void send();
    void start(const QUrl &url, const QJsonObject &body);
    void cancel();
    void end(Pill::Tone tone, const QString &outcome, const QString &status, const QByteArray &body);

    QPointer<ZyBase::CHttpPostRequest> m_request; ///< the one that runs
    QTimer m_cancelling;
    QLineEdit *m_url;
    Choice *m_method;
    QPlainTextEdit *m_body;
    QPushButton *m_send;
    QPushButton *m_cancel;
    Pill *m_outcome;
    QLabel *m_status;
    QPlainTextEdit *m_answer;
};
