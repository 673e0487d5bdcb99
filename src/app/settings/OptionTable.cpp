#include "app/settings/OptionTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <string>
#include <type_traits>

#include "app/record/Files.h"
#include "corvana/CameraWatch.h"
#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "corvana/VideoCapture.h"
#include "platform/foundation/Fault.h"

namespace corvana::app {
namespace {

using corvana::CameraWatch;
using corvana::IDCapture;
using corvana::SelfieCapture;
using corvana::VideoCapture;
using nlohmann::json;

struct Row {
  std::string key;
  std::string unit;
  double lowest;
  double highest;
  std::string meaning;
  json defaultValue;
  std::function<json()> get;
  /// False when the value has the wrong type or lies outside the range.
  std::function<bool(const json&)> set;
  std::vector<std::string> words = {};  ///< of which the value is one; empty: it is none of words
};

template <class Value>
bool fits(const json& value, double lowest, double highest) {
  if constexpr (std::is_same_v<Value, bool>) return value.is_boolean();
  if (!value.is_number() || (std::is_integral_v<Value> && !value.is_number_integer())) return false;
  const double number = value.get<double>();
  return std::isfinite(number) && number >= lowest && number <= highest;
}

template <class Value>
json toJson(Value value) {
  // A float printed as a double would show digits that nobody wrote.
  if constexpr (std::is_same_v<Value, float>) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    // Not by the C library, for which "0.44" is 0 where decimals have a comma.
    double shortest = 0;
    std::from_chars(digits.begin(), end, shortest);
    return shortest;
  }
  return value;
}

template <class Table, class Value>
Row row(Table& table, Value Table::*field, std::string key, std::string unit, double lowest,
        double highest, std::string meaning) {
  return {std::move(key),
          std::move(unit),
          lowest,
          highest,
          std::move(meaning),
          toJson(Table{}.*field),
          [&table, field] { return toJson(table.*field); },
          [&table, field, lowest, highest](const json& value) {
            if (!fits<Value>(value, lowest, highest)) return false;
            table.*field = value.get<Value>();
            return true;
          }};
}

/// An option that is one of a few words, in the order of its enumeration.
template <class Table, class Value>
Row choice(Table& table, Value Table::*field, std::string key, std::vector<std::string> words,
           std::string meaning) {
  const auto wordOf = [words](Value value) { return words.at(static_cast<std::size_t>(value)); };
  return {std::move(key),
          {},
          0,
          0,
          std::move(meaning),
          wordOf(Table{}.*field),
          [&table, field, wordOf] { return wordOf(table.*field); },
          [&table, field, words](const json& value) {
            if (!value.is_string()) return false;
            const auto word = std::ranges::find(words, value.get<std::string>());
            if (word == words.end()) return false;
            table.*field = static_cast<Value>(word - words.begin());
            return true;
          },
          words};
}

std::vector<Row> videoRows() {
  using VideoOptions = VideoCapture::Options;
  return {
      row(VideoCapture::options, &VideoOptions::idToSelfieMatchThreshold,
          "videoCapture.idToSelfieMatchThreshold", "distance", 0, 2,
          "greatest distance of the unit-length face embeddings at which the live face is the one "
          "on the card"),
      row(VideoCapture::options, &VideoOptions::idToIdPhotoMatchThreshold,
          "videoCapture.idToIdPhotoMatchThreshold", "distance", 0, 2,
          "the same for the photo on the card in the film and on the card captured earlier"),
      row(VideoCapture::options, &VideoOptions::frontLevenshteinThreshold,
          "videoCapture.frontLevenshteinThreshold", "share", 0, 1,
          "greatest share of characters that may differ between two readings of the front"),
      row(VideoCapture::options, &VideoOptions::backLevenshteinThreshold,
          "videoCapture.backLevenshteinThreshold", "share", 0, 1,
          "the same for a back without a machine-readable zone"),
      row(VideoCapture::options, &VideoOptions::readTextCountdownSeconds,
          "videoCapture.readTextCountdownSeconds", "s", 0, 600, "time to read the text aloud"),
      row(VideoCapture::options, &VideoOptions::readTextWordMatchThreshold,
          "videoCapture.readTextWordMatchThreshold", "share", 0, 10,
          "least share of the text's words that must be heard; above 1 is possible, since several "
          "heard words may lie in one written word"),
      row(VideoCapture::options, &VideoOptions::liveFaceLostSeconds,
          "videoCapture.liveFaceLostSeconds", "s", 0.2, 60,
          "how long the live face may be out of sight after the selfie was accepted"),
      row(VideoCapture::options, &VideoOptions::isDebugMode, "videoCapture.isDebugMode", "", 0, 0,
          "show raw measurements over the picture and mark the words heard"),
  };
}

std::vector<Row> selfieRows() {
  using SelfieOptions = SelfieCapture::Options;
  return {
      row(SelfieCapture::options, &SelfieOptions::timeOutSeconds, "selfieCapture.timeOutSeconds",
          "s", 1, 3600, "time from the start of a run to an accepted selfie"),
      row(SelfieCapture::options, &SelfieOptions::capture4K, "selfieCapture.capture4K", "", 0, 0,
          "analyse the camera picture at full size instead of at most 1280 pixels a side"),
      choice(SelfieCapture::options, &SelfieOptions::liveness, "selfieCapture.liveness",
             {"off", "passive", "active"},
             "what a selfie waits for: off, nothing; passive, a sign of life and none of fraud; "
             "active, the same and three tasks that are drawn for each run"),
      row(SelfieCapture::options, &SelfieOptions::livenessWatchSeconds,
          "selfieCapture.livenessWatchSeconds", "s", 0, 60,
          "least time for which a face is watched before it is believed alive"),
      row(SelfieCapture::options, &SelfieOptions::livenessAskSeconds,
          "selfieCapture.livenessAskSeconds", "s", 0, 60,
          "time after which a face without a sign of life is asked for one"),
      row(SelfieCapture::options, &SelfieOptions::livenessBlinkShare,
          "selfieCapture.livenessBlinkShare", "share", 0.1, 0.94,
          "sign of life: in a blink both eyes' height over width, as far as the network follows "
          "the lids, falls below this share of the usual"),
      row(SelfieCapture::options, &SelfieOptions::livenessRelief, "selfieCapture.livenessRelief",
          "sine", 0.005, 1,
          "sign of life: turn that the face's relief is sure to have made, as that of no flat or "
          "bent picture does"),
      row(SelfieCapture::options, &SelfieOptions::livenessRepetition,
          "selfieCapture.livenessRepetition", "ratio", 0, 10,
          "sign of fraud: pictures differ from earlier ones by less than this, over their "
          "difference from one to the next"),
      row(SelfieCapture::options, &SelfieOptions::livenessEdges, "selfieCapture.livenessEdges",
          "share", 0, 1,
          "sign of fraud: more than this of straight edges left, right and below the face is seen"),
      row(SelfieCapture::options, &SelfieOptions::livenessLipsAtRest,
          "selfieCapture.livenessLipsAtRest", "share", 0, 1,
          "sign of fraud while the text is read: in more than this of the looks with a voice the "
          "lips rest"),
      row(SelfieCapture::options, &SelfieOptions::livenessTaskSeconds,
          "selfieCapture.livenessTaskSeconds", "s", 1, 60,
          "active: time for each task, and for each way back to rest; the selfie's time-out is "
          "four "
          "times that longer"),
      row(SelfieCapture::options, &SelfieOptions::livenessTurnDegrees,
          "selfieCapture.livenessTurnDegrees", "degrees", 3, 30,
          "active: how far from rest a head has to turn to the left or right"),
      row(SelfieCapture::options, &SelfieOptions::livenessLookUpDegrees,
          "selfieCapture.livenessLookUpDegrees", "degrees", 3, 30,
          "active: how far from rest a head has to be lifted to look up"),
      row(SelfieCapture::options, &SelfieOptions::livenessNearerWidth,
          "selfieCapture.livenessNearerWidth", "ratio", 1.05, 1.5,
          "active: the face's width, over that at rest, at which it has come nearer"),
      row(SelfieCapture::options, &SelfieOptions::samePersonThreshold,
          "selfieCapture.samePersonThreshold", "distance", 0, 2,
          "greatest distance of the unit-length face embeddings at which the live face is still "
          "the selfie's"),
  };
}

std::vector<Row> cardRows() {
  using CardOptions = IDCapture::Options;
  return {
      row(IDCapture::options, &CardOptions::timeOutSeconds, "idCapture.timeOutSeconds", "s", 1,
          3600, "time from the accepted selfie to the last accepted side of the card"),
      row(IDCapture::options, &CardOptions::capture4K, "idCapture.capture4K", "", 0, 0,
          "analyse the camera picture at full size instead of at most 1280 pixels a side"),
      row(IDCapture::options, &CardOptions::leastCardWidth, "idCapture.leastCardWidth",
          "frame widths", 0.2, 1, "a narrower card has to come closer"),
      row(IDCapture::options, &CardOptions::mostCardWidth, "idCapture.mostCardWidth",
          "frame widths", 1, 5,
          "a wider card has to move away, as has one that reaches over both sides of the picture"),
      row(IDCapture::options, &CardOptions::mostCardOffset, "idCapture.mostCardOffset",
          "frame widths", 0.01, 2,
          "a card whose middle is farther from the frame's has to be aligned, as has one that is "
          "partly outside the picture"),
      row(IDCapture::options, &CardOptions::mostCardRoll, "idCapture.mostCardRoll", "degrees", 1,
          24, "a card that is turned more has to be aligned"),
      row(IDCapture::options, &CardOptions::mostCardTaper, "idCapture.mostCardTaper", "ratio", 1.01,
          1.5,
          "a card of which one side looks longer than the opposite one by more leans away and has "
          "to be aligned"),
      row(IDCapture::options, &CardOptions::mostGlare, "idCapture.mostGlare", "share", 0, 1,
          "a card with more of its area lost in glare is not read"),
      row(IDCapture::options, &CardOptions::leastSharpness, "idCapture.leastSharpness", "share", 0,
          0.5,
          "a card is not read when less of the contrast of its print's edges lies within a "
          "five-hundredth of its width"),
      row(IDCapture::options, &CardOptions::leastBrightness, "idCapture.leastBrightness", "share",
          0, 1, "a card whose lightest tenth is darker than that (of white) is not read"),
      row(IDCapture::options, &CardOptions::mostCoveredPrint, "idCapture.mostCoveredPrint", "share",
          0, 1, "a card with more of its print covered since it was last read is not read"),
      choice(IDCapture::options, &CardOptions::rejectUnreal, "idCapture.rejectUnreal",
             {"off", "sure", "all"},
             "which cards are not accepted because they look like copies: off, none; sure, grey "
             "copies and displays of which there is no doubt; all, suspect ones too, with some "
             "true cards among them"),
      row(IDCapture::options, &CardOptions::patienceSeconds, "idCapture.patienceSeconds", "s", 0, 5,
          "how long a card has to be wrong in one of these ways before the person is told"),
  };
}

std::vector<Row> cameraRows() {
  using CameraOptions = CameraWatch::Options;
  return {
      row(CameraWatch::options, &CameraOptions::regularMicroseconds,
          "cameraWatch.regularMicroseconds", "microseconds", 0, 1000,
          "sign of a stream that is fed in: the standard deviation of 150 intervals between "
          "pictures is below this"),
      row(CameraWatch::options, &CameraOptions::shortInterval, "cameraWatch.shortInterval", "share",
          0, 1, "an interval below this share of the camera mode's is too short for a sensor"),
      row(CameraWatch::options, &CameraOptions::mostShortIntervals,
          "cameraWatch.mostShortIntervals", "share", 0, 1,
          "sign of a stream that is fed in: more of 150 intervals than this are too short"),
      row(CameraWatch::options, &CameraOptions::mostIdentical, "cameraWatch.mostIdentical", "share",
          0, 1,
          "sign of a stream that is fed in: more of 150 pictures than this are the same, to the "
          "last bit, as one from half a second to a minute before"),
  };
}

const std::vector<Row>& rows() {
  static const std::vector<Row> kAll = [] {
    std::vector<Row> all = videoRows();
    for (const auto& some : {selfieRows(), cardRows(), cameraRows()})
      all.insert(all.end(), some.begin(), some.end());
    return all;
  }();
  return kAll;
}

const Row* find(const std::string& key) {
  for (const Row& candidate : rows()) {
    if (candidate.key == key) return &candidate;
  }
  return nullptr;
}

std::string rangeOf(const Row& option) {
  if (!option.words.empty()) return "one of " + json(option.words).dump();
  if (option.defaultValue.is_boolean()) return "true or false";
  const std::string kind = option.defaultValue.is_number_integer() ? "a whole number" : "a number";
  return kind + " from " + json(option.lowest).dump() + " to " + json(option.highest).dump();
}

}  // namespace

std::vector<OptionInfo> listOptions() {
  std::vector<OptionInfo> options;
  for (const Row& option : rows()) {
    options.push_back({option.key, option.unit, option.meaning, option.defaultValue, option.get()});
  }
  return options;
}

platform::Expected<void> applyOptions(const json& object) {
  if (!object.is_object()) {
    return platform::failure("The options must be a JSON object of keys and values.");
  }
  const json before = currentOptions();
  for (const auto& [key, value] : object.items()) {
    const Row* option = find(key);
    std::string problem;
    if (!option) {
      problem =
          "There is no option " + inQuotes(key) + "; `videoid options --print` lists them all.";
    } else if (!option->set(value)) {
      problem = "The option " + inQuotes(key) + " must be " + rangeOf(*option) + ", not " +
                value.dump(-1, ' ', true, json::error_handler_t::replace) + ".";
    }
    if (problem.empty()) continue;
    for (const auto& [name, old] : before.items())
      find(name)->set(old);
    return platform::failure(problem);
  }
  return {};
}

json currentOptions() {
  json object = json::object();
  for (const Row& option : rows())
    object[option.key] = option.get();
  return object;
}

}  // namespace corvana::app
