#include "platform/linux/informing/LiveHelp.h"

// Before Qt's D-Bus classes, whose macro takes the name of a field in it.
#include <gio/gio.h>

#include <fcntl.h>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusUnixFileDescriptor>

#include "platform/linux/common/Sandbox.h"

namespace quillmere {
namespace {

/// https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.OpenURI.html: of a file it wants the
/// open file, not its name. Invalid where that cannot be opened.
std::optional<QDBusMessage> request(const FileURL& page) {
  const int descriptor = ::open(page.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return std::nullopt;
  QDBusUnixFileDescriptor file;
  file.giveFileDescriptor(descriptor);
  QDBusMessage message = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
      QStringLiteral("org.freedesktop.portal.OpenURI"), QStringLiteral("OpenFile"));
  message << QString() << QVariant::fromValue(file) << QVariantMap();
  return message;
}

}  // namespace

LiveHelp::Surroundings LiveHelp::ofThisProcess() {
  return isSandboxed() ? Surroundings::sandbox : Surroundings::desktop;
}

void LiveHelp::open(HelpAnchor anchor) {
  open(lifetime_.weak(this), anchor).detach();
}

Task<> LiveHelp::open(Weak<LiveHelp> self, HelpAnchor anchor) {
  auto looking = self->executor_.background([pages = self->pages_, anchor] { return pages.page(anchor); });
  const std::optional<FileURL> page = co_await looking;
  if (!self || !page) co_return;
  self->surroundings_ == Surroundings::sandbox ? self->askPortal(*page) : self->openDirectly(*page);
}

void LiveHelp::askPortal(const FileURL& page) {
  const auto message = request(page);
  // A call that is not even sent has no end.
  if (!message || !bus_.isConnected()) return openDirectly(page);
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(*message), &calls_);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &calls_, [this, watcher, page] {
    watcher->deleteLater();
    if (watcher->isError()) openDirectly(page);
  });
}

void LiveHelp::openDirectly(const FileURL& page) {
  // Not by GIO's own asynchronous call, which reads the desktop's files on this thread and needs GLib's loop.
  executor_.runInBackground([uri = page.coded()] { g_app_info_launch_default_for_uri(uri.c_str(), nullptr, nullptr); },
                            [] {});
}

}  // namespace quillmere
