// SPDX-License-Identifier: 0BSD

#pragma once

#include <QByteArray>
#include <QUrl>
#include <QVersionNumber>

/** A version of the application that a server offers. */
struct Update
{
    QVersionNumber version; ///< null if the description cannot be used
    QUrl url; ///< of the archive
    QByteArray md5; ///< of the archive, in hexadecimal digits

    bool isNewer() const;
};

/**
 * Reads a description such as
 * {"version": "1.1.0", "url": "notekeeper-1.1.0.zip", "md5": "0123456789abcdef0123456789abcdef"}
 *
 * @param address the address of the description, for a relative URL in it
 */
Update readUpdate(const QByteArray &json, const QUrl &address);
