#include "Typeface.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <utility>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <glib.h>

namespace corvana::session {
namespace {

namespace fs = std::filesystem;

constexpr double kUnitsPerPixel = 64.0;  // FreeType counts in 26.6 fixed point

fs::path findFont(const std::string& file) {
  std::error_code error;
  for (const char* root : {"/usr/share/fonts", "/usr/local/share/fonts"}) {
    fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied,
                                           error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
      if (entry->path().filename() == file) return entry->path();
  }
  return {};
}

std::u32string codePoints(const std::string& text) {
  std::u32string points;
  for (const char* c = text.c_str(); *c != 0; c = g_utf8_next_char(c))
    points.push_back(static_cast<char32_t>(g_utf8_get_char(c)));
  return points;
}

void blend(cv::Mat& picture, const FT_Bitmap& glyph, int left, int top, const cv::Scalar& colour) {
  for (int row = 0; row < static_cast<int>(glyph.rows); ++row) {
    const int y = top + row;
    if (y < 0 || y >= picture.rows) continue;
    for (int column = 0; column < static_cast<int>(glyph.width); ++column) {
      const int x = left + column;
      if (x < 0 || x >= picture.cols) continue;
      const double share = glyph.buffer[row * glyph.pitch + column] / 255.0;
      cv::Vec3b& pixel = picture.at<cv::Vec3b>(y, x);
      for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = cv::saturate_cast<std::uint8_t>(pixel[channel] * (1.0 - share) +
                                                         colour[channel] * share);
    }
  }
}

}  // namespace

struct Typeface::Face {
  FT_Library library = nullptr;
  FT_Face face = nullptr;

  Face() = default;
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;
  ~Face() {
    if (face != nullptr) FT_Done_Face(face);
    if (library != nullptr) FT_Done_FreeType(library);
  }

  void setSize(double size) const {
    FT_Set_Char_Size(face, 0, std::lround(size * kUnitsPerPixel), 72, 72);
  }

  /// Without hinting, so that a line is as wide at every size as the size says.
  bool load(char32_t point) const { return FT_Load_Char(face, point, FT_LOAD_NO_HINTING) == 0; }

  double advance(char32_t point) const {
    return load(point) ? static_cast<double>(face->glyph->linearHoriAdvance) / 65536.0 : 0.0;
  }

  void draw(cv::Mat& picture, char32_t point, cv::Point2d at, const cv::Scalar& colour) const {
    if (!load(point)) return;
    const double x = std::floor(at.x);
    const double y = std::floor(at.y);
    FT_Outline_Translate(&face->glyph->outline, std::lround((at.x - x) * kUnitsPerPixel),
                         -std::lround((at.y - y) * kUnitsPerPixel));
    if (FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) != 0) return;
    blend(picture, face->glyph->bitmap, static_cast<int>(x) + face->glyph->bitmap_left,
          static_cast<int>(y) - face->glyph->bitmap_top, colour);
  }
};

Result<Typeface> Typeface::load(const std::string& file, const std::string& package) {
  const fs::path path = findFont(file);
  if (path.empty()) return fault("The font " + file + " is missing: install " + package + ".");
  auto face = std::make_shared<Face>();
  if (FT_Init_FreeType(&face->library) != 0 ||
      FT_New_Face(face->library, path.c_str(), 0, &face->face) != 0)
    return fault("The font " + path.string() + " cannot be read: reinstall " + package + ".");
  return Typeface(std::move(face));
}

void Typeface::draw(cv::Mat& picture, const std::string& text, cv::Point2d baseline, double size,
                    const cv::Scalar& colour) const {
  face_->setSize(size);
  for (const char32_t point : codePoints(text)) {
    const double advance = face_->advance(point);
    face_->draw(picture, point, baseline, colour);
    baseline.x += advance;
  }
}

double Typeface::width(const std::string& text, double size) const {
  face_->setSize(size);
  double sum = 0.0;
  for (const char32_t point : codePoints(text))
    sum += face_->advance(point);
  return sum;
}

bool Typeface::has(const std::string& text) const {
  const auto points = codePoints(text);
  return std::all_of(points.begin(), points.end(),
                     [&](char32_t point) { return FT_Get_Char_Index(face_->face, point) != 0; });
}

double Typeface::fittingSize(const std::string& text, double size, double room) const {
  const double needed = width(text, size);
  return needed <= room ? size : size * room / needed;
}

void Typeface::drawInCells(cv::Mat& picture, const std::string& text, cv::Point2d baseline,
                           double size, double pitch, const cv::Scalar& colour) const {
  face_->setSize(size);
  for (const char32_t point : codePoints(text)) {
    const double margin = 0.5 * (pitch - face_->advance(point));
    face_->draw(picture, point, baseline + cv::Point2d(margin, 0.0), colour);
    baseline.x += pitch;
  }
}

}  // namespace corvana::session
