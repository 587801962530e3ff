// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <ZyBase/http/CHttpPostRequest.h>

/**
 * A request that @p owner asks with, to be started once by one of the forms that don't wait. It is stopped
 * when the owner goes, and removes itself a moment after its outcome, whoever is still there.
 *
 * Connect its signals to a receiver, the owner as a rule; never delete it and give it no parent.
 */
ZyBase::CHttpPostRequest *createRequest(const QObject *owner);
