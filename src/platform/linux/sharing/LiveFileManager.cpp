#include "platform/linux/sharing/LiveFileManager.h"

// Before Qt's D-Bus classes, whose macro takes the name of a field in it.
#include <gio/gio.h>

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

QDBusMessage question(const QString& method, const FileURL& url) {
  const QString interface = QStringLiteral("org.freedesktop.FileManager1");
  QDBusMessage message =
      QDBusMessage::createMethodCall(interface, QStringLiteral("/org/freedesktop/FileManager1"), interface, method);
  // Without a startup id: it only tells whose click a window follows.
  message << QStringList(QString::fromStdString(url.coded())) << QString();
  return message;
}

}  // namespace

void LiveFileManager::reveal(const FileURL& file) {
  reveal(lifetime_.weak(this), file).detach();
}

Task<> LiveFileManager::reveal(Weak<LiveFileManager> self, FileURL file) {
  // A look at a disk that does not answer takes as long as it takes.
  auto looking = self->executor_.background([file] { return placeOf(file); });
  const Place place = co_await looking;
  if (self) self->ask(place);
}

/// A link is shown where it stands, wherever it points to.
LiveFileManager::Place LiveFileManager::placeOf(const FileURL& file) {
  if (fileStatus(file)) return {file};
  FileURL folder = file.parent();
  while (folder.path() != "/" && !isReadableDirectory(folder)) folder = folder.parent();
  return {folder, true};
}

void LiveFileManager::ask(const Place& place) {
  const FileURL folder = place.isFolder ? place.url : place.url.parent();
  // A call that is not even sent has no end.
  if (!bus_.isConnected()) return openFolder(folder);
  const QDBusMessage message =
      question(place.isFolder ? QStringLiteral("ShowFolders") : QStringLiteral("ShowItems"), place.url);
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, static_cast<int>(patience_.count())), &calls_);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &calls_, [this, watcher, folder] {
    watcher->deleteLater();
    if (watcher->isError()) openFolder(folder);
  });
}

void LiveFileManager::openFolder(const FileURL& folder) {
  // Not by GIO's own asynchronous call, which reads the desktop's files on this thread and needs GLib's loop.
  executor_.runInBackground(
      [uri = folder.coded()] { g_app_info_launch_default_for_uri(uri.c_str(), nullptr, nullptr); }, [] {});
}

}  // namespace quillmere
