#include "formats/ImageFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtGui/QImageReader>
#include <algorithm>
#include <functional>

#include "formats/HeifFile.h"
#include "formats/PngChunks.h"
#include "formats/PngReader.h"
#include "foundation/FileStatus.h"
#include "pixels/Downscaler.h"

namespace quillmere {
namespace {

using ImageFile::Format;

constexpr int64_t kMostFileBytes = int64_t{1} << 30;
constexpr std::string_view kJpegStart = "\xFF\xD8";

/// Qt takes a name as text; a descriptor reaches any file, whatever bytes its name has.
class OpenFile {
 public:
  explicit OpenFile(const FileURL& url) {
    const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor >= 0) file_.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
  }
  bool isOpen() const { return file_.isOpen(); }
  QFile& device() { return file_; }

 private:
  QFile file_;
};

/// Qt's, for PNG and JPEG: what it would try on other files was never meant to be a screenshot.
class GeneralReader {
 public:
  GeneralReader(QIODevice& device, Format format) : reader_(&device, format == Format::png ? "png" : "jpeg") {
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

QImage readGenerally(std::string_view bytes, Format format, const std::function<QImage(GeneralReader&)>& read) {
  if (format == Format::png && PngReader::isBomb(bytes)) return {};
  QByteArray view = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&view);
  GeneralReader reader(buffer, format);
  const auto size = reader.size();
  if (!size || (format == Format::jpeg && isJpegBomb(*size, bytes.size()))) return {};
  return read(reader);
}
QImage readGenerally(std::string_view bytes, Format format) {
  return readGenerally(bytes, format, [](GeneralReader& reader) { return reader.read(); });
}

QImage decoded(std::string_view bytes) {
  const auto format = ImageFile::formatOf(bytes);
  if (!format) return {};
  if (format == Format::heif) return HeifFile(bytes).decoded();
  if (format == Format::png) {
    if (auto picture = PngReader::read(bytes)) return *std::move(picture);
  }
  return readGenerally(bytes, *format);
}

/// The decoders of PNG and JPEG forgive a file that ends early; its end marker does not.
bool hasEndMarker(std::string_view bytes, Format format) {
  constexpr size_t kTail = 64 * 1024;
  const std::string_view marker = format == Format::png ? "IEND\xAE\x42\x60\x82" : "\xFF\xD9";
  return bytes.substr(bytes.size() - std::min(kTail, bytes.size())).find(marker) != std::string_view::npos;
}

bool isWhole(std::string_view bytes) {
  const auto format = ImageFile::formatOf(bytes);
  if (!format) return false;
  if (format == Format::heif) return !HeifFile(bytes).decoded().isNull();
  if (format == Format::png && PngReader::canRead(bytes)) return true;
  return hasEndMarker(bytes, *format) && !readGenerally(bytes, *format).isNull();
}

QImage fitted(const QImage& picture, int maxPixels) {
  return Downscaler::scaled(picture, Downscaler::fitting(picture.size(), maxPixels));
}

QImage smallJpeg(std::string_view bytes, int maxPixels) {
  return readGenerally(bytes, Format::jpeg, [maxPixels](GeneralReader& reader) {
    const QSize size = Downscaler::fitting(*reader.size(), maxPixels);
    return Downscaler::scaled(reader.readReduced(size), size);
  });
}

QImage decodedSmall(std::string_view bytes, int maxPixels) {
  const auto format = ImageFile::formatOf(bytes);
  if (format == Format::jpeg) return smallJpeg(bytes, maxPixels);
  if (format == Format::png) {
    if (auto picture = PngReader::readSmall(bytes, maxPixels)) return *std::move(picture);
  }
  return fitted(decoded(bytes), maxPixels);
}

}  // namespace

std::optional<Format> ImageFile::formatOf(std::string_view head) {
  if (head.starts_with(kPngSignature)) return Format::png;
  if (head.starts_with(kJpegStart)) return Format::jpeg;
  if (HeifFile::isHeif(head)) return Format::heif;
  return std::nullopt;
}

std::optional<std::string> ImageFile::bytesOf(const FileURL& url) {
  return readFile(url, kMostFileBytes);
}

bool ImageFile::decodesCompletely(const FileURL& url) {
  const auto bytes = bytesOf(url);
  return bytes && isWhole(*bytes);
}

std::optional<QSize> ImageFile::pixelSize(const FileURL& url) {
  OpenFile file(url);
  if (!file.isOpen()) return std::nullopt;
  const auto format = formatOf(file.device().peek(16).toStdString());
  if (!format) return std::nullopt;
  if (format != Format::heif) return GeneralReader(file.device(), *format).size();
  const auto bytes = bytesOf(url);
  return bytes ? HeifFile(*bytes).size() : std::nullopt;
}

QImage ImageFile::picture(const FileURL& url) {
  const auto bytes = bytesOf(url);
  return bytes ? decoded(*bytes) : QImage();
}

QImage ImageFile::thumbnail(const FileURL& url, int maxPixels) {
  const auto bytes = maxPixels > 0 ? bytesOf(url) : std::nullopt;
  return bytes ? decodedSmall(*bytes, maxPixels) : QImage();
}

}  // namespace quillmere
