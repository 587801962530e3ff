// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <vector>

/** What the parts use: files of this process, and the addresses of the local services. */
struct Surroundings
{
    QString directory;
    QString logDirectory; ///< base directory of the log
    QString logName;
    QUrl statistics;
    QUrl server; ///< base address of a LocalServices::HttpServer

    QString path(const char *name) const { return directory + QLatin1Char('/') + QLatin1String(name); }
    QUrl url(const char *path) const { return server.resolved(QUrl(QLatin1String(path))); }

    /** Returns the path of an archive of some files. */
    QString archive() const;

    /** Returns the path of a catalogue of events with the keys "key_0", "key_1" and so on. */
    QString catalogue(int eventCount) const;
};

/** One part of the load. */
struct Part
{
    const char *name;
    std::function<bool()> runRound; ///< is called again and again; returns false if it fails
    bool isUsual = true; ///< runs if no part is named
    double knownGrowthBytes = 0; ///< in each round, by contract
    const char *knownCause = "";
};

/** Returns the parts, which use the library. */
std::vector<Part> libraryParts(const Surroundings &surroundings);

/** Returns parts of the same names that do the same with Qt, QuaZip and libqrencode alone. */
std::vector<Part> controlParts(const Surroundings &surroundings);

constexpr int manyRequests = 500; ///< of the part "in-flight"
constexpr int manyEvents = 100000; ///< of the part "catalogue"
constexpr const char *symbolText = "https://example.org/soak";
