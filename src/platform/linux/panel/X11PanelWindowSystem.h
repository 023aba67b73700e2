#pragma once

#include <xcb/xcb.h>
#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <memory>
#include <vector>

#include "platform/linux/panel/X11FullScreenCompanion.h"
#include "platform/linux/panel/X11KeyboardHolder.h"
#include "popup/PanelWindowSystem.h"

namespace quillmere {

class X11Display;

/// The popup on X11, by the properties and messages that hold on the usual window managers. On any other platform of
/// Qt it does nothing. The window's outline is its business too: it follows a compositor that comes or goes.
class X11PanelWindowSystem final : public PanelWindowSystem, private QAbstractNativeEventFilter {
 public:
  X11PanelWindowSystem();
  ~X11PanelWindowSystem() override;

  void prepare(QWindow& window) override;
  void finish(QWindow& window) override;
  void setAcceptsKeyboard(QWindow& window, bool accepts) override;
  void setClickableArea(QWindow& window, const QRect& area) override;
  bool isCompositing() const override;
  quintptr activeWindow() const override;
  void activate(quintptr window) override;
  void lookForRoom() override;
  QRect availableGeometry(const QScreen& screen) const override;

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void follow(QWindow& window);
  void setManaged(QWindow& window, bool isManaged);
  void followKeyboard();
  void hear(const xcb_property_notify_event_t& event);
  void look();
  void outline();
  std::vector<QRect> availableGeometries() const;

  std::unique_ptr<X11Display> display_;  // none where there is no X server
  std::unique_ptr<X11FullScreenCompanion> companion_;
  std::unique_ptr<X11KeyboardHolder> keyboardHolder_;
  QPointer<QWindow> panel_;
  QRect card_;                     // in the window's points
  std::vector<QRect> workspaces_;  // of a sway session, when last asked
  std::vector<QRect> available_;   // of the screens, when last looked at
  bool isCompositing_ = true;      // when last looked at
  bool isManaged_ = true;          // by the window manager
  bool isLookPosted_ = false;
  QObject context_;
};

}  // namespace quillmere
