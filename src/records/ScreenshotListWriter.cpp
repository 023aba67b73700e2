#include "records/ScreenshotListWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cstdio>
#include <filesystem>

#include "foundation/FileCopy.h"
#include "records/ScreenshotCoding.h"

namespace quillmere {
namespace {

constexpr size_t kBufferSize = 1 << 20;
constexpr std::string_view kTemporarySuffix = ".saving";

/// Gathers small pieces into large writes and counts the position.
class BufferedWriter {
 public:
  explicit BufferedWriter(int descriptor) : descriptor_(descriptor) {
    buffer_.reserve(kBufferSize + (kBufferSize >> 2));
  }
  std::string& buffer() { return buffer_; }
  int64_t position() const { return flushed_ + static_cast<int64_t>(buffer_.size()); }
  bool flushIfLarge() { return buffer_.size() < kBufferSize || flush(); }
  bool flush() {
    if (!writeAll(descriptor_, buffer_.data(), buffer_.size())) return false;
    flushed_ += static_cast<int64_t>(buffer_.size());
    buffer_.clear();
    return true;
  }
  bool copy(int from, int64_t offset, int64_t length) {
    if (!flush() || !copyBytes(from, offset, length, descriptor_)) return false;
    flushed_ += length;
    return true;
  }

 private:
  int descriptor_;
  std::string buffer_;
  int64_t flushed_ = 0;
};

}  // namespace

ScreenshotListWriter::~ScreenshotListWriter() {
  if (last_ >= 0) ::close(last_);
}

bool ScreenshotListWriter::save(const ScreenshotList::Snapshot& snapshot, const FileURL& file) {
  const FileURL target = file.resolvingSymlinks().value_or(file);
  std::error_code ignored;  // a folder that cannot be made shows when the file is opened
  std::filesystem::create_directories(target.parent().path(), ignored);

  const FileURL temporary = target.parent().appending(target.lastPathComponent().append(kTemporarySuffix));
  ::unlink(temporary.c_str());
  constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  const auto descriptor = static_cast<int>(TEMP_FAILURE_RETRY(::open(temporary.c_str(), kFlags, 0600)));
  if (descriptor < 0) return false;

  Records records = snapshot.newestFirst();
  std::vector<Range> ranges;
  const auto writeFromLast = [&] {
    ranges = rangesInLast(records);
    return write(records, descriptor, ranges);
  };
  const auto writeFromMemory = [&] {
    ranges.assign(records.size(), {});
    return TEMP_FAILURE_RETRY(::ftruncate(descriptor, 0)) == 0 && ::lseek(descriptor, 0, SEEK_SET) == 0 &&
           write(records, descriptor, ranges);
  };
  // The last save's file may have become unreadable; the records themselves are still here.
  const bool isEncoded = (canCopyFromLast() && writeFromLast()) || writeFromMemory();
  const timespec dates[2] = {snapshot.taken(), snapshot.taken()};
  ::futimens(descriptor, dates);  // a list with the date of its writing is better than none
  const bool isWritten = isEncoded && TEMP_FAILURE_RETRY(::fsync(descriptor)) == 0 &&
                         TEMP_FAILURE_RETRY(::rename(temporary.c_str(), target.c_str())) == 0;
  if (!isWritten) {
    ::close(descriptor);
    ::unlink(temporary.c_str());
    return false;
  }
  if (last_ >= 0) ::close(last_);
  last_ = descriptor;
  lastSignature_ = signatureOf(descriptor);
  previous_ = std::exchange(lastSaved_, snapshot);
  lastRecords_ = std::move(records);
  lastRanges_ = std::move(ranges);
  return flushFolder(target.parent());
}

ScreenshotListWriter::Signature ScreenshotListWriter::signatureOf(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return {};
  const auto nanoseconds = [](const timespec& moment) {
    return moment.tv_sec * int64_t{1'000'000'000} + moment.tv_nsec;
  };
  return {status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

bool ScreenshotListWriter::canCopyFromLast() const {
  return last_ >= 0 && signatureOf(last_) == lastSignature_;
}

/// A record that did not change is still the same object, and the order of those that stay never changes: newcomers
/// stand in front. So one walk from the oldest on finds them all.
std::vector<ScreenshotListWriter::Range> ScreenshotListWriter::rangesInLast(const Records& records) const {
  std::vector<Range> ranges(records.size());
  size_t last = lastRecords_.size();
  for (size_t i = records.size(); i > 0 && last > 0; --i) {
    const ScreenshotItem* record = records[i - 1];
    while (last > 0 && lastRecords_[last - 1] != record && lastRecords_[last - 1]->id != record->id) --last;
    if (last == 0) break;
    --last;
    if (lastRecords_[last] == record) ranges[i - 1] = lastRanges_[last];
  }
  return ranges;
}

bool ScreenshotListWriter::write(const Records& records, int descriptor, std::vector<Range>& ranges) {
  encodedCount_ = 0;
  BufferedWriter out(descriptor);
  out.buffer() += kListHead;
  for (size_t i = 0; i < records.size();) {
    if (i > 0) out.buffer().push_back(',');
    const Range first = ranges[i];
    if (first.length == 0) {
      const int64_t start = out.position();
      appendEncoded(out.buffer(), *records[i]);
      ranges[i] = {start, out.position() - start};
      ++encodedCount_;
      ++i;
      if (!out.flushIfLarge()) return false;
      continue;
    }
    // Neighbours that stood side by side go in one copy, the commas between them included.
    int64_t end = first.offset;
    const int64_t shift = out.position() - first.offset;
    while (i < records.size()) {
      const Range next = ranges[i];
      if (next.length == 0 || (end != first.offset && next.offset != end + 1)) break;
      ranges[i] = {next.offset + shift, next.length};
      end = next.offset + next.length;
      ++i;
    }
    if (!out.copy(last_, first.offset, end - first.offset)) return false;
  }
  out.buffer() += kListTail;
  return out.flush();
}

}  // namespace quillmere
