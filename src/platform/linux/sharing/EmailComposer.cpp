#include "platform/linux/sharing/EmailComposer.h"

#include <fcntl.h>
#include <glib.h>
#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusReply>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace quillmere {
namespace {

constexpr auto kCommand = "xdg-email";
// Milliseconds. A portal that runs says at once what it can; the person waits for a menu meanwhile.
constexpr int kLookTimeout = 300;
constexpr int kTimeout = 5000;
// The bus has this limit of its own, and sends whoever passes it away.
constexpr size_t kMostFilesOfAMessage = 16;

QDBusMessage portalCall(const QString& interface, const QString& method) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                                        QStringLiteral("/org/freedesktop/portal/desktop"), interface, method);
}

bool hasPortal(const QDBusConnection& bus) {
  QDBusMessage call = portalCall(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << QStringLiteral("org.freedesktop.portal.Email") << QStringLiteral("version");
  return bus.call(call, QDBus::Block, kLookTimeout).type() == QDBusMessage::ReplyMessage;
}

/// The files are handed over open, so that a mail program that may not read their folder has them too.
bool composeByPortal(const QDBusConnection& bus, const std::vector<FileURL>& attachments) {
  if (attachments.size() > kMostFilesOfAMessage) return false;
  QList<QDBusUnixFileDescriptor> files;
  for (const FileURL& attachment : attachments) {
    const int descriptor = ::open(attachment.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor < 0) return false;
    files.emplaceBack();
    files.back().giveFileDescriptor(descriptor);
  }
  qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
  const QVariantMap options{{QStringLiteral("attachment_fds"), QVariant::fromValue(files)}};
  QDBusMessage call = portalCall(QStringLiteral("org.freedesktop.portal.Email"), QStringLiteral("ComposeEmail"));
  call << QString() << options;
  return bus.call(call, QDBus::Block, kTimeout).type() == QDBusMessage::ReplyMessage;
}

/// Not by a Qt process: a name that is not text has no QString.
bool composeByCommand(const std::vector<FileURL>& attachments) {
  std::vector<std::string> words{kCommand, "--utf8"};
  for (const FileURL& attachment : attachments) {
    words.emplace_back("--attach");
    words.push_back(attachment.path());
  }
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return g_spawn_async(nullptr, arguments.data(), nullptr, G_SPAWN_SEARCH_PATH, nullptr, nullptr, nullptr, nullptr) !=
         0;
}

}  // namespace

bool EmailComposer::isAvailable(const QDBusConnection& bus) {
  return !QStandardPaths::findExecutable(QString::fromLatin1(kCommand)).isEmpty() || hasPortal(bus);
}

bool EmailComposer::compose(const QDBusConnection& bus, const std::vector<FileURL>& attachments) {
  return composeByPortal(bus, attachments) || composeByCommand(attachments);
}

}  // namespace quillmere
