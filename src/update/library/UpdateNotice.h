#pragma once

#include <QtCore/QString>

#include "update/library/UpdateFailure.h"
#include "update/library/UpdateFeed.h"

namespace quillmere {

/// What a person is told of an update, and what can be answered.
struct UpdateNotice {
  enum class Kind { checking, found, downloading, ready, installing, upToDate, failed };
  Kind kind = Kind::checking;
  QString heading;
  QString message;
  QString notes;   ///< what's new, by the maker, as text; may be empty
  QString safe;    ///< changes nothing; also what Return, Escape and closing mean; none while nothing can be answered
  QString action;  ///< goes on; may be none

  bool operator==(const UpdateNotice&) const = default;
  /// Something is under way, which the person waits for.
  bool isWork() const { return kind == Kind::checking || kind == Kind::downloading || kind == Kind::installing; }

  static UpdateNotice checking();
  static UpdateNotice found(const UpdateFeed& feed, const VersionNumber& present);
  static UpdateNotice downloading(const UpdateFeed& feed);
  static UpdateNotice ready(const UpdateFeed& feed);
  static UpdateNotice installing(const UpdateFeed& feed);
  static UpdateNotice upToDate(const VersionNumber& present);
  static UpdateNotice failed(UpdateFailure failure);
};

}  // namespace quillmere
