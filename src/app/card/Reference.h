#pragma once

#include <filesystem>
#include <optional>

#include <nlohmann/json.hpp>

#include "app/record/Files.h"
#include "corvana/DetectedData.h"

namespace corvana::app {

/// An earlier capture of a card, kept in a folder: reference.json and the pictures that it names.
/// docs/reference.schema.json gives its shape.
struct Reference {
  corvana::DetectedData front;
  std::optional<corvana::DetectedData> back;
  /// What its enrolment warned of, as `hintsToJson` has it; null where that was not kept.
  nlohmann::ordered_json hints = nullptr;
};

inline constexpr const char* kReferenceFileName = "reference.json";

/// Writes a reference into a folder that was taken for it.
Expected<void> saveReference(const Reference& reference, const std::filesystem::path& folder);

/// Refuses other shapes, other versions, print read by another reader, missing pictures, and names
/// that lead out of the folder.
Expected<Reference> loadReference(const std::filesystem::path& folder);

}  // namespace corvana::app
