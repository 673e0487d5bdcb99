#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "engine/document/text/TextReader.h"
#include "platform/foundation/Fault.h"

namespace tesseract {
class TessBaseAPI;
}

namespace corvana::engine {

/// Where Debian's packages of Tesseract put its data.
inline constexpr const char* kDebianTessdataFolder = "/usr/share/tesseract-ocr/5/tessdata";

/// Reads with Tesseract, on one thread: more of them only wait for each other on pictures of this
/// size. Words that it is unsure of are left out. Movable.
class TesseractReader final : public TextReader {
 public:
  /// Loads the data of the Latin script where it is installed, else the English one (0.1 s), which
  /// knows no accents. Error: neither is in the folder.
  static platform::Expected<TesseractReader> load(
      const std::filesystem::path& tessdata = kDebianTessdataFolder);

  /// Whether the data of the Latin script is installed.
  static bool hasLatinData(const std::filesystem::path& tessdata);

  TesseractReader(TesseractReader&&) noexcept;
  TesseractReader& operator=(TesseractReader&&) noexcept;
  ~TesseractReader() override;

  std::vector<TextLine> read(const platform::PixelBuffer& card) override;
  /// Reads each line by itself.
  std::vector<TextLine> readAgain(const platform::PixelBuffer& card,
                                  const std::vector<TextLine>& known) override;
  std::string name() const override;

 private:
  TesseractReader(std::unique_ptr<tesseract::TessBaseAPI> tesseract, std::string language);

  std::unique_ptr<tesseract::TessBaseAPI> tesseract_;
  std::string language_;
};

}  // namespace corvana::engine
