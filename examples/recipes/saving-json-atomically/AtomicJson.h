// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QJsonObject>
#include <QString>

/**
 * Saves the object in the form of CJsonReader::SaveJsonFile(), whole or not at all: whatever happens
 * meanwhile, the file holds the old object or the new one.
 *
 * @return null when it is saved; else why not, in words for the user, and the file is as it was
 */
QString saveJsonAtomically(const QString &path, const QJsonObject &object);
