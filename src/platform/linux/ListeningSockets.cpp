#include "platform/linux/ListeningSockets.h"

#include <arpa/inet.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <cstdio>
#include <cstring>

namespace quillmere {
namespace {

class Netlink {
 public:
  Netlink() : descriptor_(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG)) {}
  ~Netlink() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Netlink(const Netlink&) = delete;
  Netlink& operator=(const Netlink&) = delete;
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

struct Question {
  nlmsghdr head{};
  inet_diag_req_v2 body{};
};

Question questionFor(int family, uint16_t port) {
  Question question;
  question.head.nlmsg_len = sizeof question;
  question.head.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  question.head.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  question.body.sdiag_family = static_cast<uint8_t>(family);
  question.body.sdiag_protocol = IPPROTO_TCP;
  question.body.idiag_states = 1U << TCP_LISTEN;
  question.body.id.idiag_sport = htons(port);
  question.body.id.idiag_cookie[0] = question.body.id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
  return question;
}

/// The kernel prints the bytes of the network as words of this machine.
ListeningSocket socketOf(const inet_diag_msg& told, int family) {
  ListeningSocket found{{}, told.idiag_uid};
  for (int word = 0; word < (family == AF_INET6 ? 4 : 1); ++word) {
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%08X", told.id.idiag_src[word]);
    found.address += text.data();
  }
  return found;
}

}  // namespace

std::optional<std::vector<ListeningSocket>> listeningSockets(int family, uint16_t port) {
  const Netlink netlink;
  const Question question = questionFor(family, port);
  if (::send(netlink.descriptor(), &question, sizeof question, 0) != sizeof question) return std::nullopt;
  std::vector<ListeningSocket> found;
  alignas(nlmsghdr) std::array<char, 32768> answer{};
  // The kernel answers before it returns from being asked, so there is nothing to wait for.
  while (true) {
    const ssize_t size = ::recv(netlink.descriptor(), answer.data(), answer.size(), MSG_DONTWAIT);
    if (size <= 0) return std::nullopt;
    size_t place = 0;
    while (place + sizeof(nlmsghdr) <= static_cast<size_t>(size)) {
      nlmsghdr head;
      std::memcpy(&head, answer.data() + place, sizeof head);
      if (head.nlmsg_type == NLMSG_DONE) return found;
      inet_diag_msg told;
      const bool isWhole =
          head.nlmsg_len >= NLMSG_HDRLEN + sizeof told && place + head.nlmsg_len <= static_cast<size_t>(size);
      if (head.nlmsg_type != SOCK_DIAG_BY_FAMILY || !isWhole) return std::nullopt;
      std::memcpy(&told, answer.data() + place + NLMSG_HDRLEN, sizeof told);
      if (told.idiag_state == TCP_LISTEN && told.id.idiag_sport == htons(port)) found.push_back(socketOf(told, family));
      place += NLMSG_ALIGN(head.nlmsg_len);
    }
  }
}

}  // namespace quillmere
