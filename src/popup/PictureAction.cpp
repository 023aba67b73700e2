#include "popup/PictureAction.h"

#include "foundation/Localized.h"

namespace quillmere {

std::vector<PictureActionTraits> pictureActions() {
  return {
      {PictureAction::copyText, QStringLiteral("text.viewfinder"), localized("Copy Text"),
       localized("Copy the text in this preview"),
       localized("Recognizes the text in the preview and puts it on the clipboard."),
       localized("Copy the text in this screenshot")},
      {PictureAction::share, QStringLiteral("square.and.arrow.up"), localized("Share"),
       localized("Send this screenshot with Mail, Messages, AirDrop, or another service"),
       localized("Opens the share menu for the picture in the preview, under the name in the Filename field."),
       localized("Share this screenshot")},
  };
}

}  // namespace quillmere
