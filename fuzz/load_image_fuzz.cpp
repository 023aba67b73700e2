#include <sys/mman.h>
#include <unistd.h>
#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>
#include <QtGui/QImageReader>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "imaging/ImageFile.h"
#include "imaging/ImageOperations.h"
#include "imaging/PngReader.h"

using namespace quillmere;

namespace {

/// What the fast reader of PNG takes, the general one takes too, as the same picture.
void compareReaders(std::string_view bytes) {
  const auto fast = PngReader::read(bytes);
  if (PngReader::canRead(bytes) != fast.has_value()) std::abort();
  if (!fast) return;
  QByteArray view = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&view);
  const QImage general = QImageReader(&buffer, "png").read();
  if (general != *fast || general.format() != fast->format() || general.colorSpace() != fast->colorSpace())
    std::abort();
}

}  // namespace

/// The input is a picture file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const int descriptor = ::memfd_create("picture", MFD_CLOEXEC);
  if (::write(descriptor, data, size) != static_cast<ssize_t>(size)) std::abort();
  const FileURL url = FileURL::fromPath("/proc/self/fd/" + std::to_string(descriptor));
  const auto image = ImageOperations::loadImage(url);
  if (ImageFile::decodesCompletely(url) && !image) std::abort();
  if (image && image->sizeInBytes() > int64_t{2} << 30) std::abort();
  ImageFile::pixelSize(url);
  ImageOperations::imageScale(url);
  compareReaders({reinterpret_cast<const char*>(data), size});
  ::close(descriptor);
  return 0;
}
