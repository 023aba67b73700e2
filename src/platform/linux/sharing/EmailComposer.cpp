#include "platform/linux/sharing/EmailComposer.h"

#include <fcntl.h>
#include <glib.h>
#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusReply>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <array>

namespace quillmere {
namespace {

constexpr auto kCommand = "xdg-email";
// Milliseconds. A portal that runs says at once what it can; the person waits for a menu meanwhile.
constexpr int kLookTimeout = 300;
constexpr int kTimeout = 5000;

QDBusMessage portalCall(const QString& interface, const QString& method) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                                        QStringLiteral("/org/freedesktop/portal/desktop"), interface, method);
}

bool hasPortal() {
  QDBusMessage call = portalCall(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << QStringLiteral("org.freedesktop.portal.Email") << QStringLiteral("version");
  return QDBusConnection::sessionBus().call(call, QDBus::Block, kLookTimeout).type() == QDBusMessage::ReplyMessage;
}

/// The file is handed over open, so that a mail program that may not read the folder has it too.
bool composeByPortal(const FileURL& attachment) {
  const int descriptor = ::open(attachment.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
  if (descriptor < 0) return false;
  QDBusUnixFileDescriptor file;
  file.giveFileDescriptor(descriptor);
  qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
  const QVariantMap options{
      {QStringLiteral("attachment_fds"), QVariant::fromValue(QList<QDBusUnixFileDescriptor>{file})}};
  QDBusMessage call = portalCall(QStringLiteral("org.freedesktop.portal.Email"), QStringLiteral("ComposeEmail"));
  call << QString() << options;
  return QDBusConnection::sessionBus().call(call, QDBus::Block, kTimeout).type() == QDBusMessage::ReplyMessage;
}

/// Not by a Qt process: a name that is not text has no QString.
bool composeByCommand(const FileURL& attachment) {
  std::array<std::string, 4> words{kCommand, "--utf8", "--attach", attachment.path()};
  std::array<char*, words.size() + 1> arguments{};
  for (size_t i = 0; i < words.size(); ++i) arguments[i] = words[i].data();
  return g_spawn_async(nullptr, arguments.data(), nullptr, G_SPAWN_SEARCH_PATH, nullptr, nullptr, nullptr, nullptr) !=
         0;
}

}  // namespace

bool EmailComposer::isAvailable() {
  return !QStandardPaths::findExecutable(QString::fromLatin1(kCommand)).isEmpty() || hasPortal();
}

bool EmailComposer::compose(const FileURL& attachment) {
  return composeByPortal(attachment) || composeByCommand(attachment);
}

}  // namespace quillmere
