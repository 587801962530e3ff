// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Pictures.h"

#include "Files.h"

#include <QBuffer>
#include <QDataStream>
#include <QDir>

#include <zlib.h>

namespace {

// Mean over all pixels and colours, of 255. Another version of the font renderer differs less; a control that
// was moved or removed differs more.
constexpr double maxMeanDifference = 2.0;

QString pathOf(const QString &directory, const QString &name)
{
    return QStringLiteral("%1/%2.png").arg(directory, name);
}

int distance(QRgb one, QRgb other)
{
    return qAbs(qRed(one) - qRed(other)) + qAbs(qGreen(one) - qGreen(other))
           + qAbs(qBlue(one) - qBlue(other));
}

double meanDifference(const QImage &one, const QImage &other)
{
    qint64 sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            sum += distance(one.pixel(x, y), other.pixel(x, y));
    }
    return double(sum) / (3.0 * one.width() * one.height());
}

QByteArray chunk(const QByteArray &type, const QByteArray &data)
{
    const QByteArray content = type + data;
    QByteArray result;
    QDataStream stream(&result, QIODevice::WriteOnly);
    stream << quint32(data.size());
    stream.writeRawData(content.constData(), content.size());
    stream << quint32(crc32(0, reinterpret_cast<const Bytef *>(content.constData()), uInt(content.size())));
    return result;
}

// Returns the data of all chunks of this type in the picture as a PNG file.
QByteArray dataOf(const QImage &picture, const QByteArray &type)
{
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    picture.save(&file, "png", 0);
    constexpr int signatureSize = 8;
    constexpr int crcSize = 4;
    file.seek(signatureSize);
    QByteArray result;
    QDataStream stream(&file);
    while (!stream.atEnd()) {
        quint32 size = 0;
        stream >> size;
        if (file.read(type.size()) == type)
            result += file.read(size);
        else
            file.seek(file.pos() + size);
        file.seek(file.pos() + crcSize);
    }
    return result;
}

QRect changedArea(const QImage &one, const QImage &other)
{
    QRect area;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area.isEmpty() ? QRect(0, 0, 1, 1) : area;
}

// Where and how long a picture is shown.
QByteArray frameControl(quint32 number, const QRect &area, int durationMs)
{
    QByteArray result;
    QDataStream stream(&result, QIODevice::WriteOnly);
    constexpr quint16 unitsPerSecond = 1000;
    constexpr quint8 keepAndReplace = 0;
    stream << number << quint32(area.width()) << quint32(area.height()) << quint32(area.x())
           << quint32(area.y()) << quint16(durationMs) << unitsPerSecond << keepAndReplace << keepAndReplace;
    return result;
}

QByteArray bigEndian(quint32 number)
{
    QByteArray result;
    QDataStream(&result, QIODevice::WriteOnly) << number;
    return result;
}

} // namespace

// Each picture after the first one contains only the area that differs.
bool Pictures::saveAnimation(const QList<Frame> &frames, const QString &name)
{
    const QImage &first = frames.first().picture;
    QByteArray file = QByteArrayLiteral("\x89PNG\r\n\x1a\n") + chunk("IHDR", dataOf(first, "IHDR"))
                      + chunk("acTL", bigEndian(quint32(frames.size())) + bigEndian(0));
    file += chunk("fcTL", frameControl(0, first.rect(), frames.first().durationMs))
            + chunk("IDAT", dataOf(first, "IDAT"));
    quint32 number = 1;
    for (int i = 1; i < frames.size(); ++i) {
        const QRect area = changedArea(frames.at(i - 1).picture, frames.at(i).picture);
        file += chunk("fcTL", frameControl(number++, area, frames.at(i).durationMs));
        file += chunk("fdAT", bigEndian(number++) + dataOf(frames.at(i).picture.copy(area), "IDAT"));
    }
    file += chunk("IEND", QByteArray());
    const QString directory = QStringLiteral(ZYBASE_PICTURES);
    return QDir().mkpath(directory) && writeFile(pathOf(directory, name), file);
}

bool Pictures::save(const QImage &picture, const QString &name)
{
    const QString directory = QStringLiteral(ZYBASE_PICTURES);
    return QDir().mkpath(directory) && picture.save(pathOf(directory, name));
}

QString Pictures::difference(const QImage &picture, const QString &name)
{
    const QString path = pathOf(QStringLiteral(ZYBASE_COMMITTED_PICTURES), name);
    const QImage shown(path);
    const QString remedy = QStringLiteral("; look at it and run scripts/update-pictures");
    if (picture.size() != shown.size())
        return path + QStringLiteral(" has another size") + remedy;
    const double mean = meanDifference(picture, shown);
    if (mean > maxMeanDifference)
        return path + QStringLiteral(" differs by %1 on average").arg(mean) + remedy;
    return QString();
}
