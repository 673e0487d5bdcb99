#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "platform/foundation/Fault.h"

struct evp_pkey_st;

namespace corvana::app {

/// The key by which others know that a record is a certain kiosk's (Ed25519).
class PublicKey {
 public:
  /// Reads a PEM file or a JSON Web Key. The error is one sentence: no such file, a private key, a
  /// key of another kind.
  static platform::Expected<PublicKey> load(const std::filesystem::path& file);
  /// A JSON Web Key (RFC 8037); `name` stands for its file in errors.
  static platform::Expected<PublicKey> fromJwk(const nlohmann::json& jwk, const std::string& name);

  /// The key's thumbprint (RFC 7638), by which seals name it.
  const std::string& id() const { return id_; }
  /// Whether `signature` was made of exactly these bytes with the private half.
  bool verifies(std::string_view bytes, std::string_view signature) const;
  nlohmann::ordered_json jwk() const;
  std::string pem() const;

 private:
  friend class SigningKey;
  explicit PublicKey(std::shared_ptr<evp_pkey_st> key);
  std::string x() const;

  std::shared_ptr<evp_pkey_st> key_;
  std::string id_;
};

/// The private half, which never leaves its file and this process. Any thread.
class SigningKey {
 public:
  /// Makes a new key in a new file that only its owner may read; refuses a file that is there.
  static platform::Expected<SigningKey> create(const std::filesystem::path& file);
  /// Refuses a file that others may read, too, a key of another kind and one behind a password.
  static platform::Expected<SigningKey> load(const std::filesystem::path& file);

  const PublicKey& publicKey() const { return public_; }
  /// The 64 bytes of the signature; the same bytes always get the same one.
  std::string sign(std::string_view bytes) const;

 private:
  explicit SigningKey(std::shared_ptr<evp_pkey_st> key) : public_(std::move(key)) {}

  PublicKey public_;
};

}  // namespace corvana::app
