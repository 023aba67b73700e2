#pragma once

#include <QtCore/QVariantMap>

#include "shell/DesktopFileDialogs.h"

namespace quillmere {

// A request in the forms of org.freedesktop.portal.FileChooser.

/// Once, before the options go over the bus.
void registerPortalTypes();
/// The dialog's owner: empty where it has none, or where windows are not known by numbers.
QString portalWindow(quintptr window);
QVariantMap portalOptions(const FileDialogRequest& request, const QString& token);

}  // namespace quillmere
