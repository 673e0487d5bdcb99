#pragma once

namespace app {

/// What the program tells its caller.
enum class ExitCode : int {
  result = 0,        ///< the flow ended with a result, or the command did what it was asked
  flowError = 1,     ///< the flow ended with an IDError, or a check found a difference
  wrongUse = 2,      ///< an argument, file or option that the user can mend
  machineLacks = 3,  ///< a model, plugin or package is missing
};

}  // namespace app
