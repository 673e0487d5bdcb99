#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "app/card/Reference.h"
#include "app/keys/SigningKey.h"
#include "app/record/Files.h"
#include "app/run/CaptureArguments.h"

namespace corvana::app {

/// All that a run is given, checked before anything is recorded.
struct CaptureInputs {
  Reference reference;
  nlohmann::ordered_json referenceSums;  ///< SHA-256 of every file in the reference's folder
  std::string documentsSum;              ///< SHA-256 over the files of the kinds of documents
  std::string text;
  std::optional<std::string> consent;  ///< bytes of its record
  std::optional<SigningKey> key;       ///< seals the record
  MediaOpener openMedia;
  std::filesystem::path folder;  ///< of the run: free, but not made yet
};

/// Also sets the options of the options file. The error is one sentence.
Expected<CaptureInputs> checkInputs(const CaptureArguments& arguments);

/// Sets the options of a file, if there is one.
Expected<void> setOptions(const std::optional<std::filesystem::path>& file);

/// The SHA-256 of every file in the reference's folder.
Expected<nlohmann::ordered_json> sumsOfReference(const std::filesystem::path& folder);

/// A text that is to be read, without the line breaks at its end.
Expected<std::string> readText(const std::filesystem::path& file);

/// Longer than anyone reads aloud in ten minutes.
inline constexpr std::size_t kMostTextBytes = 8000;

}  // namespace corvana::app
