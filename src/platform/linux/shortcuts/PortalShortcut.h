#pragma once

#include <QtCore/QList>
#include <QtCore/QVariantMap>
#include <map>

class QDBusArgument;

namespace quillmere {

/// A shortcut as org.freedesktop.portal.GlobalShortcuts is told of it.
struct PortalShortcut {
  QString name;
  QVariantMap options;
};
using PortalShortcuts = QList<PortalShortcut>;

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut);
const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut);

/// Once, before any goes over the bus.
void registerPortalShortcutTypes();

/// What the portal tells of them: by name, the keys as it describes them, which may be nothing.
std::map<QString, QString> portalShortcuts(const QVariant& told);

}  // namespace quillmere
