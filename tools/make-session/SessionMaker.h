#pragma once

#include <filesystem>
#include <functional>

#include "Result.h"
#include "Script.h"

namespace corvana::session {

/// Told the frames done and the frames in all.
using Progress = std::function<void(std::size_t, std::size_t)>;

/// Makes session.mp4, front.png, back.png, text.txt and session.json in `folder`, which exists.
/// models: the folder with the face models.
Result<void> makeSession(const Script& script, const std::filesystem::path& models,
                         const std::filesystem::path& folder, const Progress& progress);

}  // namespace corvana::session
