#include "popup/CardShadow.h"

#include "popup/CardShape.h"

namespace quillmere {
namespace {

constexpr SoftShadow::Layer kContact{.opacity = 0.08, .offset = 1, .blur = 9};
constexpr SoftShadow::Layer kWide{.opacity = 0.22, .offset = 6, .blur = CardShadow::kReach - 6};

}  // namespace

CardShadow::CardShadow()
    : shadow_({CardShape::path, static_cast<int>(CardShape::kCornerReach)}, {kWide, kContact}, kReach) {}

}  // namespace quillmere
