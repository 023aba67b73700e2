#include "platform/linux/session/RunMarker.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

/// Longer than an arrival needs from its first byte to its record.
constexpr double kArrivalMargin = 5.0;
/// Between two runs, where the clock does not tell.
constexpr double kLongestGap = 86400.0;

}  // namespace

RunMarker::RunMarker(FileURL file, const FileURL& listFile, Date now) : file_(std::move(file)) {
  std::error_code ignored;
  std::filesystem::create_directories(file_.parent().path(), ignored);
  const auto left = fileStatus(file_);
  descriptor_ = ::open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor_ < 0) return;
  if (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    isTaken_ = errno == EWOULDBLOCK;
    return;
  }
  if (left) {
    Date alive = left->modified;
    if (const auto list = fileStatus(listFile)) alive = std::max(alive, list->modified);
    // The clock was set back since: what was captured then is older than the lost run by it.
    if (alive > now) alive = now + -kLongestGap;
    interruptedSince_ = alive + -kArrivalMargin;
  }
  ::futimens(descriptor_, nullptr);
  // After a power cut, too, it tells of this run.
  flushFolder(file_.parent());
}

RunMarker::~RunMarker() {
  if (descriptor_ < 0) return;
  if (!isTaken_) ::unlink(file_.c_str());
  ::close(descriptor_);
}

}  // namespace quillmere
