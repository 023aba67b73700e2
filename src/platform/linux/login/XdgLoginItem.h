#pragma once

#include "model/LoginItem.h"
#include "platform/linux/login/InstalledProgram.h"
#include "platform/linux/login/LoginSettings.h"

namespace quillmere {

/// Where autostart entries are.
struct AutostartPlaces {
  FileURL own;                  ///< the person's entry
  std::vector<FileURL> shared;  ///< those of all users, by precedence
  QStringList desktops;

  static AutostartPlaces live();
};

/// The login item as an autostart entry of the desktop. What is read is always the file as it is now, since the
/// desktop's own tools write it too. Main thread: the files are small, and at home.
class XdgLoginItem final : public LoginItemService {
 public:
  XdgLoginItem(AutostartPlaces places, ProgramPlaces programs, LoginSettings settings);

  LoginItemStatus status() const override;
  std::optional<QString> registerItem() override;
  std::optional<QString> unregisterItem() override;
  void openSystemSettings() override { settings_.open(); }
  bool hasSystemSettings() const override { return settings_.exist(); }

 private:
  std::optional<QString> write(const std::string& text) const;

  AutostartPlaces places_;
  ProgramPlaces programs_;
  LoginSettings settings_;
};

}  // namespace quillmere
