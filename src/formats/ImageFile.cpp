#include "formats/ImageFile.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtGui/QImageReader>
#include <algorithm>
#include <functional>

#include "formats/HeifFile.h"
#include "formats/JpegOutline.h"
#include "formats/PictureFile.h"
#include "formats/PictureOutline.h"
#include "formats/PngOrientation.h"
#include "formats/PngReader.h"
#include "pixels/Downscaler.h"
#include "png/PngChunks.h"
#include "png/PngTexts.h"

namespace quillmere {
namespace {

/// What Qt calls the formats.
const char* nameInQt(PictureFormat format) {
  switch (format) {
    case PictureFormat::png:
      return "png";
    case PictureFormat::jpeg:
      return "jpeg";
    case PictureFormat::heif:
      return "heif";
  }
  return nullptr;
}

/// Qt's, for the one format only: what it would try on other files was never meant to be a screenshot.
class GeneralReader {
 public:
  GeneralReader(QIODevice& device, PictureFormat format) : reader_(&device, nameInQt(format)) {
    reader_.setAutoDetectImageFormat(false);
    reader_.setAutoTransform(true);
    // Qt gives up at 128 MiB of pixels; a capture of several large screens, or of a page scrolled through, has more.
    constexpr int kMostMegabytes = 1024;
    static const bool isLimitSet = (QImageReader::setAllocationLimit(kMostMegabytes), true);
    Q_UNUSED(isLimitSet)
  }

  std::optional<QSize> size() const {
    const QSize size = reader_.size();
    if (size.isEmpty()) return std::nullopt;
    return isSideways() ? size.transposed() : size;
  }
  QImage read() { return reader_.read(); }
  /// With sides divided by 2, 4 or 8 where they then are still at least twice as long as those of `wanted`, which is
  /// upright. The decoder of JPEG does that while it decodes, and has only so many samples to compute.
  QImage readReduced(QSize wanted) {
    const QSize least = 2 * (isSideways() ? wanted.transposed() : wanted);
    for (const int divisor : {8, 4, 2}) {
      const QSize full = reader_.size();
      const QSize reduced(full.width() / divisor, full.height() / divisor);
      if (reduced.width() < least.width() || reduced.height() < least.height()) continue;
      // A rest, which is less than half a pixel in the end, would have the reader scale once more by itself.
      reader_.setClipRect(QRect(QPoint(), reduced * divisor));
      reader_.setScaledSize(reduced);
      break;
    }
    return reader_.read();
  }

 private:
  bool isSideways() const { return reader_.transformation().testFlag(QImageIOHandler::TransformationRotate90); }
  QImageReader reader_;
};

QImage readGenerally(std::string_view all, PictureFormat format, const std::function<QImage(GeneralReader&)>& read) {
  std::string_view bytes = all;
  std::string picture;
  if (format == PictureFormat::jpeg && JpegOutline::hasManySegments(all)) bytes = picture = withoutJpegTexts(all);
  QByteArray view = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&view);
  GeneralReader reader(buffer, format);
  if (!reader.size()) return {};
  return read(reader);
}
QImage readGenerally(std::string_view bytes, PictureFormat format) {
  return readGenerally(bytes, format, [](GeneralReader& reader) { return reader.read(); });
}

QImage uprightPng(const QImage& stored, std::string_view bytes) {
  QByteArray view = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&view);
  buffer.open(QIODevice::ReadOnly);
  return upright(stored, pngOrientation(buffer));
}

QImage readPngGenerally(std::string_view bytes) {
  if (PngReader::hasEndlessData(bytes)) return {};
  return readGenerally(withoutPngTexts(bytes), PictureFormat::png);
}

/// As the file has it.
QImage storedPng(std::string_view bytes, PixelMemory* memory = nullptr) {
  auto picture = PngReader::read(bytes, memory);
  return picture ? *std::move(picture) : readPngGenerally(bytes);
}

