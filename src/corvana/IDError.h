#pragma once

#include <string>

namespace corvana {

/// The one error type that crosses the public boundary: one sentence for the user of the program.
class IDError {
 public:
  struct Strings {
    static constexpr const char* canceled = "The video identification was canceled.";
  };

  IDError() = default;
  explicit IDError(std::string message) : message_(std::move(message)) {}
  const std::string& localizedDescription() const { return message_; }
  bool operator==(const IDError&) const = default;

 private:
  std::string message_;
};

}  // namespace corvana
