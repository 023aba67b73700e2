#pragma once

#include "foundation/UserDefaults.h"
#include "model/LoginItem.h"
#include "platform/linux/common/BusService.h"
#include "platform/linux/login/LoginSettings.h"

namespace quillmere {

/// The login item by the desktop's portal for what runs in a sandbox, whose autostart folder is another one than the
/// session's (https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.Background.html). The portal
/// asks the person or decides by itself, sooner or later, and cannot be asked what it once decided: that is kept in the
/// settings. Main thread, which never waits for it.
class PortalLoginItem final : public LoginItemService {
 public:
  static constexpr const char* kKey = "quillmere.login-item";

  PortalLoginItem(const QDBusConnection& bus, UserDefaults& defaults, LoginSettings settings);

  LoginItemStatus status() const override;
  std::optional<QString> registerItem() override { return request(true); }
  std::optional<QString> unregisterItem() override { return request(false); }
  void openSystemSettings() override { settings_.open(); }
  bool hasSystemSettings() const override { return settings_.exist(); }

 private:
  std::optional<QString> request(bool opensAtLogin);
  void take(int request, bool opensAtLogin, const QVariantList& arguments);
  void fail(int request);
  void keep(LoginItemStatus status);
  void lose();

  QString busName_;  ///< ours, as it stands in the paths of requests
  UserDefaults& defaults_;
  LoginSettings settings_;
  int request_ = 0;  ///< the latest; answers to others come too late
  /// While one is under way, what the last that was answered led to: it is kept again if this one fails.
  std::optional<LoginItemStatus> before_;
  BusService* running_ = nullptr;
  BusService portal_;
};

}  // namespace quillmere
