// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <string>

namespace ZyBase {

/**
 * The work on this platform behind CSystemUtils and CAssocUtils, which hosts call in its place where
 * both have the function.
 *
 * **Threads.** Any.
 */
class ZYBASE_EXPORT COperateSystem
{
public:
    /** Does nothing: the machine stays awake. */
    static void SleepComputer();

    /** Does nothing: the machine keeps running. */
    static void ShutdownComputer();

    /**
     * The name of the package that the running executable came with: the last part of the path of its
     * directory, or, where that has "files" in it in any case, the last part of the path above.
     *
     * So "/opt/apps/org.example.reader/files/reader" gives "org.example.reader", and "/usr/bin/reader"
     * gives "bin".
     *
     * @return the name in UTF-8; "." for an executable at the top of the file system and where
     * /proc can't be read
     *
     * @warning Any directory with these letters in a row makes the step up, as "profiles" does: an
     * executable in "/home/user/profiles" gives "user".
     */
    static std::string GetBundleIdentifier();
};

} // namespace ZyBase
