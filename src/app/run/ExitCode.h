#pragma once

#include <iostream>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "platform/foundation/Fault.h"

namespace corvana::app {

/// What the program tells its caller.
enum class ExitCode : int {
  result = 0,        ///< the flow ended with a result, or the command did what it was asked
  flowError = 1,     ///< the flow ended with an IDError, or a check found a difference
  wrongUse = 2,      ///< an argument, file or option that the user can mend
  machineLacks = 3,  ///< a model, plugin or package is missing
};

/// Why the program does not do what it was asked for.
struct Refusal {
  ExitCode code;
  std::string sentence;
};

inline tl::unexpected<Refusal> wrongUse(const std::string& sentence) {
  return tl::unexpected(Refusal{ExitCode::wrongUse, sentence});
}

inline tl::unexpected<Refusal> wrongUse(const platform::Fault& fault) {
  return wrongUse(fault.sentence);
}

/// Tells the user what is wrong, as one line of the program's; returns `code`.
inline ExitCode complain(std::ostream& err, ExitCode code, std::string_view sentence) {
  err << "videoid: " << sentence << '\n';
  return code;
}

/// Tells the user on standard error what is wrong with what was asked.
inline ExitCode refuse(std::string_view sentence) {
  return complain(std::cerr, ExitCode::wrongUse, sentence);
}

inline ExitCode refuse(const platform::Fault& fault) {
  return refuse(fault.sentence);
}

inline ExitCode complain(std::ostream& err, const Refusal& refusal) {
  return complain(err, refusal.code, refusal.sentence);
}

}  // namespace corvana::app
