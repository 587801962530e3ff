// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Pictures.h"

#include <QDir>

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

} // namespace

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
