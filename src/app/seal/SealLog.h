#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <nlohmann/json.hpp>

#include "app/keys/SigningKey.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::app {

/// seal.jsonl, which only grows: lines of JSON, each with the hash of the line before it, and
/// behind each the line with its signature. A line that can't be signed or written is told, and is
/// the end of the file. Any thread.
class SealLog : public std::enable_shared_from_this<SealLog> {
 public:
  using OnFault = std::function<void(const platform::Fault&)>;
  static constexpr const char* kFileName = "seal.jsonl";

  /// `onFault` comes once at most, on the main queue.
  SealLog(platform::RunLoop& loop, const std::filesystem::path& path, SigningKey key,
          OnFault onFault);

  const SigningKey& key() const { return key_; }
  void add(const nlohmann::ordered_json& content);

 private:
  void fail(platform::Fault fault);
  platform::Fault fileFault(int error) const;
  void syncSoon();

  platform::RunLoop& loop_;
  const std::filesystem::path path_;
  const SigningKey key_;
  const OnFault onFault_;
  std::shared_ptr<platform::DispatchQueue> diskQueue_;  ///< null where time is virtual
  std::mutex mutex_;
  std::ofstream file_;
  std::string last_;         ///< line without its end
  std::uint64_t bytes_ = 0;  ///< of all whole lines
  bool broken_ = false;
};

}  // namespace corvana::app
