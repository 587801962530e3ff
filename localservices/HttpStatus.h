// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

namespace LocalServices {
namespace HttpStatus {

/** The HTTP status codes that the local services send themselves. */
enum : int {
    Ok = 200,
    NoContent = 204,
    Forbidden = 403,
    NotFound = 404,
    InternalServerError = 500,
    BadGateway = 502,
    ServiceUnavailable = 503
};

} // namespace HttpStatus
} // namespace LocalServices
