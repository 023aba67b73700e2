#pragma once

#include <QtWidgets/QWidget>
#include <optional>

#include "controls/HelpAnchor.h"
#include "model/AppModel.h"

namespace quillmere {

class InboxBanner;

/// What stands in the two slots above the list. The slots are independent.
struct InboxBannerContent {
  struct Banner {
    QString symbol;
    QString message;
    QString action;
    std::optional<FileURL> panelStart;  ///< where the folder panel of the action opens
    std::optional<HelpAnchor> help;     ///< the page that says more
    bool isDismissible = false;
    bool operator==(const Banner&) const = default;
  };
  std::optional<Banner> folder;
  std::optional<Banner> background;

  /// `showsFolderBanner` is false while the folder set-up fills the window, which asks the same.
  static InboxBannerContent make(const AppModel& model, bool showsFolderBanner);
};

class InboxBanners final : public QWidget {
 public:
  InboxBanners(AppModel& model, OpenHelp openHelp, QWidget* parent);
  void update(bool showsFolderBanner);

 private:
  AppModel& model_;
  OpenHelp openHelp_;
  std::optional<FileURL> folderPanelStart_;
  HelpAnchor folderHelp_ = HelpAnchor::contents;
  InboxBanner* folder_;
  InboxBanner* background_;
};

}  // namespace quillmere
