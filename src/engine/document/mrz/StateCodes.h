#pragma once

#include <string_view>

namespace corvana::engine {

/// Whether machine-readable documents name a state, a territory or an organisation so: the three
/// letters of ISO 3166 and the codes that ICAO Doc 9303 part 3 adds to them. Fillers at the end do
/// not count. Pure.
bool isMrzStateCode(std::string_view code);

}  // namespace corvana::engine
