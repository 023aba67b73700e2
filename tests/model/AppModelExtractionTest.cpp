#include <chrono>
#include <filesystem>

#include "fakes/PictureFixture.h"

namespace quillmere::testing {
namespace {

using ImageOperations::OperationError;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Extraction = PromptWindowExtraction;
using Notice = PromptPreviewNotice;

const QRectF kWindow(10, 20, 30, 40);
constexpr const char* kWhole = "Showing the whole screenshot.";
constexpr const char* kExtracted =
    "Showing the extracted window. Keep, Temporary, Copy, and Share use the window instead of the whole screenshot.";

class AppModelExtraction : public PictureFixture {
 protected:
  /// A screenshot with its window extracted.
  UUID arriveExtracted(std::string_view name) {
    const UUID id = arrivePicture(name);
    turnOn(id).detach();
    scanner.answer(scanner.calls.size() - 1, picture(), kWindow);
    EXPECT_EQ(phase(), Extraction::Phase(Extraction::Extracted{kWindow}));
    return id;
  }
  Task<std::optional<Notice>> turnOn(const UUID& id) { return model->setPromptWindowExtraction(item(id), true); }
  std::optional<Extraction::Phase> phase() const {
    const auto& extraction = *model->windowExtraction().state;
    return extraction ? std::optional(extraction->phase) : std::nullopt;
  }
};

TEST_F(AppModelExtraction, FindsTheWindowOfAScreenshot) {
  const UUID id = arrivePicture("shot.png");
  const auto toggle = turnOn(id);
  EXPECT_EQ(phase(), Extraction::Phase(Extraction::Detecting{}));
  EXPECT_EQ((*model->windowExtraction().state)->itemID, id);
  ASSERT_EQ(scanner.calls.size(), 1U);
  EXPECT_EQ(scanner.calls[0]->url, item(id).url);
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(phase(), Extraction::Phase(Extraction::Extracted{kWindow}));
  ASSERT_TRUE(toggle.isDone());
  EXPECT_EQ(toggle.await_resume(), std::nullopt);
  EXPECT_EQ(announcer.said.back().text, kExtracted);
  EXPECT_EQ(announcer.said.back().priority, AnnouncementPriority::low);
}

TEST_F(AppModelExtraction, NeverScansAPictureOfOneWindow) {
  captureKinds[shots.appending("window.png").path()] = CaptureKind::window;
  const UUID id = arrivePicture("window.png");
  const auto toggle = turnOn(id);
  EXPECT_THAT(scanner.calls, IsEmpty());
  EXPECT_EQ(phase(), std::nullopt);
  ASSERT_TRUE(toggle.isDone());
  EXPECT_EQ(toggle.await_resume(), Notice::alreadyWindow);
  EXPECT_EQ(announcer.said.back().text, "This is already a window");
  EXPECT_EQ(announcer.said.back().priority, AnnouncementPriority::low);
}

TEST_F(AppModelExtraction, TurnsOffWhereThereIsNoWindow) {
  const UUID id = arrivePicture("region.png");
  const auto toggle = turnOn(id);
  scanner.answer(0, picture(), std::nullopt);
  EXPECT_EQ(phase(), std::nullopt);
  EXPECT_EQ(toggle.await_resume(), Notice::noWindow);
  EXPECT_EQ(announcer.said.back().text, "No window found");
  EXPECT_FALSE(model->promptError->has_value());
}

TEST_F(AppModelExtraction, TellsWhyAScanFailed) {
  const UUID id = arrivePicture("shot.png");
  const auto toggle = turnOn(id);
  scanner.answer(0, OperationError::unreadable);
  EXPECT_EQ(phase(), std::nullopt);
  EXPECT_EQ(toggle.await_resume(), std::nullopt);
  ASSERT_TRUE(model->promptError->has_value());
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Extract Window");
  EXPECT_EQ((*model->promptError)->message, description(OperationError::unreadable));
}

TEST_F(AppModelExtraction, TurningOffShowsTheWholeScreenshot) {
  const UUID id = arriveExtracted("shot.png");
  model->setPromptWindowExtraction(item(id), false).detach();
  EXPECT_EQ(phase(), std::nullopt);
  EXPECT_EQ(announcer.said.back().text, kWhole);
  EXPECT_EQ(announcer.said.back().priority, AnnouncementPriority::low);
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(sizeOf(item(id).url), picture().size());
  EXPECT_THAT(files.trashed, IsEmpty());
}

TEST_F(AppModelExtraction, ALateResultAfterTurningOffChangesNothing) {
  const UUID id = arrivePicture("shot.png");
  const auto toggle = turnOn(id);
  model->setPromptWindowExtraction(item(id), false).detach();
  EXPECT_EQ(phase(), std::nullopt);
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(phase(), std::nullopt);
  EXPECT_EQ(toggle.await_resume(), std::nullopt);
}

TEST_F(AppModelExtraction, OnlyTheResultOfTheSecondScanCounts) {
  const UUID id = arrivePicture("shot.png");
  const auto first = turnOn(id);
  model->setPromptWindowExtraction(item(id), false).detach();
  const auto second = turnOn(id);
  ASSERT_EQ(scanner.calls.size(), 2U);
  scanner.answer(0, picture(), QRectF(0, 0, 5, 5));
  EXPECT_EQ(phase(), Extraction::Phase(Extraction::Detecting{}));
  scanner.answer(1, picture(), kWindow);
  EXPECT_EQ(phase(), Extraction::Phase(Extraction::Extracted{kWindow}));
}

TEST_F(AppModelExtraction, ClosingThePopupLeavesNothingBehind) {
  const UUID id = arrivePicture("shot.png");
  const auto toggle = turnOn(id);
  model->dismissPrompt();
  EXPECT_EQ(phase(), std::nullopt);
  const size_t said = announcer.said.size();
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(phase(), std::nullopt);
  EXPECT_EQ(announcer.said.size(), said);
}

TEST_F(AppModelExtraction, ALateErrorAfterClosingIsNotShown) {
  const UUID id = arrivePicture("shot.png");
  arrivePicture("next.png");
  const auto toggle = turnOn(id);
  model->dismissPrompt();
  scanner.answer(0, OperationError::unreadable);
  EXPECT_FALSE(model->promptError->has_value());
}

TEST_F(AppModelExtraction, GoingOnToTheNextScreenshotForgetsTheWindow) {
  const UUID id = arriveExtracted("shot.png");
  const UUID next = arrivePicture("next.png");
  model->dismissPrompt();
  EXPECT_EQ(queue().front(), next);
  EXPECT_EQ(phase(), std::nullopt);
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(AppModelExtraction, KeepPutsTheWindowInThePlaceOfTheScreenshot) {
  const UUID id = arriveExtracted("shot.png");
  const FileURL url = item(id).url;
  model->keepPrompt(id).detach();
  EXPECT_EQ(phase(), Extraction::Phase(Extraction::Saving{kWindow}));
  EXPECT_EQ(stateOf(id), State::pending) << "nothing is decided before the window is saved";
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url, url);
  EXPECT_EQ(sizeOf(url), QSize(30, 40));
  EXPECT_EQ(sizeOf(trash.appending("shot.png")), picture().size());
  EXPECT_EQ(phase(), std::nullopt);
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AppModelExtraction, TemporaryTakesTheWindowAndTheName) {
  const UUID id = arriveExtracted("shot.png");
  model->markTemporary(id, TemporaryDuration::oneHour, QStringLiteral("A window")).detach();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(item(id).url, shots.appending("A window.png"));
  EXPECT_EQ(sizeOf(item(id).url), QSize(30, 40));
  EXPECT_EQ(scheduledAt(id), item(id).expiresAt);
}

TEST_F(AppModelExtraction, KeepWhileStillDetectingKeepsTheWholeScreenshot) {
  const UUID id = arrivePicture("shot.png");
  const auto toggle = turnOn(id);
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(sizeOf(item(id).url), picture().size());
  EXPECT_THAT(files.trashed, IsEmpty());
  EXPECT_EQ(phase(), std::nullopt);
}

TEST_F(AppModelExtraction, AFailedSaveDecidesNothingAndCanBeTriedAgain) {
  const UUID id = arriveExtracted("shot.png");
  const std::string before = readBytes(item(id).url);
  files.refuse(item(id).url);
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::pending);
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_EQ(phase(), Extraction::Phase(Extraction::Extracted{kWindow}));
  EXPECT_EQ(readBytes(item(id).url), before);
  ASSERT_TRUE(model->promptError->has_value());
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Save the Window");
  EXPECT_EQ(
      (*model->promptError)->message,
      "No space left on device. The screenshot hasn’t changed. Try again, or turn off Extract Window to decide on "
      "the whole screenshot.");
  files.allow(item(id).url);
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(sizeOf(item(id).url), QSize(30, 40));
}

TEST_F(AppModelExtraction, AFileWrittenAnewSinceIsNotReplaced) {
  const UUID id = arriveExtracted("shot.png");
  writeFile(item(id).url, readBytes(item(id).url) + "more");
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::pending);
  ASSERT_TRUE(model->promptError->has_value());
  EXPECT_EQ(
      (*model->promptError)->message,
      "Another app has changed the screenshot since its window was found. Turn on Extract Window again to find the "
      "window anew.");
  EXPECT_EQ(phase(), std::nullopt) << "it could never be saved";
  EXPECT_THAT(files.trashed, IsEmpty());
}

