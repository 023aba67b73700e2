#include "platform/linux/passing/SealedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <algorithm>
#include <cerrno>

namespace quillmere {
namespace {

constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;

bool writeWhole(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

}  // namespace

std::optional<Descriptor> SealedMemory::of(const std::vector<std::string_view>& parts) {
  return sealed(Descriptor(::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING)), 0, parts);
}

std::optional<Descriptor> SealedMemory::sealed(Descriptor memory, uint64_t bytes,
                                               const std::vector<std::string_view>& parts) {
  const auto end = static_cast<off_t>(bytes);
  const bool isCut = memory && ::ftruncate(memory.number(), end) == 0 && ::lseek(memory.number(), end, SEEK_SET) == end;
  const bool isWritten = isCut && std::all_of(parts.begin(), parts.end(),
                                              [&](std::string_view part) { return writeWhole(memory.number(), part); });
  if (!isWritten || ::fcntl(memory.number(), F_ADD_SEALS, kSeals) != 0) return std::nullopt;
  return memory;
}

std::shared_ptr<const SealedMemory> SealedMemory::mapped(const Descriptor& memory, uint64_t bytes) {
  struct stat status {};
  const bool isSealed =
      memory && (::fcntl(memory.number(), F_GET_SEALS) & kSeals) == kSeals && ::fcntl(memory.number(), F_GET_SEALS) > 0;
  if (!isSealed || ::fstat(memory.number(), &status) != 0) return nullptr;
  if (bytes == 0 || status.st_size < 0 || static_cast<uint64_t>(status.st_size) != bytes) return nullptr;
  // Private: older kernels let nobody share what is sealed against writing, even for reading.
  void* data = ::mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, memory.number(), 0);
  if (data == MAP_FAILED) return nullptr;
  return std::shared_ptr<const SealedMemory>(new SealedMemory(static_cast<const char*>(data), bytes));
}

SealedMemory::~SealedMemory() {
  ::munmap(const_cast<char*>(data_), size_);
}

}  // namespace quillmere
