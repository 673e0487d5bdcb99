#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/foundation/RandomSource.h"

namespace corvana::app {

/// Remembers the numbers that a run draws, so that it can be judged again; gives those of an
/// earlier run first.
class DrawnNumbers final : public platform::RandomSource {
 public:
  DrawnNumbers(std::vector<std::uint32_t> earlier, std::unique_ptr<platform::RandomSource> source)
      : earlier_(std::move(earlier)), source_(std::move(source)) {}

  std::uint32_t next() override {
    const bool isKnown = drawn_.size() < earlier_.size();
    drawn_.push_back(isKnown ? earlier_[drawn_.size()] : source_->next());
    return drawn_.back();
  }
  const std::vector<std::uint32_t>& drawn() const { return drawn_; }

 private:
  const std::vector<std::uint32_t> earlier_;
  const std::unique_ptr<platform::RandomSource> source_;
  std::vector<std::uint32_t> drawn_;
};

}  // namespace corvana::app
