// SPDX-License-Identifier: 0BSD

#pragma once

#include <QObject>
#include <QString>

/**
 * Sends the usage reports of an application, but only while the user allows it.
 *
 * Before consent it sends nothing and creates neither an identifier of this machine nor a report manager.
 *
 * For the main thread. Create one object, after the application object and its names are set.
 */
class UsageReports
{
public:
    struct Settings
    {
        QString product;
        QString version;
        QString catalogue; ///< the path of the event catalogue
        QString measurementId;
        QString apiSecret;
        QString statistics; ///< the address of the statistics backend
    };

    explicit UsageReports(Settings settings);

    /** Returns true if the user has chosen, also "no", now or in an earlier run. If not, ask once. */
    bool hasChosen() const { return m_hasChosen; }

    /** Returns the user's choice, which QSettings stores; false until the user has chosen. */
    bool isAllowed() const;

    /**
     * Sets and stores the user's choice. It takes effect at once; false also stops running requests.
     *
     * @return false if the choice cannot be stored for the next start; show the user a message then
     */
    bool setAllowed(bool allowed);

    /** Sends an event as ZyBase::CGaReportManager::SendGaReport() does; does nothing without consent. */
    void sendEvent(const QString &key, const QString &label = QString());

    /** Sends a record as ZyBase::CGaReportManager::SendXdReport() does; does nothing without consent. */
    void sendRecord(const QString &action, const QString &status);

private:
    void stopUnlessAllowed();
    bool prepare();

    const Settings m_settings;
    bool m_hasChosen;
    bool m_isAllowed;
    bool m_isPrepared = false;
    QObject m_context; ///< its destruction cancels the timers
};
