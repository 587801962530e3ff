// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QObject>
#include <QString>

/**
 * The usage reports of a host: sent while the user allows it, and by nobody's oversight otherwise. Until
 * then there is no identifier of this machine and no manager of reports either.
 *
 * For the main thread, after the application object and its names are set.
 */
class UsageReports
{
public:
    struct Settings
    {
        QString product;
        QString version;
        QString catalogue; ///< the file of the events
        QString measurementId;
        QString apiSecret;
        QString statistics; ///< the address of the statistics backend
    };

    explicit UsageReports(Settings settings);

    /** What the user chose, which QSettings keep; not allowed until then. */
    bool isAllowed() const;

    /**
     * Takes the user's choice, which holds at once. Switching off stops what is under way.
     *
     * @return false when it can't be kept for the next start: tell the user
     */
    bool setAllowed(bool allowed);

    /** These do nothing while it isn't allowed; else as the functions of ZyBase::CGaReportManager. */
    void sendEvent(const QString &key, const QString &label = QString());
    void sendRecord(const QString &action, const QString &status);

private:
    void stopUnlessAllowed();
    bool prepare();

    const Settings m_settings;
    bool m_isAllowed;
    bool m_isPrepared = false;
    QObject m_context; ///< whose timers end with it
};
