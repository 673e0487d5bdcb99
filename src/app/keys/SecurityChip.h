#pragma once

#include <memory>
#include <string>

#include <openssl/types.h>

#include "platform/foundation/Fault.h"

namespace corvana::app {

/// The machine's TPM 2.0, reached by OpenSSL's provider of the package tpm2-openssl. Keys that are
/// read by it are of use while it lives. TPM2OPENSSL_TCTI names a chip other than the first.
class SecurityChip {
 public:
  /// The error says what is missing: the package or the chip.
  static platform::Expected<std::shared_ptr<const SecurityChip>> open();

  OSSL_LIB_CTX* library() const { return library_.get(); }
  /// By which OpenSSL takes the chip for what it can do, and itself for the rest.
  static constexpr const char* kPreference = "?provider=tpm2";

 private:
  using Library = std::unique_ptr<OSSL_LIB_CTX, void (*)(OSSL_LIB_CTX*)>;
  using Provider = std::unique_ptr<OSSL_PROVIDER, int (*)(OSSL_PROVIDER*)>;

  SecurityChip(Library library, Provider usual, Provider chip);

  Library library_;
  Provider usual_;
  Provider chip_;
};

/// Whether this is the file of a key that lies in a chip.
bool isKeyOfChip(const std::string& pem);

}  // namespace corvana::app
