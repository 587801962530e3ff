// SPDX-License-Identifier: LGPL-2.1-or-later

#include "AtomicJson.h"

#include <QJsonDocument>
#include <QSaveFile>

QString saveJsonAtomically(const QString &path, const QJsonObject &object)
{
    const QByteArray bytes = QJsonDocument(object).toJson();
    QSaveFile file(path); // a new file beside the old one, which it replaces at the end
    // commit() alone takes a file that the disk had no room for as good: look at each step.
    const bool saved =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    if (saved)
        return QString();
    return file.error() == QFileDevice::NoError ? QStringLiteral("There was no room for all of it.")
                                                : file.errorString();
}
