#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "corvana/DetectedData.h"
#include "corvana/DocumentField.h"
#include "platform/geometry/Geometry.h"

/// Kinds of documents as their files tell of them; docs/documents.md says how one is written.
namespace corvana::engine {

/// The sizes of ISO/IEC 7810.
enum class DocumentSize { id1, id2, id3 };

/// Width and height in millimetres, the longer side first.
platform::CGSize millimetresOf(DocumentSize size);

/// Machine-readable zones of three lines of 30, two of 36 and two of 44 characters.
enum class ZoneFormat { td1, td2, td3 };

/// By the number and the length of the lines; absent where no zone is like that.
std::optional<ZoneFormat> formatOf(const corvana::MRZResult& zone);

/// Something on a side of the document, with its place where all documents of the kind have it
/// there: millimetres from the upper left corner.
struct SideMark {
  std::optional<platform::CGRect> place;
};

struct ZoneMark : SideMark {
  ZoneFormat format = ZoneFormat::td1;
};

struct PlacedField {
  corvana::FieldName name = corvana::FieldName::surname;
  platform::CGRect place;  ///< in millimetres, of the value without its label
};

struct KindSide {
  std::optional<SideMark> photo;
  std::optional<ZoneMark> zone;
  std::optional<SideMark> code;  ///< PDF417
  std::vector<PlacedField> fields;
};

/// What documents of the kind call themselves.
struct KindName {
  std::string language;
  std::string text;
  std::string letters;  ///< capitals of ASCII without blanks, as they are looked for in print
};

struct DocumentKind {
  /// The types of its sides are this with "_FRONT" and "_BACK".
  std::string stem;
  std::string title;
  DocumentSize size = DocumentSize::id1;
  std::vector<std::string> standards;
  std::vector<KindName> names;
  /// Beginnings of a zone's document code that only this kind has.
  std::vector<std::string> zoneCodes;
  /// Zones of another format do not speak for this kind, whatever their code.
  std::optional<ZoneFormat> zoneFormat;
  /// Elements of a licence's barcode, any of which makes the document one of this kind.
  std::vector<std::string> codeElements;
  /// The kind of documents of which nothing tells what they are; one kind alone is.
  bool isRemainder = false;
  KindSide front;
  /// Absent where one side is all there is, as with the page of a passport.
  std::optional<KindSide> back;
  std::filesystem::path file;
};

/// "ID-1", "TD1": as files have them.
const char* nameOf(DocumentSize size);
const char* nameOf(ZoneFormat format);

}  // namespace corvana::engine
