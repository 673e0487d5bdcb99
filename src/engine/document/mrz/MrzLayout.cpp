#include "engine/document/mrz/MrzLayout.h"

#include <algorithm>
#include <initializer_list>

namespace corvana::engine {
namespace {

bool holds(const MrzSpan& span, std::size_t line, std::size_t column) {
  return span.line == line && column >= span.start && column < span.start + span.length;
}

MrzSpan withCheckDigit(const MrzSpan& span) {
  return {span.line, span.start, span.length + 1};
}

MrzSpan checkDigitOf(const MrzSpan& span) {
  return {span.line, span.start + span.length, 1};
}

bool isAmong(std::initializer_list<MrzSpan> spans, std::size_t line, std::size_t column) {
  return std::ranges::any_of(spans, [&](const MrzSpan& span) { return holds(span, line, column); });
}

}  // namespace

const std::array<MrzLayout, 3>& mrzLayouts() {
  static const std::array<MrzLayout, 3> kLayouts{{
      {3,
       30,
       {2, 0, 30},
       {0, 5, 9},
       {1, 15, 3},
       {1, 0, 6},
       {1, 7, 1},
       {1, 8, 6},
       MrzSpan{0, 15, 15},
       std::nullopt,
       {1, 29, 1},
       {{0, 5, 25}, {1, 0, 7}, {1, 8, 7}, {1, 18, 11}}},
      {2,
       36,
       {0, 5, 31},
       {1, 0, 9},
       {1, 10, 3},
       {1, 13, 6},
       {1, 20, 1},
       {1, 21, 6},
       MrzSpan{1, 28, 7},
       std::nullopt,
       {1, 35, 1},
       {{1, 0, 10}, {1, 13, 7}, {1, 21, 14}}},
      {2,
       44,
       {0, 5, 39},
       {1, 0, 9},
       {1, 10, 3},
       {1, 13, 6},
       {1, 20, 1},
       {1, 21, 6},
       std::nullopt,
       MrzSpan{1, 28, 14},
       {1, 43, 1},
       {{1, 0, 10}, {1, 13, 7}, {1, 21, 22}}},
  }};
  return kLayouts;
}

MrzAlphabet mrzAlphabetAt(const MrzLayout& layout, std::size_t line, std::size_t column) {
  if (isAmong({kMrzDocumentCode, kMrzIssuingState, layout.names, layout.nationality, layout.sex},
              line, column)) {
    return MrzAlphabet::letters;
  }
  if (isAmong({withCheckDigit(layout.birthDate), withCheckDigit(layout.expiryDate),
               checkDigitOf(layout.number), layout.compositeDigit},
              line, column) ||
      (layout.personalNumber && holds(checkDigitOf(*layout.personalNumber), line, column))) {
    return MrzAlphabet::digits;
  }
  return MrzAlphabet::any;
}

std::string_view mrzField(const std::vector<std::string>& lines, const MrzSpan& span) {
  return std::string_view(lines[span.line]).substr(span.start, span.length);
}

}  // namespace corvana::engine
