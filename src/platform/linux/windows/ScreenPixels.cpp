#include "platform/linux/windows/ScreenPixels.h"

#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

constexpr double kMostScale = 16;

}  // namespace

std::optional<ScreenPixels> ScreenPixels::of(const std::vector<ScreenOutput>& outputs) {
  ScreenPixels screen;
  for (const ScreenOutput& output : outputs) {
    if (output.place.isEmpty() || output.scale <= 0 || output.scale > kMostScale) continue;
    screen.scale_ = std::max(screen.scale_, output.scale);
    screen.outputs_.push_back(output.place);
    screen.all_ |= output.place;
  }
  return screen.outputs_.empty() ? std::nullopt : std::optional(std::move(screen));
}

QRect ScreenPixels::pixels(const QRectF& points) const {
  const QRectF placed = points.translated(-all_.topLeft());
  const auto edge = [&](double place) { return static_cast<int>(std::lround(place * scale_)); };
  return {QPoint(edge(placed.left()), edge(placed.top())), QPoint(edge(placed.right()) - 1, edge(placed.bottom()) - 1)};
}

WindowStack ScreenPixels::emptyStack() const {
  WindowStack stack;
  stack.scale = scale_;
  stack.root = pixels(all_).size();
  for (const QRectF& output : outputs_) stack.monitors.push_back(pixels(output));
  return stack;
}

}  // namespace quillmere
