#pragma once

#include <QtCore/QtGlobal>

namespace quillmere {

/// The keys of the X server that Qt is connected to; nothing where Qt runs on another platform.
class X11Keyboard {
 public:
  /// From now on a held key is told as presses without releases between them (the X Keyboard Extension's detectable
  /// auto-repeat): a release is a finger that left the key.
  static void askForRealReleases();
  /// Whether the key of this code is down right now.
  static bool isDown(quint32 keyCode);
};

}  // namespace quillmere
