// SPDX-License-Identifier: 0BSD

#include "AtomicJson.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QSaveFile>

QString saveJsonAtomically(const QString &path, const QJsonObject &object)
{
    const QByteArray bytes = QJsonDocument(object).toJson();
    QSaveFile file(path); // writes a new file that replaces the old one at the end
    // commit() alone does not notice that the disk is full: check each step.
    const bool saved =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    if (saved)
        return QString();
    if (file.error() != QFileDevice::NoError)
        return file.errorString();
    return QCoreApplication::translate("AtomicJson", "There is not enough space on the disk.");
}
