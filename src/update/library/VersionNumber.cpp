#include "update/library/VersionNumber.h"

#include <QtCore/QList>
#include <algorithm>

namespace quillmere {

std::optional<VersionNumber> VersionNumber::read(const QString& text) {
  constexpr qsizetype kMostDigits = 9;
  const auto parts = QStringView(text).split(QLatin1Char('.'));
  VersionNumber version;
  if (parts.size() > static_cast<qsizetype>(version.parts_.size())) return std::nullopt;
  size_t index = 0;
  for (const QStringView part : parts) {
    const bool isNumber =
        std::all_of(part.begin(), part.end(), [](QChar c) { return c.unicode() >= '0' && c.unicode() <= '9'; });
    if (part.isEmpty() || part.size() > kMostDigits || !isNumber) return std::nullopt;
    version.parts_.at(index++) = part.toUInt();
  }
  return version;
}

QString VersionNumber::display() const {
  QString text = QStringLiteral("%1.%2.%3").arg(parts_[0]).arg(parts_[1]).arg(parts_[2]);
  if (parts_[3] != 0) text += QStringLiteral(".%1").arg(parts_[3]);
  return text;
}

}  // namespace quillmere
