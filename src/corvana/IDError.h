#pragma once

#include <string>
#include <utility>

#include "platform/foundation/Fault.h"

namespace corvana {

/// The one error type that crosses the public boundary: one sentence for the user of the program,
/// and a cause by which a caller tells errors apart.
class IDError {
 public:
  /// A message that the host has words for, and what it stands for.
  struct KnownMessage {
    const char* text;
    platform::FaultCause cause;
  };
  struct Strings {
    static constexpr KnownMessage canceled{"The video identification was canceled.",
                                           platform::FaultCause::canceled};
  };

  IDError() = default;
  explicit IDError(std::string message) : message_(std::move(message)) {}
  explicit IDError(const KnownMessage& known) : message_(known.text), cause_(known.cause) {}
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
