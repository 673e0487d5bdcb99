#include "Truth.h"

#include <cmath>

#include "AamvaRecord.h"
#include "SideArtist.h"

namespace corvana::photos {
namespace {

using nlohmann::ordered_json;

double rounded(double value) {
  return std::round(value * 100.0) / 100.0;
}

ordered_json conditionsOf(const Conditions& conditions, const Photograph& photograph) {
  return {{"cardWidth", rounded(conditions.cardWidth)},
          {"tilt", rounded(conditions.tilt)},
          {"fill", rounded(conditions.fill)},
          {"cut", photograph.cut},
          {"defocus", rounded(conditions.defocus)},
          {"motion", rounded(conditions.motion)},
          {"noise", rounded(conditions.noise)},
          {"gain", rounded(conditions.gain)},
          {"fall", rounded(conditions.fall)},
          {"shadow", rounded(conditions.shadow)},
          {"glare", conditions.glare ? rounded(conditions.glare->strength) : 0.0},
          {"thumb", conditions.thumb.has_value()},
          {"quality", conditions.quality}};
}

ordered_json printOf(const Design& design, const SideDesign& side, const session::CardData& print) {
  ordered_json fields = ordered_json::object();
  const cv::Size2d size = design.size();
  for (const FieldPlace& place : side.fields) {
    const cv::Rect2d box = fieldBox(design, place);
    fields[place.field] = {{"value", plainValue(print, place.field)},
                           {"printed", printedValue(design, print, place.field)},
                           {"box",
                            {rounded(box.x / size.width), rounded(box.y / size.height),
                             rounded(box.width / size.width), rounded(box.height / size.height)}}};
  }
  return fields;
}

}  // namespace

ordered_json truthOf(const Taken& taken, const Design& design, const SideDesign& side,
                     const Conditions& conditions, const Photograph& photograph) {
  ordered_json corners = ordered_json::array();
  for (const cv::Point2f& corner : photograph.corners)
    corners.push_back({rounded(corner.x), rounded(corner.y)});
  ordered_json truth = {{"file", taken.file},
                        {"pair", taken.pair},
                        {"design", design.name},
                        {"document", design.kind},
                        {"side", taken.back ? "back" : "front"},
                        {"kind", taken.kind},
                        {"ground", conditions.ground},
                        {"turn", rounded(conditions.turn)},
                        {"corners", corners},
                        {"photo", side.photo.has_value()},
                        {"fields", printOf(design, side, taken.print)},
                        {"conditions", conditionsOf(conditions, photograph)}};
  if (side.zone) truth["zone"] = session::mrzLines(taken.coded, design.format);
  if (side.code) truth["code"] = {{"format", "PDF417"}, {"text", aamvaRecord(taken.coded)}};
  if (!taken.altered.empty()) truth["altered"] = taken.altered;
  return truth;
}

}  // namespace corvana::photos
