#include "platform/linux/passing/PacketSocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <array>
#include <cerrno>
#include <cstring>

namespace quillmere {
namespace {

using ControlSpace = std::array<char, CMSG_SPACE(PacketSocket::kMostDescriptors * sizeof(int))>;

}  // namespace

std::optional<PacketSocket::Pair> PacketSocket::pair() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return std::nullopt;
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return Pair{PacketSocket(Descriptor(ends[0])), PacketSocket(Descriptor(ends[1]))};
}

bool PacketSocket::sendBytes(const void* bytes, size_t size, const int* descriptors, size_t count) {
  if (count > kMostDescriptors) return false;
  iovec part{const_cast<void*>(bytes), size};
  alignas(cmsghdr) ControlSpace control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  if (count > 0) {
    message.msg_control = control.data();
    message.msg_controllen = CMSG_SPACE(count * sizeof(int));
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(count * sizeof(int));
    std::memcpy(CMSG_DATA(header), descriptors, count * sizeof(int));
  }
  ssize_t sent = 0;
  do {
    sent = ::sendmsg(end_.number(), &message, MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  return sent == static_cast<ssize_t>(size);
}

/// All descriptors that come are kept, and so closed by whoever refuses them.
bool PacketSocket::receiveBytes(void* bytes, size_t size, std::vector<Descriptor>& descriptors) {
  descriptors.clear();
  iovec part{bytes, size};
  alignas(cmsghdr) ControlSpace control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  ssize_t received = 0;
  do {
    received = ::recvmsg(end_.number(), &message, MSG_CMSG_CLOEXEC);
  } while (received < 0 && errno == EINTR);
  if (received < 0) return false;
  for (cmsghdr* header = CMSG_FIRSTHDR(&message); header; header = CMSG_NXTHDR(&message, header)) {
    if (header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS) continue;
    for (size_t at = 0; CMSG_LEN(at + sizeof(int)) <= header->cmsg_len; at += sizeof(int)) {
      int number = -1;
      std::memcpy(&number, CMSG_DATA(header) + at, sizeof number);
      descriptors.emplace_back(number);
    }
  }
  const bool isCut = (message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) != 0;
  return received == static_cast<ssize_t>(size) && !isCut;
}

}  // namespace quillmere
