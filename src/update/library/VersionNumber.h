#pragma once

#include <QtCore/QString>
#include <array>
#include <compare>
#include <optional>

namespace quillmere {

/// One to four whole numbers with dots between them; what is not written is 0.
class VersionNumber {
 public:
  /// None for any other text, signs, blanks and numbers of more than nine digits included.
  static std::optional<VersionNumber> read(const QString& text);

  auto operator<=>(const VersionNumber&) const = default;
  /// At least three numbers.
  QString display() const;

 private:
  std::array<uint32_t, 4> parts_{};
};

}  // namespace quillmere
