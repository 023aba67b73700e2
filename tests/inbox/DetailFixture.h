#pragma once

#include <QtWidgets/QPushButton>

#include "fakes/DecodedPictures.h"
#include "fakes/ModelFixture.h"
#include "inbox/InboxPresentation.h"

namespace quillmere::testing {

/// A watching model with one screenshot, and a presentation of it.
class DetailFixture : public ModelFixture {
 protected:
  DetailFixture() {
    launchWatching();
    id = arrive("Shot.png");
    presentation =
        std::make_unique<InboxPresentation>(*model, InboxServices{.thumbnails = &thumbnails, .executor = &executor});
  }
  /// By its text, if it is to be seen.
  static QPushButton* button(const QWidget& pane, const char* text) {
    for (auto* found : pane.findChildren<QPushButton*>()) {
      if (found->text() == QString::fromUtf8(text) && found->isVisibleTo(&pane)) return found;
    }
    return nullptr;
  }
  void evict() {
    dataless.insert(item(id).url.path());
    reconcileAll();
    ASSERT_TRUE(model->evictedItemIDs->contains(id));
  }

  UUID id;
  ThumbnailLoader thumbnails{executor, decodedPictures(), [](const FileURL&) { return false; }};
  std::unique_ptr<InboxPresentation> presentation;
};

}  // namespace quillmere::testing
