// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QList>

/** What the environment variables of scripts/check-faults select. */
namespace FullSweep {

/** Returns whether all errors are tried, instead of one for each kind of call. */
inline bool isOn()
{
    return qEnvironmentVariableIsSet("ZYBASE_ALL_FAULTS");
}

/**
 * Returns whether this process tests the next row. Several processes share the rows: ZYBASE_FAULTS_PART is
 * such as "2/8".
 */
inline bool takesNextRow()
{
    static const QList<QByteArray> part = qgetenv("ZYBASE_FAULTS_PART").split('/');
    static int row = 0;
    return part.size() < 2 || row++ % part.at(1).toInt() == part.at(0).toInt();
}

} // namespace FullSweep
