#pragma once

#include <sys/types.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {

/// A socket that waits for connections.
struct ListeningSocket {
  std::string address;  ///< as the text of /proc/net/tcp or tcp6 has it
  uid_t owner = 0;
};

/// Those of version 4 or 6 on the port. The kernel is asked for these alone: its tables as a text would have it go
/// through every connection of the machine first, which takes milliseconds. Nothing where it cannot be asked so.
std::optional<std::vector<ListeningSocket>> listeningSockets(int family, uint16_t port);

}  // namespace quillmere
