#pragma once

#include <chrono>
#include <string>

#include "platform/foundation/Fault.h"

namespace corvana::app {

/// Sends a request (DER) to a time stamp authority over HTTP or HTTPS, and returns its answer (DER)
/// as it came: `checkStamp` says what it is worth. Only the authority itself is asked, no address
/// to which it points. The only place of this program that opens a connection. Blocks for `limit`
/// at most. The error is one sentence; it names the authority's machine, never a password in the
/// address.
platform::Expected<std::string> askAuthority(const std::string& address, const std::string& request,
                                             std::chrono::seconds limit);

}  // namespace corvana::app
