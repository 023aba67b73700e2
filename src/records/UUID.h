#pragma once

#include <QtCore/QHash>
#include <QtCore/QUuid>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace quillmere {

using UUID = QUuid;

struct UUIDHash {
  size_t operator()(const UUID& id) const { return qHash(id, 0); }
};
using UUIDSet = std::unordered_set<UUID, UUIDHash>;
template <typename T>
using UUIDMap = std::unordered_map<UUID, T, UUIDHash>;

/// Upper-case canonical text: 8-4-4-4-12 hexadecimal digits.
std::string uuidText(const UUID& id);
/// Reads the canonical text in either case; nothing else is a UUID.
std::optional<UUID> uuidFromText(std::string_view text);

}  // namespace quillmere
