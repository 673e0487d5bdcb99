#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/Fault.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace tesseract {
class TessBaseAPI;
}

namespace corvana::engine {

/// Where Debian's package tesseract-ocr-eng puts its data.
inline constexpr const char* kDebianTessdataFolder = "/usr/share/tesseract-ocr/5/tessdata";

/// Reads the printed text of a straightened card with Tesseract. One thread at a time, and one
/// thread inside: more of them only wait for each other on pictures of this size. The same picture
/// gives the same text. Movable.
class TextReader {
 public:
  /// Loads the English data (0.1 s). Error: it is not in the folder.
  static platform::Expected<TextReader> load(
      const std::filesystem::path& tessdata = kDebianTessdataFolder);

  TextReader(TextReader&&) noexcept;
  TextReader& operator=(TextReader&&) noexcept;
  ~TextReader();

  /// Lines of text from top to bottom, words parted by blanks. What is doubtful (unsure words, lone
  /// letters, punctuation around words) is left out, so that two pictures of one card agree.
  /// Nothing is read inside the `blanks` (photo, machine-readable zone; in pixels of the card).
  std::vector<std::string> read(const platform::PixelBuffer& card,
                                const std::vector<platform::CGRect>& blanks);

 private:
  explicit TextReader(std::unique_ptr<tesseract::TessBaseAPI> tesseract);

  std::unique_ptr<tesseract::TessBaseAPI> tesseract_;
};

}  // namespace corvana::engine
