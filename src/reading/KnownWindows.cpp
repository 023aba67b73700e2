#include "reading/KnownWindows.h"

#include <QtCore/QList>
#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

/// No desktop shows as many; a list from elsewhere may say anything.
constexpr qsizetype kMostWindows = 512;
constexpr int kLongestSide = 1 << 20;

std::optional<int> numberIn(const QByteArray& text, int least, int most) {
  bool isNumber = false;
  const int number = text.toInt(&isNumber);
  return isNumber && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

std::optional<QSize> sizeIn(const QByteArray& text) {
  const auto sides = text.split('x');
  if (sides.size() != 2) return std::nullopt;
  const auto width = numberIn(sides[0], 1, kLongestSide);
  const auto height = numberIn(sides[1], 1, kLongestSide);
  return width && height ? std::optional(QSize(*width, *height)) : std::nullopt;
}

std::optional<QRect> rectIn(const QByteArray& text, const QSize& picture) {
  const auto parts = text.split('+');
  const auto size = sizeIn(parts.front());
  if (parts.size() != 3 || !size) return std::nullopt;
  const auto left = numberIn(parts[1], 0, kLongestSide);
  const auto top = numberIn(parts[2], 0, kLongestSide);
  if (!left || !top) return std::nullopt;
  const QRect rect(QPoint(*left, *top), *size);
  return QRect(QPoint(), picture).contains(rect) ? std::optional(rect) : std::nullopt;
}

std::optional<WindowShadowMargin> shadowIn(const QByteArray& text) {
  const auto parts = text.split(',');
  if (parts.size() != 4) return std::nullopt;
  std::array<double, 4> sides{};
  for (size_t i = 0; i < sides.size(); ++i) {
    const auto side = numberIn(parts[static_cast<qsizetype>(i)], 0, kLongestSide);
    if (!side) return std::nullopt;
    sides[i] = *side;
  }
  const bool isThere = std::any_of(sides.begin(), sides.end(), [](double side) { return side > 0; });
  return WindowShadowMargin{sides[0], sides[1], sides[2], sides[3],
                            isThere ? WindowShadowMargin::Source::measured : WindowShadowMargin::Source::none};
}

QByteArray number(double value) {
  return QByteArray::number(static_cast<qint64>(std::llround(value)));
}

QByteArray coded(const QSize& size) {
  return number(size.width()) + 'x' + number(size.height());
}

}  // namespace

QByteArray KnownWindows::coded() const {
  const std::string_view name = codedValue(kind);
  QByteArray text(name.data(), static_cast<qsizetype>(name.size()));
  text += ' ' + quillmere::coded(size) + ' ' + QByteArray::number(checksum, 16);
  for (size_t i = 0; i < windows.size(); ++i) {
    const Window& window = windows[i];
    text += ' ';
    if (front == i) text += '^';
    if (window.isCovered) text += '_';
    text += quillmere::coded(window.frame.size()) + '+' + number(window.frame.x()) + '+' + number(window.frame.y());
    if (const auto& shadow = window.shadow) {
      text += '/' + number(shadow->left) + ',' + number(shadow->top) + ',' + number(shadow->right) + ',' +
              number(shadow->bottom);
    }
  }
  return text;
}

std::optional<KnownWindows> KnownWindows::fromCoded(const QByteArray& text) {
  constexpr qsizetype kHead = 3;
  const auto words = text.split(' ');
  if (words.size() < kHead || words.size() > kHead + kMostWindows) return std::nullopt;
  const auto kind = captureKind({words[0].constData(), static_cast<size_t>(words[0].size())});
  const auto size = sizeIn(words[1]);
  bool isNumber = false;
  const uint32_t checksum = words[2].toUInt(&isNumber, 16);
  if (!kind || !size || !isNumber) return std::nullopt;
  KnownWindows known{.kind = *kind, .size = *size, .checksum = checksum, .windows = {}, .front = std::nullopt};
  for (QByteArray word : words.mid(kHead)) {
    Window window;
    if (word.startsWith('^')) {
      if (known.front) return std::nullopt;
      known.front = known.windows.size();
      word.remove(0, 1);
    }
    if (word.startsWith('_')) {
      window.isCovered = true;
      word.remove(0, 1);
    }
    const auto parts = word.split('/');
    const auto frame = rectIn(parts[0], *size);
    if (!frame || parts.size() > 2) return std::nullopt;
    window.frame = *frame;
    if (parts.size() == 2 && !(window.shadow = shadowIn(parts[1]))) return std::nullopt;
    known.windows.push_back(window);
  }
  return known;
}

}  // namespace quillmere
