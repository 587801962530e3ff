// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>

/**
 * Replaces the network of the library. A target that links FakeRequests.cpp has no sources of
 * CHttpPostRequest and CGoogleAnalytics: requests that wait return at once with the answer, all others end
 * without an outcome.
 */
namespace FakeRequests {

void setAnswer(const QByteArray &answer);

} // namespace FakeRequests
