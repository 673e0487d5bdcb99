#include "inference/MappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvana::inference {

MappedFile::MappedFile(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  struct stat status {};
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (bytes != MAP_FAILED) {
      bytes_ = static_cast<std::byte*>(bytes);
      size_ = size;
    }
  }
  close(descriptor);
}

MappedFile::~MappedFile() {
  if (bytes_) munmap(bytes_, size_);
}

void MappedFile::letGo() const {
  if (bytes_) madvise(bytes_, size_, MADV_DONTNEED);
}

}  // namespace corvana::inference
