#include "update/library/PackageSeal.h"

#include <sys/mman.h>
#include <sys/stat.h>

namespace quillmere {

bool PackageSeal::isUnbroken(int descriptor) const {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return false;
  if (size <= 0 || status.st_size != size) return false;
  // The signature needs all bytes at once. A private file of ours: nobody else makes it shorter meanwhile.
  void* bytes = ::mmap(nullptr, static_cast<size_t>(size), PROT_READ, MAP_PRIVATE, descriptor, 0);
  if (bytes == MAP_FAILED) return false;
  const bool isGenuine = maker.isGenuine(QByteArrayView(static_cast<const char*>(bytes), size), signature);
  ::munmap(bytes, static_cast<size_t>(size));
  return isGenuine;
}

}  // namespace quillmere
