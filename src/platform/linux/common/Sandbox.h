#pragma once

#include <QtCore/QString>

namespace quillmere {

/// Whether the program runs as a Flatpak or a snap: apart from the session that it belongs to, whose files it cannot
/// write. A developer's container is neither.
bool isSandboxed(const QString& flatpakMark = QStringLiteral("/.flatpak-info"));

}  // namespace quillmere
