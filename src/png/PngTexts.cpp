#include "png/PngTexts.h"

#include <libdeflate.h>
#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "png/PngChunks.h"

namespace quillmere {
namespace {

/// A file may promise any number of texts of any length.
constexpr size_t kMostTexts = 64;
constexpr size_t kLongestText = 16 * 1024;

std::optional<std::string> inflated(std::string_view data) {
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
      libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
  if (!decompressor) return std::nullopt;
  std::string text(kLongestText, '\0');
  size_t length = 0;
  const auto result =
      libdeflate_zlib_decompress(decompressor.get(), data.data(), data.size(), text.data(), text.size(), &length);
  if (result != LIBDEFLATE_SUCCESS) return std::nullopt;
  text.resize(length);
  return text;
}

/// What stands behind the keyword and its NUL.
std::optional<std::string> textIn(std::string_view type, std::string_view rest) {
  if (type == "tEXt") return rest.size() <= kLongestText ? std::optional(std::string(rest)) : std::nullopt;
  constexpr char kDeflate = 0;
  if (rest.empty() || rest.front() != kDeflate) return std::nullopt;
  return inflated(rest.substr(1));
}

}  // namespace

PngTexts readPngTexts(std::string_view file) {
  PngTexts texts;
  PngChunks chunks(file);
  while (const auto chunk = chunks.next()) {
    if (texts.size() == kMostTexts) break;
    if (chunk->type != "tEXt" && chunk->type != "zTXt") continue;
    const auto end = chunk->data.find('\0');
    if (end == std::string_view::npos || texts.contains(chunk->data.substr(0, end)) || !chunk->isIntact()) continue;
    if (auto text = textIn(chunk->type, chunk->data.substr(end + 1))) {
      texts.emplace(chunk->data.substr(0, end), *std::move(text));
    }
  }
  return texts;
}

std::string withoutPngTexts(std::string_view file) {
  constexpr std::array<std::string_view, 9> kOfThePicture{"cHRM", "gAMA", "iCCP", "pHYs", "sRGB",
                                                          "tRNS", "sBIT", "bKGD", "oFFs"};
  constexpr char kLowerCase = 0x20;
  // In the place of others, for their order matters.
  static const std::string kOther = encodedPngChunk("qmOt", {});
  std::string result(file.substr(0, kPngSignature.size()));
  result.reserve(file.size() + kOther.size());
  PngChunks chunks(file);
  bool isOtherLast = false;
  while (const auto chunk = chunks.next()) {
    const bool isCritical = (chunk->type.front() & kLowerCase) == 0;
    const bool isOther =
        !isCritical && std::find(kOfThePicture.begin(), kOfThePicture.end(), chunk->type) == kOfThePicture.end();
    if (!isOther) result += chunk->whole;
    if (isOther && !isOtherLast) result += kOther;
    isOtherLast = isOther;
    if (chunk->type == "IEND") return result;
  }
  // What isn't whole, but for a text: a reader takes memory for as much as it says.
  constexpr size_t kType = 4;
  const std::string_view rest = chunks.rest();
  if (rest.size() > kType && (rest[kType] & kLowerCase) == 0) result += rest;
  return result;
}

std::string withPngTexts(std::string_view file, const PngTexts& texts) {
  PngChunks chunks(file);
  const auto header = chunks.next();
  if (!header) return std::string(file);
  const size_t headEnd = kPngSignature.size() + header->whole.size();
  std::string result(file.substr(0, headEnd));
  for (const auto& [keyword, text] : texts) {
    result += encodedPngChunk("tEXt", keyword + std::string(1, '\0') + text);
  }
  result += file.substr(headEnd);
  return result;
}

}  // namespace quillmere
