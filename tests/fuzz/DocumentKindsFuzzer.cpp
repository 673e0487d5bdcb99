#include "InputFile.h"
#include "engine/document/DocumentClassifier.h"
#include "engine/document/kinds/DocumentTables.h"

/// The bytes as the file of a kind of document and as a table of labels; what is taken must serve.
namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::InputFile file("remainder.json", data, size);
  const auto kinds = engine::DocumentKinds::load({file.path().parent_path()});
  if (kinds) {
    corvana::DetectedData side;
    engine::classify({.lines = {"RESIDENCE PERMIT"}, .hasFace = true}, *kinds, side);
    if (!side.type || !kinds->ofType(*side.type)) __builtin_trap();
  } else if (kinds.error().sentence.empty()) {
    __builtin_trap();
  }
  const auto labels = engine::FieldLabels::load({file.path()});
  if (labels) (void)labels->labelledText("Geburtsdatum: 12.08.1984");
  return 0;
}

}  // namespace corvana
