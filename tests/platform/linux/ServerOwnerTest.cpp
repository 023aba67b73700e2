#include "platform/linux/ServerOwner.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <functional>

#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

/// Listens as another user until it goes.
class Stranger {
 public:
  /// `make` gives a socket that listens, and its port.
  Stranger(uid_t user, const std::function<std::pair<int, uint16_t>()>& make) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    child_ = ::fork();
    if (child_ == 0) {
      const bool isOther = ::setresuid(user, user, user) == 0;
      const auto [descriptor, number] = make();
      const uint16_t told = isOther && descriptor >= 0 ? number : 0;
      const bool isTold = ::write(ends[1], &told, sizeof told) == sizeof told;
      if (isTold) ::pause();
      ::_exit(0);
    }
    EXPECT_EQ(::read(ends[0], &port, sizeof port), static_cast<ssize_t>(sizeof port));
    ::close(ends[0]);
    ::close(ends[1]);
  }
  ~Stranger() {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }
  uint16_t port = 0;

 private:
  pid_t child_ = -1;
};

std::pair<int, uint16_t> listenAt(in_addr_t host) {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(host);
  socklen_t length = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(descriptor, plain, length) != 0 || ::listen(descriptor, 4) != 0) return {-1, 0};
  ::getsockname(descriptor, plain, &length);
  return {descriptor, ntohs(address.sin_port)};
}

std::pair<int, uint16_t> listenAtVersion6(const in6_addr& host) {
  const int descriptor = ::socket(AF_INET6, SOCK_STREAM, 0);
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_addr = host;
  socklen_t length = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(descriptor, plain, length) != 0 || ::listen(descriptor, 4) != 0) return {-1, 0};
  ::getsockname(descriptor, plain, &length);
  return {descriptor, ntohs(address.sin6_port)};
}

std::pair<int, uint16_t> listenAtFile(const std::string& path) {
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::copy(path.begin(), path.end(), address.sun_path);
  const bool isListening =
      ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && ::listen(descriptor, 4) == 0;
  return {isListening ? descriptor : -1, 1};
}

bool isServerTrusted(const LocalServerAddress& address) {
  const ServerListener listener = serverListener(address);
  return listener.isKnown && !listener.foreign;
}

constexpr uid_t kService = 998;
constexpr uid_t kOtherPerson = 4242;

class ServerOwnerTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(::geteuid(), 0u) << "only root can be several users: run the tests as root"; }
  static bool hasVersion6() { return std::filesystem::exists("/proc/net/if_inet6"); }
};

TEST_F(ServerOwnerTest, OursAndThatOfAServiceAreTrustedAndAnotherPersonsIsNot) {
  for (const auto& [user, isTrusted] : {std::pair{0u, true}, {kService, true}, {kOtherPerson, false}}) {
    for (const in_addr_t host : {INADDR_LOOPBACK, INADDR_ANY}) {
      const Stranger server(user, [&] { return listenAt(host); });
      ASSERT_NE(server.port, 0);
      const auto address = LocalServerAddress::loopback(server.port);
      EXPECT_EQ(ownersOf(address), std::vector<uid_t>{user});
      EXPECT_EQ(isServerTrusted(address), isTrusted) << user;
    }
  }
}

TEST_F(ServerOwnerTest, ThatHoldsForVersion6Too) {
  for (const in6_addr& host : {in6addr_loopback, in6addr_any}) {
    const Stranger server(kOtherPerson, [&] { return listenAtVersion6(host); });
    ASSERT_EQ(server.port != 0, hasVersion6());
    if (!hasVersion6()) return;
    const auto address = LocalServerAddress::parse(QStringLiteral("[::1]:%1").arg(server.port), 1);
    EXPECT_EQ(ownersOf(*address), std::vector<uid_t>{kOtherPerson});
    EXPECT_FALSE(isServerTrusted(*address));
  }
  const Stranger all(kOtherPerson, [] { return listenAtVersion6(in6addr_any); });
  EXPECT_FALSE(isServerTrusted(LocalServerAddress::loopback(all.port))) << "it listens at version 4 as well";
}

