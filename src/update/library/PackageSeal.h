#pragma once

#include <QtCore/QByteArray>

#include "update/library/FeedSignature.h"

namespace quillmere {

/// What a package must be: of this size, and signed by the maker.
struct PackageSeal {
  FeedSignature maker;
  QByteArray signature;
  qint64 size = 0;

  /// Reads the open file itself, whatever stands at its name by now. Not on the main thread: it reads all of it.
  bool isUnbroken(int descriptor) const;
};

}  // namespace quillmere
