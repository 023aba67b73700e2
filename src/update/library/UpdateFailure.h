#pragma once

#include <QtCore/QString>

namespace quillmere {

/// Why there is no update. Cancelled by the person is none of these.
enum class UpdateFailure {
  notReached,        ///< no connection, or a status that is no answer
  notTrusted,        ///< no certificate for this server
  redirected,        ///< to another server, or to a connection that anyone can read
  tooSlow,           ///< nothing or next to nothing came for too long
  tooLarge,          ///< more than announced or than is ever read
  cutShort,          ///< less than announced
  badFeed,           ///< signed, yet not in the form that is read
  notSigned,         ///< the feed isn't by who made the program
  expired,           ///< the feed is no longer what the maker says
  programTooOld,     ///< a version between must be installed first
  packageNotSigned,  ///< the package isn't the one that the feed tells of
  notStored,         ///< no place on the disk
  noInstaller,       ///< the desktop has none that runs
  installerRefused,  ///< it did not install the package
  notReplaceable,    ///< the program's file can't be replaced where it is
  notSingleFile,     ///< the program isn't one file
};

/// What a person is told.
QString wordsFor(UpdateFailure failure);

}  // namespace quillmere
