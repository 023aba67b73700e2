#include "editor/ImageEditor.h"

#include <QtGui/QColorSpace>

#include "editor/EditorFixture.h"

namespace quillmere::testing {
namespace {

class ImageEditorTest : public EditorFixture {
 protected:
  void TearDown() override { editor.reset(); }
  void make(bool detectWindow) {
    editor = std::make_unique<ImageEditor>(*model, executor, item(id), detectWindow);
    editor->onChanged = [this] { ++told; };
    editor->onDone = [this](std::optional<UUID>) { ++done; };
    editor->open();
  }
  void open() {
    make(false);
    executor.drain();
    ASSERT_TRUE(editor->hasPicture());
  }
  std::unique_ptr<ImageEditor> editor;
  int told = 0;
  int done = 0;
};

TEST_F(ImageEditorTest, ItLoadsAndThenNothingIsSelected) {
  make(false);
  EXPECT_TRUE(editor->isLoading());
  EXPECT_EQ(editor->message(), text("Loading image…"));
  EXPECT_FALSE(editor->canSelect());
  executor.drain();
  EXPECT_FALSE(editor->isLoading());
  EXPECT_EQ(editor->message(), std::nullopt);
  EXPECT_EQ(editor->shownPicture(), picture());
  EXPECT_EQ(editor->selection().imageSize(), QSize(100, 80));
  EXPECT_TRUE(editor->selection().isEmpty());
  EXPECT_FALSE(editor->canSave());
  EXPECT_FALSE(editor->situation().detection);
  EXPECT_GE(told, 2);
}

TEST_F(ImageEditorTest, TheWindowThatComesFirstIsSelectedWhichNeedNotBeTheLargest) {
  make(true);
  EXPECT_EQ(editor->message(), text("Finding possible windows…"));
  find({window(kWindow, true), window(kSmaller)});
  EXPECT_EQ(editor->selection().selection(), kSmaller);
  ASSERT_TRUE(editor->selection().candidate());
  EXPECT_EQ(editor->selection().candidate()->number, 2);
  EXPECT_EQ(editor->situation().detection, WindowDetection::found);
  EXPECT_FALSE(editor->history().canUndo()) << "it is where the person begins";
  EXPECT_TRUE(announcer.hasSaid(CropNotes::detectionNote(editor->situation())));
}

TEST_F(ImageEditorTest, WithoutWindowsNothingIsSelectedAndThatIsSaid) {
  make(true);
  find({});
  EXPECT_EQ(editor->situation().detection, WindowDetection::noneFound);
  EXPECT_TRUE(editor->selection().isEmpty());
  EXPECT_TRUE(announcer.hasSaid(CropNotes::detectionNote(editor->situation())));
}

TEST_F(ImageEditorTest, WhatCantBeReadIsToldAndNothingCanBeDone) {
  deleteFile(file);
  for (const bool detectWindow : {false, true}) {
    make(detectWindow);
    executor.drain();
    if (detectWindow) {
      scanner.answer(0, FakeWindowScanner::Outcome(ImageOperations::OperationError::unreadable));
    }
    executor.drain();
    const QString words = text("Quillmere couldn’t open this screenshot. Close this window and try again.");
    EXPECT_EQ(editor->error(), words);
    EXPECT_TRUE(announcer.hasSaid(words));
    EXPECT_FALSE(editor->isLoading());
    EXPECT_FALSE(editor->canSelect());
    EXPECT_FALSE(editor->canSave());
    EXPECT_FALSE(editor->canReplace());
    EXPECT_FALSE(editor->canKeep());
  }
}

TEST_F(ImageEditorTest, WhatThereIsNoMemoryForIsToldAsWell) {
  make(true);
  executor.drain();
  scanner.answer(0, FakeWindowScanner::Outcome(ImageOperations::WindowScan{QImage(), {}}));
  executor.drain();
  EXPECT_EQ(editor->error(), CropNotes::loadFailure());
  EXPECT_TRUE(announcer.hasSaid(CropNotes::loadFailure()));
  EXPECT_FALSE(editor->hasPicture());
  EXPECT_FALSE(editor->isLoading());
  EXPECT_EQ(editor->message(), std::nullopt);
}

TEST_F(ImageEditorTest, ClosedWhileItReadsItHearsNothingOfIt) {
  make(true);
  executor.drain();
  editor->close();
  const int before = told;
  find({window(kWindow)});
  EXPECT_EQ(told, before);
  EXPECT_FALSE(editor->hasPicture());
}

TEST_F(ImageEditorTest, GoneBeforeTheFileWasLookedAtItSeeksNoWindows) {
  make(true);
  editor.reset();
  executor.drain();
  EXPECT_TRUE(scanner.calls.empty());
}

TEST_F(ImageEditorTest, ItIsShownInTheColoursOfTheScreenAndCroppedInItsOwn) {
  QImage wide = picture();
  wide.setColorSpace(QColorSpace::DisplayP3);
  make(true);
  executor.drain();
  scanner.answer(0, wide, std::nullopt);
  executor.drain();
  EXPECT_EQ(editor->shownPicture().colorSpace(), QColorSpace(QColorSpace::SRgb));
  EXPECT_NE(editor->shownPicture().pixel(50, 2), wide.pixel(50, 2));
  editor->change([](CropSelection& selection) { selection.selectWholeImage(); });
  editor->saveAsNew();
  executor.drain();
  const auto saved = ImageOperations::loadImage(newFile());
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->pixel(50, 2), wide.pixel(50, 2));
}

TEST_F(ImageEditorTest, ItsRecordCantBeDeletedUntilItIsClosed) {
  open();
  EXPECT_TRUE(isProtected());
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->message,
            text("Close the crop editor or save dialog before deleting this screenshot."));
  editor->close();
  EXPECT_FALSE(isProtected());
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(ImageEditorTest, KeepIsOfferedWhileTheRecordAwaitsItsDecision) {
  open();
  EXPECT_TRUE(editor->situation().offersKeep);
  EXPECT_TRUE(editor->canKeep());
  model->markTemporaryBatch({id}, TemporaryDuration::oneHour);
  EXPECT_FALSE(editor->situation().offersKeep);
}

TEST_F(ImageEditorTest, StepsAreUndoneAndRedone) {
  open();
  editor->change([](CropSelection& selection) { selection.setByHand(kWindow); });
  editor->change([](CropSelection& selection) { selection.setByHand(kSmaller); });
  editor->undo();
  EXPECT_EQ(editor->selection().selection(), kWindow);
  editor->undo();
  EXPECT_TRUE(editor->selection().isEmpty());
  editor->undo();
  editor->redo();
  EXPECT_EQ(editor->selection().selection(), kWindow);
}

TEST_F(ImageEditorTest, AFileThatBecameAnotherCantBeReplacedAndThatIsSaid) {
  open();
  editor->change([](CropSelection& selection) { selection.setByHand(kWindow); });
  EXPECT_TRUE(editor->canReplace());
  rewrite();
  executor.advance(seconds(1));
  EXPECT_FALSE(editor->canReplace());
  EXPECT_TRUE(editor->canSave());
  EXPECT_TRUE(announcer.hasSaid(text(kObstacle)));
}

TEST_F(ImageEditorTest, TheRecordMayGoMeanwhile) {
  open();
  editor->change([](CropSelection& selection) { selection.setByHand(kWindow); });
  model->removeRecords({id});
  EXPECT_FALSE(editor->canReplace());
  EXPECT_FALSE(editor->canKeep());
  editor->saveAsNew();
  executor.drain();
  EXPECT_TRUE(fileExists(newFile()));
  EXPECT_EQ(done, 1);
}

}  // namespace
}  // namespace quillmere::testing
