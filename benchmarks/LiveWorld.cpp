#include "LiveWorld.h"

#include <filesystem>

using namespace quillmere;

namespace {

FileURL makeHome() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillmere-bench-XXXXXX").string();
  return FileURL::fromPath(std::string_view(mkdtemp(pattern.data())));
}

}  // namespace

LiveWorld::LiveWorld() : home_(makeHome()), services_(paths()) {
  std::filesystem::create_directories(shots().path());
  std::filesystem::create_directories(paths().support.path());
}

LiveWorld::~LiveWorld() {
  model_.reset();
  std::filesystem::remove_all(home_.path());
}

ApplicationPaths LiveWorld::paths() const {
  ApplicationPaths all;
  all.support = home_.appending("data");
  all.settings = home_.appending("settings.json").displayPath();
  all.recordList = all.support.appending("screenshots.json");
  return all;
}

FileURL LiveWorld::shot(int number) const {
  return shots().appending("Screenshot from 2026-01-02 03-04-" + std::to_string(number) + ".png");
}

void LiveWorld::makeModel(std::vector<ScreenshotItem> items, Executor* executor) {
  ScreenshotList list(std::move(items));
  ScreenshotListWriter().save(list, paths().recordList);
  services_.watchFolderStore.setBookmark(*services_.securityScope.makeBookmark(shots()));
  auto dependencies = services_.dependencies(paths());
  dependencies.promptPresenter = &popup_;
  if (executor) dependencies.executor = executor;
  executor_ = dependencies.executor;
  model_ = std::make_unique<AppModel>(std::move(dependencies));
}
