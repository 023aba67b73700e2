#include "platform/linux/CloudFiles.h"

#include <sys/xattr.h>
#include <array>
#include <string>

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

bool hasAttribute(const FileURL& url, const char* name) {
  return ::lgetxattr(url.c_str(), name, nullptr, 0) >= 0;
}

std::string attribute(const FileURL& url, const char* name) {
  std::array<char, 64> value{};
  const ssize_t length = ::lgetxattr(url.c_str(), name, value.data(), value.size());
  return length > 0 ? std::string(value.data(), static_cast<size_t>(length)) : std::string();
}

/// The client's own journal stands in the top folder of what it syncs.
bool holdsSyncJournal(const FileURL& folder) {
  bool found = false;
  listDirectory(folder, [&](int, const char* name, EntryKind) {
    const std::string_view entry(name);
    const bool isJournal = entry.starts_with(".sync_") || entry.starts_with("._sync_");
    found = found || (isJournal && entry.ends_with(".db"));
  });
  return found;
}

}  // namespace

bool CloudFiles::isDataless(const FileURL& url) {
  return hasAttribute(url, "user.nextcloud.hydrate_exec") || attribute(url, "user.openvfs.state") == "dehydrated";
}

bool CloudFiles::isSynced(const FileURL& folder) {
  for (FileURL at = folder; at.path().size() > 1; at = at.parent()) {
    if (hasAttribute(at, "user.openvfs.state") || holdsSyncJournal(at)) return true;
  }
  return false;
}

}  // namespace quillmere
