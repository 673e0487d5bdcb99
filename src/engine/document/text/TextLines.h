#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "engine/document/text/TextReader.h"
#include "platform/geometry/Geometry.h"

namespace corvana::engine {

/// A text as a reader gave it, without blanks and line ends around it. Pure.
std::string trimmed(const std::string& text);

/// Characters as a reader counts them in recognised text, where a letter and its accent are one
/// code point. Pure.
std::size_t characterCount(const std::string& text);

/// Whether the text would be read again: other text differs from picture to picture. Pure.
bool isSure(const TextLine& text);

/// Whether the line runs along the card's short sides, as the titles of some cards do. What is
/// short is a letter that stands by itself. Pure.
bool runsUpOrDown(const TextLine& line);

/// Puts lines in the order in which they stand below one another.
void sortFromTop(std::vector<TextLine>& lines);

/// Whether one of the lines stands where the box is. Pure.
bool isAmong(const std::vector<TextLine>& lines, const platform::CGRect& box);

/// The print worth keeping (what is sure and in the size of the holder's data), in lines from top
/// to bottom and from left to right; without lone letters and the punctuation around lines, so that
/// two pictures of one card agree. Nothing is kept of what lies inside the `blanks` (photo,
/// machine-readable zone; in pixels of the card). Pure.
std::vector<std::string> textLines(const std::vector<TextLine>& found,
                                   const std::vector<platform::CGRect>& blanks);

}  // namespace corvana::engine
