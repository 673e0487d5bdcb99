#include "engine/document/kinds/DocumentKind.h"

#include <algorithm>

namespace corvana::engine {

platform::CGSize millimetresOf(DocumentSize size) {
  switch (size) {
    case DocumentSize::id1:
      break;
    case DocumentSize::id2:
      return {105, 74};
    case DocumentSize::id3:
      return {125, 88};
  }
  return {85.6, 53.98};
}

std::optional<ZoneFormat> formatOf(const corvana::MRZResult& zone) {
  const auto isOf = [&](std::size_t lines, std::size_t length) {
    return zone.lines.size() == lines &&
           std::ranges::all_of(zone.lines, [&](const auto& line) { return line.size() == length; });
  };
  if (isOf(3, 30)) return ZoneFormat::td1;
  if (isOf(2, 36)) return ZoneFormat::td2;
  if (isOf(2, 44)) return ZoneFormat::td3;
  return std::nullopt;
}

const char* nameOf(DocumentSize size) {
  switch (size) {
    case DocumentSize::id1:
      break;
    case DocumentSize::id2:
      return "ID-2";
    case DocumentSize::id3:
      return "ID-3";
  }
  return "ID-1";
}

const char* nameOf(ZoneFormat format) {
  switch (format) {
    case ZoneFormat::td1:
      break;
    case ZoneFormat::td2:
      return "TD2";
    case ZoneFormat::td3:
      return "TD3";
  }
  return "TD1";
}

}  // namespace corvana::engine
