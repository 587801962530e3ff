// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

namespace ZyBase {

/**
 * What the library knows of the machine and the desktop, and small helpers around it.
 *
 * **Threads.** Any.
 */
class ZYBASE_EXPORT CSystemUtils
{
public:
    /**
     * The MD5 digest of the text's UTF-8 bytes as 32 lower-case hexadecimal digits. A null text has
     * the digest of an empty one, "d41d8cd98f00b204e9800998ecf8427e".
     *
     * @warning MD5 tells texts apart, it protects nothing: never keep a password in this form.
     */
    static QString GetStringMd5(const QString &strText);
};

} // namespace ZyBase
