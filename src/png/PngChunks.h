#pragma once

#include <QtCore/QByteArray>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "records/PictureFormat.h"

namespace quillmere {

/// One chunk of a PNG; all texts are views into the file's bytes.
struct PngChunk {
  std::string_view type;  ///< four letters
  std::string_view data;
  std::string_view whole;  ///< with its length, type and checksum

  /// Whether its checksum is right.
  bool isIntact() const;
};

inline const std::string_view kPngSignature = traits(PictureFormat::png).signature.bytes;

/// Goes through the chunks of a PNG in their order.
class PngChunks {
 public:
  explicit PngChunks(std::string_view file);
  /// None at the end, and where what follows is no whole chunk.
  std::optional<PngChunk> next();
  /// What stands behind the last whole one.
  std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
};

/// A chunk with its length and checksum.
std::string encodedPngChunk(std::string_view type, std::string_view data);
/// The same at the end of a file. Nothing else takes memory where `file` has reserved `kPngChunkFrame` bytes besides
/// the data.
void appendPngChunk(QByteArray& file, std::string_view type, std::string_view data);
inline constexpr qsizetype kPngChunkFrame = 12;

/// The number in the first four bytes, as PNG and JPEG have it: most significant first.
uint32_t bigEndian32(std::string_view bytes);

}  // namespace quillmere
