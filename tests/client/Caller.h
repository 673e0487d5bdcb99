#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "corvana/videoid.h"

namespace corvana::tests {

/// A handle on the stand-in for the program.
class Caller {
 public:
  explicit Caller(const char* program = PROGRAM) {
    const corvana_videoid_setup setup = {sizeof setup, program};
    corvana_videoid_create(&setup, &handle);
  }
  ~Caller() { corvana_videoid_destroy(handle); }
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  corvana_videoid_status capture(const std::string& as,
                                 const corvana_videoid_follower* follower = nullptr) {
    char* text = nullptr;
    const std::string request = nlohmann::json{{"as", as}}.dump();
    const auto status = corvana_videoid_capture(handle, request.c_str(), follower, &text);
    answer = text ? nlohmann::json::parse(text) : nlohmann::json();
    corvana_videoid_free(text);
    return status;
  }

  corvana_videoid* handle = nullptr;
  nlohmann::json answer;
};

}  // namespace corvana::tests
