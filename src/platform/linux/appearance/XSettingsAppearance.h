#pragma once

#include <xcb/xcb.h>
#include <QtCore/QAbstractNativeEventFilter>
#include <functional>

#include "controls/Appearance.h"

namespace quillmere {

/// Follows the settings that the desktop publishes for X11 programs; nothing on another window system. Tells once
/// within the constructor.
class XSettingsAppearance final : public QAbstractNativeEventFilter {
 public:
  explicit XSettingsAppearance(std::function<void(const Appearance&)> told);
  ~XSettingsAppearance() override;

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

 private:
  void findManager();
  void read();

  std::function<void(const Appearance&)> told_;
  xcb_connection_t* display_ = nullptr;
  xcb_atom_t selection_ = XCB_ATOM_NONE;
  xcb_atom_t property_ = XCB_ATOM_NONE;
  xcb_atom_t announcement_ = XCB_ATOM_NONE;
  xcb_window_t manager_ = XCB_WINDOW_NONE;
};

}  // namespace quillmere
