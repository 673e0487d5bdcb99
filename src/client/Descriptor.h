#pragma once

#include <utility>

#include <unistd.h>

namespace corvana::client {

/// A file descriptor that is closed when nobody has it any more.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { reset(); }

  int get() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  void reset() {
    if (number_ >= 0) close(number_);
    number_ = -1;
  }

 private:
  int number_;
};

}  // namespace corvana::client
