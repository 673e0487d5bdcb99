#pragma once

#include <filesystem>
#include <optional>

#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Where the files of a PocketSphinx model lie.
struct SpeechModelPaths {
  std::filesystem::path acousticModel;  ///< folder: means, variances, mdef, ...
  std::filesystem::path dictionary;     ///< words and their phones, one pronunciation a line
  std::filesystem::path languageModel;  ///< the stock model of the language

  /// The files in a folder laid out as Debian's pocketsphinx-en-us lays out
  /// `kDebianSpeechModelFolder`.
  static SpeechModelPaths inFolder(const std::filesystem::path& folder);

  /// Names the first file that is absent, unreadable or plainly something else. Cheap: reads a few
  /// bytes of each file. Any thread.
  std::optional<platform::Fault> findFault() const;
};

inline constexpr const char* kDebianSpeechModelFolder = "/usr/share/pocketsphinx/model/en-us";

}  // namespace corvana::engine
