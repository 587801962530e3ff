// SPDX-License-Identifier: 0BSD

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

/** Runs one request at a time in the background and shows its outcome. */
class RequestPage : public Page
{
    Q_OBJECT

public:
    /** @param address shown first; may be empty */
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

    QPointer<ZyBase::CHttpPostRequest> m_request; ///< the running one
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
