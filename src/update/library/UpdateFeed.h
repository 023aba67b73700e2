#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include "foundation/Date.h"
#include "foundation/Result.h"
#include "update/library/FeedSignature.h"
#include "update/library/UpdateFailure.h"
#include "update/library/VersionNumber.h"

namespace quillmere {

/// What the maker tells of the newest version. The file is one line, "quillmere-update-feed ed25519 SIGNATURE", and one
/// flat JSON object behind it; the signature (Base64) is over "quillmere-update-feed\n" and the object's bytes, so that
/// no signature of a package is ever one of a feed.
struct UpdateFeed {
  VersionNumber version;
  VersionNumber minimumVersion;  ///< the oldest program that can become this one
  Date expires;
  QUrl package;          ///< "https://…"
  qint64 size = 0;       ///< of the package
  QByteArray signature;  ///< over the package's bytes
  QString notes;         ///< what's new, as text; may be empty
  bool operator==(const UpdateFeed&) const = default;

  static constexpr qsizetype kMostBytes = 64 * 1024;
  static constexpr qint64 kMostPackageBytes = qint64{512} * 1024 * 1024;

  /// Nothing of the object is looked at before its signature.
  static Result<UpdateFeed, UpdateFailure> read(const QByteArray& file, const FeedSignature& maker);
  /// The object alone: exactly the keys of this form, each once, each of its type.
  static Result<UpdateFeed, UpdateFailure> readObject(const QByteArray& json);
};

}  // namespace quillmere
