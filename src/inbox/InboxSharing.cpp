#include "inbox/InboxSharing.h"

#include <QtWidgets/QMenu>

#include "controls/TargetMenu.h"
#include "foundation/Localized.h"
#include "inbox/ScreenshotActionsMenu.h"
#include "model/Protection.h"

namespace quillmere {

Task<std::vector<ShareTarget>> InboxSharing::targets(const std::vector<UUID>& ids) {
  QStringList types;
  for (const UUID& id : ids) {
    const ScreenshotItem* item = presentation_.model().items().find(id);
    const QString type = item ? imageContentType(item->url) : QString();
    if (!type.isEmpty() && !types.contains(type)) types << type;
  }
  return presentation_.services().sharing->targets(types);
}

void InboxSharing::openMenu(QWidget& anchor) {
  // One menu at a time.
  if (!isChoosing_) runMenu(lifetime_.weak(this), &anchor).detach();
}

Task<> InboxSharing::runMenu(Weak<InboxSharing> self, QPointer<QWidget> anchor) {
  const auto ids = ScreenshotActionsMenu::ofSelection(self->presentation_).readable();
  if (ids.empty()) co_return;
  self->isChoosing_ = true;
  const auto looking = self->targets(ids);
  const auto found = co_await looking;
  if (!self) co_return;
  self->isChoosing_ = false;
  if (!anchor) co_return;
  QMenu menu(anchor);
  addShareTargets(menu, found);
  const QAction* chosen = menu.exec(anchor->mapToGlobal(QPoint(0, anchor->height() + 4)));
  if (self && chosen && chosen->data().isValid()) self->share(ids, chosen->data().toString());
}

void addShareTargets(QMenu& menu, const std::vector<ShareTarget>& targets) {
  std::vector<MenuTarget> shown;
  for (const ShareTarget& target : targets) {
    const bool beginsGroup = !shown.empty() && target.group != targets[shown.size() - 1].group;
    shown.push_back({target.id, target.name, target.icon, beginsGroup});
  }
  addTargets(menu, shown);
  if (targets.empty()) menu.addAction(localized("No app on this computer takes pictures"))->setEnabled(false);
}

void InboxSharing::share(const std::vector<UUID>& ids, const QString& targetID) {
  run(lifetime_.weak(this), ids, targetID).detach();
}

Task<> InboxSharing::run(Weak<InboxSharing> self, std::vector<UUID> ids, QString targetID) {
  AppModel& model = self->presentation_.model();
  std::vector<PreparedTransfer> files;
  for (const UUID& id : ids) {
    if (const ScreenshotItem* item = model.items().find(id)) {
      files.push_back({item->url, imageContentType(item->url)});
    }
  }
  if (files.empty()) co_return;
  const Protection protection(model, ids);
  const auto sharing = self->presentation_.services().sharing->share(std::move(files), targetID);
  const bool isTaken = co_await sharing;
  if (!self || isTaken) co_return;
  model.show(ErrorScope::inbox, localized("Couldn’t Share Screenshot"),
             localized("The app that you chose couldn’t be opened. Choose another one."));
}

}  // namespace quillmere
