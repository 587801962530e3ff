// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QFile>

/** Measures by how many MiB the peak memory use has grown since the object was created. */
class PeakMemoryGrowth
{
public:
    PeakMemoryGrowth()
    {
        QFile resetPeak(QStringLiteral("/proc/self/clear_refs"));
        if (resetPeak.open(QIODevice::WriteOnly))
            resetPeak.write("5");
    }
    double inMiB() const { return double(statusBytes("VmHWM:") - m_sizeAtStartBytes) / (1024 * 1024); }

private:
    static qint64 statusBytes(const QByteArray &key)
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (!status.open(QIODevice::ReadOnly))
            return 0;
        const QList<QByteArray> lines = status.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (line.startsWith(key))
                return line.mid(key.size()).replace("kB", "").trimmed().toLongLong() * 1024;
        }
        return 0;
    }

    qint64 m_sizeAtStartBytes = statusBytes("VmRSS:");
};
