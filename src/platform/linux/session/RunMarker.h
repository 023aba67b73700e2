#pragma once

#include <optional>

#include "foundation/Date.h"
#include "foundation/FileURL.h"

namespace quillmere {

/// A file that stands while a run lasts, locked by its process. One left behind tells the next run that this one ended
/// without notice, and roughly when.
class RunMarker {
 public:
  /// `listFile` is written at every decision: its date tells when the lost run was last alive.
  RunMarker(FileURL file, const FileURL& listFile, Date now);
  RunMarker(const RunMarker&) = delete;
  RunMarker& operator=(const RunMarker&) = delete;
  ~RunMarker();

  /// Another process runs with the same files.
  bool isTaken() const { return isTaken_; }
  /// A moment at which the previous run was still alive; none after a clean end.
  const std::optional<Date>& interruptedSince() const { return interruptedSince_; }

 private:
  FileURL file_;
  int descriptor_ = -1;
  bool isTaken_ = false;
  std::optional<Date> interruptedSince_;
};

}  // namespace quillmere
