#include "app/redact/RedactedPicture.h"

#include "engine/redaction/ShownHeads.h"

namespace corvana::app {

platform::PixelBufferRef redactedPicture(const platform::PixelBuffer& picture,
                                         const std::optional<platform::CGRect>& face,
                                         engine::HeadFinder& heads, bool coversFace) {
  if (!face || coversFace) return engine::coveredBut(picture, {});
  return engine::coveredBut(picture, engine::shownPartsAt({heads.lookAt(picture, *face)}, 0));
}

}  // namespace corvana::app
