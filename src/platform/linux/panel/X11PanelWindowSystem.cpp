#include "platform/linux/panel/X11PanelWindowSystem.h"

#include <QtGui/private/qtx11extras_p.h>
#include <xcb/shape.h>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <algorithm>
#include <array>

#include "platform/linux/panel/SwayWorkspaces.h"
#include "platform/linux/panel/X11CardShape.h"
#include "platform/linux/panel/X11Display.h"
#include "platform/linux/panel/X11Struts.h"

namespace quillmere {
namespace {

/// On every desktop.
constexpr uint32_t kAllDesktops = 0xFFFFFFFF;
/// "Source indication" of a pager or task bar: window managers honour it where they refuse an application's own wish.
constexpr uint32_t kSourcePager = 2;
/// The bit of an event's type that says another client sent it.
constexpr uint8_t kSent = 0x80;

xcb_window_t identifier(const QWindow& window) {
  return static_cast<xcb_window_t>(window.winId());
}

}  // namespace

X11PanelWindowSystem::X11PanelWindowSystem() : display_(X11Display::ofApplication()) {
  if (!display_) return;
  companion_ = std::make_unique<X11FullScreenCompanion>(*display_);
  keyboardHolder_ = std::make_unique<X11KeyboardHolder>(*display_);
  keyboardHolder_->onCloseRequested = [this] {
    if (panel_) panel_->close();
  };
  QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &context_, [this] {
    // Posted: between two windows there is none.
    QMetaObject::invokeMethod(
        &context_, [this] { followKeyboard(); }, Qt::QueuedConnection);
  });
  isCompositing_ = isCompositing();
  qGuiApp->installNativeEventFilter(this);
}

X11PanelWindowSystem::~X11PanelWindowSystem() = default;

void X11PanelWindowSystem::prepare(QWindow& window) {
  if (!display_) return;
  isCompositing_ = isCompositing();
  const xcb_window_t id = identifier(window);
  // Beside Wayland, a window manager that does not know this property gives the keyboard to each window that comes up,
  // and puts it in the middle. What it does not manage stands where it was put, and above full screen.
  setManaged(window, !display_->isBesideWayland() || display_->windowManagerKnows("_NET_WM_USER_TIME"));
  // The first kind that a window manager knows counts. The first lies over full-screen windows, and calls for no one's
  // attention, as a utility window without the keyboard does in some task bars.
  display_->setAtoms(id, "_NET_WM_WINDOW_TYPE",
                     {"_KDE_NET_WM_WINDOW_TYPE_CRITICAL_NOTIFICATION", "_NET_WM_WINDOW_TYPE_NOTIFICATION",
                      "_NET_WM_WINDOW_TYPE_UTILITY", "_NET_WM_WINDOW_TYPE_NORMAL"});
  display_->setAtoms(id, "_NET_WM_STATE",
                     {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"});
  // Before every showing: the window manager takes it away when the window is hidden.
  display_->setNumber(id, "_NET_WM_DESKTOP", kAllDesktops);
}

/// By the hint alone: with a change of its own flag Qt writes another kind of window, and a window manager that looks
/// at that moment puts the popup below full screen and leaves it there. For Qt the window never accepts the keyboard,
/// so that a click never asks for it.
void X11PanelWindowSystem::setAcceptsKeyboard(QWindow& window, bool accepts) {
  if (display_) display_->setInputHint(identifier(window), accepts);
}

void X11PanelWindowSystem::follow(QWindow& window) {
  if (panel_ == &window) return;
  panel_ = &window;
  QObject::connect(&window, &QWindow::visibleChanged, &context_, [this] { followKeyboard(); });
}

void X11PanelWindowSystem::setManaged(QWindow& window, bool isManaged) {
  isManaged_ = isManaged;
  const uint32_t bypass = isManaged ? 0 : 1;
  xcb_change_window_attributes(display_->connection(), identifier(window), XCB_CW_OVERRIDE_REDIRECT, &bypass);
}

/// The popup's empty stand-in goes when the person has gone on to another window, or the popup is gone.
void X11PanelWindowSystem::followKeyboard() {
  if (!keyboardHolder_->isHolding()) return;
  const QWindow* focused = QGuiApplication::focusWindow();
  // A question of the card's gives the keyboard back to it.
  const bool isAsking = QGuiApplication::modalWindow() && QGuiApplication::modalWindow()->transientParent() == panel_;
  const bool isOurs = focused == panel_ || isAsking || (focused && focused->transientParent() == panel_);
  if (!panel_ || !panel_->isVisible() || !isOurs) keyboardHolder_->giveBack();
}

void X11PanelWindowSystem::finish(QWindow& window) {
  if (!display_) return;
  follow(window);
  // For the window managers that read the property only of windows that belong to no other.
  display_->askWindowManager(identifier(window), "_NET_WM_DESKTOP", {kAllDesktops, kSourcePager, 0, 0, 0});
  companion_->begin(identifier(window));
  available_ = availableGeometries();
}

void X11PanelWindowSystem::setClickableArea(QWindow& window, const QRect& area) {
  if (!display_) return;
  follow(window);
  card_ = area;
  outline();
}

/// Clicks reach the card alone, and without a compositor there is nothing but the card: what is translucent would be
/// black. Both shapes stay with the window while it is hidden.
void X11PanelWindowSystem::outline() {
  if (!panel_ || card_.isEmpty()) return;
  xcb_connection_t* connection = display_->connection();
  const qreal scale = panel_->devicePixelRatio();
  const QRect area = X11CardShape::pixels(card_, scale);
  const xcb_rectangle_t clickable{static_cast<int16_t>(area.x()), static_cast<int16_t>(area.y()),
                                  static_cast<uint16_t>(area.width()), static_cast<uint16_t>(area.height())};
  xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       identifier(*panel_), 0, 0, 1, &clickable);
  if (isCompositing_) {
    xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, identifier(*panel_), 0, 0, XCB_NONE);
  } else {
    const auto lines = X11CardShape::lines(card_, scale);
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED,
                         identifier(*panel_), 0, 0, static_cast<uint32_t>(lines.size()), lines.data());
  }
  xcb_flush(connection);
}

