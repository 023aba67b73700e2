#include "inbox/ScreenshotActionsMenu.h"

#include <algorithm>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// Certain of short plain names alone.
bool needsNoCleaning(std::string_view stem) {
  constexpr size_t kShort = 100;
  if (stem.empty() || stem.size() > kShort || stem.front() == ' ' || stem.back() == ' ') return false;
  const auto isPlain = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '-';
  };
  return std::all_of(stem.begin(), stem.end(), isPlain) && stem.find("  ") == std::string_view::npos;
}

using Command = ScreenshotCommand;

QList<QKeySequence> keysOf(Command command) {
  switch (command) {
    case Command::rename:
      return {Qt::Key_F2};
    case Command::quickLook:
      return {Qt::CTRL | Qt::Key_Y};
    case Command::copy:
      return {Qt::CTRL | Qt::Key_C};
    case Command::crop:
      return {Qt::CTRL | Qt::Key_K};
    case Command::moveToTrash:
      return {Qt::CTRL | Qt::Key_Backspace, Qt::Key_Delete};
    case Command::deleteImmediately:
      return {Qt::CTRL | Qt::ALT | Qt::Key_Backspace, Qt::SHIFT | Qt::Key_Delete};
    default:
      return {};
  }
}

bool beginsGroup(Command command) {
  switch (command) {
    case Command::rename:
    case Command::quickLook:
    case Command::copy:
    case Command::extractText:
    case Command::removeFromInbox:
      return true;
    default:
      return false;
  }
}

struct Look {
  QString title;
  QString symbol;
  QString help;
};

Look lookOf(Command command) {
  switch (command) {
    case Command::keep:
      return {localized("Keep"), QStringLiteral("checkmark"),
              localized("Keep this screenshot without a deletion timer")};
    case Command::markTemporary:
      return {localized("Mark Temporary"), QStringLiteral("clock"), {}};
    case Command::rename:
      return {localized("Rename"), {}, {}};
    case Command::useSuggestedName:
      return {localized("Use Suggested Name"), QStringLiteral("sparkles"),
              localized("Rename each selected screenshot to the filename Quillmere suggested for it")};
    case Command::moveAndRename:
      return {localized("Move and Rename…"), QStringLiteral("folder"),
              localized("Choose a new name and location, and keep the screenshot")};
    case Command::quickLook:
      return {localized("Quick Look"), {}, {}};
    case Command::showInFinder:
      return {localized("Show in Finder"), QStringLiteral("finder"),
              localized("Show this screenshot’s file in the Finder")};
    case Command::download:
      return {localized("Download"), QStringLiteral("arrow.down.circle"),
              localized("Ask iCloud to download this screenshot’s image to this Mac")};
    case Command::showOriginal:
      return {localized("Show Original"), QStringLiteral("arrow.uturn.backward"),
              localized("Select the screenshot this one was cropped from")};
    case Command::copy:
      return {localized("Copy Screenshot"), QStringLiteral("document.on.document"),
              localized("Copy this screenshot so it can be pasted into another app or into Finder")};
    case Command::share:
      return {localized("Share"), QStringLiteral("square.and.arrow.up"),
              localized("Send this screenshot with Mail, Messages, AirDrop, or another service")};
    case Command::extractText:
      return {localized("Extract Text"), QStringLiteral("text.viewfinder"),
              localized("Recognize and copy text from this screenshot")};
    case Command::extractWindow:
      return {localized("Extract Window…"), QStringLiteral("macwindow"),
              localized("Find a window in this screenshot and save it as a new image")};
    case Command::crop:
      return {localized("Crop…"), QStringLiteral("crop"), localized("Crop this screenshot into a new image")};
    case Command::analyze:
      return {localized("Analyze"), QStringLiteral("sparkles"), {}};
    case Command::removeFromInbox:
      return {localized("Remove from Inbox"), QStringLiteral("tray.and.arrow.up"),
              localized("Remove this screenshot from Quillmere. The file stays where it is.")};
    case Command::moveToTrash:
      return {localized("Move to Trash"), QStringLiteral("trash"), localized("Move this screenshot to Trash")};
    case Command::deleteImmediately:
      return {localized("Delete Immediately…"), QStringLiteral("trash.slash"), {}};
  }
  return {};
}

}  // namespace

