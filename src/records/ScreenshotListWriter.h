#pragma once

#include <cstdint>
#include <string>

#include "foundation/FileURL.h"
#include "records/ScreenshotList.h"

namespace quillmere {

/// Writes the list in one piece: into a temporary file beside it, flushed, renamed over it, the folder flushed. After a
/// crash or a power cut the old or the new list stands there whole. A list that is a symbolic link stays one. It is
/// dated by when its records were taken: what has come since is not in it, however long the disk was waited for.
///
/// Records that did not change since the last save are copied, by the kernel where it can, out of that save's own file,
/// which the writer keeps open with the records that it was made of; a list that another process has touched since is
/// written anew from memory.
class ScreenshotListWriter {
 public:
  ScreenshotListWriter() = default;
  ScreenshotListWriter(const ScreenshotListWriter&) = delete;
  ScreenshotListWriter& operator=(const ScreenshotListWriter&) = delete;
  ~ScreenshotListWriter();

  /// False when anything failed. The file is then as it was, unless the folder's flush alone failed. Any thread, one at
  /// a time.
  bool save(const ScreenshotList::Snapshot& records, const FileURL& file);
  bool save(const ScreenshotList& list, const FileURL& file) { return save(list.snapshot(), file); }
  /// Lets go of the records that the save before the last one has left. On the list's thread.
  void forgetPrevious() { previous_ = {}; }
  /// How many records the last save encoded; for inspection.
  size_t encodedCount() const { return encodedCount_; }

 private:
  struct Signature {
    int64_t size = -1;
    int64_t modified = 0;
    int64_t changed = 0;  ///< unlike `modified` nobody can put it back after an edit
    bool operator==(const Signature&) const = default;
  };
  /// Bytes of a list file, from its start. A length of 0 means that the record has to be encoded.
  struct Range {
    int64_t offset = 0;
    int64_t length = 0;
  };
  using Records = std::vector<const ScreenshotItem*>;
  static Signature signatureOf(int descriptor);
  bool canCopyFromLast() const;
  std::vector<Range> rangesInLast(const Records& records) const;
  /// Replaces the `ranges` of the records in the last file, where they are taken from, by those in the new one.
  bool write(const Records& records, int descriptor, std::vector<Range>& ranges);

  int last_ = -1;  ///< the file of the last save, open for reading
  Signature lastSignature_;
  ScreenshotList::Snapshot lastSaved_;  ///< so that what is at an address of `lastRecords_` is what was saved
  ScreenshotList::Snapshot previous_;
  Records lastRecords_;
  std::vector<Range> lastRanges_;
  size_t encodedCount_ = 0;
};

}  // namespace quillmere
