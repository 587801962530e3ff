// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>

/**
 * Adds the authorities in a file to those that this process trusts.
 *
 * Call it at the start of main(), before the first request.
 *
 * @param pemFile a file with one or more certificates in PEM
 * @return why nothing was added, or an empty string on success
 */
QString trustAuthority(const QString &pemFile);
