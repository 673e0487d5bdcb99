#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/foundation/Fault.h"

/// What lies where in the folder of a run.
namespace corvana::app {

inline constexpr const char* kResultFileName = "result.json";
/// The signature of result.json's bytes.
inline constexpr const char* kResultSealName = "result.jws";
inline constexpr const char* kSelfieFileName = "selfie.png";
inline constexpr const char* kFilmFileName = "film.mp4";
/// While it is recorded, and where the recording did not come to its end.
inline constexpr const char* kPartialFilmFileName = "film.partial.mp4";

/// The name of the film of an attempt that was retried, the first being 1.
std::string retriedFilmName(std::size_t attempt);

/// The name of the film of the last attempt; absent where there is none.
std::optional<std::string> filmIn(const std::filesystem::path& folder);

/// Whether the folder has a file of that name; refuses a folder whose rights keep that hidden.
platform::Expected<bool> hasFile(const std::filesystem::path& folder, const char* name);

/// Refuses what would spoil the record in `folder` by standing within it.
platform::Expected<void> checkOutside(const std::filesystem::path& folder,
                                      const std::filesystem::path& output);

/// Refuses a file that stands already or would spoil the record in `folder`; `option` names
/// another.
platform::Expected<void> checkNewFile(const std::filesystem::path& folder,
                                      const std::filesystem::path& file, const std::string& option);

/// The bytes of result.json; the error is one sentence.
platform::Expected<std::string> readResultBytes(const std::filesystem::path& folder);

/// What these bytes say, which may be no object; the error is one sentence.
platform::Expected<nlohmann::json> parseResult(const std::string& bytes,
                                               const std::filesystem::path& folder);

}  // namespace corvana::app
