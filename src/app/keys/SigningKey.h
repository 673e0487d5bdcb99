#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "app/keys/PublicKey.h"

namespace corvana::app {

/// The private half, which never leaves its file and this process, or its security chip. Any
/// thread.
class SigningKey {
 public:
  /// Makes a new Ed25519 key in a new file that only its owner may read; refuses a file that is
  /// there.
  static platform::Expected<SigningKey> create(const std::filesystem::path& file);
  /// Ed25519 or P-256, or the file by which a security chip (TPM 2.0) knows a P-256 key of its own
  /// ("TSS2 PRIVATE KEY"). Refuses a file that others may read, too, a key of another kind, one
  /// behind a password, and one whose chip does not answer.
  static platform::Expected<SigningKey> load(const std::filesystem::path& file);

  const PublicKey& publicKey() const { return public_; }
  /// Whether a security chip makes the signatures, which takes far longer.
  bool isInChip() const;
  /// The 64 bytes of the signature; an Ed25519 key always gives the same ones for the same bytes.
  /// An error is a chip's that does not answer any more.
  platform::Expected<std::string> sign(std::string_view bytes) const;

 private:
  struct Private;
  static platform::Expected<SigningKey> of(std::shared_ptr<Private> key,
                                           const std::filesystem::path& file);
  SigningKey(std::shared_ptr<Private> key, PublicKey publicKey);

  std::shared_ptr<Private> private_;
  PublicKey public_;
};

}  // namespace corvana::app
