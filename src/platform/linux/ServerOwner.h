#pragma once

#include <sys/types.h>
#include <optional>
#include <string>
#include <vector>

#include "analysis/LiveLanguageModel.h"

namespace quillmere {

/// Who listens there, each once: several may where one listens at an address and another at all of them. None when
/// nobody does or it cannot be told.
std::vector<uid_t> ownersOf(const LocalServerAddress& address);

/// Foreign is what anybody listens at but this person or an account of the system's services (below 1000): any other
/// person of this machine could have opened the port to see what is sent to it.
ServerListener serverListener(const LocalServerAddress& address);

/// The owners of what listens on the port at one of these addresses, both as the text of /proc/net/tcp or tcp6 has
/// them.
std::vector<uid_t> listenersIn(const std::string& table, const std::vector<std::string>& addresses, uint16_t port);

}  // namespace quillmere