QImage decoded(std::string_view bytes, PixelMemory* memory = nullptr) {
  const auto format = ImageFile::formatOf(bytes);
  if (!format) return {};
  switch (*format) {
    case PictureFormat::png:
      return uprightPng(storedPng(bytes, memory), bytes);
    case PictureFormat::jpeg:
      return readGenerally(bytes, *format);
    case PictureFormat::heif:
      return HeifFile(bytes).decoded();
  }
  return {};
}

/// Qt's readers forgive a file that ends early; its end mark does not.
bool hasEndMark(std::string_view bytes, PictureFormat format) {
  constexpr size_t kTail = 64 * 1024;
  const std::string_view tail = bytes.substr(bytes.size() - std::min(kTail, bytes.size()));
  return tail.find(traits(format).endMark) != std::string_view::npos;
}

bool isWhole(std::string_view bytes) {
  const auto format = ImageFile::formatOf(bytes);
  if (!format) return false;
  switch (*format) {
    case PictureFormat::png:
      return PngReader::canRead(bytes) || (hasEndMark(bytes, *format) && !readPngGenerally(bytes).isNull());
    case PictureFormat::jpeg:
      return hasEndMark(bytes, *format) && !readGenerally(bytes, *format).isNull();
    case PictureFormat::heif:
      return !HeifFile(bytes).decoded().isNull();
  }
  return false;
}

QImage fitted(const QImage& picture, int maxPixels) {
  return Downscaler::scaled(picture, Downscaler::fitting(picture.size(), maxPixels));
}

QImage smallJpeg(std::string_view bytes, int maxPixels) {
  return readGenerally(bytes, PictureFormat::jpeg, [maxPixels](GeneralReader& reader) {
    const QSize size = Downscaler::fitting(*reader.size(), maxPixels);
    return Downscaler::scaled(reader.readReduced(size), size);
  });
}

QImage decodedSmall(std::string_view bytes, int maxPixels) {
  const auto format = ImageFile::formatOf(bytes);
  if (!format) return {};
  switch (*format) {
    case PictureFormat::png: {
      const auto picture = PngReader::readSmall(bytes, maxPixels);
      return uprightPng(picture ? *picture : fitted(storedPng(bytes), maxPixels), bytes);
    }
    case PictureFormat::jpeg:
      return smallJpeg(bytes, maxPixels);
    case PictureFormat::heif:
      return fitted(decoded(bytes), maxPixels);
  }
  return {};
}

/// All that tells what a picture will take: the first chunk of a PNG, a JPEG up to its first scan, all of a HEIF.
std::string beginningOf(const PictureFile& file, const PictureBudget& budget) {
  constexpr int64_t kFirst = 64;
  constexpr int64_t kStep = 64 << 10;
  std::string bytes = file.bytes(0, kFirst);
  const auto format = ImageFile::formatOf(bytes);
  if (!format || file.isMostlyHoles()) return bytes;
  if (format == PictureFormat::heif && file.size() <= PictureOutline::kMostHeifBytes) {
    return file.bytes(0, file.size());
  }
  if (format != PictureFormat::jpeg) return bytes;
  // Twice as much each time, so that all looks together are two at most.
  for (int64_t wanted = kStep; !JpegOutline::of(bytes); wanted *= 2) {
    const auto have = static_cast<int64_t>(bytes.size());
    if (have >= std::min(file.size(), budget.besidesPixels)) break;
    bytes += file.bytes(have, wanted - have);
    if (static_cast<int64_t>(bytes.size()) == have) break;
  }
  return bytes;
}

Result<PictureOutline, PictureError> outlineOf(const PictureFile& file, std::string_view beginning,
                                               const PictureBudget& budget) {
  if (ImageFile::formatOf(beginning) && file.isMostlyHoles()) return PictureError::damaged;
  return PictureOutline::ofBeginning(beginning, file.size(), budget);
}

