#include <iostream>
#include <optional>

#include "app/card/DocumentFolders.h"
#include "app/card/DocumentHints.h"
#include "app/card/Reference.h"
#include "app/commands/Commands.h"
#include "app/commands/DocumentOptions.h"
#include "app/record/Files.h"
#include "app/run/Resources.h"
#include "devices/pictures/ImageFile.h"
#include "engine/document/DocumentAnalyzer.h"
#include "engine/document/copies/CopyFigures.h"
#include "engine/document/fields/DocumentFields.h"
#include "engine/document/fields/FieldAgreement.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using corvana::DetectedData;
using corvana::DocumentSide;

struct EnrollArguments {
  fs::path front;
  std::optional<fs::path> back;
  fs::path output;
  DocumentChoice documents;
  bool allowConflict = false;
  bool allowCopy = false;
};

tl::expected<DetectedData, Refusal> readSide(engine::DocumentAnalyzer& documents,
                                             const fs::path& path, DocumentSide expected) {
  const auto refuse = [&](const std::string& sentence) {
    return tl::unexpected(Refusal{ExitCode::wrongUse, sentence});
  };
  const auto picture = devices::readImage(path);
  if (!picture) return refuse(picture.error().sentence);
  auto reading = documents.analyzeStill(*picture);
  if (!reading) {
    return refuse(inQuotes(path) + ": " + reading.error().sentence);
  }
  DetectedData& data = reading->data;
  const bool isFront = expected == DocumentSide::front;
  const std::string side = isFront ? "front" : "back";
  if (data.side && *data.side != expected) {
    return refuse(inQuotes(path) + " shows the other side of a card, not its " + side +
                  "; swap the pictures.");
  }
  if (isFront && !data.faceImage) {
    return refuse("No face large enough to be compared was found on " + inQuotes(path) +
                  "; take a sharper picture, nearer to the card.");
  }
  const bool empty = !data.ocrStrings || data.ocrStrings->empty();
  if (empty && !data.mrz) {
    return refuse("Nothing could be read on " + inQuotes(path) +
                  "; take a sharper picture without glare.");
  }
  // Before the camera such a back is never taken for a complete one: the run could only time out.
  const bool lacksCode =
      (data.shouldHaveMrz && !data.mrz) || (data.shouldHaveBarcode && !data.barcode);
  if (isFront && lacksCode) {
    return refuse("The machine-readable zone or barcode that a " + *data.type +
                  " has could not be read on " + inQuotes(path) +
                  "; take a sharper picture of the whole card on a plain ground.");
  }
  if (!data.side || lacksCode) {
    return refuse("Neither a machine-readable zone nor a barcode could be read on " +
                  inQuotes(path) +
                  "; take a sharper picture of the whole back on a plain ground, or leave out "
                  "--back for a card that has neither.");
  }
  return std::move(data);
}

void describe(const char* name, const DetectedData& data) {
  std::cerr << name << ": " << data.type.value_or("document of unknown type") << ", "
            << (data.ocrStrings ? data.ocrStrings->size() : 0) << " lines of text"
            << (data.faceImage ? ", a photo" : "") << (data.mrz ? ", a machine-readable zone" : "")
            << (data.barcode ? ", a barcode" : "") << '\n';
  if (!data.ocrStrings) return;
  for (const std::string& line : *data.ocrStrings)
    std::cerr << "    " << line << '\n';
}

/// The kind of document that both sides must share, as "IDENTITY_CARD".
std::string kindOf(const DetectedData& data) {
  const std::string type = data.type.value_or("");
  return type.substr(0, type.rfind('_'));
}

/// Why the sides make no reference; empty when they do. No flow accepts a card of two kinds, so
/// that this can't be allowed.
std::string sidesFault(const Reference& reference) {
  if (!reference.back || !reference.front.type || !reference.back->type) return {};
  if (kindOf(reference.front) == kindOf(*reference.back)) return {};
  return "Front and back are not of one card: " + *reference.front.type + " and " +
         *reference.back->type + "; give both sides of the same card.";
}

std::vector<const DetectedData*> sidesOf(const Reference& reference) {
  std::vector<const DetectedData*> sides{&reference.front};
  if (reference.back) sides.push_back(&*reference.back);
  return sides;
}

/// What is amiss with the document; empty when nothing is.
std::string documentFault(const Reference& reference, const DocumentRules& rules) {
  std::string all;
  for (const DocumentHint& hint : hintsOf(sidesOf(reference), rules)) {
    if (hint.name != kSuspectCopy) all += (all.empty() ? "" : ", ") + describe(hint, rules);
  }
  return all;
}

void warnOfDoubtfulPrint(const Reference& reference) {
  for (const corvana::FieldCheck& check : engine::checkSides(sidesOf(reference))) {
    if (!check.isDoubtful) continue;
    std::cerr << "WARNING: the " << engine::nameOf(check.name)
              << " in print was not read for sure, and may be another than in the "
              << engine::nameOf(check.against) << ".\n";
  }
}

