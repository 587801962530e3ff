// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QStringList>

/** What the tour prints: a heading for each service, what was done, what came back, and whether it was as
 * promised. */
class Report
{
public:
    /** Colours are used on a terminal only. */
    Report();

    void heading(const QString &service, const QString &header);

    /** One thing that was done and what came of it. */
    void line(const QString &what, const QString &result);

    /** How far something has come: one line that is written over on a terminal, and one each time elsewhere.
     */
    void progress(const QString &state);

    /** Lines as they stand in a file. */
    void excerpt(const QStringList &lines);

    /** One thing that the service promises, and whether it was kept. */
    void promise(const QString &what, bool kept);

    /** Prints the last line; @return the exit code of the tour. */
    int finish();

private:
    void print(const QString &text);
    QString coloured(const char *colour, const QString &text) const;

    bool m_isTerminal;
    bool m_isLineOpen = false;
    int m_promises = 0;
    int m_kept = 0;
};
