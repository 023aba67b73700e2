#include "formats/PngWriter.h"

#include <libdeflate.h>
#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>
#include <QtGui/QImageWriter>
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "formats/PngRowFilter.h"
#include "foundation/LargeBuffer.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

/// Above it files of captures hardly get smaller, and take much longer.
constexpr int kLevel = 4;
constexpr qsizetype kMostBytes = qsizetype{1} << 30;
constexpr qsizetype kMostPixelsOnASide = 1'000'000;

int channelsOf(const QImage& image) {
  return image.hasAlphaChannel() ? 4 : 3;
}

std::string header(const QImage& image) {
  std::string data;
  for (const int side : {image.width(), image.height()}) {
    for (const int shift : {24, 16, 8, 0}) data += static_cast<char>(side >> shift);
  }
  // Bits in a channel, RGB or RGBA, and the only methods there are; not interlaced.
  data += {8, static_cast<char>(channelsOf(image) == 4 ? 6 : 2), 0, 0, 0};
  return data;
}

/// The chunks that tell the colour space: those of a picture of one pixel, written by the general writer.
std::optional<std::string> description(const QImage& image) {
  QImage pixel(1, 1, image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  pixel.fill(Qt::black);
  pixel.setColorSpace(image.colorSpace());
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (!QImageWriter(&buffer, "png").write(pixel)) return std::nullopt;
  std::string result;
  PngChunks chunks({bytes.constData(), static_cast<size_t>(bytes.size())});
  while (const auto chunk = chunks.next()) {
    if (chunk->type == "IDAT") break;
    if (chunk->type != "IHDR" && chunk->type != "pHYs") result += chunk->whole;
  }
  return result;
}

void copyChannels(const QRgb* pixels, int width, int channels, uint8_t* row) {
  for (int x = 0; x < width; ++x, row += channels) {
    row[0] = static_cast<uint8_t>(qRed(pixels[x]));
    row[1] = static_cast<uint8_t>(qGreen(pixels[x]));
    row[2] = static_cast<uint8_t>(qBlue(pixels[x]));
    if (channels == 4) row[3] = static_cast<uint8_t>(qAlpha(pixels[x]));
  }
}

/// One row, its alpha not multiplied into the colours.
QImage straightRow(const QImage& image, int y) {
  const QImage row(image.constScanLine(y), image.width(), 1, image.bytesPerLine(), image.format());
  return row.convertToFormat(QImage::Format_ARGB32);
}

/// Every row with the number of its filter before it.
bool filterRows(const QImage& image, uint8_t* target) {
  const int channels = channelsOf(image);
  const size_t bytes = sizeof(QRgb) * static_cast<size_t>(image.width());
  PngRowFilter filter(static_cast<size_t>(image.width()), channels);
  for (int y = 0; y < image.height(); ++y, target += filter.filteredBytes()) {
    // Much of a window is.
    if (y > 0 && std::memcmp(image.constScanLine(y), image.constScanLine(y - 1), bytes) == 0) {
      filter.filterRepeatedRow(target);
      continue;
    }
    const uchar* pixels = image.constScanLine(y);
    QImage straight;
    if (image.format() == QImage::Format_ARGB32_Premultiplied) {
      straight = straightRow(image, y);
      if (straight.isNull()) return false;
      pixels = straight.constScanLine(0);
    }
    copyChannels(reinterpret_cast<const QRgb*>(pixels), image.width(), channels, filter.row());
    filter.filterRow(target);
  }
  return true;
}

struct Compressed {
  LargeBuffer bytes;
  size_t size;
};

std::optional<Compressed> compressedRows(const QImage& image) {
  const size_t size = static_cast<size_t>(image.height()) *
                      (1 + static_cast<size_t>(channelsOf(image)) * static_cast<size_t>(image.width()));
  const LargeBuffer rows(size);
  if (!rows || !filterRows(image, rows.data())) return std::nullopt;
  const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> deflater(
      libdeflate_alloc_compressor(kLevel), &libdeflate_free_compressor);
  if (!deflater) return std::nullopt;
  const size_t most = libdeflate_zlib_compress_bound(deflater.get(), size);
  Compressed result{LargeBuffer(most), 0};
  if (!result.bytes) return std::nullopt;
  result.size = libdeflate_zlib_compress(deflater.get(), rows.data(), size, result.bytes.data(), most);
  return result.size > 0 ? std::optional(std::move(result)) : std::nullopt;
}

}  // namespace

bool PngWriter::canWrite(const QImage& image) {
  switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
      return image.sizeInBytes() <= kMostBytes && std::max(image.width(), image.height()) <= kMostPixelsOnASide;
    default:
      return false;
  }
}

std::optional<QByteArray> PngWriter::write(const QImage& image) {
  const auto described = description(image);
  const auto data = described ? compressedRows(image) : std::nullopt;
  if (!data) return std::nullopt;
  const std::string first = header(image);
  QByteArray file;
  file.reserve(static_cast<qsizetype>(kPngSignature.size() + first.size() + described->size() + data->size) +
               3 * kPngChunkFrame);
  file.append(kPngSignature.data(), static_cast<qsizetype>(kPngSignature.size()));
  appendPngChunk(file, "IHDR", first);
  file.append(described->data(), static_cast<qsizetype>(described->size()));
  appendPngChunk(file, "IDAT", {reinterpret_cast<const char*>(data->bytes.data()), data->size});
  appendPngChunk(file, "IEND", {});
  return file;
}

}  // namespace quillmere