void X11PanelWindowSystem::lookForRoom() {
  if (display_ && display_->isBesideWayland()) workspaces_ = SwayWorkspaces::ask();
}

bool X11PanelWindowSystem::isCompositing() const {
  return !display_ || display_->hasCompositor();
}

quintptr X11PanelWindowSystem::activeWindow() const {
  return display_ ? display_->number(display_->root(), "_NET_ACTIVE_WINDOW") : 0;
}

void X11PanelWindowSystem::activate(quintptr window) {
  if (!display_ || window == 0) return;
  if (!isManaged_ && panel_ && window == panel_->winId()) {
    keyboardHolder_->take(static_cast<xcb_window_t>(window));
    return;
  }
  display_->askWindowManager(static_cast<xcb_window_t>(window), "_NET_ACTIVE_WINDOW",
                             {kSourcePager, static_cast<uint32_t>(QX11Info::getTimestamp()), 0, 0, 0});
}

QRect X11PanelWindowSystem::availableGeometry(const QScreen& screen) const {
  if (!display_) return screen.availableGeometry();
  const QRect available = X11Struts::availableGeometry(*display_, screen);
  if (workspaces_.empty()) return available;
  const qreal scale = screen.devicePixelRatio();
  const QRect pixels(screen.geometry().topLeft(), screen.size() * scale);
  const QRect left = SwayWorkspaces::within(pixels, workspaces_);
  return available & QRect(pixels.topLeft() + (left.topLeft() - pixels.topLeft()) / scale, left.size() / scale);
}

bool X11PanelWindowSystem::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if (keyboardHolder_->hear(*event)) return true;
  const uint8_t kind = event->response_type & ~kSent;
  if (kind == XCB_PROPERTY_NOTIFY) {
    hear(*static_cast<const xcb_property_notify_event_t*>(message));
  } else if (kind == display_->selectionEvent() && isCompositing() != isCompositing_) {
    isCompositing_ = !isCompositing_;
    outline();
    compositingChanged();
  }
  return false;
}

void X11PanelWindowSystem::hear(const xcb_property_notify_event_t& event) {
  if (!panel_ || !panel_->isVisible()) return;
  if (event.window == identifier(*panel_)) {
    if (event.atom == display_->atom("WM_STATE")) companion_->stayShown(event.window);
    return;
  }
  if (event.window != display_->root()) return;
  constexpr std::array kTelling{"_NET_CLIENT_LIST_STACKING", "_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST", "_NET_WORKAREA"};
  const bool isTelling =
      std::any_of(kTelling.begin(), kTelling.end(), [&](auto* name) { return event.atom == display_->atom(name); });
  // Window managers write several of these at nearly every change; one look afterwards is enough.
  if (!isTelling || std::exchange(isLookPosted_, true)) return;
  QMetaObject::invokeMethod(
      &context_, [this] { look(); }, Qt::QueuedConnection);
}

void X11PanelWindowSystem::look() {
  isLookPosted_ = false;
  if (!panel_ || !panel_->isVisible()) return;
  companion_->follow(identifier(*panel_));
  auto available = availableGeometries();
  if (available == available_) return;
  available_ = std::move(available);
  availableGeometryChanged();
}

std::vector<QRect> X11PanelWindowSystem::availableGeometries() const {
  std::vector<QRect> result;
  for (const QScreen* screen : QGuiApplication::screens()) result.push_back(availableGeometry(*screen));
  return result;
}

}  // namespace quillmere
