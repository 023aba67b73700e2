#include "platform/linux/panel/X11Keyboard.h"

#include <QtGui/qguiapplication_platform.h>
#include <QtGui/QGuiApplication>

#include "platform/linux/panel/X11Display.h"

// Last: it makes macros of common words.
#include <X11/XKBlib.h>

namespace quillmere {
namespace {

const QNativeInterface::QX11Application* x11() {
  return qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
}

}  // namespace

void X11Keyboard::askForRealReleases() {
  if (!x11() || !x11()->display()) return;
  ::XkbSetDetectableAutoRepeat(x11()->display(), 1, nullptr);
}

std::set<quint32> X11Keyboard::downKeys() {
  if (!x11() || !x11()->connection()) return {};
  xcb_connection_t* connection = x11()->connection();
  const auto reply = X11Display::owned(xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr));
  std::set<quint32> codes;
  if (!reply) return codes;
  constexpr quint32 kBits = 8;
  for (quint32 code = 0; code < kBits * sizeof reply->keys; ++code) {
    if (reply->keys[code / kBits] >> (code % kBits) & 1) codes.insert(code);
  }
  return codes;
}

}  // namespace quillmere
