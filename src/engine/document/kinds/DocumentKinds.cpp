#include "engine/document/kinds/DocumentKinds.h"

#include <algorithm>
#include <map>
#include <utility>

#include "engine/document/kinds/DataFolder.h"
#include "engine/document/kinds/KindFile.h"
#include "engine/json/JsonFile.h"
#include "engine/json/JsonObject.h"

namespace corvana::engine {
namespace {

namespace fs = std::filesystem;
using platform::Expected;
using ByStem = std::map<std::string, DocumentKind>;

tl::unexpected<platform::Fault> clash(const DocumentKind& kind, const DocumentKind& other,
                                      const std::string& what) {
  return platform::failure("The kind of document in " + inQuotes(kind.file) + " " + what + " " +
                           inQuotes(other.file) + "; change one of them.");
}

Expected<void> readFolder(const fs::path& folder, ByStem& kinds) {
  const auto files = dataFilesIn(folder);
  if (!files) return tl::unexpected(files.error());
  ByStem found;
  for (const fs::path& file : *files) {
    auto kind = readKindFile(file);
    if (!kind) return tl::unexpected(kind.error());
    const auto [twin, isNew] = found.emplace(kind->stem, *kind);
    if (!isNew) return clash(*kind, twin->second, "has the stem of that in");
  }
  for (auto& [stem, kind] : found)
    kinds.insert_or_assign(stem, std::move(kind));
  return {};
}

/// The first sign that two kinds share, in words; empty when they share none.
std::string sharedSign(const DocumentKind& kind, const DocumentKind& other) {
  for (const KindName& name : kind.names) {
    if (std::ranges::find(other.names, name.letters, &KindName::letters) != other.names.end()) {
      return "has the name " + JsonObject::quoted(name.text) + " like that in";
    }
  }
  for (const std::string& code : kind.zoneCodes) {
    if (kind.zoneFormat == other.zoneFormat &&
        std::ranges::find(other.zoneCodes, code) != other.zoneCodes.end()) {
      return "has the zone code " + code + " like that in";
    }
  }
  for (const std::string& element : kind.codeElements) {
    if (std::ranges::find(other.codeElements, element) != other.codeElements.end()) {
      return "has the code element " + element + " like that in";
    }
  }
  if (kind.isRemainder && other.isRemainder) return "is the remainder like that in";
  return {};
}

/// Who compares types drops the end of a front's and looks whether a back's begins with the rest.
Expected<void> checkThatTheyDiffer(const DocumentKind& kind, const DocumentKind& other) {
  if (other.stem.starts_with(kind.stem)) {
    return clash(kind, other,
                 "has the stem " + kind.stem + ", with which " + other.stem +
                     " begins, so that their sides could be taken for each other's: see");
  }
  if (const auto sign = sharedSign(kind, other); !sign.empty()) return clash(kind, other, sign);
  return {};
}

}  // namespace

Expected<DocumentKinds> DocumentKinds::load(const std::vector<fs::path>& folders) {
  ByStem byStem;
  for (const fs::path& folder : folders) {
    if (auto read = readFolder(folder, byStem); !read) return tl::unexpected(read.error());
  }
  DocumentKinds kinds;
  for (auto& [stem, kind] : byStem)
    kinds.kinds_.push_back(std::move(kind));
  for (const DocumentKind& kind : kinds.kinds_) {
    for (const DocumentKind& other : kinds.kinds_) {
      if (&kind == &other) continue;
      if (auto fine = checkThatTheyDiffer(kind, other); !fine) return tl::unexpected(fine.error());
    }
  }
  if (std::ranges::none_of(kinds.kinds_, &DocumentKind::isRemainder)) {
    return platform::failure("No kind of document in " +
                             (folders.empty() ? "no folder" : inQuotes(folders.back())) +
                             " has isRemainder, so that a document that names itself by nothing "
                             "would have no type; give it to one.");
  }
  return kinds;
}

const DocumentKind& DocumentKinds::remainder() const {
  return *std::ranges::find_if(kinds_, &DocumentKind::isRemainder);
}

const DocumentKind* DocumentKinds::ofType(std::string_view type) const {
  const auto kind = std::ranges::find_if(kinds_, [&](const DocumentKind& k) {
    return type == k.stem + "_FRONT" || (k.back && type == k.stem + "_BACK");
  });
  return kind == kinds_.end() ? nullptr : &*kind;
}

}  // namespace corvana::engine
