#pragma once

#include <list>
#include <mutex>
#include <optional>

#include "foundation/FileStatus.h"
#include "reading/PictureError.h"

namespace quillmere {

/// The files that were no pictures when they were read last, so that none is read again before it changes: a file made
/// to be costly costs once. The latest ones. Any thread.
class FailedPictures {
 public:
  static constexpr size_t kMost = 512;

  /// Why it failed as it stands there now; none where it is to be read.
  std::optional<PictureError> find(const FileURL& url);
  /// `seen` is how it was before it was read. What may work another time is left out: a file that couldn't be read.
  void keep(const FileURL& url, const std::optional<FileStatus>& seen, PictureError error);

 private:
  struct Failure {
    FileURL url;
    FileStatus seen;
    PictureError error = PictureError::damaged;
  };
  std::mutex mutex_;
  std::list<Failure> failures_;  // latest first
};

}  // namespace quillmere
