#pragma once

#include "fakes/ModelFixture.h"
#include "inbox/InboxPresentation.h"

namespace quillmere::testing {

/// Notes what it was to show.
class FakeFileRevealing final : public FileRevealing {
 public:
  void reveal(const FileURL& file) override { revealed.push_back(file); }
  std::vector<FileURL> revealed;
};

/// A model with the presentation of one window.
class PresentationFixture : public ModelFixture {
 protected:
  void SetUp() override {
    launchWatching();
    open();
  }
  void open() {
    presentation = std::make_unique<InboxPresentation>(*model, services);
    told_ = presentation->changed.connect([this](const InboxChange& change) { told.push_back(change.field); });
  }
  void close() { presentation.reset(); }

  std::vector<ScreenshotItem> itemsOf(const std::vector<UUID>& ids) const {
    std::vector<ScreenshotItem> items;
    for (const UUID& id : ids) items.push_back(item(id));
    return items;
  }
  /// A screenshot whose data a sync client has taken away.
  UUID arriveEvicted(std::string_view name, bool canBeAsked = true) {
    const UUID id = arrive(name);
    dataless.insert(item(id).url.path());
    if (canBeAsked) ubiquitous.insert(item(id).url.path());
    reconcileAll();
    EXPECT_TRUE(model->evictedItemIDs->contains(id));
    return id;
  }
  /// One that cannot be reached, although the folder of the others can.
  UUID arriveUnavailable(std::string_view name) {
    const UUID id = arrive(name);
    makeUnavailable(id);
    unreachableFolders.clear();
    return id;
  }
  /// One whose text has been read.
  UUID arriveRead(std::string_view name) {
    analyzer.text = QStringLiteral("Total 12");
    const UUID id = arrive(name);
    analyzer.text.reset();
    EXPECT_TRUE(item(id).recognizedText);
    return id;
  }

  QString errorTitle() const { return *model->inboxError ? (*model->inboxError)->title : QString(); }
  QString errorMessage() const { return *model->inboxError ? (*model->inboxError)->message : QString(); }
  size_t toldOf(InboxField field) const { return static_cast<size_t>(std::count(told.begin(), told.end(), field)); }

  FakeFileRevealing fileManager;
  InboxServices services{.executor = &executor, .fileManager = &fileManager};
  std::vector<InboxField> told;
  std::unique_ptr<InboxPresentation> presentation;

 private:
  Connection told_;
};

}  // namespace quillmere::testing
