#include "editor/CropNotes.h"

#include <gtest/gtest.h>

#include "editor/CropsForTests.h"
#include "support/Printing.h"

namespace quillmere::testing {
namespace {

constexpr const char* kNoShadow = "No shadow was found around this window, so there is nothing to include.";

CropSelection crop(ShadowSource source) {
  const double margin = source == ShadowSource::none ? 0 : 4;
  return CropSelection({100, 80}, {candidate(1, {10, 10, 20, 20}, shadow(margin, margin, margin, margin, source))});
}

CropSelection drawn() {
  CropSelection crop({100, 80});
  crop.drag({1, 1}, {5, 5});
  return crop;
}

TEST(CropNotes, WithoutASearchTheyHelp) {
  EXPECT_EQ(CropNotes::detectionNote({}),
            "Save the crop as a new screenshot, or replace the original. Drag on the image, use the arrow keys, or "
            "enter pixel bounds measured from the top-left corner.");
}

TEST(CropNotes, WhatWasFoundIsNotToBeTrustedBlindly) {
  EXPECT_EQ(CropNotes::detectionNote({.detection = WindowDetection::found}),
            "These are estimated boundaries, not guaranteed windows. Check the preview and adjust the crop.");
  EXPECT_EQ(CropNotes::detectionNote({.detection = WindowDetection::found, .offersKeep = true}),
            CropNotes::detectionNote({.detection = WindowDetection::found}));
}

TEST(CropNotes, WhereNothingWasFoundTheyTellHowToKeepAll) {
  EXPECT_EQ(CropNotes::detectionNote({.detection = WindowDetection::noneFound, .offersKeep = true}),
            "No window was detected, so nothing is selected. Drag on the image to choose an area, or keep the full "
            "screenshot.");
  EXPECT_EQ(CropNotes::detectionNote({.detection = WindowDetection::noneFound}),
            "No window was detected, so nothing is selected. Drag on the image to choose an area, or choose Select "
            "Whole Image to save a full-size copy.");
}

TEST(CropNotes, ATypicalShadowInTheSelectionIsCalledOne) {
  CropSelection selection = crop(ShadowSource::estimated);
  EXPECT_EQ(CropNotes::shadowNote(selection), std::nullopt);
  selection.pick(uuid(1));
  EXPECT_EQ(CropNotes::shadowNote(selection), std::nullopt) << "as long as the box is off";
  selection.setIncludesShadow(true);
  EXPECT_EQ(CropNotes::shadowNote(selection),
            "The shadow couldn’t be told apart from what’s behind this window, so this is a typical shadow size rather "
            "than a measurement. Check the preview and adjust the bounds.");
  selection.moveBy(1, 0);
  EXPECT_EQ(CropNotes::shadowNote(selection), std::nullopt) << "for one's own selection";
}

TEST(CropNotes, AMeasuredShadowNeedsNoWord) {
  CropSelection selection = crop(ShadowSource::measured);
  selection.pick(uuid(1));
  selection.setIncludesShadow(true);
  EXPECT_EQ(CropNotes::shadowNote(selection), std::nullopt);
  EXPECT_EQ(CropNotes::shadowObstacle(selection), std::nullopt);
}

TEST(CropNotes, WithoutAShadowThereIsNothingToInclude) {
  CropSelection selection = crop(ShadowSource::none);
  EXPECT_EQ(CropNotes::shadowObstacle(selection), kNoShadow) << "with no window picked";
  selection.pick(uuid(1));
  EXPECT_EQ(CropNotes::shadowObstacle(selection), kNoShadow);
  selection = crop(ShadowSource::estimated);
  selection.pick(uuid(1));
  EXPECT_EQ(CropNotes::shadowObstacle(selection), std::nullopt);
}

TEST(CropNotes, ActionsNeedASelection) {
  EXPECT_TRUE(CropNotes::canSave(drawn(), {}));
  EXPECT_TRUE(CropNotes::canReplace(drawn(), {}));
  CropSelection pointed = drawn();
  pointed.drag({5, 5}, {5, 5});
  for (const CropSelection& nothing : {CropSelection(), CropSelection({100, 80}), pointed}) {
    EXPECT_FALSE(CropNotes::canSave(nothing, {}));
    EXPECT_FALSE(CropNotes::canReplace(nothing, {}));
  }
}

TEST(CropNotes, ActionsWaitForThePictureAndForEachOther) {
  for (const CropSituation& busy : {CropSituation{.isLoading = true}, CropSituation{.isWorking = true}}) {
    EXPECT_FALSE(CropNotes::canSave(drawn(), busy));
    EXPECT_FALSE(CropNotes::canReplace(drawn(), busy));
  }
}

TEST(CropNotes, AnOriginalThatIsNoLongerThereCanOnlyBeSavedAnew) {
  EXPECT_EQ(CropNotes::replaceObstacle({}), std::nullopt);
  const CropSituation gone{.isReplaceable = false};
  EXPECT_TRUE(CropNotes::canSave(drawn(), gone));
  EXPECT_FALSE(CropNotes::canReplace(drawn(), gone));
  EXPECT_EQ(CropNotes::replaceObstacle(gone),
            "Replace Original isn’t available: this screenshot’s file has moved, been renamed, or left the Inbox. Save "
            "the crop as a new screenshot instead.");
}

TEST(CropNotes, FailuresSayWhyAndWhatToDo) {
  EXPECT_EQ(CropNotes::saveFailure(QStringLiteral("No space left on device.")),
            "The new image couldn’t be saved. No space left on device. Check that the screenshot folder is available, "
            "then try again.");
  EXPECT_EQ(CropNotes::replaceFailure(QStringLiteral("No space left on device.")),
            "The original couldn’t be replaced. No space left on device. Nothing was changed. Check that the "
            "screenshot folder is available, then try again, or save the crop as a new screenshot.");
  EXPECT_EQ(CropNotes::loadFailure(), "Quillmere couldn’t open this screenshot. Close this window and try again.");
}

}  // namespace
}  // namespace quillmere::testing
