// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>
#include <QStringList>

class QImage;

/**
 * Prints the tour: a heading for each service, what was called, what it returned, and whether the service
 * kept its promise. No line is longer than 80 columns. Colours are used only if the output is a terminal.
 */
class Report
{
public:
    Report();

    void heading(const QString &service, const QString &header);

    /** Prints one call and its result. */
    void line(const QString &what, const QString &result);

    /** Prints the lines of a file or of a log. */
    void excerpt(const QStringList &lines);

    /** Prints each pixel as half a character; the dark ones are drawn. On a terminal: black on white. */
    void image(const QImage &image);

    /** Counts and prints one promise of a service. */
    void promise(const QString &what, bool isKept);

    /** Counts and prints a promise that cannot be checked on this machine. */
    void skip(const QString &what, const QString &reason);

    /** Prints the number of promises kept. @return the exit code of the tour: 1 if a promise was broken */
    int finish();

private:
    void print(const QString &text);
    void printWrapped(const QString &first, const QString &next, const QString &text, const char *colour);
    QString coloured(const char *colour, const QString &text) const;

    bool m_isTerminal;
    int m_kept = 0;
    int m_broken = 0;
    int m_skipped = 0;
};
