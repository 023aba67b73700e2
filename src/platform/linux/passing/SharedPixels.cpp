#include "platform/linux/passing/SharedPixels.h"

#include <sys/mman.h>
#include <algorithm>
#include <system_error>

#include "platform/linux/passing/SealedMemory.h"

namespace quillmere {
namespace {

constexpr size_t kStep = size_t{1} << 20;

/// Older kernels fetch each page when it is filled.
void fetch(uint8_t* data, size_t size) {
#ifdef MADV_POPULATE_WRITE
  for (size_t place = 0; place < size; place += kStep) {
    if (::madvise(data + place, std::min(kStep, size - place), MADV_POPULATE_WRITE) != 0) return;
  }
#endif
}

}  // namespace

SharedPixels::~SharedPixels() {
  unmap();
}

uint8_t* SharedPixels::take(size_t bytes) {
  if (bytes < kLeast || memory_) return nullptr;
  memory_ = Descriptor(::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  if (!memory_ || ::ftruncate(memory_.number(), static_cast<off_t>(bytes)) != 0) return nullptr;
  void* data = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, memory_.number(), 0);
  if (data == MAP_FAILED) return nullptr;
  data_ = static_cast<uint8_t*>(data);
  size_ = bytes;
  try {
    fetching_ = std::thread(&fetch, data_, size_);
  } catch (const std::system_error&) {
    // No thread is to be had; each page is fetched when it is filled.
  }
  return data_;
}

bool SharedPixels::hold(const QImage& image) const {
  return data_ && image.constBits() == data_ && static_cast<size_t>(image.sizeInBytes()) <= size_;
}

std::optional<Descriptor> SharedPixels::sealed(size_t pictureBytes, const std::vector<std::string_view>& parts) {
  if (!data_ || pictureBytes > size_) return std::nullopt;
  // What can still be written to cannot be sealed.
  unmap();
  return SealedMemory::sealed(std::move(memory_), pictureBytes, parts);
}

void SharedPixels::unmap() {
  if (fetching_.joinable()) fetching_.join();
  if (data_) ::munmap(data_, size_);
  data_ = nullptr;
}

}  // namespace quillmere
