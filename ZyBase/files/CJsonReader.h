// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace ZyBase {

/**
 * Reads and writes small JSON files.
 *
 * Use it for configuration files that may be missing. Use QJsonDocument if you must know why a file cannot be
 * read, and QSaveFile if a file must survive a crash or a full disk.
 *
 * @code
 * const QJsonObject settings = CJsonReader::ParseJsonFileToObject(path);
 * const int runs = settings.value(QStringLiteral("runs")).toInt();
 * @endcode
 *
 * The whole file is read into memory. Qt's limits apply: at most 1024 levels of nesting, numbers are doubles,
 * and files of 2 GiB or more cannot be read. A byte order mark (U+FEFF) at the start of a string is lost when
 * the string is saved and read again. If a key occurs twice, the last value is used, and Qt never frees a
 * replaced array or object. Relative paths are relative to the current directory of the process.
 *
 * **Threads.** All functions are thread-safe. The files themselves are not protected; see SaveJsonFile().
 *
 * **Blocking.** Each function blocks until the whole file is read or written, without a time limit.
 *
 * **Failures.** The functions that read return a null or empty result if the file is missing, cannot be
 * read, or is not valid JSON. The library logs nothing.
 *
 * **Lifetime.** All functions are static. Do not create objects of this class.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CJsonReader
{
public:
    /**
     * Returns the value of a key in the object that a file contains.
     *
     * @param strFilePath path of the file
     * @param strKey the key; it must be at the top level, and upper and lower case differ
     * @return the value; undefined (QJsonValue::isUndefined()) if the object does not contain the key; null
     * if the file cannot be read, is not valid JSON, or contains an empty object or an array
     *
     * @warning A null result is also the value of a key that is null in the file. To distinguish it from a
     * failure, use ParseJsonFileToObject() and QJsonObject::contains().
     */
    static QJsonValue ParseJsonFile(const QString &strFilePath, const QString &strKey);

    /**
     * Returns the object that a file contains.
     *
     * @param strFilePath path of the file
     * @return the object; an empty object if the file cannot be read, is not valid JSON, or contains an array
     *
     * @warning An empty result does not mean that the file contains an empty object. If the file exists, make
     * a copy of it before you save over it.
     */
    static QJsonObject ParseJsonFileToObject(const QString &strFilePath);

    /**
     * Returns the array that a file contains.
     *
     * @param strFilePath path of the file
     * @return the array; an empty array if the file cannot be read, is not valid JSON, or contains an object
     *
     * @warning An empty result does not mean that the file contains an empty array. To find the reason, use
     * QJsonDocument::fromJson().
     */
    static QJsonArray ParseJsonFileToArray(const QString &strFilePath);

    /**
     * Writes an object to a file as indented UTF-8 and replaces the previous content.
     *
     * A missing file is created, a missing directory is not. Failures are not returned. If the file cannot be
     * opened, Qt logs a warning.
     *
     * @param strFilePath path of the file
     * @param jsonObject the new content; an empty object is written as an empty JSON object
     *
     * @warning The previous content is deleted before the new content is written. After a crash, or on a
     * full disk, the file is incomplete. A reader at the same time gets an empty or null result. To replace a
     * file safely, use QSaveFile as the guide shows.
     *
     * @see @ref guide-saving-json-atomically "docs/guide/saving-json-atomically.md"
     */
    static void SaveJsonFile(const QString &strFilePath, const QJsonObject &jsonObject);
};

} // namespace ZyBase
