#include "platform/linux/shortcuts/SessionHotKeys.h"

#include <QtDBus/QDBusConnection>
#include <QtGui/QGuiApplication>

#include "platform/linux/panel/X11Display.h"
#include "platform/linux/shortcuts/DesktopHotKeys.h"
#include "platform/linux/shortcuts/DesktopShortcuts.h"
#include "platform/linux/shortcuts/PortalHotKeys.h"
#include "platform/linux/shortcuts/X11HotKeys.h"

namespace quillmere {
namespace {

enum class Session { none, x11, waylandWithX11, wayland };

Session currentSession() {
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return Session::none;
  if (const auto display = X11Display::ofApplication()) {
    const bool isBeside = display->isBesideWayland() || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    return isBeside ? Session::waylandWithX11 : Session::x11;
  }
  const bool isWayland = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
  return isWayland ? Session::wayland : Session::none;
}

std::unique_ptr<PortalHotKeys> portalHotKeys(Executor& executor, const XkbKeyboardLayout& layout) {
  // Of its own: a portal asks who is at the other end before it answers anything else there.
  const QDBusConnection bus =
      QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("com.quillmere.app-shortcuts"));
  return std::make_unique<PortalHotKeys>(
      bus, executor,
      PortalHotKeys::Words{
          [&layout](const HotKeyShortcut& shortcut) { return KeyCombination::of(shortcut, layout).trigger(); },
          [&layout](const HotKeyShortcut& shortcut) { return shortcut.symbols(layout); }});
}

}  // namespace

std::unique_ptr<HotKeyRegistering> sessionHotKeys(Executor& executor) {
  using Source = XkbKeyboardLayout::Source;
  const Session session = currentSession();
  const bool hasX11 = session == Session::x11 || session == Session::waylandWithX11;
  const bool hasWayland = session == Session::wayland || session == Session::waylandWithX11;
  auto layout = std::make_unique<XkbKeyboardLayout>(hasX11 ? Source::display : Source::standard);
  DesktopHotKeys::Parts parts{.layout = *layout};
  if (hasX11) parts.display = std::make_unique<X11HotKeys>();
  if (hasWayland) parts.displayReach = HotKeyReach::windowsOfX11;
  if (hasWayland) parts.portal = portalHotKeys(executor, *layout);
  parts.desktop = std::make_unique<DesktopShortcuts>(QDBusConnection::sessionBus(), executor,
                                                     qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
  return std::make_unique<LiveHotKeys>(std::make_unique<DesktopHotKeys>(std::move(parts)), std::move(layout));
}

}  // namespace quillmere
