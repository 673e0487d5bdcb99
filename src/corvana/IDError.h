#pragma once

#include <string>
#include <utility>

#include "platform/foundation/Fault.h"

namespace corvana {

/// The one error type that crosses the public boundary: one sentence for the user of the program.
class IDError {
 public:
  struct Strings {
    static constexpr const char* canceled = "The video identification was canceled.";
  };

  IDError() = default;
  explicit IDError(std::string message)
      : message_(std::move(message)),
        cause_(message_ == Strings::canceled ? platform::FaultCause::canceled
                                             : platform::FaultCause::other) {}
  explicit IDError(platform::Fault fault)
      : message_(std::move(fault.sentence)), cause_(fault.cause) {}
  const std::string& localizedDescription() const { return message_; }
  platform::FaultCause cause() const { return cause_; }
  bool operator==(const IDError&) const = default;

 private:
  std::string message_;
  platform::FaultCause cause_ = platform::FaultCause::other;
};

}  // namespace corvana
