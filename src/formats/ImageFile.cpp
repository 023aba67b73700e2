#include "formats/ImageFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtGui/QImageReader>
#include <algorithm>
#include <functional>

#include "formats/HeifFile.h"
#include "formats/PngOrientation.h"
#include "formats/PngReader.h"
#include "foundation/FileStatus.h"
#include "pixels/Downscaler.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

constexpr int64_t kMostFileBytes = int64_t{1} << 30;

/// Qt takes a name as text; a descriptor reaches any file, whatever bytes its name has.
class OpenFile {
 public:
  explicit OpenFile(const FileURL& url) {
    // A link put in a picture's place would have another file read, and sent to where pictures go.
    const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (descriptor >= 0) file_.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
  }
  bool isOpen() const { return file_.isOpen(); }
  QFile& device() { return file_; }

 private:
  QFile file_;
};

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

/// The decoder of JPEG takes memory for whatever the header says and fills in what is not there. Even a white picture
/// has a bit for each block of 64 pixels.
bool isJpegBomb(QSize size, size_t bytes) {
  constexpr size_t kMostPixelsInAByte = 1024;
  return static_cast<size_t>(size.width()) * static_cast<size_t>(size.height()) / kMostPixelsInAByte > bytes;
}

/// Whether the header promises more than the file can hold.
bool isBomb(std::string_view bytes, PictureFormat format, const GeneralReader& reader) {
  switch (format) {
    case PictureFormat::png:
      return PngReader::isBomb(bytes);
    case PictureFormat::jpeg: {
      const auto size = reader.size();
      return size && isJpegBomb(*size, bytes.size());
    }
    case PictureFormat::heif:
      // Its reader looks at the size before it takes memory.
      return false;
  }
  return true;
}

QImage readGenerally(std::string_view bytes, PictureFormat format, const std::function<QImage(GeneralReader&)>& read) {
  QByteArray view = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&view);
  GeneralReader reader(buffer, format);
  if (isBomb(bytes, format, reader) || !reader.size()) return {};
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

/// As the file has it.
QImage storedPng(std::string_view bytes) {
  auto picture = PngReader::read(bytes);
  return picture ? *std::move(picture) : readGenerally(bytes, PictureFormat::png);
}

QImage decoded(std::string_view bytes) {
  const auto format = ImageFile::formatOf(bytes);
  if (!format) return {};
  switch (*format) {
    case PictureFormat::png:
      return uprightPng(storedPng(bytes), bytes);
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

bool isWholePicture(std::string_view bytes) {
  const auto format = ImageFile::formatOf(bytes);
  if (!format) return false;
  switch (*format) {
    case PictureFormat::png:
      if (PngReader::canRead(bytes)) return true;
      [[fallthrough]];
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

/// Upright, from the header alone.
std::optional<QSize> sizeIn(QFile& file, PictureFormat format) {
  switch (format) {
    case PictureFormat::png: {
      const auto size = GeneralReader(file, format).size();
      const bool isSideways = pngOrientation(file).testFlag(QImageIOHandler::TransformationRotate90);
      return size && isSideways ? size->transposed() : size;
    }
    case PictureFormat::jpeg:
      return GeneralReader(file, format).size();
    case PictureFormat::heif: {
      if (file.size() > kMostFileBytes) return std::nullopt;
      const QByteArray bytes = file.readAll();
      return HeifFile({bytes.constData(), static_cast<size_t>(bytes.size())}).size();
    }
  }
  return std::nullopt;
}

std::optional<ImageFile::Head> headIn(QFile& file) {
  const auto format = ImageFile::formatOf(file.peek(16).toStdString());
  const auto size = format ? sizeIn(file, *format) : std::nullopt;
  return size ? std::optional(ImageFile::Head{*format, *size}) : std::nullopt;
}

}  // namespace

std::optional<PictureFormat> ImageFile::formatOf(std::string_view head) {
  const auto format = formatOfSignature(head);
  // Films begin in the same way.
  if (format == PictureFormat::heif && !HeifFile::isHeif(head)) return std::nullopt;
  return format;
}

std::optional<std::string> ImageFile::bytesOf(const FileURL& url) {
  return readFileItself(url, kMostFileBytes);
}

bool ImageFile::decodesCompletely(const FileURL& url) {
  const auto bytes = bytesOf(url);
  return bytes && isWhole(*bytes);
}

bool ImageFile::isWhole(std::string_view bytes) {
  return isWholePicture(bytes);
}

std::optional<ImageFile::Head> ImageFile::head(const FileURL& url) {
  OpenFile file(url);
  return file.isOpen() ? headIn(file.device()) : std::nullopt;
}

std::optional<ImageFile::Head> ImageFile::head(int descriptor) {
  QFile file;
  return file.open(descriptor, QIODevice::ReadOnly, QFileDevice::DontCloseHandle) ? headIn(file) : std::nullopt;
}

std::optional<QSize> ImageFile::pixelSize(const FileURL& url) {
  const auto found = head(url);
  return found ? std::optional(found->size) : std::nullopt;
}

QImage ImageFile::picture(const FileURL& url) {
  const auto bytes = bytesOf(url);
  return bytes ? picture(std::string_view(*bytes)) : QImage();
}

QImage ImageFile::picture(std::string_view bytes) {
  return decoded(bytes);
}

QImage ImageFile::thumbnail(const FileURL& url, int maxPixels) {
  const auto bytes = maxPixels > 0 ? bytesOf(url) : std::nullopt;
  return bytes ? decodedSmall(*bytes, maxPixels) : QImage();
}

QImage ImageFile::thumbnail(std::string_view bytes, int maxPixels) {
  return maxPixels > 0 ? decodedSmall(bytes, maxPixels) : QImage();
}

}  // namespace quillmere
