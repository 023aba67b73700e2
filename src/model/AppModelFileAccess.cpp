#include "model/AppModel.h"

namespace quillmere {

void AppModel::refreshBookmark(size_t index, const std::optional<QByteArray>& oldBookmark) {
  const auto made = dependencies_.securityScope->makeBookmark(items_[index].url);
  const auto bookmark = made ? made : oldBookmark ? oldBookmark : items_[index].fileBookmark;
  updateItem(index, [&](ScreenshotItem& item) { item.fileBookmark = bookmark; });
}

void AppModel::refreshItemAccess(size_t index, const std::optional<FileURL>& resolved) {
  const ScreenshotItem& item = items_[index];
  const UUID id = item.id;
  // A file in the watched folder is reached through the folder.
  if (watchFolderPaths_ && watchFolderPaths_->contains(pathKeyOf(item.url))) {
    access_.closeItem(id);
    return;
  }
  if (resolved) {
    access_.openItem(id, *resolved);
    return;
  }
  if (const auto held = access_.item(id)) {
    if (*held == item.url || pathKeyOf(*held) == pathKeyOf(item.url)) return;
  }
  openItemAccess(index, resolveBookmark(*dependencies_.securityScope, item.fileBookmark));
}

void AppModel::openItemAccess(size_t index, const std::optional<ResolvedBookmark>& bookmarked) {
  if (!bookmarked) return;
  if (bookmarked->refreshed) {
    updateItem(index, [&](ScreenshotItem& record) { record.fileBookmark = bookmarked->refreshed; });
  }
  access_.openItem(items_[index].id, bookmarked->url);
}

namespace {

struct ItemAccess {
  UUID id;
  FileURL url;
  std::optional<QByteArray> bookmark;
  bool isInFolder = false;
  std::optional<ResolvedBookmark> resolved;
};

}  // namespace

/// For another watched folder: the files of the old one need access of their own, those of the new one none. Resolving
/// so many bookmarks looks at the disk, so it is done off the main thread, and taken over a handful at a time.
Task<> AppModel::refreshEveryItemAccess(Weak<AppModel> self) {
  constexpr int kMostInOneTurn = 200;
  const auto paths = self->watchFolderPaths_;
  auto all = std::make_shared<std::vector<ItemAccess>>();
  self->items_.forEach([&](const ScreenshotItem& item) {
    all->push_back({item.id, item.url, item.fileBookmark, false, std::nullopt});
  });
  Executor& executor = *self->dependencies_.executor;
  const std::function<bool()> work = [all, paths, scope = self->dependencies_.securityScope] {
    for (ItemAccess& one : *all) {
      one.isInFolder = paths && paths->contains(pathKey(one.url, paths));
      if (!one.isInFolder) one.resolved = resolveBookmark(*scope, one.bookmark);
    }
    return true;
  };
  auto looking = executor.background(work);
  co_await looking;
  int inThisTurn = 0;
  for (const ItemAccess& one : *all) {
    if (++inThisTurn > kMostInOneTurn) {
      inThisTurn = 1;
      auto pause = executor.sleep(Duration::zero());
      co_await pause;
    }
    // Another folder was chosen meanwhile: its own run ends the old access.
    if (co_await isCancelled || !self) co_return;
    const auto index = self->items_.indexOf(one.id);
    // A record that changed meanwhile knows better.
    if (!index || self->items_[*index].url != one.url) continue;
    if (one.isInFolder) {
      self->access_.closeItem(one.id);
    } else if (self->access_.item(one.id) != one.url) {
      self->openItemAccess(*index, one.resolved);
    }
  }
  if (self) self->access_.endRetired();
}

}  // namespace quillmere
