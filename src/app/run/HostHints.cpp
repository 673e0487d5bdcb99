#include "app/run/HostHints.h"

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"

namespace corvana::app {
namespace {

std::string wordsOf(const std::string& hint) {
  const auto& card = corvana::IDCapture::strings;
  const auto& face = corvana::SelfieCapture::strings;
  const std::pair<const char*, const std::string&> words[] = {
      {"tooDark", card.tooDark},          {"blurred", card.blurred},
      {"covered", card.covered},          {"copy", card.copy},
      {"faceTooFar", face.comeNearer},    {"faceTooDark", face.tooDark},
      {"faceHidden", face.showWholeFace}, {"faceTurnedAway", face.lookStraight},
      {"faceBlurred", face.blurred},      {"faceOutOfSight", face.showWholeFace}};
  for (const auto& [name, text] : words) {
    if (hint == name) return text;
  }
  return {};
}

}  // namespace

void HostHints::happened(const engine::RecorderEvent& event) {
  if (event.kind == engine::RecorderEvent::Kind::hint) show_(wordsOf(event.name));
}

}  // namespace corvana::app
