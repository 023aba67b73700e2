#pragma once

#include <xcb/xcb.h>
#include <QtCore/QAbstractNativeEventFilter>
#include <functional>

namespace quillmere {

/// The tray of an X server, whose panel embeds windows: it is there while its selection has an owner.
class X11Tray final : public QAbstractNativeEventFilter {
 public:
  /// Never there where Qt runs on another platform.
  explicit X11Tray(std::function<void()> changed);
  ~X11Tray() override;

  bool isThere() const { return manager_ != XCB_WINDOW_NONE; }

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void findManager();

  std::function<void()> changed_;
  xcb_connection_t* display_ = nullptr;
  xcb_atom_t selection_ = XCB_ATOM_NONE;
  xcb_atom_t announcement_ = XCB_ATOM_NONE;
  xcb_window_t manager_ = XCB_WINDOW_NONE;
};

}  // namespace quillmere
