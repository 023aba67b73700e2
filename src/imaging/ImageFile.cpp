#include "imaging/ImageFile.h"

#include <fcntl.h>
#include <libheif/heif.h>
#include <unistd.h>
#include <QtCore/QFile>
#include <QtGui/QImageReader>
#include <array>
#include <memory>

namespace quillmere {
namespace {

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

bool isHeif(QFile& file) {
  const QByteArray head = file.peek(16);
  const auto verdict =
      heif_check_filetype(reinterpret_cast<const uint8_t*>(head.constData()), static_cast<int>(head.size()));
  return verdict == heif_filetype_yes_supported || verdict == heif_filetype_maybe;
}

/// The decoders of PNG and JPEG forgive a file that ends early; its end marker does not.
bool hasEndMarker(QFile& file) {
  constexpr qint64 kTail = 64 * 1024;
  const QByteArray head = file.peek(4);
  const bool isPng = head.startsWith("\x89PNG");
  const bool isJpeg = head.startsWith("\xFF\xD8");
  if (!isPng && !isJpeg) return true;
  file.seek(std::max<qint64>(0, file.size() - kTail));
  const QByteArray tail = file.read(kTail);
  file.seek(0);
  const QByteArray marker = isPng ? QByteArray("IEND\xAE\x42\x60\x82", 8) : QByteArray("\xFF\xD9", 2);
  return tail.contains(marker);
}

/// libheif's objects, released in the right order.
class HeifImage {
 public:
  explicit HeifImage(QFile& file) : bytes_(file.readAll()), context_(heif_context_alloc(), &heif_context_free) {
    if (!ok(heif_context_read_from_memory_without_copy(context_.get(), bytes_.constData(),
                                                       static_cast<size_t>(bytes_.size()), nullptr))) {
      return;
    }
    heif_image_handle* handle = nullptr;
    if (ok(heif_context_get_primary_image_handle(context_.get(), &handle))) handle_.reset(handle);
  }

  std::optional<QSize> size() const {
    if (!handle_) return std::nullopt;
    return QSize(heif_image_handle_get_width(handle_.get()), heif_image_handle_get_height(handle_.get()));
  }

  QImage decode() const {
    heif_image* decoded = nullptr;
    if (!handle_ ||
        !ok(heif_decode_image(handle_.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr))) {
      return {};
    }
    const std::unique_ptr<heif_image, decltype(&heif_image_release)> owned(decoded, &heif_image_release);
    int stride = 0;
    const uint8_t* pixels = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &stride);
    if (!pixels) return {};
    return QImage(pixels, heif_image_get_width(decoded, heif_channel_interleaved),
                  heif_image_get_height(decoded, heif_channel_interleaved), stride, QImage::Format_RGBA8888)
        .copy();
  }

 private:
  static bool ok(const heif_error& error) { return error.code == heif_error_Ok; }

  QByteArray bytes_;
  std::unique_ptr<heif_context, decltype(&heif_context_free)> context_;
  std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)> handle_{nullptr, &heif_image_handle_release};
};

bool isSideways(QImageIOHandler::Transformations transformation) {
  return transformation.testFlag(QImageIOHandler::TransformationRotate90);
}

/// Qt gives up at 128 MiB of pixels; a capture of several large screens, or of a page scrolled through, has more.
QImage readAll(QImageReader& reader) {
  constexpr int kMostMegabytes = 1024;
  static const bool isLimitSet = (QImageReader::setAllocationLimit(kMostMegabytes), true);
  Q_UNUSED(isLimitSet)
  return reader.read();
}

QImage scaledDown(const QImage& image, int maxPixels) {
  if (image.isNull() || (image.width() <= maxPixels && image.height() <= maxPixels)) return image;
  return image.scaled(maxPixels, maxPixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

bool ImageFile::decodesCompletely(const FileURL& url) {
  OpenFile file(url);
  if (!file.isOpen()) return false;
  if (isHeif(file.device())) return !HeifImage(file.device()).decode().isNull();
  if (!hasEndMarker(file.device())) return false;
  QImageReader reader(&file.device());
  return !readAll(reader).isNull();
}

std::optional<QSize> ImageFile::pixelSize(const FileURL& url) {
  OpenFile file(url);
  if (!file.isOpen()) return std::nullopt;
  if (isHeif(file.device())) return HeifImage(file.device()).size();
  QImageReader reader(&file.device());
  const QSize size = reader.size();
  if (!size.isValid() || size.isEmpty()) return std::nullopt;
  return isSideways(reader.transformation()) ? size.transposed() : size;
}

QImage ImageFile::thumbnail(const FileURL& url, int maxPixels) {
  OpenFile file(url);
  if (!file.isOpen()) return {};
  if (isHeif(file.device())) return scaledDown(HeifImage(file.device()).decode(), maxPixels);
  QImageReader reader(&file.device());
  reader.setAutoTransform(true);
  return scaledDown(readAll(reader), maxPixels);
}

}  // namespace quillmere
