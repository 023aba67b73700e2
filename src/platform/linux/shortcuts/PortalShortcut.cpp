#include "platform/linux/shortcuts/PortalShortcut.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>

namespace quillmere {

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
  argument.beginStructure();
  argument << shortcut.name << shortcut.options;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
  argument.beginStructure();
  argument >> shortcut.name >> shortcut.options;
  argument.endStructure();
  return argument;
}

void registerPortalShortcutTypes() {
  qDBusRegisterMetaType<PortalShortcut>();
  qDBusRegisterMetaType<PortalShortcuts>();
}

std::map<QString, QString> portalShortcuts(const QVariant& told) {
  constexpr const char* kForm = "a(sa{sv})";
  std::map<QString, QString> shortcuts;
  // Reading another form would be an endless loop.
  if (!told.canConvert<QDBusArgument>() || told.value<QDBusArgument>().currentSignature() != QLatin1String(kForm)) {
    return shortcuts;
  }
  for (const PortalShortcut& shortcut : qdbus_cast<PortalShortcuts>(told)) {
    shortcuts[shortcut.name] = shortcut.options.value(QStringLiteral("trigger_description")).toString();
  }
  return shortcuts;
}

}  // namespace quillmere
