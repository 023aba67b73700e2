#include "inbox/InboxBanners.h"

#include <QtWidgets/QVBoxLayout>

#include "foundation/Localized.h"
#include "inbox/InboxBanner.h"

namespace quillmere {
namespace {

InboxBannerContent::Banner chooseFolder(const QString& symbol, const QString& message) {
  InboxBannerContent::Banner banner;
  banner.symbol = symbol;
  banner.message = message;
  banner.action = localized("Choose Screenshot Folder…");
  return banner;
}

InboxBannerContent::Banner locationMismatch(const FileURL& folder) {
  InboxBannerContent::Banner banner;
  banner.symbol = QStringLiteral("folder.badge.questionmark");
  banner.message =
      localized("No screenshots have arrived yet. macOS saves screenshots to %@, not the folder Quillmere watches.",
                {folder.displayName()});
  banner.action = localized("Use This Folder…");
  banner.panelStart = folder;
  banner.help = HelpAnchor::folderMismatch;
  banner.isDismissible = true;
  return banner;
}

std::optional<InboxBannerContent::Banner> folderBanner(const AppModel& model, bool showsFolderBanner) {
  const QString warning = QStringLiteral("exclamationmark.triangle");
  if (!*model.watchFolderURL) {
    if (!showsFolderBanner) return std::nullopt;
    return chooseFolder(QStringLiteral("folder.badge.questionmark"),
                        localized("Choose the folder where macOS saves screenshots so Quillmere can find new ones."));
  }
  // A disk that is away says so itself; choosing again is not what helps.
  if (*model.watcherStatus == WatcherStatus::volumeNotConnected) {
    auto banner = chooseFolder(warning, statusText(*model.watcherStatus));
    banner.help = HelpAnchor::troubleshooting;
    return banner;
  }
  if (*model.watcherStatus != WatcherStatus::watching) {
    auto banner =
        chooseFolder(warning, localized("Quillmere can’t access the screenshot folder. Choose it again to keep "
                                        "finding new screenshots."));
    banner.help = HelpAnchor::troubleshooting;
    return banner;
  }
  if (model.showsLocationMismatch()) return locationMismatch(**model.macOSScreenshotFolder);
  return std::nullopt;
}

InboxBannerContent::Banner backgroundBanner(const BackgroundIssue& issue) {
  const bool retries = issue.kind == BackgroundIssue::Kind::expiredScreenshotsNotTrashed;
  InboxBannerContent::Banner banner;
  banner.symbol = QStringLiteral("exclamationmark.triangle");
  banner.message = message(issue);
  banner.action = retries ? localized("Try Again") : localized("Dismiss");
  return banner;
}

void display(InboxBanner& banner, const std::optional<InboxBannerContent::Banner>& content) {
  if (content) {
    banner.show(content->symbol, content->message, content->action,
                {.help = content->help.has_value(), .dismissal = content->isDismissible});
  } else {
    banner.hide();
  }
}

}  // namespace

InboxBannerContent InboxBannerContent::make(const AppModel& model, bool showsFolderBanner) {
  InboxBannerContent content;
  content.folder = folderBanner(model, showsFolderBanner);
  if (const auto& issue = *model.backgroundIssue) content.background = backgroundBanner(*issue);
  return content;
}

InboxBanners::InboxBanners(AppModel& model, OpenHelp openHelp, QWidget* parent)
    : QWidget(parent),
      model_(model),
      openHelp_(std::move(openHelp)),
      folder_(new InboxBanner(this)),
      background_(new InboxBanner(this)) {
  folder_->onAction = [this] { model_.chooseWatchFolder(folderPanelStart_); };
  folder_->onHelp = [this] { openHelp_(folderHelp_); };
  folder_->onDismiss = [this] { model_.dismissLocationMismatch(); };
  background_->onAction = [this] { model_.dismissBackgroundIssue(); };
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(12, 12, 12, 0);
  column->setSpacing(8);
  column->addWidget(folder_);
  column->addWidget(background_);
}

void InboxBanners::update(bool showsFolderBanner) {
  const auto content = InboxBannerContent::make(model_, showsFolderBanner);
  folderPanelStart_ = content.folder ? content.folder->panelStart : std::nullopt;
  folderHelp_ = content.folder ? content.folder->help.value_or(HelpAnchor::contents) : HelpAnchor::contents;
  display(*folder_, content.folder);
  display(*background_, content.background);
  setVisible(content.folder || content.background);
}

}  // namespace quillmere
