#include "update/library/UpdateNotice.h"

#include <QtCore/QLocale>

#include "foundation/Localized.h"

namespace quillmere {

UpdateNotice UpdateNotice::checking() {
  return {.kind = Kind::checking,
          .heading = localized("Checking for Updates…"),
          .message = {},
          .notes = {},
          .safe = localized("Cancel"),
          .action = {}};
}

UpdateNotice UpdateNotice::found(const UpdateFeed& feed, const VersionNumber& present) {
  return {.kind = Kind::found,
          .heading = localized("A New Version of Quillmere Is Available"),
          .message = localized("Quillmere %1$@ is available. You have %2$@. The download is %3$@.",
                               {feed.version.display(), present.display(), QLocale().formattedDataSize(feed.size)}),
          .notes = feed.notes,
          .safe = localized("Not Now"),
          .action = localized("Download Update")};
}

UpdateNotice UpdateNotice::downloading(const UpdateFeed& feed) {
  return {.kind = Kind::downloading,
          .heading = localized("Downloading Quillmere %@…", {feed.version.display()}),
          .message = {},
          .notes = {},
          .safe = localized("Cancel"),
          .action = {}};
}

UpdateNotice UpdateNotice::ready(const UpdateFeed& feed) {
  return {
      .kind = Kind::ready,
      .heading = localized("Ready to Install"),
      .message = localized("Quillmere %@ was downloaded and checked. Quillmere quits and opens again to install it.",
                           {feed.version.display()}),
      .notes = {},
      .safe = localized("Not Now"),
      .action = localized("Install and Relaunch")};
}

UpdateNotice UpdateNotice::installing(const UpdateFeed& feed) {
  return {.kind = Kind::installing,
          .heading = localized("Installing Quillmere %@…", {feed.version.display()}),
          .message = {},
          .notes = {},
          .safe = {},
          .action = {}};
}

UpdateNotice UpdateNotice::upToDate(const VersionNumber& present) {
  return {.kind = Kind::upToDate,
          .heading = localized("You’re Up to Date"),
          .message = localized("Quillmere %@ is the newest version available.", {present.display()}),
          .notes = {},
          .safe = localized("OK"),
          .action = {}};
}

UpdateNotice UpdateNotice::failed(UpdateFailure failure) {
  return {.kind = Kind::failed,
          .heading = localized("Quillmere Wasn’t Updated"),
          .message = wordsFor(failure),
          .notes = {},
          .safe = localized("OK"),
          .action = {}};
}

}  // namespace quillmere
