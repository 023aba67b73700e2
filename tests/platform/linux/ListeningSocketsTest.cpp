#include "platform/linux/ListeningSockets.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillmere {
namespace {

/// Listens at this machine's own address for as long as it lives.
class Listener {
 public:
  Listener() : descriptor_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    EXPECT_EQ(::bind(descriptor_, reinterpret_cast<sockaddr*>(&address), length), 0);
    EXPECT_EQ(::listen(descriptor_, 4), 0);
    ::getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
  }
  ~Listener() { ::close(descriptor_); }
  uint16_t port = 0;

 private:
  int descriptor_;
};

TEST(ListeningSockets, OneIsFoundByItsPortWithAddressAndOwner) {
  const Listener listener;
  const Listener another;
  const auto found = listeningSockets(AF_INET, listener.port);
  ASSERT_TRUE(found);
  ASSERT_EQ(found->size(), 1u);
  EXPECT_EQ(found->front().address, "0100007F") << "as the kernel's table prints it";
  EXPECT_EQ(found->front().owner, ::geteuid());
}

TEST(ListeningSockets, OfTheOtherVersionItIsNone) {
  const Listener listener;
  const auto found = listeningSockets(AF_INET6, listener.port);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->empty());
}

TEST(ListeningSockets, AConnectionIsNoListener) {
  uint16_t port = 0;
  int client = ::socket(AF_INET, SOCK_STREAM, 0);
  {
    const Listener listener;
    port = listener.port;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    ASSERT_EQ(::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listeningSockets(AF_INET, port)->size(), 1u);
  }
  const auto found = listeningSockets(AF_INET, port);
  ::close(client);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->empty());
}

}  // namespace
}  // namespace quillmere
