#include "devices/live/DeviceModes.h"

#include <algorithm>
#include <optional>
#include <sstream>

namespace corvana::devices {
namespace {

struct Size {
  int width;
  int height;
};
constexpr Size kUsualSizes[] = {{640, 480}, {800, 600}, {1280, 720}, {1920, 1080}};
constexpr double kUsualRates[] = {15, 24, 30, 60};

/// Name of a format in lists; empty when it can't be read.
std::string formatOf(const GstStructure* structure) {
  if (gst_structure_has_name(structure, "image/jpeg")) return "MJPEG";
  if (gst_structure_has_name(structure, "video/x-h264")) return "H.264";
  if (!gst_structure_has_name(structure, "video/x-raw")) return {};
  const GValue* format = gst_structure_get_value(structure, "format");
  if (format && GST_VALUE_HOLDS_LIST(format)) format = gst_value_list_get_value(format, 0);
  return format && G_VALUE_HOLDS_STRING(format) ? g_value_get_string(format) : "";
}

double rateOf(const GValue* value) {
  const int denominator = gst_value_get_fraction_denominator(value);
  return denominator == 0 ? 0 : double(gst_value_get_fraction_numerator(value)) / denominator;
}

std::vector<double> ratesOf(const GstStructure* structure) {
  const GValue* value = gst_structure_get_value(structure, "framerate");
  if (!value) return {30};
  if (GST_VALUE_HOLDS_FRACTION(value)) return {rateOf(value)};
  std::vector<double> rates;
  if (GST_VALUE_HOLDS_LIST(value)) {
    for (guint i = 0; i < gst_value_list_get_size(value); ++i)
      rates.push_back(rateOf(gst_value_list_get_value(value, i)));
  } else if (GST_VALUE_HOLDS_FRACTION_RANGE(value)) {
    const double least = rateOf(gst_value_get_fraction_range_min(value));
    const double most = rateOf(gst_value_get_fraction_range_max(value));
    std::ranges::copy_if(kUsualRates, std::back_inserter(rates),
                         [&](double rate) { return rate >= least && rate <= most; });
  }
  return rates;
}

bool contains(const GstStructure* structure, const char* field, int wanted) {
  const GValue* value = gst_structure_get_value(structure, field);
  if (!value) return true;
  GValue single = G_VALUE_INIT;
  g_value_init(&single, G_TYPE_INT);
  g_value_set_int(&single, wanted);
  return gst_value_can_intersect(value, &single);
}

std::vector<Size> sizesOf(const GstStructure* structure) {
  Size fixed{};
  if (gst_structure_get_int(structure, "width", &fixed.width) &&
      gst_structure_get_int(structure, "height", &fixed.height)) {
    return {fixed};
  }
  std::vector<Size> sizes;
  std::ranges::copy_if(kUsualSizes, std::back_inserter(sizes), [&](const Size& size) {
    return contains(structure, "width", size.width) && contains(structure, "height", size.height);
  });
  return sizes;
}

std::string capsOf(const OfferedMode& offer) {
  std::ostringstream caps;
  if (offer.format == "MJPEG") {
    caps << "image/jpeg";
  } else if (offer.format == "H.264") {
    caps << "video/x-h264";
  } else {
    caps << "video/x-raw";
    if (!offer.format.empty()) caps << ",format=" << offer.format;
  }
  int numerator = 0;
  int denominator = 1;
  gst_util_double_to_fraction(offer.mode.framesPerSecond, &numerator, &denominator);
  caps << ",width=" << offer.mode.width << ",height=" << offer.mode.height
       << ",framerate=" << numerator << '/' << denominator;
  return caps.str();
}

}  // namespace

std::vector<OfferedMode> modesOf(const GstCaps* caps) {
  std::vector<OfferedMode> modes;
  for (guint i = 0; caps && i < gst_caps_get_size(caps); ++i) {
    const GstStructure* structure = gst_caps_get_structure(caps, i);
    const std::string format = formatOf(structure);
    if (format.empty()) continue;
    for (const Size& size : sizesOf(structure)) {
      for (const double rate : ratesOf(structure))
        modes.push_back({{size.width, size.height, rate}, format});
    }
  }
  return modes;
}

std::string lineOf(const OfferedMode& mode) {
  // One thread: several would each hold a picture back.
  const char* decoder = "";
  if (mode.format == "MJPEG") decoder = " ! jpegdec";
  if (mode.format == "H.264") decoder = " ! h264parse ! avdec_h264 max-threads=1";
  return capsOf(mode) + decoder;
}

}  // namespace corvana::devices
