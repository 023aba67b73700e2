#include "inbox/InboxBanners.h"

#include <QtWidgets/QVBoxLayout>

#include "foundation/Localized.h"
#include "inbox/InboxBanner.h"

namespace quillmere {
namespace {

std::optional<InboxBannerContent::Banner> folderBanner(const AppModel& model, bool showsFolderBanner) {
  if (!*model.watchFolderURL) {
    if (!showsFolderBanner) return std::nullopt;
    return InboxBannerContent::Banner{
        QStringLiteral("folder.badge.questionmark"),
        localized("Choose the folder where macOS saves screenshots so Quillmere can find new ones."),
        localized("Choose Screenshot Folder…")};
  }
  if (*model.watcherStatus == WatcherStatus::watching) return std::nullopt;
  // A disk that is away says so itself; choosing again is not what helps.
  if (*model.watcherStatus == WatcherStatus::volumeNotConnected) {
    return InboxBannerContent::Banner{QStringLiteral("exclamationmark.triangle"), statusText(*model.watcherStatus),
                                      localized("Choose Screenshot Folder…")};
  }
  return InboxBannerContent::Banner{
      QStringLiteral("exclamationmark.triangle"),
      localized("Quillmere can’t access the screenshot folder. Choose it again to keep finding new screenshots."),
      localized("Choose Screenshot Folder…")};
}

void display(InboxBanner& banner, const std::optional<InboxBannerContent::Banner>& content) {
  if (content) {
    banner.show(content->symbol, content->message, content->action);
  } else {
    banner.hide();
  }
}

}  // namespace

InboxBannerContent InboxBannerContent::make(const AppModel& model, bool showsFolderBanner) {
  InboxBannerContent content;
  content.folder = folderBanner(model, showsFolderBanner);
  if (const auto& issue = *model.backgroundIssue) {
    const bool retries = issue->kind == BackgroundIssue::Kind::expiredScreenshotsNotTrashed;
    content.background = Banner{QStringLiteral("exclamationmark.triangle"), message(*issue),
                                retries ? localized("Try Again") : localized("Dismiss")};
  }
  return content;
}

InboxBanners::InboxBanners(AppModel& model, QWidget* parent)
    : QWidget(parent), model_(model), folder_(new InboxBanner(this)), background_(new InboxBanner(this)) {
  folder_->onAction = [this] { model_.chooseWatchFolder(); };
  background_->onAction = [this] { model_.dismissBackgroundIssue(); };
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(10, 10, 10, 0);
  column->setSpacing(8);
  column->addWidget(folder_);
  column->addWidget(background_);
}

void InboxBanners::update(bool showsFolderBanner) {
  const auto content = InboxBannerContent::make(model_, showsFolderBanner);
  display(*folder_, content.folder);
  display(*background_, content.background);
  setVisible(content.folder || content.background);
}

}  // namespace quillmere
