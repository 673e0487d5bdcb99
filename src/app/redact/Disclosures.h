#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace corvana::app {

/// Short texts that are taken out of a record, each with a digest that stays. A digest tells
/// nothing, since a random salt of 128 bits goes into it; whoever holds the disclosure can show
/// later which text it was. In the form of selective disclosure for JSON Web Tokens (SD-JWT): a
/// disclosure is a JSON array of salt, name and text, and its digest its SHA-256, both as
/// base64url.
class Disclosures {
 public:
  /// A second text of a name gets a number behind it.
  void add(const std::string& name, const std::string& text);

  bool isEmpty() const { return digests_.empty(); }
  const nlohmann::ordered_json& digests() const { return digests_; }          ///< by name
  const nlohmann::ordered_json& disclosures() const { return disclosures_; }  ///< by name

 private:
  nlohmann::ordered_json digests_ = nlohmann::ordered_json::object();
  nlohmann::ordered_json disclosures_ = nlohmann::ordered_json::object();
};

}  // namespace corvana::app
