#include "platform/linux/files/CloudFiles.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <array>
#include <cstring>
#include <string>

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

constexpr const char* kHydratingProgram = "user.nextcloud.hydrate_exec";
constexpr const char* kHydrationState = "user.openvfs.state";

bool hasAttribute(const FileURL& url, const char* name) {
  return ::lgetxattr(url.c_str(), name, nullptr, 0) >= 0;
}

std::string attribute(const FileURL& url, const char* name) {
  std::array<char, 64> value{};
  const ssize_t length = ::lgetxattr(url.c_str(), name, value.data(), value.size());
  return length > 0 ? std::string(value.data(), static_cast<size_t>(length)) : std::string();
}

/// Some clients take the whole file away and leave one of a single byte under a longer name.
FileURL placeholderBeside(const FileURL& url) {
  return url.parent().appending(url.lastPathComponent() + ".nextcloud");
}

bool hasPlaceholderBeside(const FileURL& url) {
  if (fileStatus(url)) return false;
  const auto placeholder = fileStatus(placeholderBeside(url));
  return placeholder && placeholder->isRegular() && placeholder->size == 1;
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

/// The client listens on a socket and takes one command a line.
bool askClient(const FileURL& file) {
  const char* runtime = ::getenv("XDG_RUNTIME_DIR");
  if (!runtime || file.path().find_first_of("\n\x1e") != std::string::npos) return false;
  const std::string path = std::string(runtime) + "/Nextcloud/socket";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket < 0) return false;
  // A client that hangs must not keep a thread.
  const timeval limit{.tv_sec = 5, .tv_usec = 0};
  ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  const std::string command = "MAKE_AVAILABLE_LOCALLY:" + file.path() + "\n";
  const bool isTaken =
      ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      ::send(socket, command.data(), command.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(command.size());
  ::close(socket);
  return isTaken;
}

/// Where a file system brings the data when it is read, the kernel is asked to read ahead: it does not wait.
bool readAhead(const FileURL& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return false;
  const bool isTaken = ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_WILLNEED) == 0;
  ::close(descriptor);
  return isTaken;
}

}  // namespace

bool CloudFiles::isDataless(const FileURL& url) {
  return hasAttribute(url, kHydratingProgram) || attribute(url, kHydrationState) == "dehydrated" ||
         hasPlaceholderBeside(url);
}

bool CloudFiles::isSynced(const FileURL& folder) {
  for (FileURL at = folder; at.path().size() > 1; at = at.parent()) {
    if (hasAttribute(at, kHydrationState) || holdsSyncJournal(at)) return true;
  }
  return false;
}

bool CloudFiles::startDownload(const FileURL& url) {
  if (hasPlaceholderBeside(url)) return askClient(placeholderBeside(url));
  if (hasAttribute(url, kHydrationState)) return readAhead(url);
  return fileExists(url) && askClient(url);
}

}  // namespace quillmere