ScreenshotActionsMenu::ScreenshotActionsMenu(const std::vector<UUID>& ids, AppModel& model,
                                             InboxPresentation& presentation)
    : model_(&model), presentation_(&presentation) {
  ids_.reserve(ids.size());
  for (const UUID& id : ids) {
    if (model.items().find(id)) ids_.push_back(id);
  }
}

ScreenshotActionsMenu ScreenshotActionsMenu::ofSelection(InboxPresentation& presentation) {
  AppModel& model = presentation.model();
  if (presentation.isShowingModal()) return {{}, model, presentation};
  std::vector<std::pair<size_t, UUID>> places;
  places.reserve(model.selectedItemIDs->size());
  for (const UUID& id : *model.selectedItemIDs) {
    if (const auto place = model.items().indexOf(id)) places.emplace_back(*place, id);
  }
  std::sort(places.begin(), places.end());
  std::vector<UUID> ids;
  ids.reserve(places.size());
  for (const auto& [place, id] : places) ids.push_back(id);
  return {ids, model, presentation};
}

std::vector<ScreenshotAction> ScreenshotActionsMenu::actions() const {
  std::vector<ScreenshotAction> actions;
  for (int i = 0; i <= static_cast<int>(Command::deleteImmediately); ++i) {
    const auto command = static_cast<Command>(i);
    if (command == Command::deleteImmediately && !*model_->settings().showsDeleteImmediately) continue;
    actions.push_back(action(command));
  }
  return actions;
}

ScreenshotAction ScreenshotActionsMenu::action(Command command) const {
  Look look = lookOf(command);
  const ScreenshotItem* only = single();
  if (command == Command::analyze && only && only->imageDescription) {
    look.title = localized("Analyze Again");
    look.symbol = QStringLiteral("arrow.clockwise");
  }
  return {command, look.title, look.symbol, look.help, isEnabled(command), beginsGroup(command), keysOf(command)};
}

bool ScreenshotActionsMenu::isEnabled(Command command) const {
  using Menu = ScreenshotActionsMenu;
  const ScreenshotItem* only = single();
  switch (command) {
    case Command::keep:
      return any(&Menu::canKeep);
    case Command::markTemporary:
      return any(&Menu::canMarkTemporary);
    case Command::useSuggestedName:
      return any(&Menu::canUseSuggestedName);
    case Command::rename:
    case Command::moveAndRename:
    case Command::quickLook:
    case Command::showInFinder:
      return only && isReachable(*only);
    case Command::download:
      return any(&Menu::canDownload);
    case Command::showOriginal:
      return only && only->sourceItemID && model_->items().find(*only->sourceItemID);
    case Command::copy:
      // The keys then belong to the field.
      return only && canRead(*only) && !*presentation_->renameSession;
    case Command::share:
    case Command::extractText:
      return any(&Menu::canRead);
    case Command::extractWindow:
    case Command::crop:
      return only && canRead(*only);
    case Command::analyze:
      return only && canAnalyze(*only);
    case Command::removeFromInbox:
      return only;
    case Command::moveToTrash:
      return !ids_.empty();
    case Command::deleteImmediately:
      return !ids_.empty() && *model_->settings().showsDeleteImmediately;
  }
  return false;
}

void ScreenshotActionsMenu::perform(Command command) const {
  if (!isEnabled(command)) return;
  const ScreenshotItem* only = single();
  switch (command) {
    case Command::keep:
      model_->keepBatch(keepable());
      break;
    case Command::rename:
      presentation_->beginRename(*only);
      break;
    case Command::useSuggestedName:
      model_->applySuggestedNames(renamable(), ErrorScope::inbox).detach();
      break;
    case Command::moveAndRename:
      model_->moveAndRename(only->id);
      break;
    case Command::quickLook:
      presentation_->setQuickLookURL(only->url);
      break;
    case Command::showInFinder:
      presentation_->services().fileManager->reveal(only->url);
      break;
    case Command::download:
      for (const UUID& id : downloadable()) model_->download(id);
      break;
    case Command::showOriginal:
      presentation_->select(*only->sourceItemID);
      break;
    case Command::copy:
      model_->copy(*only, ErrorScope::inbox).detach();
      break;
    case Command::extractText:
      extractText();
      break;
    case Command::extractWindow:
      presentation_->edit(*only, true);
      break;
    case Command::crop:
      presentation_->edit(*only, false);
      break;
    case Command::analyze:
      model_->startAnalysis(only->id);
      break;
    case Command::removeFromInbox:
      model_->removeRecords({only->id});
      model_->saveNow();
      break;
    case Command::moveToTrash:
      presentation_->requestDeletion(items(), AppModel::DisposalReason::chosen);
      break;
    case Command::deleteImmediately:
      presentation_->requestDeletion(items(), AppModel::DisposalReason::deleteImmediately);
      break;
    // Each opens a menu, and what is chosen there is done.
    case Command::markTemporary:
    case Command::share:
      break;
  }
}

