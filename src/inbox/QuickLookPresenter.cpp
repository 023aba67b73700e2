#include "inbox/QuickLookPresenter.h"

#include "inbox/QuickLookWindow.h"

namespace quillmere {

QuickLookPresenter::QuickLookPresenter(InboxPresentation& presentation, QWidget& inbox)
    : presentation_(presentation), inbox_(inbox) {}

QuickLookPresenter::~QuickLookPresenter() = default;

/// The one that is selected; else the one that was asked for, as long as there is it.
const ScreenshotItem* QuickLookPresenter::item() const {
  const AppModel& model = presentation_.model();
  const UUIDSet& selected = *model.selectedItemIDs;
  if (selected.size() == 1) {
    if (const ScreenshotItem* item = model.items().find(*selected.begin())) return item;
  }
  if (const ScreenshotItem* item = model.items().find(id_)) return item;
  const ScreenshotItem* asked = nullptr;
  model.items().forEach([&](const ScreenshotItem& item) {
    if (item.url == **presentation_.quickLookURL) asked = &item;
  });
  return asked;
}

void QuickLookPresenter::follow() {
  const bool isAsked = presentation_.quickLookURL->has_value();
  const ScreenshotItem* shown = isAsked ? item() : nullptr;
  if (!shown) {
    id_ = {};
    if (window_) window_->close();
    if (isAsked) presentation_.setQuickLookURL(std::nullopt);
    return;
  }
  if (!window_) {
    window_ = std::make_unique<QuickLookWindow>(*presentation_.services().thumbnails,
                                                *presentation_.services().executor, &inbox_);
    window_->onStep = [this](int step) { onStep(step); };
    window_->onClosed = [this] { presentation_.setQuickLookURL(std::nullopt); };
  }
  id_ = shown->id;
  const bool isHere = !presentation_.model().evictedItemIDs->contains(shown->id);
  window_->show({shown->url, shown->fileIdentity, shown->url.displayName(), picture(*shown), isHere});
  const FileURL url = shown->url;
  presentation_.setQuickLookURL(url);
}

}  // namespace quillmere
