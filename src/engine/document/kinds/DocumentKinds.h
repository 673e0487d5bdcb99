#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "engine/document/kinds/DocumentKind.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// All kinds of documents that are known, which can be told from each other.
class DocumentKinds {
 public:
  /// Reads every file of the folders; a kind of a later folder takes the place of that with the
  /// same stem in an earlier one. The error is one sentence that names the file and what is wrong:
  /// its shape, or that another kind has the same stem, one that begins with it, or the same signs.
  static platform::Expected<DocumentKinds> load(const std::vector<std::filesystem::path>& folders);

  /// By stem.
  const std::vector<DocumentKind>& all() const { return kinds_; }
  /// What a document is of which nothing tells what it is.
  const DocumentKind& remainder() const;
  /// The kind of a side's type, such as "IDENTITY_CARD_BACK"; null where no file tells of it.
  const DocumentKind* ofType(std::string_view type) const;

 private:
  std::vector<DocumentKind> kinds_;
};

}  // namespace corvana::engine
