#include "InputFile.h"
#include "app/card/Reference.h"
#include "app/record/RunRecord.h"
#include "app/seal/RecordCheck.h"
#include "app/settings/AppearanceTable.h"
#include "app/settings/OptionTable.h"
#include "app/simulate/SimulateScript.h"

/// Every JSON file that the program reads.
namespace corvana {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    const fuzz::InputFile file("script.json", data, size);
    const auto script = app::loadSimulateScript(file.path());
    if (script) (void)app::applyOptions(script->options);
    app::WindowLooks looks;
    (void)app::applyAppearance(file.path(), looks);
  }
  {
    const fuzz::InputFile file(app::kReferenceFileName, data, size);
    (void)app::loadReference(file.path().parent_path());
  }
  const fuzz::InputFile file(app::kResultFileName, data, size);
  (void)app::checkRecord(file.path().parent_path(), nullptr);
  return 0;
}

}  // namespace corvana