void ScreenshotActionsMenu::markTemporary(TemporaryDuration duration) const {
  model_->markTemporaryBatch(temporaryAble(), duration);
}

void ScreenshotActionsMenu::extractText() const {
  // The one that is left out of several is told of; one alone has the command dimmed.
  if (const ScreenshotItem* only = single()) {
    presentation_->showRecognizedText(*only);
  } else {
    presentation_->extractText(items());
  }
}

// --- Which records a command acts on ---

bool ScreenshotActionsMenu::isReachable(const ScreenshotItem& item) const {
  return !model_->unavailableItemIDs->contains(item.id);
}

bool ScreenshotActionsMenu::canKeep(const ScreenshotItem& item) const {
  return item.state != ScreenshotItem::State::permanent && isReachable(item);
}

bool ScreenshotActionsMenu::canMarkTemporary(const ScreenshotItem& item) const {
  return item.state == ScreenshotItem::State::pending && isReachable(item);
}

bool ScreenshotActionsMenu::canUseSuggestedName(const ScreenshotItem& item) const {
  if (!item.suggestedName || !item.imageDescription || !isReachable(item)) return false;
  const std::string present = item.url.stem();
  // Nearly all that have been given their names, of ten thousand that are asked about together.
  const auto& suggested = *item.suggestedName;
  const bool isSame = std::string_view(suggested.constData(), static_cast<size_t>(suggested.size())) == present;
  if (isSame && needsNoCleaning(present)) return false;
  const auto stem = sanitizedFileStem(QString::fromUtf8(suggested));
  return stem && stem->toStdString() != present;
}

bool ScreenshotActionsMenu::canDownload(const ScreenshotItem& item) const {
  return isReachable(item) && model_->evictedItemIDs->contains(item.id) && model_->canDownload(item.id);
}

bool ScreenshotActionsMenu::canRead(const ScreenshotItem& item) const {
  return isReachable(item) && !model_->evictedItemIDs->contains(item.id);
}

bool ScreenshotActionsMenu::canAnalyze(const ScreenshotItem& item) const {
  return canRead(item) && model_->analysisAvailability() == AnalysisAvailability::enabled &&
         !model_->analyzingIDs->contains(item.id);
}

std::vector<UUID> ScreenshotActionsMenu::those(Test test) const {
  std::vector<UUID> found;
  for (const UUID& id : ids_) {
    const ScreenshotItem* item = model_->items().find(id);
    if (item && (this->*test)(*item)) found.push_back(id);
  }
  return found;
}

bool ScreenshotActionsMenu::any(Test test) const {
  return std::any_of(ids_.begin(), ids_.end(), [&](const UUID& id) {
    const ScreenshotItem* item = model_->items().find(id);
    return item && (this->*test)(*item);
  });
}

std::vector<UUID> ScreenshotActionsMenu::keepable() const {
  return those(&ScreenshotActionsMenu::canKeep);
}

std::vector<UUID> ScreenshotActionsMenu::temporaryAble() const {
  return those(&ScreenshotActionsMenu::canMarkTemporary);
}

std::vector<UUID> ScreenshotActionsMenu::renamable() const {
  return those(&ScreenshotActionsMenu::canUseSuggestedName);
}

std::vector<UUID> ScreenshotActionsMenu::downloadable() const {
  return those(&ScreenshotActionsMenu::canDownload);
}

std::vector<UUID> ScreenshotActionsMenu::readable() const {
  return those(&ScreenshotActionsMenu::canRead);
}

std::vector<ScreenshotItem> ScreenshotActionsMenu::items() const {
  std::vector<ScreenshotItem> items;
  items.reserve(ids_.size());
  for (const UUID& id : ids_) {
    if (const ScreenshotItem* item = model_->items().find(id)) items.push_back(*item);
  }
  return items;
}

const ScreenshotItem* ScreenshotActionsMenu::single() const {
  return ids_.size() == 1 ? model_->items().find(ids_.front()) : nullptr;
}

}  // namespace quillmere
