#pragma once

#include <string>
#include <vector>

#include "platform/uikit/Controls.h"

/// How the model judges texts: in its own words, for the letters that the random flows use.
namespace corvana::tests {

/// Whether at most the share `limit` of the letters of the longer text has to be put in, taken out
/// or exchanged to make one text of the other. Two empty texts are alike.
bool areAlike(const std::vector<std::string>& given, const std::vector<std::string>& live,
              float limit);

/// How many words were found in the text for each word that is written there, every stretch of it
/// once; `marks` gets the stretches, yellow.
float shareHeard(const std::vector<std::string>& words, const std::string& text,
                 std::vector<platform::NSAttributedString::Run>& marks);

}  // namespace corvana::tests
