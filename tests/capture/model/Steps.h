#pragma once

#include <functional>
#include <string>
#include <utility>

#include "Beginning.h"

namespace corvana::tests {

/// Something that a host, a person or time does to a world.
struct Step {
  std::string text;
  std::function<void(TestWorld&)> apply;
  double seconds = 0;   ///< that pass afterwards
  bool settles = true;  ///< false: the next step comes before anything is handled
  bool isCardState = false;
};

/// A button of the screen on top, or "alert" for the one of an alert; nothing where it is not.
Step tap(const std::string& button);

Step wait(double seconds);
/// Around every limit of the flow, and anywhere.
Step waitAnyTime(Dice& dice);
/// What a person may touch at any moment.
Step touchAnything(Dice& dice);

Step say(const corvana::SelfieCaptureState& state, const std::string& detail = "");
Step say(const corvana::IDCaptureState& state, const std::string& detail = "");
Step adviseFace(Dice& dice);
Step succeedWithSelfie(Dice& dice, int holderPercent);
Step findBox(Dice& dice);
Step adviseCard(Dice& dice);
/// Of the reference card or, now and then, with something else about it; a host that keeps its
/// promises reports only what is complete.
Step classifyCard(Dice& dice, const Beginning& beginning, bool back, bool keepsPromises);
Step succeedWithCard(Dice& dice, const Beginning& beginning, bool back, bool keepsPromises);
Step showLiveFace(Dice& dice);
Step loseLiveFace();

Step speak(Dice& dice, const Beginning& beginning);
Step changeCaptureMode(Dice& dice);
/// How the film will end, and how long that takes.
Step chooseFilmsEnd(Dice& dice);
Step letFilmAnswerTwice();

}  // namespace corvana::tests
