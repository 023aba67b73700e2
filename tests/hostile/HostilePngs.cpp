#include <array>

#include "hostile/HostilePictures.h"
#include "hostile/PngParts.h"

// Truncated, with lengths that lie, with sizes and forms that there are not.
namespace quillmere::testing {
namespace {

using namespace png;

HostilePicture row(const std::string& name, const std::string& outcome, std::function<std::string()> bytes) {
  return {"png-" + name, std::move(bytes), outcome};
}

/// The usual one, up to `place`, which counts from the end where it is negative.
HostilePicture truncated(const std::string& where, int place, const std::string& outcome) {
  return row("ends-" + where, outcome, [place] {
    const std::string whole = usual(pngChunk("pHYs", bigEndian32(2835) + bigEndian32(2835) + '\1'));
    return whole.substr(0, place >= 0 ? static_cast<size_t>(place) : whole.size() - static_cast<size_t>(-place));
  });
}

HostilePicture form(const std::string& name, const Form& form, const std::string& outcome) {
  return row(name, outcome, [form] { return header(form) + pixelData(usualRows()) + kEnd; });
}

/// A chunk that says another length than it has.
std::string lying(std::string_view type, uint32_t length, const std::string& content) {
  std::string chunk = pngChunk(type, content);
  return chunk.replace(0, 4, bigEndian32(length));
}

/// The rows of the seven passes.
std::string interlacedRows(size_t width, size_t height, size_t bits) {
  constexpr std::array<std::array<size_t, 4>, 7> kPasses{
      {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}};
  std::string result;
  for (const auto& [x, y, stepX, stepY] : kPasses) {
    if (width <= x || height <= y) continue;
    const size_t columns = (width - x + stepX - 1) / stepX;
    result += rows(static_cast<uint32_t>((height - y + stepY - 1) / stepY), (columns * bits + 7) / 8);
  }
  return result;
}

/// 56 lines each way, from side to side: each four of them may be a window.
std::string linedPicture() {
  constexpr uint32_t kSide = 1800;
  constexpr uint32_t kStep = 32;
  std::string result;
  for (uint32_t y = 0; y < kSide; ++y) {
    result += '\0';
    for (uint32_t x = 0; x < kSide; ++x) result += x % kStep == kStep / 2 || y % kStep == kStep / 2 ? '\0' : '\xFF';
  }
  return header({.width = kSide, .height = kSide, .colour = kGray}) + pixelData(result) + kEnd;
}

std::string palette(size_t colours) {
  return pngChunk("PLTE", std::string(3 * colours, '\x30'));
}

}  // namespace

std::vector<HostilePicture> hostilePngs() {
  const std::string kNone = "none, damaged, damaged";
  const std::string kHeaderOnly = "64x64, damaged, damaged";
  const std::string kFine = "64x64, 64x64, whole";
  return {
      truncated("in-signature", 5, "none, noPicture, noPicture"),
      truncated("behind-signature", 8, kNone),
      truncated("in-length-of-header", 10, kNone),
      truncated("in-header", 20, kNone),
      truncated("in-checksum-of-header", 31, kNone),
      truncated("behind-header", 33, kHeaderOnly),
      truncated("in-resolution", 45, kHeaderOnly),
      truncated("before-data", 54, kHeaderOnly),
      truncated("in-length-of-data", 57, kHeaderOnly),
      truncated("in-data", 70, kHeaderOnly),
      truncated("before-checksum-of-data", -16, kHeaderOnly),
      truncated("behind-data", -12, kHeaderOnly),
      truncated("in-end", -6, kHeaderOnly),

      row("header-shorter", kNone, [] { return kPNGSignature + pngChunk("IHDR", headerData({}).substr(0, 12)); }),
      row("header-longer", kNone, [] { return kPNGSignature + pngChunk("IHDR", headerData({}) + '\0'); }),
      row("header-missing", kNone, [] { return kPNGSignature + pixelData(usualRows()) + kEnd; }),
      row("header-twice", kHeaderOnly, [] { return usual(pngChunk("IHDR", headerData({.width = 9000}))); }),
      row("header-twice-behind-data", kHeaderOnly, [] { return usual({}, pngChunk("IHDR", headerData({}))); }),
      row("header-with-wrong-checksum", kNone,
          [] {
            std::string file = usual();
            file[30] = static_cast<char>(file[30] ^ 1);
            return file;
          }),
      row("data-of-four-gigabytes", kHeaderOnly,
          [] { return header({}) + lying("IDAT", 0xFFFFFFFF, compressed(usualRows())) + kEnd; }),
      row("data-of-two-gigabytes", kHeaderOnly,
          [] { return header({}) + lying("IDAT", 0x7FFFFFFF, compressed(usualRows())) + kEnd; }),
      row("data-said-shorter", kHeaderOnly,
          [] { return header({}) + lying("IDAT", 10, compressed(usualRows())) + kEnd; }),
      row("data-said-empty", kHeaderOnly, [] { return header({}) + pngChunk("IDAT", {}) + kEnd; }),
      row("data-missing", kHeaderOnly, [] { return header({}) + kEnd; }),
      row("text-beyond-the-end", kHeaderOnly, [] { return usual(lying("tEXt", 0x10000000, "Software")); }),
      row("end-with-content", "64x64, 64x64, damaged",
          [] { return header({}) + pixelData(usualRows()) + pngChunk("IEND", "content"); }),
      row("critical-chunk-that-is-none", kHeaderOnly, [] { return usual(pngChunk("EVIL", "x")); }),
      row("chunk-without-letters", kHeaderOnly, [] { return usual(pngChunk(std::string_view("\0\1\2\3", 4), "x")); }),

      form("no-width", {.width = 0}, kNone),
      form("no-height", {.height = 0}, kNone),
      form("negative-width", {.width = 0x80000000}, kNone),
      form("all-sizes-largest", {.width = 0x7FFFFFFF, .height = 0x7FFFFFFF}, "none, tooCostly, tooCostly"),
      form("all-bits-of-sizes", {.width = 0xFFFFFFFF, .height = 0xFFFFFFFF}, kNone),
      form("a-pixel-too-wide", {.width = 1'000'001, .height = 1}, "none, tooCostly, tooCostly"),
      form("a-million-high", {.width = 1, .height = 1'000'000}, kNone),
      form("promises-more-than-it-holds", {.width = 60'000, .height = 4'000}, kNone),
      form("product-overflows-32-bits", {.width = 65'536, .height = 65'536}, kNone),
      form("wider-than-its-data", {.width = 65}, "65x64, damaged, damaged"),
      form("higher-than-its-data", {.height = 65}, "64x65, damaged, damaged"),
      form("lower-than-its-data", {.height = 32}, "64x32, 64x32, whole"),
      form("depth-0", {.depth = 0}, kNone),
      form("depth-3", {.depth = 3}, kNone),
      form("depth-255", {.depth = 255}, kNone),
      form("palette-of-16-bits", {.depth = 16, .colour = kPalette}, kNone),
      form("rgb-of-4-bits", {.depth = 4}, kNone),
      form("colour-1", {.colour = 1}, kNone),
      form("colour-5", {.colour = 5}, kNone),
      form("colour-7", {.colour = 7}, kNone),
      form("colour-255", {.colour = 255}, kNone),
      form("other-compression", {.compression = 1}, kHeaderOnly),
      form("other-filters", {.filtering = 1}, kHeaderOnly),
      form("other-interlacing", {.interlacing = 2}, kHeaderOnly),
      form("palette-missing", {.colour = kPalette}, kHeaderOnly),

      row("palette-empty", kHeaderOnly,
          [] { return header({.colour = kPalette}) + palette(0) + pixelData(rows(64, 64)) + kEnd; }),
      row("palette-of-257", kHeaderOnly,
          [] { return header({.colour = kPalette}) + palette(257) + pixelData(rows(64, 64)) + kEnd; }),
      row("palette-of-a-part", kHeaderOnly,
          [] { return header({.colour = kPalette}) + pngChunk("PLTE", "1234") + pixelData(rows(64, 64)) + kEnd; }),
      row("palette-out-of-range", kFine,
          [] { return header({.colour = kPalette}) + palette(2) + pixelData(rows(64, 64)) + kEnd; }),
      row("palette-twice", kHeaderOnly,
          [] { return header({.colour = kPalette}) + palette(80) + palette(80) + pixelData(rows(64, 64)) + kEnd; }),
      row("palette-behind-data", kHeaderOnly,
          [] { return header({.colour = kPalette}) + pixelData(rows(64, 64)) + palette(80) + kEnd; }),
      row("transparency-longer-than-palette", kFine,
          [] {
            return header({.colour = kPalette}) + palette(80) + pngChunk("tRNS", std::string(256, '\1')) +
                   pixelData(rows(64, 64)) + kEnd;
          }),
      row("transparency-of-rgba", kFine,
          [] {
            return header({.colour = kRgba}) + pngChunk("tRNS", std::string(6, '\0')) + pixelData(rows(64, 256)) + kEnd;
          }),
      row("deep", kFine, [] { return header({.depth = 16}) + pixelData(rows(64, 384)) + kEnd; }),
      row("deep-and-transparent", kFine,
          [] { return header({.depth = 16, .colour = kRgba}) + pixelData(rows(64, 512)) + kEnd; }),
      row("deep-and-gray", kFine,
          [] { return header({.depth = 16, .colour = kGray}) + pixelData(rows(64, 128)) + kEnd; }),
      row("deep-and-cut", kHeaderOnly, [] { return header({.depth = 16}) + pixelData(rows(64, 192)) + kEnd; }),
      row("interlaced", kFine,
          [] { return header({.interlacing = 1}) + pixelData(interlacedRows(64, 64, 24)) + kEnd; }),
      row("interlaced-and-deep", kFine,
          [] {
            return header({.depth = 16, .colour = kRgba, .interlacing = 1}) + pixelData(interlacedRows(64, 64, 64)) +
                   kEnd;
          }),
      row("interlaced-of-one-bit", "63x1, 63x1, whole",
          [] {
            return header({.width = 63, .height = 1, .depth = 1, .colour = kGray, .interlacing = 1}) +
                   pixelData(interlacedRows(63, 1, 1)) + kEnd;
          }),
      row("interlaced-of-one-pixel", "1x1, 1x1, whole",
          [] {
            return header({.width = 1, .height = 1, .interlacing = 1}) + pixelData(interlacedRows(1, 1, 24)) + kEnd;
          }),
      row("interlaced-and-cut", kHeaderOnly,
          [] { return header({.interlacing = 1}) + pixelData(interlacedRows(64, 64, 24).substr(0, 9000)) + kEnd; }),
      row("palette-of-one-bit-out-of-range", kFine,
          [] { return header({.depth = 1, .colour = kPalette}) + palette(1) + pixelData(rows(64, 8)) + kEnd; }),
      row("transparency-of-a-deep-colour", kFine,
          [] {
            return header({.depth = 16}) + pngChunk("tRNS", std::string(6, '\xFF')) + pixelData(rows(64, 384)) + kEnd;
          }),
      row("background-beyond-the-palette", kFine,
          [] {
            return header({.colour = kPalette}) + palette(80) + pngChunk("bKGD", "\xFF") + pixelData(rows(64, 64)) +
                   kEnd;
          }),
      row("hundred-thousand-chunks-that-nobody-knows", kFine,
          [] {
            std::string chunks;
            for (int i = 0; i < 100'000; ++i) chunks += pngChunk("zzZz", "x");
            return usual(chunks);
          }),
      row("profile-of-twenty-megabytes", "none, tooCostly, tooCostly",
          [] { return usual(pngChunk("iCCP", std::string("k\0\0", 3) + std::string(20'000'000, 'p'))); }),
      row("frames-beyond-its-sides", kFine,
          [] {
            return usual(pngChunk("acTL", bigEndian32(2) + bigEndian32(0)) +
                         pngChunk("fcTL", bigEndian32(0) + std::string(16, '\xFF') + std::string(6, '\0')));
          }),
      row("windows-everywhere", "1800x1800, 1800x1800, whole", [] { return linedPicture(); }),
      row("transparency-cut", kFine, [] { return usual(pngChunk("tRNS", "\1")); }),
  };
}

}  // namespace quillmere::testing
