#include "formats/ImageEncoding.h"

#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>
#include <QtGui/QImageWriter>
#include <QtGui/QPainter>
#include <new>

#include "formats/HeifFile.h"
#include "formats/PngWriter.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

/// Text in a screenshot shows what compression does to it.
constexpr int kQuality = 95;

/// The same pixels and colour space without texts and offset; `image` must live as long as this does.
QImage pixelsAlone(const QImage& image) {
  QImage alone(image.constBits(), image.width(), image.height(), image.bytesPerLine(), image.format());
  alone.setColorTable(image.colorTable());
  alone.setColorSpace(image.colorSpace());
  return alone;
}

/// JPEG has no alpha, and what lies under clear pixels is nobody's picture.
QImage onWhite(const QImage& image) {
  if (!image.hasAlphaChannel()) return image;
  QImage opaque(image.size(), QImage::Format_RGB32);
  opaque.setColorSpace(image.colorSpace());
  opaque.fill(Qt::white);
  QPainter(&opaque).drawImage(0, 0, image);
  return opaque;
}

std::optional<QByteArray> written(const QImage& image, const char* format, int quality = -1) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QImageWriter writer(&buffer, format);
  writer.setQuality(quality);
  if (!writer.write(image)) return std::nullopt;
  return bytes;
}

/// Qt always writes a resolution, if only that of the display it runs on.
QByteArray withoutResolution(const QByteArray& png) {
  const std::string_view file(png.constData(), static_cast<size_t>(png.size()));
  QByteArray result;
  result.reserve(png.size());
  result.append(kPngSignature.data(), static_cast<qsizetype>(kPngSignature.size()));
  PngChunks chunks(file);
  while (const auto chunk = chunks.next()) {
    if (chunk->type != "pHYs") result.append(chunk->whole.data(), static_cast<qsizetype>(chunk->whole.size()));
  }
  return result;
}

/// The file's head always has one: without a unit it is the shape of a pixel, a square.
QByteArray withoutDensity(QByteArray jpeg) {
  constexpr qsizetype kUnit = 13;
  const QByteArray head("\xFF\xD8\xFF\xE0\0\x10JFIF\0", 11);
  const QByteArray square("\0\0\1\0\1", 5);
  if (jpeg.startsWith(head)) jpeg.replace(kUnit, square.size(), square);
  return jpeg;
}

std::optional<QByteArray> encoded(const QImage& image, PictureFormat format) {
  switch (format) {
    case PictureFormat::png: {
      if (PngWriter::canWrite(image)) return PngWriter::write(image);
      const auto png = written(image, "png");
      return png ? std::optional(withoutResolution(*png)) : std::nullopt;
    }
    case PictureFormat::jpeg: {
      auto jpeg = written(onWhite(image), "jpeg", kQuality);
      return jpeg ? std::optional(withoutDensity(*std::move(jpeg))) : std::nullopt;
    }
    case PictureFormat::heif:
      return encodedHeic(image, kQuality);
  }
  return std::nullopt;
}

}  // namespace

Result<QByteArray, ImageOperations::OperationError> ImageOperations::encode(const QImage& image, PictureFormat format) {
  if (image.isNull() || !traits(format).isWritable) return OperationError::encoding;
  // Where memory runs out, the libraries throw.
  try {
    if (auto bytes = encoded(pixelsAlone(image), format)) return *std::move(bytes);
  } catch (const std::bad_alloc&) {
  }
  return OperationError::encoding;
}

}  // namespace quillmere
