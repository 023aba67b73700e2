#include "reading/PictureError.h"

#include "foundation/Localized.h"

namespace quillmere {

QString description(PictureError error) {
  switch (error) {
    case PictureError::unreadable:
      return localized("The file couldn’t be read.");
    case PictureError::noPicture:
      return localized("This file isn’t a picture.");
    case PictureError::damaged:
      return localized("The picture is damaged or incomplete.");
    case PictureError::tooCostly:
      return localized("The picture would take too much memory or time to open.");
  }
  return {};
}

}  // namespace quillmere
