#pragma once

#include <QtCore/QStringList>

namespace quillmere {

/// What the GNOME desktop answers to, as its settings have it: accelerators as GTK writes them. Any thread.
QStringList gnomeShortcuts();

}  // namespace quillmere
