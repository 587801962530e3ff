// SPDX-License-Identifier: 0BSD

#pragma once

#include <ZyBase/http/CHttpPostRequest.h>

/**
 * Creates a request that stops when @p owner is destroyed and deletes itself one second after its outcome.
 *
 * Start it once, by a function that runs in the background. Connect its signals with a receiver, usually the
 * owner. Do not delete the request and do not set a parent.
 */
ZyBase::CHttpPostRequest *createRequest(const QObject *owner);
