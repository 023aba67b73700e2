#include "platform/linux/windows/LocalStream.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <cerrno>
#include <cstring>

namespace quillmere {
namespace {

constexpr timeval kLongestWait{.tv_sec = 2, .tv_usec = 0};

}  // namespace

std::optional<LocalStream> LocalStream::connectedTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path) return std::nullopt;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!socket) return std::nullopt;
  ::setsockopt(socket.number(), SOL_SOCKET, SO_SNDTIMEO, &kLongestWait, sizeof kLongestWait);
  ::setsockopt(socket.number(), SOL_SOCKET, SO_RCVTIMEO, &kLongestWait, sizeof kLongestWait);
  if (::connect(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return std::nullopt;
  return LocalStream(std::move(socket));
}

bool LocalStream::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

std::optional<std::string> LocalStream::receive(size_t count) const {
  std::string bytes(count, '\0');
  for (size_t done = 0; done < count;) {
    const ssize_t received = ::recv(socket_.number(), &bytes[done], count - done, 0);
    if (received < 0 && errno == EINTR) continue;
    if (received <= 0) return std::nullopt;
    done += static_cast<size_t>(received);
  }
  return bytes;
}

void LocalStream::hangUp() const {
  ::shutdown(socket_.number(), SHUT_RDWR);
}

}  // namespace quillmere
