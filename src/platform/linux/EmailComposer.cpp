#include "platform/linux/EmailComposer.h"

#include <fcntl.h>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusReply>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace quillmere {
namespace {

const QString kCommand = QStringLiteral("xdg-email");
constexpr int kTimeout = 5000;  // milliseconds

QDBusMessage portalCall(const QString& interface, const QString& method) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                                        QStringLiteral("/org/freedesktop/portal/desktop"), interface, method);
}

bool hasPortal() {
  QDBusMessage call = portalCall(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << QStringLiteral("org.freedesktop.portal.Email") << QStringLiteral("version");
  return QDBusConnection::sessionBus().call(call, QDBus::Block, kTimeout).type() == QDBusMessage::ReplyMessage;
}

/// The file is handed over open, so that a mail program that may not read the folder has it too.
bool composeByPortal(const FileURL& attachment) {
  const int descriptor = ::open(attachment.c_str(), O_RDONLY | O_CLOEXEC);
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

}  // namespace

bool EmailComposer::isAvailable() {
  return !QStandardPaths::findExecutable(kCommand).isEmpty() || hasPortal();
}

bool EmailComposer::compose(const FileURL& attachment) {
  if (hasPortal() && composeByPortal(attachment)) return true;
  const QStringList arguments{QStringLiteral("--utf8"), QStringLiteral("--attach"), attachment.displayPath()};
  return QProcess::startDetached(kCommand, arguments);
}

}  // namespace quillmere
