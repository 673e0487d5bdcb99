#include <algorithm>
#include <cctype>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "app/commands/Commands.h"
#include "app/faces/StillFaces.h"
#include "app/record/Files.h"
#include "app/run/CaptureInputs.h"
#include "capture/FaceMatchDetector.h"
#include "corvana/VideoCapture.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/system/TerminalSystem.h"
#include "engine/json/JsonText.h"
#include "engine/vision/FaceEmbedder.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

/// Digits beyond these differ between CPU types.
constexpr double kDecimals = 1e4;
constexpr double kEmbeddingDecimals = 1e6;

struct CompareArguments {
  fs::path first;
  fs::path second;
  std::optional<fs::path> options;
};

/// By the module's own comparison, so that the distance is the one that a flow would decide by.
std::optional<capture::FaceMatchResult> match(const Resources& resources, const StillFace& first,
                                              const StillFace& second, float limit) {
  devices::StreamConsole console(std::cerr);
  const devices::DirectoryBundle bundle(resources.module, nullptr);
  return capture::FaceMatchDetector(bundle, console).faceMatch(first.crop, second.crop, limit);
}

ExitCode runCompare(const CompareArguments& arguments) {
  if (const auto set = setOptions(arguments.options); !set) return refuse(set.error());
  const Resources resources = findResources();
  auto faces = StillFaces::load(resources);
  if (!faces) return complain(std::cerr, ExitCode::machineLacks, faces.error().sentence);
  const auto first = faces->read(arguments.first);
  if (!first) return refuse(first.error());
  const auto second = faces->read(arguments.second);
  if (!second) return refuse(second.error());
  const float limit = corvana::VideoCapture::options.idToSelfieMatchThreshold;
  const auto matched = match(resources, *first, *second, limit);
  if (!matched) {
    return complain(std::cerr, ExitCode::machineLacks,
                    "The face model could not be used; `videoid doctor` says what is missing.");
  }
  const auto rounded = [](double value) { return std::round(value * kDecimals) / kDecimals; };
  std::cout << ordered_json{{"first", faceToJson(first->face)},
                            {"second", faceToJson(second->face)},
                            {"distance", rounded(matched->distance)},
                            {"limit", rounded(limit)},
                            {"matches", matched->isMatched}}
            << '\n';
  return matched->isMatched ? ExitCode::result : ExitCode::flowError;
}

bool isPhotograph(const fs::path& file) {
  std::string ending = file.extension().string();
  std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
  return ending == ".jpg" || ending == ".jpeg" || ending == ".png";
}

platform::Expected<std::vector<fs::path>> photographsIn(const fs::path& folder) {
  std::vector<fs::path> photographs;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (isPhotograph(entry.path())) photographs.push_back(entry.path());
  }
  std::ranges::sort(photographs);
  if (!photographs.empty()) return photographs;
  return platform::failure(inQuotes(folder) + " is no folder with JPEG or PNG files: name one.");
}

ordered_json embeddingToJson(const engine::FaceEmbedding& embedding) {
  auto list = ordered_json::array();
  for (const float value : embedding) {
    const auto wide = static_cast<double>(value);
    list.push_back(std::round(wide * kEmbeddingDecimals) / kEmbeddingDecimals);
  }
  return list;
}

ordered_json embedOne(const fs::path& photograph, StillFaces& faces,
                      engine::FaceEmbedder& embedder) {
  ordered_json line{{"file", photograph.filename().string()}};
  const auto face = faces.read(photograph);
  if (!face) {
    line["error"] = face.error().sentence;
    return line;
  }
  line.update(faceToJson(face->face));
  line["embedding"] = embeddingToJson(embedder.embed(*face->crop->pixels()));
  return line;
}

ExitCode runEmbed(const fs::path& folder) {
  const auto photographs = photographsIn(folder);
  if (!photographs) return refuse(photographs.error());
  const Resources resources = findResources();
  auto faces = StillFaces::load(resources);
  if (!faces) return complain(std::cerr, ExitCode::machineLacks, faces.error().sentence);
  auto embedder = engine::FaceEmbedder::load(resources.faceModel());
  if (!embedder) return complain(std::cerr, ExitCode::machineLacks, embedder.error().sentence);
  bool all = true;
  for (const fs::path& photograph : *photographs) {
    const ordered_json line = embedOne(photograph, *faces, *embedder);
    std::cout << engine::compactJson(line) << std::endl;
    all = all && !line.contains("error");
  }
  return all ? ExitCode::result : ExitCode::flowError;
}

}  // namespace

void addCompareCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command =
      *app.add_subcommand("compare", "Say whether two photographs show the same face");
  auto arguments = std::make_shared<CompareArguments>();
  command.add_option("first", arguments->first, "picture of one person, JPEG or PNG")->required();
  command.add_option("second", arguments->second, "another one")->required();
  command.add_option("--options", arguments->options,
                     "JSON file of options; videoCapture.idToSelfieMatchThreshold is the limit");
  command.footer(
      "Exit code: 0 the same face, 1 another, 2 no comparison, 3 the machine lacks something.");
  command.callback([arguments, &exitCode] { exitCode = runCompare(*arguments); });
}

void addEmbedCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "embed", "Print the face model's numbers of each photograph, a line of JSON for each");
  auto folder = std::make_shared<fs::path>();
  command.add_option("folder", *folder, "folder with JPEG or PNG pictures of one person each")
      ->required();
  command.footer(
      "Exit code: 0 all have a face, 1 some have none, 2 no photograph, 3 the machine lacks "
      "something.");
  command.callback([folder, &exitCode] { exitCode = runEmbed(*folder); });
}

}  // namespace corvana::app