/// Calls `decode` with the bytes of the file, if it is worth it.
template <typename Decode>
std::optional<PictureError> withBytes(const FileURL& url, const PictureBudget& budget, const Decode& decode) {
  const PictureFile file(url);
  if (!file.isOpen()) return PictureError::unreadable;
  std::string bytes = beginningOf(file, budget);
  const auto outline = outlineOf(file, bytes, budget);
  if (!outline) return outline.reason();
  if (static_cast<int64_t>(bytes.size()) < file.size()) {
    bytes = {};
    auto all = file.all();
    if (!all) return all.reason();
    bytes = *std::move(all);
    // It may have changed, and only the whole tells how often a JPEG goes over its picture.
    const auto whole = PictureOutline::of(bytes, budget);
    if (!whole) return whole.reason();
  }
  return decode(std::string_view(bytes));
}
template <typename Decode>
std::optional<PictureError> withBytes(std::string_view bytes, const PictureBudget& budget, const Decode& decode) {
  const auto outline = PictureOutline::of(bytes, budget);
  if (!outline) return outline.reason();
  return decode(bytes);
}

template <typename Source, typename Decode>
ImageFile::Picture pictureOf(const Source& source, const PictureBudget& budget, const Decode& decode) {
  QImage image;
  const auto error = withBytes(source, budget, [&](std::string_view bytes) {
    image = decode(bytes);
    return image.isNull() ? std::optional(PictureError::damaged) : std::nullopt;
  });
  return error ? ImageFile::Picture(*error) : ImageFile::Picture(std::move(image));
}

template <typename Source>
std::optional<PictureError> failureIn(const Source& source, const PictureBudget& budget) {
  return withBytes(source, budget, [](std::string_view bytes) {
    return isWhole(bytes) ? std::nullopt : std::optional(PictureError::damaged);
  });
}

/// Upright, from the header alone.
std::optional<QSize> sizeIn(const PictureFile& file, std::string_view beginning, const PictureOutline& outline) {
  switch (outline.format) {
    case PictureFormat::png: {
      QFile device;
      device.open(file.descriptor(), QIODevice::ReadOnly | QIODevice::Unbuffered);
      const bool isSideways = pngOrientation(device).testFlag(QImageIOHandler::TransformationRotate90);
      return isSideways ? outline.stored.transposed() : outline.stored;
    }
    case PictureFormat::jpeg: {
      QByteArray head = QByteArray::fromStdString(withoutJpegTexts(beginning));
      QBuffer buffer(&head);
      return GeneralReader(buffer, PictureFormat::jpeg).size();
    }
    case PictureFormat::heif:
      return outline.stored;
  }
  return std::nullopt;
}

std::optional<ImageFile::Head> headIn(const PictureFile& file) {
  if (!file.isOpen()) return std::nullopt;
  const PictureBudget budget;
  const std::string beginning = beginningOf(file, budget);
  const auto outline = outlineOf(file, beginning, budget);
  const auto size = outline ? sizeIn(file, beginning, *outline) : std::nullopt;
  return size ? std::optional(ImageFile::Head{outline->format, *size}) : std::nullopt;
}

}  // namespace

std::optional<PictureFormat> ImageFile::formatOf(std::string_view head) {
  const auto format = formatOfSignature(head);
  // Films begin in the same way.
  if (format == PictureFormat::heif && !HeifFile::isHeif(head)) return std::nullopt;
  return format;
}

std::optional<std::string> ImageFile::bytesOf(const FileURL& url) {
  const PictureFile file(url);
  if (!file.isOpen() || file.size() > PictureBudget().fileBytes || file.isMostlyHoles()) return std::nullopt;
  auto bytes = file.all();
  return bytes ? std::optional(*std::move(bytes)) : std::nullopt;
}

Result<std::string, PictureError> ImageFile::bytesToDecode(int descriptor, const PictureBudget& budget) {
  const PictureFile file(descriptor);
  if (!file.isOpen()) return PictureError::unreadable;
  std::string beginning = beginningOf(file, budget);
  // What was read to its end is looked at when it is decoded, which nobody does for a slow disk's sake.
  if (static_cast<int64_t>(beginning.size()) == file.size()) return beginning;
  const auto outline = outlineOf(file, beginning, budget);
  if (!outline) return outline.reason();
  beginning = {};
  return file.all();
}

