#include "records/ListParts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <future>
#include <iterator>
#include <string>

#include "foundation/LargeBuffer.h"
#include "records/ScreenshotCoding.h"

namespace quillmere {
namespace {

/// Below, another thread costs more than it takes over.
constexpr size_t kLongList = 4'000'000;
/// A quote inside a text has a backslash before it, so this is never part of one.
constexpr std::string_view kBetweenRecords = R"(},{"id":")";
constexpr size_t kComma = 1;  ///< where it stands in that

class OpenFile {
 public:
  explicit OpenFile(const FileURL& url) : descriptor_(::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  /// Of a regular file.
  std::optional<size_t> size() const {
    struct stat status {};
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<size_t>(status.st_size);
  }
  /// False where it ends before.
  bool read(size_t offset, char* to, size_t count) const {
    while (count > 0) {
      const ssize_t got = ::pread(descriptor_, to, count, static_cast<off_t>(offset));
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) return false;
      offset += static_cast<size_t>(got);
      to += got;
      count -= static_cast<size_t>(got);
    }
    return true;
  }

 private:
  int descriptor_;
};

using Records = std::optional<std::vector<ScreenshotItem>>;

/// Far more than any record.
constexpr size_t kMostRemainder = size_t{4} << 20;

Records decoded(char* part, size_t size, int64_t version) {
  auto list = decodeList(part, size);
  if (!list || list->dropped > 0 || list->version != version) return std::nullopt;
  return std::move(list->items);
}

}  // namespace

Records readInParts(const FileURL& url) {
  const OpenFile file(url);
  const auto size = file.size();
  if (!size || *size < kLongList) return std::nullopt;
  const size_t middle = *size / 2;

  // What stands in the second half before its first record is the end of the first half's last one.
  std::promise<std::optional<std::string>> remainder;
  auto rest = remainder.get_future();
  auto second = std::async(std::launch::async, [&file, &remainder, middle, end = *size]() -> Records {
    const size_t length = end - middle;
    const LargeBuffer buffer(length + kRoomBehindList);
    char* bytes = reinterpret_cast<char*>(buffer.data());
    const std::string_view part(bytes, bytes ? length : 0);
    const bool isRead = bytes && file.read(middle, bytes, length);
    const size_t between = isRead ? part.find(kBetweenRecords) : std::string_view::npos;
    if (between == std::string_view::npos || !part.ends_with(kListTail)) {
      remainder.set_value(std::nullopt);
      return std::nullopt;
    }
    const size_t comma = between + kComma;
    remainder.set_value(std::string(part.substr(0, comma)));
    // Without the envelope's brace what is left is a list of the oldest form.
    bytes[comma] = '[';
    return decoded(bytes + comma, length - comma - 1, 0);
  });

  const LargeBuffer buffer(middle + kMostRemainder + kListTail.size() + kRoomBehindList);
  char* bytes = reinterpret_cast<char*>(buffer.data());
  const bool isRead = bytes && file.read(0, bytes, middle);
  const auto end = rest.get();
  Records records;
  if (isRead && end && end->size() <= kMostRemainder && std::string_view(bytes, middle).starts_with(kListHead)) {
    const std::string last = *end + std::string(kListTail);
    std::memcpy(bytes + middle, last.data(), last.size());
    records = decoded(bytes, middle + last.size(), kListVersion);
  }
  auto others = second.get();
  if (!records || !others) return std::nullopt;
  records->reserve(records->size() + others->size());
  records->insert(records->end(), std::make_move_iterator(others->begin()), std::make_move_iterator(others->end()));
  return records;
}

}  // namespace quillmere
