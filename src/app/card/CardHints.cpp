#include "app/card/CardHints.h"

#include "corvana/IDCapture.h"

namespace corvana::app {
namespace {

std::string wordsOf(const std::string& hint) {
  using Strings = corvana::IDCapture::Strings;
  static constexpr std::pair<const char*, std::string Strings::*> kWords[] = {
      {"tooDark", &Strings::tooDark},
      {"blurred", &Strings::blurred},
      {"covered", &Strings::covered},
      {"copy", &Strings::copy}};
  for (const auto& [name, text] : kWords) {
    if (hint == name) return corvana::IDCapture::strings.*text;
  }
  return {};
}

}  // namespace

void CardHints::happened(const engine::RecorderEvent& event) {
  next_.happened(event);
  if (event.kind == engine::RecorderEvent::Kind::hint) show_(wordsOf(event.name));
}

}  // namespace corvana::app