TEST_F(ServerOwnerTest, OfASocketFileWhoeverListensCounts) {
  const testing::TemporaryFolder folder;
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  for (const auto& [user, isTrusted] : {std::pair{0u, true}, {kService, true}, {kOtherPerson, false}}) {
    const std::string path = folder.file("socket" + std::to_string(user)).path();
    const Stranger server(user, [&] { return listenAtFile(path); });
    ASSERT_NE(server.port, 0);
    const auto address = LocalServerAddress::parse(QString::fromStdString("unix:" + path), 1);
    EXPECT_EQ(ownersOf(*address), std::vector<uid_t>{user});
    EXPECT_EQ(isServerTrusted(*address), isTrusted) << user;
  }
}

TEST_F(ServerOwnerTest, AForeignOneIsToldByAccountAndAddress) {
  const Stranger server(kOtherPerson, [] { return listenAt(INADDR_LOOPBACK); });
  const auto foreign = serverListener(LocalServerAddress::loopback(server.port)).foreign;
  ASSERT_TRUE(foreign);
  const QString place = QStringLiteral("127.0.0.1:%1").arg(server.port);
  EXPECT_EQ(foreign->owner, QStringLiteral("4242")) << "an account without a name";
  EXPECT_EQ(foreign->address, place);
  EXPECT_EQ(foreign->key, QStringLiteral("4242@") + place);

  constexpr uid_t kNobody = 65534;
  const Stranger named(kNobody, [] { return listenAt(INADDR_LOOPBACK); });
  EXPECT_EQ(serverListener(LocalServerAddress::loopback(named.port)).foreign->owner, QStringLiteral("nobody"));
}

TEST_F(ServerOwnerTest, WhereNobodyListensNobodyIsTrusted) {
  uint16_t port = 0;
  {
    port = Stranger(0, [] { return listenAt(INADDR_LOOPBACK); }).port;
  }
  EXPECT_FALSE(isServerTrusted(LocalServerAddress::loopback(port)));
  EXPECT_FALSE(isServerTrusted(*LocalServerAddress::parse(QStringLiteral("unix:/nowhere/socket"), 1)));
}

TEST(ListenersTest, AddressesOfVersion6AreToldApart) {
  const std::string table =
      "  sl  local_address remote_address st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
      "   0: 00000000000000000000000001000000:2CAA 00000000000000000000000000000000:0000 0A 0:0 00:0 0  1001  0 1\n"
      "   1: 0000000000000000FFFF00000100007F:2CAA 00000000000000000000000000000000:0000 0A 0:0 00:0 0  1002  0 2\n";
  EXPECT_EQ(listenersIn(table, {"00000000000000000000000001000000"}, 0x2CAA), std::vector<uid_t>{1001});
  EXPECT_EQ(listenersIn(table, {"0000000000000000FFFF00000100007F"}, 0x2CAA), std::vector<uid_t>{1002});
}

TEST(ListenersTest, OnlyThoseThatListenAtTheAddressAndPortCount) {
  const std::string table =
      "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
      "   0: 0100007F:2CAA 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1001        0 1 1 0\n"
      "   1: 0100007F:2CAA 0100007F:9999 01 00000000:00000000 00:00000000 00000000  1002        0 2 1 0\n"
      "   2: 0200007F:2CAA 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1003        0 3 1 0\n"
      "   3: 00000000:2CAA 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1004        0 4 1 0\n"
      "   4: 0100007F:2CAB 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1005        0 5 1 0\n"
      "   5: 0100007F:2CAA 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1001        0 6 1 0\n"
      "nonsense\n";
  EXPECT_EQ(listenersIn(table, {"0100007F", "00000000"}, 0x2CAA), (std::vector<uid_t>{1001, 1004}));
  EXPECT_TRUE(listenersIn("", {"0100007F"}, 0x2CAA).empty());
}

}  // namespace
}  // namespace quillmere
