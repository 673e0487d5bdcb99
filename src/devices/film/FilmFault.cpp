#include "devices/film/FilmFault.h"

#include <cerrno>
#include <system_error>

namespace corvana::devices {

using platform::FaultCause;

namespace {

const char* cureOf(FaultCause cause) {
  switch (cause) {
    case FaultCause::diskFull:
      return "free some disk space";
    case FaultCause::folderLost:
      return "check its folder and disk";
    default:
      return "try again, or with another video codec";
  }
}

bool holdsFilm(const std::filesystem::path& film) {
  std::error_code error;
  return std::filesystem::file_size(film, error) > 0 && !error;
}

}  // namespace

platform::Fault filmFault(const std::filesystem::path& film, const std::string& done,
                          const std::string& why, FaultCause cause) {
  return {"The film " + film.string() + " can't be " + done + " (" + why + "): " + cureOf(cause) +
              (holdsFilm(film) ? ". What was recorded plays." : "."),
          cause};
}

FaultCause fileFaultCause(int error) {
  const bool isFull = error == ENOSPC || error == EDQUOT || error == EFBIG;
  return isFull ? FaultCause::diskFull : FaultCause::folderLost;
}

}  // namespace corvana::devices
