// SPDX-License-Identifier: 0BSD

#pragma once

#include <QJsonObject>
#include <QString>

/**
 * Saves the object in the format of ZyBase::CJsonReader::SaveJsonFile(), completely or not at all.
 *
 * After any failure, the file has its old content.
 *
 * @return null if the object is saved; otherwise the reason, as a message for the user
 */
QString saveJsonAtomically(const QString &path, const QJsonObject &object);
