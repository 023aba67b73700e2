#include "platform/linux/ServerOwner.h"

#include <pwd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <QtCore/QtEndian>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "platform/linux/ListeningSockets.h"

namespace quillmere {
namespace {

constexpr uid_t kFirstPerson = 1000;

std::string hex(uint32_t word) {
  char text[9];
  std::snprintf(text, sizeof text, "%08X", word);
  return text;
}

/// The kernel prints the bytes of the network as words of this machine.
std::string hexOfVersion4(const QHostAddress& host) {
  return hex(qToBigEndian(host.toIPv4Address()));
}

std::string hexOfVersion6(const QHostAddress& host) {
  const Q_IPV6ADDR bytes = host.toIPv6Address();
  std::string text;
  for (int i = 0; i < 16; i += 4) {
    uint32_t word = 0;
    std::memcpy(&word, bytes.c + i, sizeof word);
    text += hex(word);
  }
  return text;
}

std::string contents(const char* table) {
  std::ifstream file(table);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// Of what listens on the port at one of the addresses.
std::vector<uid_t> ownersAt(int family, const std::vector<std::string>& addresses, uint16_t port) {
  const auto sockets = listeningSockets(family, port);
  if (!sockets) {
    return listenersIn(contents(family == AF_INET6 ? "/proc/net/tcp6" : "/proc/net/tcp"), addresses, port);
  }
  std::vector<uid_t> owners;
  for (const ListeningSocket& socket : *sockets) {
    const bool isHere = std::find(addresses.begin(), addresses.end(), socket.address) != addresses.end();
    if (isHere && std::find(owners.begin(), owners.end(), socket.owner) == owners.end()) owners.push_back(socket.owner);
  }
  return owners;
}

std::vector<uid_t> ownersOf(const LocalServerAddress::Tcp& tcp) {
  const std::string anyVersion6(32, '0');
  if (tcp.host.protocol() == QAbstractSocket::IPv6Protocol) {
    return ownersAt(AF_INET6, {hexOfVersion6(tcp.host), anyVersion6}, tcp.port);
  }
  const std::string own = hexOfVersion4(tcp.host);
  auto owners = ownersAt(AF_INET, {own, "00000000"}, tcp.port);
  // What listens at all addresses of version 6 mostly does so at those of version 4.
  for (const uid_t owner : ownersAt(AF_INET6, {anyVersion6, "0000000000000000FFFF0000" + own}, tcp.port)) {
    owners.push_back(owner);
  }
  return owners;
}

std::vector<uid_t> ownersOf(const FileURL& socket) {
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (descriptor < 0) return {};
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::vector<uid_t> owners;
  if (socket.path().size() < sizeof address.sun_path) {
    std::memcpy(address.sun_path, socket.c_str(), socket.path().size());
    ucred peer{};
    socklen_t length = sizeof peer;
    // Tells who began to listen, also before the connection is accepted.
    if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0) {
      owners.push_back(peer.uid);
    }
  }
  ::close(descriptor);
  return owners;
}

QString accountName(uid_t user) {
  std::array<char, 4096> room{};
  passwd account{};
  passwd* found = nullptr;
  const int error = ::getpwuid_r(user, &account, room.data(), room.size(), &found);
  return error == 0 && found ? QString::fromLocal8Bit(found->pw_name) : QString::number(user);
}

}  // namespace

std::vector<uid_t> listenersIn(const std::string& table, const std::vector<std::string>& addresses, uint16_t port) {
  std::vector<uid_t> owners;
  std::istringstream lines(table);
  std::string line;
  std::getline(lines, line);  // the heads of the columns
  while (std::getline(lines, line)) {
    // sl local_address rem_address st tx_queue:rx_queue tr:tm->when retrnsmt uid ...
    std::istringstream fields(line);
    std::string number, local, remote, state, queues, timer, retransmits;
    uid_t owner = 0;
    if (!(fields >> number >> local >> remote >> state >> queues >> timer >> retransmits >> owner)) continue;
    constexpr std::string_view kListening = "0A";
    const auto colon = local.find(':');
    if (state != kListening || colon == std::string::npos) continue;
    if (std::stoul(local.substr(colon + 1), nullptr, 16) != port) continue;
    const bool isHere = std::find(addresses.begin(), addresses.end(), local.substr(0, colon)) != addresses.end();
    if (isHere && std::find(owners.begin(), owners.end(), owner) == owners.end()) owners.push_back(owner);
  }
  return owners;
}

std::vector<uid_t> ownersOf(const LocalServerAddress& address) {
  return address.tcp() ? ownersOf(*address.tcp()) : ownersOf(*address.socket());
}

ServerListener serverListener(const LocalServerAddress& address) {
  auto owners = ownersOf(address);
  ServerListener listener{!owners.empty(), std::nullopt};
  std::erase_if(owners, [](uid_t owner) { return owner == ::geteuid() || owner < kFirstPerson; });
  if (owners.empty()) return listener;
  QStringList names;
  QStringList numbers;
  for (const uid_t owner : owners) {
    names << accountName(owner);
    numbers << QString::number(owner);
  }
  const QString place = address.socket() ? address.socket()->displayPath() : QString::fromLatin1(address.hostHeader());
  listener.foreign = ForeignModelServer{names.join(QStringLiteral(", ")), place,
                                        numbers.join(QLatin1Char(',')) + QLatin1Char('@') + place};
  return listener;
}

}  // namespace quillmere
