#include "hostile/HostilePictures.h"
#include "hostile/PngParts.h"

// Compressed data that are wrong, bombs of all kinds, and what stands beside the picture.
namespace quillmere::testing {
namespace {

using namespace png;

HostilePicture row(const std::string& name, const std::string& outcome, std::function<std::string()> bytes,
                   int64_t megabytes = 32) {
  return {"png-" + name, std::move(bytes), outcome, 0, megabytes};
}

HostilePicture stream(const std::string& name, const std::string& bytes, const std::string& outcome) {
  return row(name, outcome, [bytes] { return header({}) + pngChunk("IDAT", bytes) + kEnd; });
}

HostilePicture sparse(const std::string& name, const std::string& outcome, int64_t size,
                      std::function<std::string()> bytes) {
  HostilePicture picture = row(name, outcome, std::move(bytes));
  picture.sparseSize = size;
  picture.mostBytesRead = 2 << 20;
  return picture;
}

std::string changed(std::string bytes, size_t place, char by) {
  bytes[place < bytes.size() ? place : bytes.size() - 1] ^= by;
  return bytes;
}

std::string stored(std::string_view bytes) {
  std::string result("\x78\x01", 2);
  uint32_t a = 1;
  uint32_t b = 0;
  for (size_t i = 0; i < bytes.size(); i += 100) {
    const std::string_view part = bytes.substr(i, 100);
    const auto length = static_cast<char>(part.size());
    result += {static_cast<char>(i + 100 >= bytes.size()), length, '\0', static_cast<char>(~length), '\xFF'};
    result += part;
  }
  for (const char byte : bytes) {
    a = (a + static_cast<uint8_t>(byte)) % 65521;
    b = (b + a) % 65521;
  }
  return result + bigEndian32(b << 16 | a);
}

std::string inParts(std::string_view bytes, size_t part) {
  std::string result;
  for (size_t i = 0; i < bytes.size(); i += part) result += pngChunk("IDAT", bytes.substr(i, part));
  return result;
}

std::string repeated(size_t count, const std::string& chunk) {
  std::string result;
  for (size_t i = 0; i < count; ++i) result += chunk;
  return result;
}

/// Camera data of one directory at `directory`, with so many entries told of which one is there, an orientation.
std::string camera(uint32_t directory, uint16_t entries, uint16_t orientation) {
  const auto short16 = [](uint16_t number) {
    return std::string{static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
  };
  return pngChunk("eXIf", std::string("MM\0*", 4) + bigEndian32(directory) + short16(entries) + short16(274) +
                              short16(3) + bigEndian32(1) + short16(orientation) + short16(0) + bigEndian32(8));
}

}  // namespace

std::vector<HostilePicture> hostilePngData() {
  const std::string kNone = "none, damaged, damaged";
  const std::string kBroken = "64x64, damaged, damaged";
  const std::string kFine = "64x64, 64x64, whole";
  const std::string kTooCostly = "none, tooCostly, tooCostly";
  const std::string zlib = compressed(usualRows());
  return {
      stream("data-without-head", zlib.substr(2), kBroken),
      stream("data-of-another-method", changed(zlib, 0, 1), kBroken),
      stream("data-with-a-dictionary", "\x78\xBB" + std::string(4, '\0') + zlib.substr(2), kBroken),
      stream("data-of-no-kind-of-block", std::string("\x78\x01\x07", 3) + std::string(40, '\0'), kBroken),
      stream("data-from-before-their-start", std::string("\x78\x01\x4B\x04\x1E\x00\x00\x00\x00", 9), kBroken),
      stream("data-of-incomplete-codes", std::string("\x78\x01\x05\xE0\x81\x00\x00", 7) + std::string(30, '\1'),
             kBroken),
      stream("data-of-zeros", std::string(4000, '\0'), kBroken),
      stream("data-of-ones", std::string(4000, '\xFF'), kBroken),
      stream("data-changed-in-the-middle", changed(zlib, zlib.size() / 2, '\x55'), kBroken),
      stream("data-with-wrong-sum", changed(zlib, zlib.size() - 1, 1), kBroken),
      stream("data-without-sum", zlib.substr(0, zlib.size() - 4), kBroken),
      stream("data-not-compressed", stored(usualRows()), kFine),
      stream("data-with-more-behind", zlib + std::string(1000, 'x'), kFine),
      stream("data-too-short", compressed(rows(63, 192)), kBroken),
      stream("data-too-long", compressed(rows(70, 192)), kFine),
      stream("data-of-a-bomb", compressedZeros(100'000'000), kFine),
      stream("data-of-a-large-bomb", compressedZeros(800'000'000), kBroken),
      stream("filter-5", compressed(rows(64, 192, 5)), kBroken),
      stream("filter-255", compressed(rows(64, 192, '\xFF')), kBroken),
      row("data-with-wrong-checksum", kBroken,
          [] { return header({}) + changed(pixelData(usualRows()), 12, 1) + kEnd; }),
      row("data-a-byte-a-chunk", kFine, [zlib] { return header({}) + inParts(zlib, 1) + kEnd; }),
      row("two-hundred-thousand-empty-chunks", kFine,
          [zlib] { return header({}) + repeated(200'000, pngChunk("IDAT", {})) + pngChunk("IDAT", zlib) + kEnd; }),
      row("data-interrupted", kBroken,
          [zlib] {
            return header({}) + pngChunk("IDAT", zlib.substr(0, 20)) + pngChunk("tEXt", std::string("a\0b", 3)) +
                   pngChunk("IDAT", zlib.substr(20)) + kEnd;
          }),
      row("data-behind-the-end", kBroken, [] { return header({}) + kEnd + pixelData(usualRows()); }),

      row(
          "flat-of-16-megapixels", "4000x4000, 4000x4000, whole", [] { return flat({.width = 4000, .height = 4000}); },
          160),
      row(
          "flat-and-interlaced", "3000x3000, damaged, damaged",
          [] { return flat({.width = 3000, .height = 3000, .interlacing = 1}); }, 120),
      row("bomb-of-400-megapixels", kTooCostly, [] { return flat({.width = 20'000, .height = 20'000}); }),
      row("bomb-of-deep-colours", kTooCostly, [] { return flat({.width = 12'000, .height = 12'000, .depth = 16}); }),
      row("bomb-that-is-interlaced", kTooCostly,
          [] { return flat({.width = 17'000, .height = 17'000, .colour = kGray, .interlacing = 1}); }),
      row("bomb-of-one-bit", kTooCostly,
          [] { return flat({.width = 40'000, .height = 40'000, .depth = 1, .colour = kGray}); }),

      row(
          "text-of-eight-megabytes", kFine,
          [] { return usual(pngChunk("tEXt", std::string("k\0", 2) + std::string(8'000'000, 'a'))); }, 48),
      row("text-of-twenty-megabytes", kTooCostly,
          [] { return usual(pngChunk("tEXt", std::string("k\0", 2) + std::string(20'000'000, 'a'))); }),
      row(
          "texts-of-seven-gigabytes", kFine,
          [] {
            const std::string text = compressedZeros(7'900'000);
            return usual(repeated(30, pngChunk("zTXt", std::string("k\0\0", 3) + text)));
          },
          48),
      row(
          "texts-behind-the-data", kFine,
          [] {
            const std::string text = compressedZeros(7'900'000);
            return usual({}, repeated(30, pngChunk("zTXt", std::string("k\0\0", 3) + text)));
          },
          48),
      row(
          "international-texts", kFine,
          [] {
            const std::string text = compressedZeros(7'900'000);
            return usual(repeated(30, pngChunk("iTXt", std::string("k\0\1\0\0\0", 6) + text)));
          },
          48),
      row("hundred-thousand-texts", kFine,
          [] { return usual(repeated(100'000, pngChunk("tEXt", std::string("k\0v", 3)))); }),
      row(
          "palettes-suggested", kFine,
          [] { return usual(repeated(200, pngChunk("sPLT", std::string("k\0\x10", 3) + std::string(30'000, '\1')))); },
          48),
      row("profile-is-a-bomb", kFine,
          [] { return usual(pngChunk("iCCP", std::string("k\0\0", 3) + compressedZeros(80'000'000))); }),
      row("profile-of-no-colours", kFine,
          [] { return usual(pngChunk("iCCP", std::string("k\0\0", 3) + compressed(std::string(3000, 'p')))); }),
      row("profile-cut", kFine, [] { return usual(pngChunk("iCCP", "no end of its name")); }),
      row("gamma-of-nothing", kFine, [] { return usual(pngChunk("gAMA", bigEndian32(0))); }),
      row("gamma-largest", kFine, [] { return usual(pngChunk("gAMA", bigEndian32(0x7FFFFFFF))); }),
      row("colours-that-are-one", kFine, [] { return usual(pngChunk("cHRM", std::string(32, '\0'))); }),
      row("colours-beyond-sight", kFine, [] { return usual(pngChunk("cHRM", std::string(32, '\x7F'))); }),
      row("resolution-largest", kFine,
          [] { return usual(pngChunk("pHYs", bigEndian32(0xFFFFFFFF) + bigEndian32(0xFFFFFFFF) + '\1')); }),
      row("place-largest", kFine,
          [] { return usual(pngChunk("oFFs", bigEndian32(0x80000000) + bigEndian32(0x7FFFFFFF) + '\1')); }),

      row("orientation-0", kFine, [] { return usual(camera(8, 1, 0)); }),
      row("orientation-9", kFine, [] { return usual(camera(8, 1, 9)); }),
      row("orientation-65535", kFine, [] { return usual(camera(8, 1, 65535)); }),
      row("orientation-6", kFine, [] { return usual(camera(8, 1, 6)); }),
      row("directory-in-itself", kFine, [] { return usual(camera(0, 1, 6)); }),
      row("directory-beyond-the-end", kFine, [] { return usual(camera(0xFFFFFFF0, 1, 6)); }),
      row("directory-of-65535-entries", kFine, [] { return usual(camera(8, 65535, 6)); }),
      row("two-megabytes-of-camera-data", kFine,
          [] { return usual(pngChunk("eXIf", "MM" + std::string(2'000'000, '\0'))); }),

      row("three-thousand-frames", kFine,
          [] {
            std::string frames;
            for (uint32_t i = 0; i < 3000; ++i) {
              frames +=
                  pngChunk("fcTL", bigEndian32(2 * i) + bigEndian32(64) + bigEndian32(64) + std::string(14, '\0'));
              frames += pngChunk("fdAT", bigEndian32(2 * i + 1) + compressed(usualRows()));
            }
            return usual(pngChunk("acTL", bigEndian32(3000) + bigEndian32(0)), frames);
          }),
      row("much-behind-the-end", kTooCostly, [] { return usual() + std::string(20'000'000, 'x'); }),

      sparse("sparse-data", kNone, int64_t{1} << 30,
             [] { return header({.width = 16'000, .height = 16'000}) + bigEndian32((1 << 30) - 200) + "IDAT"; }),
      sparse("sparse-text", kNone, int64_t{1} << 30, [] { return header({}) + bigEndian32((1 << 30) - 200) + "tEXt"; }),
      sparse("sparse-behind-the-end", kNone, int64_t{1} << 30, [] { return usual(); }),
      sparse("sparse-of-a-terabyte", kNone, int64_t{1} << 40, [] { return usual(); }),
      sparse("sparse-and-incompressible", kNone, int64_t{200} << 20,
             [] { return header({.width = 8'000, .height = 8'000}) + bigEndian32(200 << 20) + "IDAT"; }),
  };
}

}  // namespace quillmere::testing