std::optional<std::string> ImageFile::firstBytesOf(const FileURL& url, int64_t count) {
  const PictureFile file(url);
  if (!file.isOpen()) return std::nullopt;
  const auto format = formatOf(file.bytes(0, 16));
  if (!format) return std::nullopt;
  return format == PictureFormat::heif ? bytesOf(url) : std::optional(file.bytes(0, count));
}

Result<int64_t, PictureError> ImageFile::memoryFor(std::string_view bytes, const PictureBudget& budget) {
  const auto outline = PictureOutline::of(bytes, budget);
  if (!outline) return outline.reason();
  return static_cast<int64_t>(bytes.size()) + outline->memory;
}

bool ImageFile::decodesCompletely(const FileURL& url) {
  return !failureOf(url);
}

std::optional<PictureError> ImageFile::failureOf(const FileURL& url, const PictureBudget& budget) {
  return failureIn(url, budget);
}

std::optional<PictureError> ImageFile::failureOf(std::string_view bytes, const PictureBudget& budget) {
  return failureIn(bytes, budget);
}

std::optional<ImageFile::Head> ImageFile::head(const FileURL& url) {
  return headIn(PictureFile(url));
}

std::optional<ImageFile::Head> ImageFile::head(int descriptor) {
  return headIn(PictureFile(descriptor));
}

std::optional<QSize> ImageFile::pixelSize(const FileURL& url) {
  const auto found = head(url);
  return found ? std::optional(found->size) : std::nullopt;
}

ImageFile::Picture ImageFile::read(const FileURL& url, const PictureBudget& budget) {
  return pictureOf(url, budget, [](std::string_view bytes) { return decoded(bytes); });
}

ImageFile::Picture ImageFile::read(const FileURL& url, const std::function<void(std::string_view)>& tell,
                                   const PictureBudget& budget) {
  return pictureOf(url, budget, [&tell](std::string_view bytes) {
    tell(bytes);
    return decoded(bytes);
  });
}

ImageFile::Picture ImageFile::read(std::string_view bytes, const std::function<void(std::string_view)>& tell,
                                   const PictureBudget& budget, PixelMemory* memory) {
  return pictureOf(bytes, budget, [&tell, memory](std::string_view all) {
    tell(all);
    return decoded(all, memory);
  });
}

ImageFile::Picture ImageFile::read(std::string_view bytes, const PictureBudget& budget, PixelMemory* memory) {
  return pictureOf(bytes, budget, [memory](std::string_view all) { return decoded(all, memory); });
}

ImageFile::Picture ImageFile::readSmall(const FileURL& url, int maxPixels, const PictureBudget& budget) {
  if (maxPixels <= 0) return PictureError::damaged;
  return pictureOf(url, budget, [maxPixels](std::string_view bytes) { return decodedSmall(bytes, maxPixels); });
}

ImageFile::Picture ImageFile::readSmall(std::string_view bytes, int maxPixels, const PictureBudget& budget) {
  if (maxPixels <= 0) return PictureError::damaged;
  return pictureOf(bytes, budget, [maxPixels](std::string_view all) { return decodedSmall(all, maxPixels); });
}

QImage ImageFile::picture(const FileURL& url) {
  auto picture = read(url);
  return picture ? *std::move(picture) : QImage();
}

QImage ImageFile::picture(std::string_view bytes) {
  auto picture = read(bytes);
  return picture ? *std::move(picture) : QImage();
}

QImage ImageFile::thumbnail(const FileURL& url, int maxPixels) {
  auto picture = readSmall(url, maxPixels);
  return picture ? *std::move(picture) : QImage();
}

QImage ImageFile::thumbnail(std::string_view bytes, int maxPixels) {
  auto picture = readSmall(bytes, maxPixels);
  return picture ? *std::move(picture) : QImage();
}

}  // namespace quillmere
