#pragma once

#include <QtCore/QtGlobal>
#include <set>

namespace quillmere {

/// The keys of the X server that Qt is connected to; nothing where Qt runs on another platform.
class X11Keyboard {
 public:
  /// From now on a held key is told as presses without releases between them (the X Keyboard Extension's detectable
  /// auto-repeat): a release is a finger that left the key.
  static void askForRealReleases();
  /// The codes of the keys that are down right now.
  static std::set<quint32> downKeys();
};

}  // namespace quillmere
