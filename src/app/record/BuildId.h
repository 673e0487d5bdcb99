#pragma once

#include <string>

namespace corvana::app {

/// The note by which the linker tells this build of the program from every other (`readelf -n`), in
/// hexadecimal; empty where it left none.
std::string buildId();

}  // namespace corvana::app
