#pragma once

#include <functional>
#include <memory>

#include "controls/Appearance.h"

namespace quillmere {

/// The font of a description as GTK's settings have it: family, styles and size, "DejaVu Sans Bold 11".
std::optional<QFont> fontOf(const QString& description);

/// Follows GNOME's settings, which several desktops keep. Tells once within the constructor; nothing where their
/// schemas are not installed.
class GnomeAppearance {
 public:
  explicit GnomeAppearance(std::function<void(const Appearance&)> told);
  ~GnomeAppearance();

 private:
  class Schema;
  void tell() const;

  std::function<void(const Appearance&)> told_;
  std::unique_ptr<Schema> interface_;
  std::unique_ptr<Schema> accessibility_;
};

}  // namespace quillmere
