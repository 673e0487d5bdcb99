#pragma once

#include <string>
#include <vector>

namespace corvana::tests {

/// The specimens of ICAO Doc 9303, parts 5, 6 and 4.
inline const std::vector<std::string> kTd1{"I<UTOD231458907<<<<<<<<<<<<<<<",  //
                                           "7408122F1204159UTO<<<<<<<<<<<6",  //
                                           "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"};
inline const std::vector<std::string> kTd2{"I<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<",
                                           "D231458907UTO7408122F1204159<<<<<<<6"};
inline const std::vector<std::string> kTd3{"P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<",
                                           "L898902C36UTO7408122F1204159ZE184226B<<<<<10"};

}  // namespace corvana::tests
