#include <iostream>
#include <optional>

#include "app/card/CardSides.h"
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
#include "engine/document/fields/FieldAgreement.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using corvana::DetectedData;
using corvana::DocumentSide;
using nlohmann::ordered_json;
using Checks = std::vector<corvana::FieldCheck>;

struct EnrollArguments {
  fs::path front;
  std::optional<fs::path> back;
  fs::path output;
  DocumentChoice documents;
  bool allowConflict = false;
  bool allowCopy = false;
};

tl::expected<engine::CardReading, Refusal> readSide(engine::DocumentAnalyzer& documents,
                                                    const fs::path& path, DocumentSide expected) {
  const auto picture = devices::readImage(path);
  if (!picture) return wrongUse(picture.error());
  auto reading = documents.analyzeStill(*picture);
  if (!reading) {
    return wrongUse(inQuotes(path) + ": " + reading.error().sentence);
  }
  const DetectedData& data = reading->data;
  const bool isFront = expected == DocumentSide::front;
  const std::string side = isFront ? "front" : "back";
  if (data.side && *data.side != expected) {
    return wrongUse(inQuotes(path) + " shows the other side of a card, not its " + side +
                    "; swap the pictures.");
  }
  if (isFront && !data.faceImage) {
    return wrongUse("No face large enough to be compared was found on " + inQuotes(path) +
                    "; take a sharper picture, nearer to the card.");
  }
  const bool empty = !data.ocrStrings || data.ocrStrings->empty();
  if (empty && !data.mrz) {
    return wrongUse("Nothing could be read on " + inQuotes(path) +
                    "; take a sharper picture without glare.");
  }
  // Before the camera such a back is never taken for a complete one: the run could only time out.
  const bool lacksCode =
      (data.shouldHaveMrz && !data.mrz) || (data.shouldHaveBarcode && !data.barcode);
  if (isFront && lacksCode) {
    return wrongUse("The machine-readable zone or barcode that a " + *data.type +
                    " has could not be read on " + inQuotes(path) +
                    "; take a sharper picture of the whole card on a plain ground.");
  }
  if (!data.side || lacksCode) {
    return wrongUse("Neither a machine-readable zone nor a barcode could be read on " +
                    inQuotes(path) +
                    "; take a sharper picture of the whole back on a plain ground, or leave out "
                    "--back for a card that has neither.");
  }
  return *std::move(reading);
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

/// What is amiss with the document; empty when nothing is.
std::string documentFault(const Reference& reference, const Checks& checks,
                          const DocumentRules& rules) {
  std::string all;
  for (const DocumentHint& hint : hintsOf(sidesOf(reference), checks, rules)) {
    if (hint.name != kSuspectCopy) all += (all.empty() ? "" : ", ") + describe(hint, rules);
  }
  return all;
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

tl::expected<engine::CardReading, Refusal> readBack(engine::DocumentAnalyzer& documents,
                                                    const EnrollArguments& arguments,
                                                    const engine::DocumentKind* kind) {
  if (kind && !kind->back) {
    return wrongUse(inQuotes(arguments.front) + " shows a " + kind->stem +
                    ", which has no back; leave out --back.");
  }
  return readSide(documents, *arguments.back, DocumentSide::back);
}

/// A card, and whether it is of its kind by its back alone.
struct ReadCard {
  Reference reference;
  bool isUntitled = false;
};

tl::expected<ReadCard, Refusal> readCard(const EnrollArguments& arguments,
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
  auto front = readSide(*documents, arguments.front, DocumentSide::front);
  if (!front) return tl::unexpected(front.error());
  describe("front", front->data);
  if (!arguments.back) return ReadCard{{std::move(front->data), std::nullopt}};
  const auto& kinds = (*tables)->kinds;
  auto back = readBack(*documents, arguments, kinds.ofType(front->data.type.value_or("")));
  if (!back) return tl::unexpected(back.error());
  describe("back", back->data);
  documents->settleByOtherSide(*front, back->data);
  documents->settleByOtherSide(*back, front->data);
  Reference reference{front->data, std::move(back->data)};
  const bool isUntitled = takeKindOfBack(reference, kinds);
  if (isUntitled) {
    // Labels and places of fields are the kind's.
    front->data.type = reference.front.type;
    documents->settleByOtherSide(*front, *reference.back);
    reference.front = std::move(front->data);
  }
  const auto fault = sidesFault(reference, kinds, arguments.front, *arguments.back);
  if (!fault.empty()) return wrongUse(fault);
  return ReadCard{std::move(reference), isUntitled};
}

ExitCode runEnroll(const EnrollArguments& arguments) {
  if (const auto free = checkEmptyFolder(arguments.output); !free) return refuse(free.error());
  const DocumentRules rules = documentRules(arguments.documents);
  auto card = readCard(arguments, rules);
  if (!card) return complain(std::cerr, card.error());
  Reference* const reference = &card->reference;
  const std::string sureCopy = copyFault(*reference, engine::kSureCopy);
  if (!sureCopy.empty() && !arguments.allowCopy) {
    return refuse("The card was not enrolled: " + sureCopy +
                  ". Photograph the card itself, or give --allow-copy to enroll the copy.");
  }
  if (const auto suspect = copyFault(*reference, engine::kSuspectCopy); !suspect.empty()) {
    std::cerr << "WARNING: " << suspect << ".\n";
  }
  const Checks checks = engine::checkSides(sidesOf(*reference));
  if (const auto fault = documentFault(*reference, checks, rules); !fault.empty()) {
    if (!arguments.allowConflict) {
      return refuse("The card was not enrolled: " + fault +
                    ". Look at it, and give --allow-conflict to enroll it nevertheless.");
    }
    std::cerr << "WARNING: " << fault << ".\n";
  }
  auto hints = hintsOf(sidesOf(*reference), checks, rules);
  auto warnings = unreadHintsOf(checks);
  if (card->isUntitled) warnings.insert(warnings.begin(), {kUntitled, std::nullopt});
  for (DocumentHint& hint : warnings) {
    std::cerr << "WARNING: " << describe(hint, rules) << ".\n";
    hints.push_back(std::move(hint));
  }
  reference->hints = hintsToJson(hints);
  auto saved = takeFolder(arguments.output, kReferenceFileName).and_then([&] {
    return saveReference(*reference, arguments.output);
  });
  if (!saved) return refuse(saved.error());
  const ordered_json result{{"reference", fs::absolute(arguments.output).string()}};
  std::cout << engine::compactJson(result) << '\n';
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
