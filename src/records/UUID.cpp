#include "records/UUID.h"

#include <cctype>

namespace quillmere {

std::string uuidText(const UUID& id) {
  return id.toByteArray(QUuid::WithoutBraces).toUpper().toStdString();
}

std::optional<UUID> uuidFromText(std::string_view text) {
  constexpr size_t kLength = 36;
  if (text.size() != kLength) return std::nullopt;
  for (size_t i = 0; i < kLength; ++i) {
    const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
    if (isDash ? text[i] != '-' : !std::isxdigit(static_cast<unsigned char>(text[i]))) return std::nullopt;
  }
  return QUuid::fromString(QLatin1String(text.data(), static_cast<qsizetype>(text.size())));
}

}  // namespace quillmere
