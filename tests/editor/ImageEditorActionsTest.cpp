#include "editor/EditorFixture.h"
#include "editor/ImageEditor.h"

namespace quillmere::testing {
namespace {

class ImageEditorActionsTest : public EditorFixture {
 protected:
  void SetUp() override {
    EditorFixture::SetUp();
    reopen();
  }
  void TearDown() override { editor.reset(); }
  void reopen() {
    editor = std::make_unique<ImageEditor>(*model, executor, item(id), false);
    editor->onDone = [this](std::optional<UUID> record) {
      ++done;
      saved = record;
    };
    editor->open();
    executor.drain();
    editor->change([](CropSelection& selection) { selection.setByHand(kWindow); });
    ASSERT_TRUE(editor->canReplace());
  }
  void confirm() {
    editor->askToReplace();
    executor.drain();
    ASSERT_TRUE(editor->isConfirmingReplace());
    editor->answerReplace(true);
  }
  std::unique_ptr<ImageEditor> editor;
  int done = 0;
  std::optional<UUID> saved;
};

TEST_F(ImageEditorActionsTest, SaveAsNewWritesThePartAndTellsItsRecord) {
  editor->saveAsNew();
  EXPECT_TRUE(editor->isWorking());
  EXPECT_FALSE(editor->canSave());
  EXPECT_FALSE(editor->canSelect());
  editor->saveAsNew();
  executor.drain();
  EXPECT_EQ(done, 1);
  ASSERT_TRUE(saved);
  EXPECT_EQ(item(*saved).url, newFile());
  EXPECT_EQ(sizeOf(newFile()), kWindow.size());
  EXPECT_EQ(model->items().size(), 2U) << "pressed twice, it is done once";
}

TEST_F(ImageEditorActionsTest, WithoutASelectionNothingIsDone) {
  editor->change([](CropSelection& selection) { selection.setByHand({}); });
  editor->saveAsNew();
  editor->askToReplace();
  editor->copy();
  executor.drain();
  EXPECT_EQ(done, 0);
  EXPECT_FALSE(editor->isConfirmingReplace());
  EXPECT_TRUE(pasteboard.items.empty());
  EXPECT_EQ(model->items().size(), 1U);
}

TEST_F(ImageEditorActionsTest, AFailedSaveKeepsTheSelectionAndCanBeTriedAgain) {
  std::filesystem::rename(shots.path(), home.file("elsewhere else").path());
  (*editor).saveAsNew();
  executor.drain();
  ASSERT_TRUE(editor->error());
  EXPECT_TRUE(editor->error()->startsWith(text("The new image couldn’t be saved. ")));
  EXPECT_TRUE(editor->error()->endsWith(text(" Check that the screenshot folder is available, then try again.")));
  EXPECT_EQ(done, 0);
  std::filesystem::rename(home.file("elsewhere else").path(), shots.path());
  editor->saveAsNew();
  EXPECT_EQ(editor->error(), std::nullopt);
  executor.drain();
  EXPECT_EQ(done, 1);
}

TEST_F(ImageEditorActionsTest, ReplaceAsksAndThenPutsThePartInTheOriginalsPlace) {
  editor->askToReplace();
  EXPECT_TRUE(editor->isWorking()) << "the file is looked at first";
  executor.drain();
  EXPECT_TRUE(editor->isConfirmingReplace());
  EXPECT_FALSE(editor->isWorking());
  EXPECT_EQ(sizeOf(file), QSize(100, 80));
  editor->answerReplace(true);
  editor->answerReplace(true);
  executor.drain();
  EXPECT_EQ(done, 1);
  EXPECT_FALSE(saved);
  EXPECT_EQ(sizeOf(file), kWindow.size());
  EXPECT_TRUE(isInTrashFolder("Shot.png"));
  EXPECT_TRUE(announcer.hasSaid(text("Original replaced and moved to Trash.")));
}

TEST_F(ImageEditorActionsTest, AnsweredWithNoNothingIsReplaced) {
  editor->askToReplace();
  executor.drain();
  editor->answerReplace(false);
  executor.drain();
  EXPECT_FALSE(editor->isConfirmingReplace());
  EXPECT_EQ(done, 0);
  EXPECT_EQ(sizeOf(file), QSize(100, 80));
}

TEST_F(ImageEditorActionsTest, AFileThatChangedIsFoundBeforeItIsAskedAbout) {
  rewrite();
  editor->askToReplace();
  executor.drain();
  EXPECT_FALSE(editor->isConfirmingReplace());
  EXPECT_FALSE(editor->situation().isReplaceable);
  EXPECT_FALSE(editor->isWorking());
}

TEST_F(ImageEditorActionsTest, AQuestionWhoseFileChangesIsTakenBack) {
  for (const bool isRename : {true, false}) {
    reopen();
    editor->askToReplace();
    executor.drain();
    ASSERT_TRUE(editor->isConfirmingReplace());
    if (isRename) {
      finish(model->rename(id, QStringLiteral("Other"), ErrorScope::inbox));
    } else {
      file = item(id).url;
      rewrite();
      executor.advance(seconds(1));
    }
    EXPECT_FALSE(editor->isConfirmingReplace());
    EXPECT_TRUE(announcer.hasSaid(text(kObstacle)));
    editor->answerReplace(true);
    executor.drain();
    EXPECT_EQ(done, 0);
  }
}

TEST_F(ImageEditorActionsTest, ARefusedTrashIsToldAndTheOriginalStays) {
  files.refuse(file);
  confirm();
  executor.drain();
  ASSERT_TRUE(editor->error());
  EXPECT_TRUE(editor->error()->startsWith(text("The original couldn’t be replaced. ")));
  EXPECT_TRUE(editor->error()->endsWith(
      text(" Nothing was changed. Check that the screenshot folder is available, then try again, or save the crop as a "
           "new screenshot.")));
  EXPECT_EQ(done, 0);
  EXPECT_EQ(sizeOf(file), QSize(100, 80));
}

TEST_F(ImageEditorActionsTest, CopyPutsThePartOnTheClipboardAndSaysSoForAWhile) {
  editor->copy();
  executor.drain();
  ASSERT_EQ(pasteboard.items.size(), 1U);
  EXPECT_EQ(editor->message(), text("Cropped image copied."));
  EXPECT_TRUE(announcer.hasSaid(text("Cropped image copied.")));
  EXPECT_EQ(done, 0);
  EXPECT_TRUE(editor->canSave());
  executor.advance(ImageEditor::kMessageTime);
  EXPECT_EQ(editor->message(), std::nullopt);
  editor->copy();
  executor.drain();
  editor->change([](CropSelection& selection) { selection.setByHand(kSmaller); });
  EXPECT_EQ(editor->message(), std::nullopt) << "what was copied is not what is selected now";
}

TEST_F(ImageEditorActionsTest, KeepKeepsThePictureAsItIs) {
  editor->keep();
  EXPECT_EQ(done, 1);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(sizeOf(file), QSize(100, 80));
}

TEST_F(ImageEditorActionsTest, ClosedDuringAnActionItGoesOn) {
  editor->saveAsNew();
  editor->close();
  executor.drain();
  EXPECT_TRUE(fileExists(newFile()));
  EXPECT_EQ(done, 0);
  reopen();
  confirm();
  editor.reset();
  executor.drain();
  EXPECT_EQ(sizeOf(file), kWindow.size());
  EXPECT_TRUE(announcer.hasSaid(text("Original replaced and moved to Trash.")));
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(ImageEditorActionsTest, WhatFailsAfterItWasClosedTheInboxTells) {
  executor.holdBackground();
  editor->saveAsNew();
  editor.reset();
  std::filesystem::rename(shots.path(), home.file("elsewhere else").path());
  executor.runHeldBackground();
  executor.drain();
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, text("Couldn’t Save Cropped Image"));
  EXPECT_TRUE((*model->inboxError)->message.startsWith(text("The new image couldn’t be saved. ")));
}

TEST_F(ImageEditorActionsTest, ARefusedTrashAfterItWasClosedTheInboxTells) {
  files.refuse(file);
  confirm();
  editor->close();
  executor.drain();
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->title, text("Couldn’t Replace Original"));
  EXPECT_EQ(sizeOf(file), QSize(100, 80));
}

TEST_F(ImageEditorActionsTest, TheModelMayGoWhileAnActionIsUnderWay) {
  executor.holdBackground();
  editor->saveAsNew();
  editor.reset();
  model.reset();
  executor.runHeldBackground();
  executor.drain();
  EXPECT_TRUE(fileExists(newFile()));
}

}  // namespace
}  // namespace quillmere::testing