/// Of what the side looks like a copy, as part of a sentence.
std::string copyIn(const corvana::RealnessScores& scores) {
  return scores.screenScore > scores.photocopyScore ? "a picture of the card on a display"
                                                    : "a copy of the card on paper";
}

/// Which pictures have so much of a copy that no reasonable doubt is left, or only so much that
/// they are suspect; empty when none has.
std::string copyFault(const Reference& reference, float least) {
  const auto faultOf = [least](const char* side, const DetectedData& data) {
    if (!data.realness || engine::copyScore(*data.realness) < least) return std::string();
    return std::string("the ") + side + " looks like " + copyIn(*data.realness);
  };
  const std::string front = faultOf("front", reference.front);
  const std::string back = reference.back ? faultOf("back", *reference.back) : "";
  return front + (front.empty() || back.empty() ? "" : ", ") + back;
}

tl::expected<Reference, Refusal> readReference(const EnrollArguments& arguments,
                                               const DocumentRules& rules) {
  const Resources resources = findResources();
  const auto tables = loadDocuments(resources, arguments.documents);
  if (!tables) return tl::unexpected(tables.error());
  auto documents = engine::FaceDetector::load(resources.faceDetector()).and_then([&](auto&& faces) {
    return engine::DocumentAnalyzer::load(
        std::make_shared<engine::FaceDetector>(std::forward<decltype(faces)>(faces)),
        {.text = resources.textReader(), .documents = *tables, .today = rules.today});
  });
  if (!documents) {
    return tl::unexpected(Refusal{ExitCode::machineLacks, documents.error().sentence});
  }
  Reference reference;
  auto front = readSide(*documents, arguments.front, DocumentSide::front);
  if (!front) return tl::unexpected(front.error());
  reference.front = std::move(*front);
  describe("front", reference.front);
  if (!arguments.back) return reference;
  const auto* kind = (*tables)->kinds.ofType(reference.front.type.value_or(""));
  if (kind && !kind->back) {
    return tl::unexpected(
        Refusal{ExitCode::wrongUse, inQuotes(arguments.front) + " shows a " + kind->stem +
                                        ", which has no back; leave out --back."});
  }
  auto back = readSide(*documents, *arguments.back, DocumentSide::back);
  if (!back) return tl::unexpected(back.error());
  reference.back = std::move(*back);
  describe("back", *reference.back);
  return reference;
}

ExitCode runEnroll(const EnrollArguments& arguments) {
  const DocumentRules rules = documentRules(arguments.documents);
  const auto reference = readReference(arguments, rules);
  if (!reference) return complain(std::cerr, reference.error());
  if (const auto fault = sidesFault(*reference); !fault.empty()) {
    return complain(std::cerr, ExitCode::wrongUse, fault);
  }
  const std::string sureCopy = copyFault(*reference, engine::kSureCopy);
  if (!sureCopy.empty() && !arguments.allowCopy) {
    return complain(std::cerr, ExitCode::wrongUse,
                    "The card was not enrolled: " + sureCopy +
                        ". Photograph the card itself, or give --allow-copy to enroll the copy.");
  }
  if (const auto suspect = copyFault(*reference, engine::kSuspectCopy); !suspect.empty()) {
    std::cerr << "WARNING: " << suspect << ".\n";
  }
  if (const auto fault = documentFault(*reference, rules); !fault.empty()) {
    if (!arguments.allowConflict) {
      return complain(std::cerr, ExitCode::wrongUse,
                      "The card was not enrolled: " + fault +
                          ". Look at it, and give --allow-conflict to enroll it nevertheless.");
    }
    std::cerr << "WARNING: " << fault << ".\n";
  }
  warnOfDoubtfulPrint(*reference);
  auto saved = makeEmptyFolder(arguments.output).and_then([&] {
    return saveReference(*reference, arguments.output);
  });
  if (!saved) return complain(std::cerr, ExitCode::wrongUse, saved.error().sentence);
  std::cout << nlohmann::ordered_json{{"reference", fs::absolute(arguments.output).string()}}.dump()
            << '\n';
  return ExitCode::result;
}

}  // namespace

void addEnrollCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command =
      *app.add_subcommand("enroll", "Read photos of a card into the reference for later runs");
  auto arguments = std::make_shared<EnrollArguments>();
  command.add_option("--front", arguments->front, "picture of the front, JPEG or PNG")->required();
  command.add_option("--back", arguments->back, "picture of the back, for two-sided cards");
  command.add_option("--output", arguments->output, "new or empty folder for the reference")
      ->required();
  addDocumentOptions(command, arguments->documents);
  command.add_flag("--allow-conflict", arguments->allowConflict,
                   "also enroll a card whose print conflicts with its zone or barcode, or whose "
                   "dates are not in order; what is amiss is told");
  command.add_flag("--allow-copy", arguments->allowCopy,
                   "also enroll a card whose pictures surely show a copy on paper or on a display; "
                   "what is amiss is told");
  command.callback([arguments, &exitCode] { exitCode = runEnroll(*arguments); });
}

}  // namespace corvana::app
