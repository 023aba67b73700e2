#include "platform/linux/tray/X11Tray.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace quillmere {
namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }  // xcb's way
};
template <typename Reply>
using ReplyOf = std::unique_ptr<Reply, Free>;

xcb_intern_atom_cookie_t askForAtom(xcb_connection_t* display, std::string_view name) {
  return xcb_intern_atom(display, 0, static_cast<uint16_t>(name.size()), name.data());
}

xcb_atom_t answer(xcb_connection_t* display, xcb_intern_atom_cookie_t cookie) {
  const ReplyOf<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(display, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

X11Tray::X11Tray(std::function<void()> changed) : changed_(std::move(changed)) {
  const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
  const auto* x11 = application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  // Other platforms of Qt answer too, with no connection.
  if (!x11 || !x11->connection()) return;
  display_ = x11->connection();
  // Of the first screen: desktops of today have one, whatever the number of displays.
  const auto selection = askForAtom(display_, "_NET_SYSTEM_TRAY_S0");
  const auto announcement = askForAtom(display_, "MANAGER");
  selection_ = answer(display_, selection);
  announcement_ = answer(display_, announcement);
  QCoreApplication::instance()->installNativeEventFilter(this);
  findManager();
}

X11Tray::~X11Tray() {
  if (display_ && QCoreApplication::instance()) QCoreApplication::instance()->removeNativeEventFilter(this);
}

void X11Tray::findManager() {
  const auto cookie = xcb_get_selection_owner(display_, selection_);
  const ReplyOf<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(display_, cookie, nullptr));
  manager_ = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
  if (manager_ == XCB_WINDOW_NONE) return;
  // The same that Qt waits for there: what one part of a program selects, it selects for all.
  const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(display_, manager_, XCB_CW_EVENT_MASK, &events);
}

bool X11Tray::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
  if (eventType != "xcb_generic_event_t") return false;
  constexpr uint8_t kType = 0x7f;  // the highest bit says that another program sent it
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  const xcb_window_t before = manager_;
  switch (event->response_type & kType) {
    case XCB_CLIENT_MESSAGE: {
      const auto& told = *static_cast<const xcb_client_message_event_t*>(message);
      if (told.type == announcement_ && told.data.data32[1] == selection_) findManager();
      break;
    }
    case XCB_DESTROY_NOTIFY:
      if (manager_ != XCB_WINDOW_NONE && static_cast<const xcb_destroy_notify_event_t*>(message)->window == manager_) {
        findManager();
      }
      break;
    default:
      break;
  }
  if (manager_ != before) changed_();
  return false;
}

}  // namespace quillmere
