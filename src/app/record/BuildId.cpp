#include "app/record/BuildId.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <link.h>

#include "app/keys/Hexadecimal.h"

namespace corvana::app {
namespace {

constexpr std::size_t kAlignment = 4;

std::size_t aligned(std::size_t size) {
  return (size + kAlignment - 1) / kAlignment * kAlignment;
}

std::string idAmong(const unsigned char* notes, std::size_t size) {
  for (std::size_t at = 0; at + sizeof(ElfW(Nhdr)) <= size;) {
    ElfW(Nhdr) note;
    std::memcpy(&note, notes + at, sizeof note);
    const std::size_t content = at + sizeof note + aligned(note.n_namesz);
    if (note.n_type == NT_GNU_BUILD_ID) {
      return hexadecimal({reinterpret_cast<const char*>(notes) + content, note.n_descsz});
    }
    at = content + aligned(note.n_descsz);
  }
  return {};
}

/// The first object that is told of is the program itself.
int readProgram(dl_phdr_info* info, std::size_t, void* id) {
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type != PT_NOTE) continue;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader tells addresses as numbers
    const auto* notes = reinterpret_cast<const unsigned char*>(info->dlpi_addr + header.p_vaddr);
    auto& found = *static_cast<std::string*>(id);
    if (found.empty()) found = idAmong(notes, header.p_memsz);
  }
  return 1;
}

}  // namespace

std::string buildId() {
  std::string id;
  dl_iterate_phdr(readProgram, &id);
  return id;
}

}  // namespace corvana::app
