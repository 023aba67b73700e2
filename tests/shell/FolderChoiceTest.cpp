#include "shell/FolderChoice.h"

#include "fakes/ModelFixture.h"

namespace quillmere {
namespace {

class FolderChoiceTest : public testing::ModelFixture {
 protected:
  FolderChoiceTest() { chooser.answer = shots; }
  bool choose() {
    return chooseFolderToWatch(*model, chooser, [this](const FileURL&) { return confirms; });
  }
  bool confirms = true;
};

TEST_F(FolderChoiceTest, TheFolderThatIsChosenIsWatched) {
  launch();
  EXPECT_TRUE(choose());
  EXPECT_EQ(*model->watchFolderURL, shots);
  EXPECT_TRUE(choose()) << "the same once more";
}

TEST_F(FolderChoiceTest, WithoutAChoiceThereIsNone) {
  launch();
  chooser.answer = std::nullopt;
  EXPECT_FALSE(choose());
  chooser.answer = shots;
  confirms = false;
  EXPECT_FALSE(choose());
  EXPECT_EQ(*model->watchFolderURL, std::nullopt);
}

TEST_F(FolderChoiceTest, AFolderThatCannotBeAdoptedIsNone) {
  launch();
  scope.refusesBookmarks = true;
  EXPECT_FALSE(choose());
  EXPECT_TRUE(model->inboxError->has_value());
  scope.refusesBookmarks = false;
  EXPECT_TRUE(choose()) << "what was told before doesn't count";
  folderStore.refuses = true;
  EXPECT_FALSE(choose()) << "although it is the one of before";
}

}  // namespace
}  // namespace quillmere
