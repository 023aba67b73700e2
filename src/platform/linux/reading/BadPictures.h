#pragma once

#include <sys/stat.h>
#include <cstdint>
#include <list>
#include <mutex>
#include <tuple>

namespace quillmere {

/// The pictures that ended their reader, or kept it busy longer than anybody waits. Twice is enough: such a one is not
/// read again until it changes. Any thread.
class BadPictures {
 public:
  static constexpr int kEnough = 2;

  /// A file as it is now.
  using File = std::tuple<uint64_t, uint64_t, int64_t, int64_t, int64_t, int64_t, int64_t>;
  static File fileOf(const struct stat& status);

  bool isBad(const File& file) const;
  void note(const File& file);

 private:
  /// Of those that were noted last.
  static constexpr size_t kMost = 1024;
  struct Entry {
    File file;
    int times = 0;
  };
  mutable std::mutex mutex_;
  std::list<Entry> entries_;
};

}  // namespace quillmere
