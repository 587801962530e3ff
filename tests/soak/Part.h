// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <vector>

/** What the parts use: directories of this process, and the addresses of the local services. */
struct Surroundings
{
    QString directory; ///< for files
    QString logDirectory; ///< base directory of the log
    QString logName;
    QUrl statistics;
    QUrl server; ///< base address of a LocalServices::HttpServer
};

/** One part of the load: a function that is called again and again, and returns false if it fails. */
struct Part
{
    QString name;
    std::function<bool()> round;
    double knownGrowthBytes = 0; ///< in each round, by contract
    QString knownCause = {};
};

/** Returns the parts that use the library. The last ones run only if their names are given. */
std::vector<Part> libraryParts(const Surroundings &surroundings);

/** Returns parts of the same names that do the same with Qt, QuaZip and libqrencode alone. */
std::vector<Part> controlParts(const Surroundings &surroundings);

/** The names of the parts that run by default. */
QStringList usualParts();

/** Runs an event loop until the condition is true. Returns false after @p timeoutMs. */
bool waitUntil(const std::function<bool()> &condition, int timeoutMs = 30000);

/** Runs a new event loop for this time. */
void runEventLoop(int milliseconds);

/** A catalogue of @p count events, as a file. */
bool writeCatalogue(const QString &path, int count);

/** Creates an archive of some files, which the parts extract. */
bool writeArchive(const QString &path, const QString &directory);
