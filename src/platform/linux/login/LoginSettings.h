#pragma once

#include <QtCore/QStringList>
#include <functional>
#include <optional>

namespace quillmere {

/// The desktop's own settings of what starts at login.
class LoginSettings {
 public:
  struct World {
    QStringList desktops;  ///< the names in XDG_CURRENT_DESKTOP
    std::function<bool(const QString& program)> isInstalled;
    std::function<void(const QStringList& command)> start;

    static World live();
  };
  explicit LoginSettings(World world) : world_(std::move(world)) {}

  bool exist() const { return command().has_value(); }
  void open() const;
  /// Of this desktop, or where it is none that is known here, of any that is installed.
  std::optional<QStringList> command() const;

 private:
  World world_;
};

}  // namespace quillmere
