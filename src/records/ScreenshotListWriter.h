#pragma once

#include <cstdint>
#include <string>

#include "foundation/FileURL.h"
#include "records/ScreenshotList.h"

namespace quillmere {

/// Writes the list in one piece: into a temporary file beside it, flushed, renamed over it, the folder flushed. After a
/// crash or a power cut the old or the new list stands there whole. A list that is a symbolic link stays one.
///
/// Records that did not change since the last save are copied, by the kernel where it can, out of that save's own file,
/// which the writer keeps open; a list that another process has touched since is written anew from memory.
class ScreenshotListWriter {
 public:
  ScreenshotListWriter() = default;
  ScreenshotListWriter(const ScreenshotListWriter&) = delete;
  ScreenshotListWriter& operator=(const ScreenshotListWriter&) = delete;
  ~ScreenshotListWriter();

  /// False when anything failed. The file is then as it was, unless the folder's flush alone failed.
  bool save(ScreenshotList& list, const FileURL& file);
  /// How many records the last save encoded; for inspection.
  size_t encodedCount() const { return encodedCount_; }

 private:
  struct Signature {
    int64_t size = -1;
    int64_t modified = 0;
    int64_t changed = 0;  ///< unlike `modified` nobody can put it back after an edit
    bool operator==(const Signature&) const = default;
  };
  static Signature signatureOf(int descriptor);
  bool canCopyFromLast() const;
  /// Where the records that did not change are taken from.
  enum class Source { lastFile, memory };
  bool write(const ScreenshotList& list, int descriptor, Source unchanged, std::vector<ScreenshotList::Range>& ranges);

  int last_ = -1;  ///< the file of the last save, open for reading
  Signature lastSignature_;
  size_t encodedCount_ = 0;
};

}  // namespace quillmere
