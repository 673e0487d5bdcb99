#pragma once

#include <opencv2/core.hpp>

#include "engine/document/mrz/FontFace.h"

namespace corvana::engine {

struct GlyphSamples {
  cv::Mat cells;   ///< CV_32F, one normalised cell a row
  cv::Mat labels;  ///< CV_32S, index into the alphabet
};

/// Brings cells to zero mean and unit deviation, row by row, so that paper and light do not matter.
void normalizeCells(cv::Mat& cells);

/// Draws letters of the font as a camera might see them; the same for the same font.
GlyphSamples drawGlyphSamples(FontFace& font);

}  // namespace corvana::engine
