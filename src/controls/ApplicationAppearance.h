#pragma once

#include <QtGui/QPalette>
#include <optional>

#include "controls/Appearance.h"

namespace quillmere {

class AppearanceStyle;

/// The look of all windows of the application, which must be made before the first of them.
class ApplicationAppearance {
 public:
  ApplicationAppearance();
  void show(const Appearance& appearance);

 private:
  AppearanceStyle* style_;  ///< the application's own
  std::optional<QPalette> themed_;
  QFont font_;  ///< where the desktop tells none
  std::optional<Appearance> shown_;
};

}  // namespace quillmere
