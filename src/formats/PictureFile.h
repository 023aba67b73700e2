#pragma once

#include <sys/types.h>
#include <optional>
#include <string>

#include "formats/PictureBudget.h"
#include "foundation/FileURL.h"
#include "foundation/Result.h"

namespace quillmere {

/// A regular file, opened to be read as a picture: as little of it as is needed. What becomes of its name meanwhile
/// changes nothing.
class PictureFile {
 public:
  /// A link put in a picture's place would have another file read, and sent to where pictures go: it isn't followed.
  explicit PictureFile(const FileURL& url);
  /// One that somebody has open, whose it stays.
  explicit PictureFile(int descriptor);
  ~PictureFile();
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }
  int64_t size() const { return size_; }
  int descriptor() const { return descriptor_; }
  /// At most so many bytes from `offset` on; fewer at the end.
  std::string bytes(int64_t offset, int64_t count) const;
  /// From its first byte to its last; fails as unreadable.
  Result<std::string, PictureError> all() const;
  /// Whether most of it was never written: room that was kept for a file to come, or a size and nothing else. What the
  /// disk has no bytes for is no picture, and takes as long to read as if it had.
  bool isMostlyHoles() const;

 private:
  void take(int descriptor);

  int descriptor_ = -1;
  bool isOwn_ = true;
  int64_t size_ = 0;
};

}  // namespace quillmere