TEST_F(AppModelExtraction, AFileWrittenWhileItsWindowIsBeingSavedIsNotThrownAway) {
  const UUID id = arriveExtracted("shot.png");
  model->keepPrompt(id).detach();
  writeFile(item(id).url, "edited");
  executor.drain();
  EXPECT_THAT(files.trashed, IsEmpty());
  EXPECT_EQ(readBytes(item(id).url), "edited");
  EXPECT_EQ(stateOf(id), State::pending);
  EXPECT_TRUE(model->promptError->has_value());
}

TEST_F(AppModelExtraction, ARewriteOfTheSameLengthIsNoticed) {
  const UUID id = arriveExtracted("shot.png");
  const std::string before = readBytes(item(id).url);
  writeFile(item(id).url, std::string(before.size(), 'x'));
  std::filesystem::last_write_time(item(id).url.path(),
                                   std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_THAT(files.trashed, IsEmpty());
}

TEST_F(AppModelExtraction, AFileEvictedWhileItsWindowIsBeingSavedStays) {
  const UUID id = arriveExtracted("shot.png");
  model->keepPrompt(id).detach();
  dataless.insert(item(id).url.path());
  executor.drain();
  EXPECT_THAT(files.trashed, IsEmpty());
  EXPECT_TRUE(fileExists(item(id).url));
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(AppModelExtraction, AFailedSaveAfterThePreviewWentOffForgetsTheWindow) {
  const UUID id = arriveExtracted("shot.png");
  files.refuse(item(id).url);
  model->keepPrompt(id).detach();
  model->setShowPopupThumbnail(false);
  executor.drain();
  EXPECT_EQ(phase(), std::nullopt);
}

TEST_F(AppModelExtraction, AnOriginalWhoseNameWasTakenComesBackUnderANumber) {
  const UUID id = arriveExtracted("shot.png");
  const FileURL url = item(id).url;
  const std::string before = readBytes(url);
  files.refusesReplacements = true;
  files.onTrash = [&] {
    // Between the two steps another program saves under the name.
    files.onMove = [&](const FileURL& from, const FileURL& to) {
      if (to == url && from.lastPathComponent().starts_with(".quillmere-replacing-")) writeFile(url, "another one");
    };
  };
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(readBytes(url), "another one");
  EXPECT_EQ(item(id).url, shots.appending("shot (1).png"));
  EXPECT_EQ(readBytes(item(id).url), before);
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(AppModelExtraction, ADecisionInTheInboxComesSecond) {
  const UUID id = arriveExtracted("shot.png");
  model->keepPrompt(id).detach();
  model->markTemporaryBatch({id}, TemporaryDuration::oneHour);
  model->keepBatch({id});
  EXPECT_EQ(stateOf(id), State::pending);
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(AppModelExtraction, TheFirstOfTwoDecisionsCounts) {
  const UUID id = arriveExtracted("shot.png");
  model->keepPrompt(id).detach();
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(files.trashed.size(), 1U);
}

TEST_F(AppModelExtraction, ThePopupStaysWhileItsDecisionIsCarriedOut) {
  const UUID id = arriveExtracted("shot.png");
  model->keepPrompt(id).detach();
  model->dismissPrompt();
  EXPECT_THAT(queue(), ElementsAre(id));
  model->setPromptWindowExtraction(item(id), false).detach();
  EXPECT_EQ(phase(), Extraction::Phase(Extraction::Saving{kWindow}));
  finish(model->disposeItem(item(id), ErrorScope::popup, AppModel::DisposalReason::chosen));
  EXPECT_TRUE(hasRecord(id)) << "the file is in use";
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(sizeOf(item(id).url), QSize(30, 40));
}

TEST_F(AppModelExtraction, SavingWithoutAWindowSucceedsAndDoesNothing) {
  const UUID id = arrivePicture("shot.png");
  const UUID other = arrivePicture("other.png");
  const auto none = model->saveExtractedWindow(id);
  ASSERT_TRUE(none.isDone());
  EXPECT_EQ(none.await_resume(), std::nullopt);
  turnOn(id).detach();
  scanner.answer(0, picture(), kWindow);
  EXPECT_EQ(model->saveExtractedWindow(other).await_resume(), std::nullopt);
  EXPECT_EQ(sizeOf(item(other).url), picture().size());
}

TEST_F(AppModelExtraction, GoesOffWithThePreviewThatShowsIt) {
  const UUID id = arriveExtracted("shot.png");
  model->setShowPopupThumbnail(false);
  EXPECT_EQ(phase(), std::nullopt);
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(sizeOf(item(id).url), picture().size());
}

TEST_F(AppModelExtraction, OfAFileThatIsNotHereAnyMoreHoldsNothingUp) {
  const UUID id = arriveExtracted("shot.png");
  dataless.insert(item(id).url.path());
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  model->keepPrompt(id).detach();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_FALSE(model->promptError->has_value());
  EXPECT_TRUE(files.trashed.empty());
}

class ExtractionAtTimeout : public AppModelExtraction {
 protected:
  void SetUp() override {
    setSettings(R"({"quillmere.popup-autosave": true, "quillmere.popup-seconds": 3})");
    AppModelExtraction::SetUp();
  }
};

TEST_F(ExtractionAtTimeout, KeepsTheWindow) {
  const UUID id = arriveExtracted("shot.png");
  advance(3.5);
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(sizeOf(item(id).url), QSize(30, 40));
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(ExtractionAtTimeout, TakesTheNameThatWasSuggestedForTheWholeScreenshot) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  analyzer.text = QStringLiteral("text");
  analyzer.immediateDescriptions = {ScreenshotAnalysisResult{QStringLiteral("A window"), QStringLiteral("Notes")}};
  const UUID id = arriveExtracted("shot.png");
  executor.drain();
  ASSERT_EQ(item(id).suggestedName, "Notes");
  advance(3.5);
  executor.drain();
  EXPECT_EQ(item(id).url, shots.appending("Notes.png"));
  EXPECT_EQ(sizeOf(item(id).url), QSize(30, 40));
}

TEST_F(ExtractionAtTimeout, WaitsWhileTheWindowIsBeingSought) {
  const UUID id = arrivePicture("shot.png");
  turnOn(id).detach();
  advance(10);
  EXPECT_EQ(stateOf(id), State::pending);
  scanner.answer(0, picture(), std::nullopt);
  advance(3.5);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(ExtractionAtTimeout, KeepsTheWholeScreenshotWhereSavingFails) {
  const UUID id = arriveExtracted("shot.png");
  files.refuse(item(id).url);
  advance(3.5);
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(sizeOf(item(id).url), picture().size());
  EXPECT_EQ(banner(), Issue::automaticExtractionFailed);
  EXPECT_EQ(message(**model->backgroundIssue),
            "A screenshot was kept whole because the window extracted from it couldn’t be saved.");
  EXPECT_FALSE(model->promptError->has_value());
  EXPECT_EQ(phase(), std::nullopt);
}

}  // namespace
}  // namespace quillmere::testing
