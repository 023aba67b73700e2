#include <unistd.h>
#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>
#include <QtGui/QImageReader>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "PictureFuzzing.h"
#include "formats/PngReader.h"
#include "hostile/PictureEntryPoints.h"
#include "png/PngTexts.h"

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

/// The input is a picture file. In memory, but under a name of its own: what is behind a link isn't read.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const FileURL url = FileURL::fromPath("/dev/shm/quillmere-fuzz-" + std::to_string(::getpid()));
  std::ofstream(url.path(), std::ios::binary | std::ios::trunc) << bytes;
  if (testing::outcomeOfPicture(url).starts_with("unsteady")) std::abort();
  ::unlink(url.c_str());
  compareReaders(bytes);
  // What a file says of itself beside its picture is bounded, whatever it promises.
  size_t length = 0;
  for (const auto& [keyword, text] : readPngTexts(bytes)) length += text.size();
  constexpr size_t kMostTexts = 1 << 20;
  if (length > kMostTexts) std::abort();
  return 0;
}
