// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace ZyBase {

/**
 * Reads and writes small JSON files whole.
 *
 * Reading never fails visibly: a file that is missing, can't be read or holds no valid JSON gives an
 * empty or null result, and no message says why. Qt's limits apply: 1024 levels of nesting, and
 * numbers are doubles.
 *
 * **Threads.** Any. Each call works on a file of its own; see SaveJsonFile() for a reader beside it.
 *
 * **Blocking.** For the time of reading or writing the whole file.
 */
class ZYBASE_EXPORT CJsonReader
{
public:
    /**
     * The value of a key in the object that the file holds.
     *
     * @param strFilePath the file
     * @param strKey one of its top level, in its exact case
     * @return the value; undefined (QJsonValue::isUndefined()) when the object lacks the key; null
     * when the file can't be read, is not valid JSON, or holds an empty object or an array. A key
     * whose value is the JSON null gives null as well.
     */
    static QJsonValue ParseJsonFile(const QString &strFilePath, const QString &strKey);

    /**
     * The object that the file holds.
     *
     * @param strFilePath the file
     * @return the object; an empty one on any failure and when the file holds an array
     */
    static QJsonObject ParseJsonFileToObject(const QString &strFilePath);

    /**
     * The array that the file holds.
     *
     * @param strFilePath the file
     * @return the array; an empty one on any failure and when the file holds an object
     */
    static QJsonArray ParseJsonFileToArray(const QString &strFilePath);

    /**
     * Writes the object to the file, indented, as UTF-8, in place of what it held.
     *
     * @param strFilePath the file; a missing one is made
     * @param jsonObject what it is to hold; an empty one is written as an empty object
     *
     * @warning Nothing is reported, and the old content is gone before the new is written: no
     * temporary file, no backup. After a crash or on a full disk the file is cut short, and a reader
     * at the same time may see it so. No directory is made. Where that matters, save it whole or not
     * at all:
     * @code
     * const QByteArray bytes = QJsonDocument(object).toJson();
     * QSaveFile file(path);
     * const bool saved = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()
     *     && file.flush() && file.commit(); // commit() alone takes a full disk for a success
     * @endcode
     */
    static void SaveJsonFile(const QString &strFilePath, const QJsonObject &jsonObject);
};

} // namespace ZyBase
