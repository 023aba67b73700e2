#include "controls/Contrast.h"

#include <cmath>
#include <utility>

namespace quillmere {
namespace {

double linear(float channel) {
  constexpr double kLinearBelow = 0.04045;
  return channel <= kLinearBelow ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

}  // namespace

double relativeLuminance(const QColor& color) {
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrastRatio(const QColor& one, const QColor& other) {
  constexpr double kFlare = 0.05;
  double darker = relativeLuminance(one);
  double lighter = relativeLuminance(other);
  if (darker > lighter) std::swap(darker, lighter);
  return (lighter + kFlare) / (darker + kFlare);
}

QColor mixed(const QColor& from, const QColor& to, double amount) {
  const auto channel = [amount](int start, int end) { return qRound(start + (end - start) * amount); };
  return {channel(from.red(), to.red()), channel(from.green(), to.green()), channel(from.blue(), to.blue())};
}

QColor painted(const QColor& color, const QColor& ground) {
  return mixed(ground, color, color.alphaF());
}

QColor standingOut(const QColor& color, const QColor& ground, double ratio, const QColor& end) {
  constexpr int kSteps = 50;
  for (int step = 0; step < kSteps; ++step) {
    const QColor candidate = mixed(color, end, static_cast<double>(step) / kSteps);
    if (contrastRatio(candidate, ground) >= ratio) return candidate;
  }
  return end;
}

}  // namespace quillmere
