#include "engine/document/mrz/FontFace.h"

#include <ft2build.h>
#include FT_FREETYPE_H

namespace corvana::engine {

void FontFace::Delete::operator()(FT_LibraryRec_* library) const {
  FT_Done_FreeType(library);
}
void FontFace::Delete::operator()(FT_FaceRec_* face) const {
  FT_Done_Face(face);
}

platform::Expected<FontFace> FontFace::load(const std::filesystem::path& file) {
  FontFace font;
  FT_Library library = nullptr;
  if (FT_Init_FreeType(&library) != 0) {
    return platform::failure("FreeType could not be started: reinstall libfreetype6.");
  }
  font.library_.reset(library);
  FT_Face face = nullptr;
  if (FT_New_Face(library, file.c_str(), 0, &face) != 0) {
    return platform::failure("The font " + file.string() + " is missing or is not a font.");
  }
  font.face_.reset(face);
  return font;
}

FontFace::Glyph FontFace::draw(char32_t letter, int emPixels) {
  FT_Set_Pixel_Sizes(face_.get(), 0, static_cast<FT_UInt>(emPixels));
  const FT_Error error =
      FT_Load_Char(face_.get(), letter, FT_LOAD_RENDER | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
  if (error != 0) return {};
  const FT_GlyphSlot slot = face_->glyph;
  const FT_Bitmap& bitmap = slot->bitmap;
  Glyph glyph;
  glyph.left = slot->bitmap_left;
  glyph.top = slot->bitmap_top;
  glyph.advance = static_cast<double>(slot->linearHoriAdvance) / 65536.0;  // 16.16 fixed point
  if (bitmap.rows > 0 && bitmap.width > 0) {
    glyph.ink = cv::Mat(static_cast<int>(bitmap.rows), static_cast<int>(bitmap.width), CV_8UC1,
                        bitmap.buffer, static_cast<std::size_t>(bitmap.pitch))
                    .clone();
  }
  return glyph;
}

}  // namespace corvana::engine
