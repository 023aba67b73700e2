#include "formats/PngReader.h"

#include <libdeflate.h>
#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>
#include <QtGui/QImageReader>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

#include "formats/PngFilters.h"
#include "foundation/LargeBuffer.h"
#include "pixels/Downscaler.h"
#include "png/PlainPng.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

/// Fills `filtered` with exactly what the header says.
bool inflate(const PlainPng& png, uint8_t* filtered) {
  std::string joined;
  std::string_view stream = png.compressed.front();
  if (png.compressed.size() > 1) {
    size_t bytes = 0;
    for (const std::string_view part : png.compressed) bytes += part.size();
    joined.reserve(bytes);
    for (const std::string_view part : png.compressed) joined += part;
    stream = joined;
  }
  const size_t wanted = png.header.filteredBytes();
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater(
      libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
  size_t used = 0;
  size_t given = 0;
  return inflater &&
         libdeflate_zlib_decompress_ex(inflater.get(), stream.data(), stream.size(), filtered, wanted, &used, &given) ==
             LIBDEFLATE_SUCCESS &&
         used == stream.size() && given == wanted;
}

bool areFiltersKnown(const PngHeader& header, const uint8_t* filtered) {
  for (uint32_t y = 0; y < header.height; ++y) {
    if (filtered[y * (1 + header.rowBytes())] >= PngFilters::kKinds) return false;
  }
  return true;
}

/// A picture of one pixel whose chunks say the same of colour space and resolution, read by the general reader: so what
/// it makes of them, and of their contradictions, is known without doing it again.
QImage describedPixel(const PlainPng& png) {
  std::string header("\0\0\0\1\0\0\0\1\x08\x02\0\0\0", 13);
  header[9] = static_cast<char>(png.header.colourType);
  // One row: its filter and a pixel, not compressed.
  const std::string_view data = png.header.channels() == 3
                                    ? std::string_view("\x78\x01\x01\x04\0\xFB\xFF\0\0\0\0\0\x04\0\x01", 15)
                                    : std::string_view("\x78\x01\x01\x05\0\xFA\xFF\0\0\0\0\0\0\x05\0\x01", 16);
  const std::string file = std::string(kPngSignature) + encodedPngChunk("IHDR", header) + png.description +
                           encodedPngChunk("IDAT", data) + encodedPngChunk("IEND", {});
  QByteArray bytes = QByteArray::fromStdString(file);
  QBuffer buffer(&bytes);
  return QImageReader(&buffer, "png").read();
}

/// Undoes the filters from the top down. The finished rows follow the filtered ones in the same memory, close behind.
void undoFilters(const PngHeader& header, const uint8_t* filtered, uint32_t* pixels) {
  const std::vector<uint32_t> nothing(header.width + PngFilters::kSlack / sizeof(uint32_t));
  const uint32_t* above = nothing.data();
  for (uint32_t y = 0; y < header.height; ++y) {
    const uint8_t* row = filtered + y * (1 + header.rowBytes());
    PngFilters::undo(row[0], header.channels(), {row + 1, above, pixels, header.width});
    above = pixels;
    pixels += header.width;
  }
}

/// Undoes the filters of a few rows at a time, which the caches hold, and makes the picture smaller at once.
QImage undoFilters(const PngHeader& header, const uint8_t* filtered, Downscaler& scaler) {
  const size_t stride = header.width + PngFilters::kSlack / sizeof(uint32_t);
  // With the one above them.
  const auto room = static_cast<size_t>(scaler.rowsWanted()) + 1;
  std::vector<uint32_t> memory(stride * room);
  const auto place = [&](size_t y) { return memory.data() + stride * (y % room); };
  std::vector<const QRgb*> rows;
  for (size_t y = 0; y < header.height;) {
    rows.clear();
    for (int i = scaler.rowsWanted(); i > 0; --i, ++y) {
      const uint8_t* row = filtered + y * (1 + header.rowBytes());
      PngFilters::undo(row[0], header.channels(), {row + 1, place(y + room - 1), place(y), header.width});
      rows.push_back(place(y));
    }
    scaler.add(rows.data());
  }
  return scaler.result();
}

QSize sizeOf(const PngHeader& header) {
  return {static_cast<int>(header.width), static_cast<int>(header.height)};
}

std::optional<PlainPng> plainPng(std::string_view file) {
  return PngReader::isBomb(file) ? std::nullopt : PlainPng::of(file);
}

QImage pictureOf(const PlainPng& png, const QImage& pixel, PixelMemory* memory = nullptr) {
  // The data stands so far behind the picture that no finished row reaches the next filtered one: one block of memory
  // instead of two, and the caches stay warm.
  const PngHeader& header = png.header;
  const size_t finishedRow = size_t{4} * header.width;
  const size_t gain = std::max(finishedRow, 1 + header.rowBytes()) - (1 + header.rowBytes());
  const size_t distance = finishedRow + (header.height - 1) * gain + PngFilters::kSlack;
  const size_t room = distance + header.filteredBytes() + PngFilters::kSlack;
  uint8_t* bytes = memory ? memory->take(room) : nullptr;
  std::optional<LargeBuffer> own;
  if (!bytes) bytes = own.emplace(room).data();
  if (!bytes) return {};
  uint8_t* filtered = bytes + distance;
  if (!inflate(png, filtered) || !areFiltersKnown(header, filtered)) return {};
  undoFilters(header, filtered, reinterpret_cast<uint32_t*>(bytes));

  uint8_t* released = own ? own->release() : nullptr;
  QImage image(bytes, static_cast<int>(header.width), static_cast<int>(header.height),
               static_cast<qsizetype>(finishedRow), pixel.format(), &std::free, released);
  image.setColorSpace(pixel.colorSpace());
  image.setDotsPerMeterX(pixel.dotsPerMeterX());
  image.setDotsPerMeterY(pixel.dotsPerMeterY());
  return image;
}

QImage smallPictureOf(const PlainPng& png, const QImage& pixel, QSize size) {
  const LargeBuffer filtered(png.header.filteredBytes() + PngFilters::kSlack);
  if (!filtered || !inflate(png, filtered.data()) || !areFiltersKnown(png.header, filtered.data())) return {};
  Downscaler scaler(sizeOf(png.header), size, pixel.format());
  QImage image = undoFilters(png.header, filtered.data(), scaler);
  image.setColorSpace(pixel.colorSpace());
  return image;
}

std::optional<QImage> unlessNull(QImage image) {
  return image.isNull() ? std::nullopt : std::optional(std::move(image));
}

}  // namespace

