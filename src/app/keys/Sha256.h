#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace corvana::app {

/// The 32 bytes of some bytes' SHA-256.
std::string sha256BytesOf(std::string_view bytes);

/// A SHA-256 that grows. One thread at a time.
class Sha256 {
 public:
  Sha256();

  void add(const void* bytes, std::size_t count);
  void add(std::string_view bytes) { add(bytes.data(), bytes.size()); }
  /// Of all that was added so far, in lower-case hexadecimal; more can be added afterwards.
  std::string hexadecimal() const;

 private:
  std::shared_ptr<evp_md_ctx_st> context_;
};

/// Lower-case hexadecimal SHA-256 of some bytes.
std::string sha256Of(std::string_view bytes);

}  // namespace corvana::app
