#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"

namespace quillmere::testing {

/// A kind of system call. The forms of one call count as one: `open` is also openat, open64 and creat.
enum class Call {
  access,
  changeDates,
  changeMode,
  close,
  copyRange,
  flush,  ///< fsync and fdatasync
  ioctl,
  link,
  listAttributes,
  listFolder,  ///< opendir and fdopendir
  makeFolder,
  open,
  read,
  readAttribute,
  readFolder,
  readLink,
  removeFolder,
  rename,
  resolvePath,  ///< realpath
  seek,
  status,
  truncate,
  unlink,
  volumeStatus,
  write,
  writeAttribute,
};
std::string nameOf(Call call);

/// Makes chosen system calls of this process fail, fall short or end the process, in our code and in the libraries
/// alike. The executable that links `fault_calls` defines the libc functions that work on files; they forward to libc.
///
/// Only calls on paths and descriptors below one folder count, so that nothing of the framework is hit. Calls that libc
/// makes for itself are not seen: `realpath` is one call, not one per link. One object at a time; any thread may call.
class FaultyCalls {
 public:
  struct Made {
    Call call;
    std::string path;
  };
  enum class Moment { before, after };
  /// What a process exits with that was ended at a call.
  static constexpr int kEnded = 86;

  /// Counts the calls below `folder` from here on; all of them work until told otherwise.
  explicit FaultyCalls(const FileURL& folder);
  FaultyCalls(const FaultyCalls&) = delete;
  FaultyCalls& operator=(const FaultyCalls&) = delete;
  /// Everything works again.
  ~FaultyCalls();

  // Numbers count from 1, over the calls since this object was made. A call fails once; the next like it works. A
  // failed `close` has closed, as on Linux.

  /// The call with this number, of whatever kind.
  void fail(size_t number, int error);
  /// The `nth` call of this kind.
  void failOnly(Call call, size_t nth, int error);
  /// Every call of this kind on a path that ends so.
  void failEvery(Call call, int error, std::string pathEnd = {});
  /// Every call of this kind on a path that ends so does its deed and then says that it failed, as a server may.
  void refuseAfterTheDeed(Call call, int error, std::string pathEnd);
  /// The call with this number transfers half of what it was asked to. Only a read, write or copy can.
  void shorten(size_t number);
  /// Ends the process right before or right after the call, as a crash would: nothing is flushed or cleaned up.
  void endProcess(size_t number, Moment moment);

  std::vector<Made> made() const;
};

/// The calls that `operation` makes below `folder`.
std::vector<FaultyCalls::Made> callsMade(const FileURL& folder, const std::function<void()>& operation);

}  // namespace quillmere::testing