std::optional<QImage> PngReader::read(std::string_view file, PixelMemory* memory) {
  const auto png = plainPng(file);
  const QImage pixel = png ? describedPixel(*png) : QImage();
  return pixel.isNull() ? std::nullopt : unlessNull(pictureOf(*png, pixel, memory));
}

std::optional<QImage> PngReader::readSmall(std::string_view file, int maxPixels) {
  const auto png = plainPng(file);
  const QImage pixel = png ? describedPixel(*png) : QImage();
  if (pixel.isNull()) return std::nullopt;
  const QSize full = sizeOf(png->header);
  const QSize size = Downscaler::fitting(full, maxPixels);
  if (size != full) return unlessNull(smallPictureOf(*png, pixel, size));
  return unlessNull(Downscaler::scaled(pictureOf(*png, pixel), size));
}

bool PngReader::canRead(std::string_view file) {
  const auto png = plainPng(file);
  if (!png) return false;
  const LargeBuffer filtered(png->header.filteredBytes());
  return filtered && inflate(*png, filtered.data()) && areFiltersKnown(png->header, filtered.data()) &&
         !describedPixel(*png).isNull();
}

bool PngReader::hasEndlessData(std::string_view file) {
  constexpr size_t kMuch = 4 << 20;
  constexpr size_t kMostRest = 1 << 20;
  const auto header = PngHeader::of(file);
  if (!header || file.size() <= kMuch || isBomb(file)) return false;
  std::string data;
  PngChunks chunks(file);
  while (const auto chunk = chunks.next()) {
    if (chunk->type == "IDAT") data += chunk->data;
  }
  if (data.size() <= kMuch) return false;
  // The rows of interlaced pictures are shorter, and more.
  const size_t room = header->filteredBytes() + header->filteredBytes() / 8 + kMostRest;
  const LargeBuffer buffer(room);
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater(
      libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
  if (!buffer || !inflater) return true;
  size_t given = 0;
  return libdeflate_zlib_decompress(inflater.get(), data.data(), data.size(), buffer.data(), room, &given) ==
         LIBDEFLATE_INSUFFICIENT_SPACE;
}

bool PngReader::isBomb(std::string_view file) {
  const auto header = PngHeader::of(file);
  return header && (header->isTooLarge() || header->filteredBytes() / kBestCompression > file.size());
}

}  // namespace quillmere
