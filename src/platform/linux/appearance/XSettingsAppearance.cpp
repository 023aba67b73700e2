#include "platform/linux/appearance/XSettingsAppearance.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/linux/appearance/XSettings.h"

namespace quillmere {
namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }  // xcb's way
};
template <typename Reply>
using ReplyOf = std::unique_ptr<Reply, Free>;

xcb_atom_t atom(xcb_connection_t* display, const char* name) {
  const auto cookie = xcb_intern_atom(display, 0, static_cast<uint16_t>(std::strlen(name)), name);
  const ReplyOf<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(display, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

XSettingsAppearance::XSettingsAppearance(std::function<void(const Appearance&)> told) : told_(std::move(told)) {
  const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
  const auto* x11 = application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  // Other platforms of Qt answer too, with no connection.
  if (!x11 || !x11->connection()) return;
  display_ = x11->connection();
  // Of the first screen: desktops of today have one, whatever the number of displays.
  selection_ = atom(display_, "_XSETTINGS_S0");
  property_ = atom(display_, "_XSETTINGS_SETTINGS");
  announcement_ = atom(display_, "MANAGER");
  QCoreApplication::instance()->installNativeEventFilter(this);
  findManager();
}

XSettingsAppearance::~XSettingsAppearance() {
  if (display_ && QCoreApplication::instance()) QCoreApplication::instance()->removeNativeEventFilter(this);
}

void XSettingsAppearance::findManager() {
  const auto cookie = xcb_get_selection_owner(display_, selection_);
  const ReplyOf<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(display_, cookie, nullptr));
  manager_ = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
  if (manager_ == XCB_WINDOW_NONE) return;
  // The same that Qt itself may wait for there: what one part of a program selects, it selects for all.
  const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(display_, manager_, XCB_CW_EVENT_MASK, &events);
  read();
}

void XSettingsAppearance::read() {
  constexpr uint32_t kMaximum = 1 << 16;  // in words of four bytes
  const auto cookie = xcb_get_property(display_, 0, manager_, property_, property_, 0, kMaximum);
  const ReplyOf<xcb_get_property_reply_t> reply(xcb_get_property_reply(display_, cookie, nullptr));
  if (!reply) return;
  const QByteArray property(static_cast<const char*>(xcb_get_property_value(reply.get())),
                            xcb_get_property_value_length(reply.get()));
  told_(appearanceOf(parsedXSettings(property)));
}

bool XSettingsAppearance::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  constexpr uint8_t kType = 0x7f;  // the highest bit says that another program sent it
  const auto* event = static_cast<xcb_generic_event_t*>(message);
  switch (event->response_type & kType) {
    case XCB_PROPERTY_NOTIFY: {
      const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
      if (change->window == manager_ && change->atom == property_) read();
      break;
    }
    case XCB_CLIENT_MESSAGE: {
      // How a new manager makes itself known; an old one that goes leaves what it told last.
      const auto* told = reinterpret_cast<const xcb_client_message_event_t*>(event);
      if (told->type == announcement_ && told->data.data32[1] == selection_) findManager();
      break;
    }
    default:
      break;
  }
  return false;
}

}  // namespace quillmere
