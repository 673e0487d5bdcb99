#pragma once

#include <string>
#include <vector>

#include "Conditions.h"
#include "People.h"
#include "Sheet.h"

namespace corvana::photos {

/// What is photographed.
enum class Kind {
  original,   ///< the card itself
  altered,    ///< a card on which one printed field differs from its zone or code
  photocopy,  ///< a grey copy on paper
  screen,     ///< a display that shows the card
  print,      ///< a colour print on paper, roughly cut out
  scan  ///< the card itself, flat, straight and sharp: no photograph, but what one is held against
};

const std::vector<std::string>& kindNames();

/// Changes one field that zone or code say too, and names it.
std::string alter(session::CardData& print, const Design& design,
                  const std::vector<NameList>& names, session::Random& random);

/// A copy of what the sheet shows; the sheet itself for the other kinds. unseen: made in the manner
/// that is set aside for the last measurement.
Sheet copied(const Sheet& original, Kind kind, bool unseen, session::Random& random);

/// The conditions of a scan: none of what a hand and a room do to a photograph.
Conditions scanConditions();

}  // namespace corvana::photos
