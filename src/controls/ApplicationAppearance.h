#pragma once

#include <QtGui/QPalette>
#include <functional>
#include <optional>

#include "controls/Appearance.h"

namespace quillmere {

class AppearanceStyle;

/// The look of all windows of the application, which must be made before the first of them.
class ApplicationAppearance {
 public:
  ApplicationAppearance();
  void show(const Appearance& appearance);
  /// How to tell whether translucent pixels show what lies below them; until then they do.
  void setCompositing(std::function<bool()> isCompositing);

 private:
  AppearanceStyle* style_;  ///< the application's own
  std::optional<QPalette> themed_;
  QFont font_;  ///< where the desktop tells none
  std::optional<Appearance> shown_;
};

}  // namespace quillmere
