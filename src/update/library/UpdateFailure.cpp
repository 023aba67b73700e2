#include "update/library/UpdateFailure.h"

#include "foundation/Localized.h"

namespace quillmere {

QString wordsFor(UpdateFailure failure) {
  switch (failure) {
    case UpdateFailure::notReached:
      return localized("The update server can’t be reached. Check your internet connection and try again later.");
    case UpdateFailure::notTrusted:
      return localized("The update server couldn’t prove that it is the right one. Nothing was downloaded.");
    case UpdateFailure::redirected:
      return localized("The update server pointed to another server. Nothing was downloaded.");
    case UpdateFailure::tooSlow:
      return localized("The update server took too long to answer. Try again later.");
    case UpdateFailure::tooLarge:
      return localized("The update server sent more than it announced. Nothing was installed.");
    case UpdateFailure::cutShort:
      return localized("The connection to the update server broke off. Try again later.");
    case UpdateFailure::badFeed:
      return localized("What the update server says can’t be read. Try again later.");
    case UpdateFailure::notSigned:
      return localized("What the update server says isn’t signed by the maker of Quillmere. Nothing was downloaded.");
    case UpdateFailure::expired:
      return localized("What the update server says is out of date. Try again later.");
    case UpdateFailure::programTooOld:
      return localized(
          "This version of Quillmere is too old to be updated in one step. Install the new version by hand.");
    case UpdateFailure::packageNotSigned:
      return localized("The downloaded update isn’t the one the maker of Quillmere signed. It was not installed.");
    case UpdateFailure::notStored:
      return localized("The update couldn’t be stored. Check that there is enough free disk space.");
    case UpdateFailure::noInstaller:
      return localized("This desktop has no service that installs packages. Install the new version by hand.");
    case UpdateFailure::installerRefused:
      return localized("The update couldn’t be installed. Quillmere is unchanged.");
    case UpdateFailure::notReplaceable:
      return localized("Quillmere can’t be replaced in the folder where it is. Quillmere is unchanged.");
    case UpdateFailure::notSingleFile:
      return localized(
          "This copy of Quillmere isn’t a single file that can be replaced. Install the new version by hand.");
  }
  return {};
}

}  // namespace quillmere
