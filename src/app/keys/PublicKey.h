#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "app/keys/KeyKind.h"
#include "platform/foundation/Fault.h"

namespace corvana::app {

/// The key by which others know that a record is a certain kiosk's.
class PublicKey {
 public:
  /// Reads a PEM file or a JSON Web Key. The error is one sentence: no such file, a private key, a
  /// key of another kind.
  static platform::Expected<PublicKey> load(const std::filesystem::path& file);
  /// A JSON Web Key (RFC 7518, RFC 8037); `name` stands for its file in errors.
  static platform::Expected<PublicKey> fromJwk(const nlohmann::json& jwk, const std::string& name);
  /// The public half of a private key.
  static platform::Expected<PublicKey> of(evp_pkey_st& privateKey, const std::string& name);

  /// The key's thumbprint (RFC 7638), by which seals name it.
  const std::string& id() const { return id_; }
  const KeyKind& kind() const { return *kind_; }
  /// Whether `signature` was made of exactly these bytes with the private half.
  bool verifies(std::string_view bytes, std::string_view signature) const;
  nlohmann::ordered_json jwk() const;
  std::string pem() const;

 private:
  PublicKey(std::shared_ptr<evp_pkey_st> key, const KeyKind& kind);
  static platform::Expected<PublicKey> check(std::shared_ptr<evp_pkey_st> key,
                                             const std::string& name);

  std::shared_ptr<evp_pkey_st> key_;
  const KeyKind* kind_;
  std::string id_;
};

}  // namespace corvana::app
