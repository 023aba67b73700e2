#include "inbox/ScreenshotActionsMenu.h"

#include "inbox/PresentationFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;
using Command = ScreenshotCommand;
using Reason = AppModel::DisposalReason;

constexpr auto kFirst = Command::keep;
constexpr auto kLast = Command::deleteImmediately;

std::vector<Command> allCommands() {
  std::vector<Command> commands;
  for (int i = static_cast<int>(kFirst); i <= static_cast<int>(kLast); ++i) commands.push_back(static_cast<Command>(i));
  return commands;
}

class ScreenshotActionsMenuTest : public PresentationFixture {
 protected:
  ScreenshotActionsMenu menu(const std::vector<UUID>& ids) const { return {ids, *model, *presentation}; }
  ScreenshotActionsMenu ofSelection() const { return ScreenshotActionsMenu::ofSelection(*presentation); }
  bool isEnabled(Command command, const std::vector<UUID>& ids) const {
    EXPECT_EQ(menu(ids).action(command).isEnabled, menu(ids).isEnabled(command));
    return menu(ids).isEnabled(command);
  }
  void perform(Command command, const std::vector<UUID>& ids) {
    menu(ids).perform(command);
    executor.drain();
  }
  std::vector<Command> enabled(const std::vector<UUID>& ids) const {
    std::vector<Command> commands;
    for (const ScreenshotAction& action : menu(ids).actions()) {
      if (action.isEnabled) commands.push_back(action.command);
    }
    return commands;
  }
  /// A description with a name, as the model gives it.
  void describe(const UUID& id, const char* name) {
    analyzer.immediateDescriptions.push_back(
        ScreenshotAnalysisResult{QStringLiteral("A page."), QString::fromUtf8(name)});
    model->startAnalysis(id);
    EXPECT_EQ(item(id).suggestedName, QByteArray(name));
  }
  UUID arriveDescribed(std::string_view name, const char* suggestion) {
    const UUID id = arrive(name);
    describe(id, suggestion);
    return id;
  }
  /// A pair of records of which one was cropped from the other; the crop first.
  std::pair<UUID, UUID> arriveWithOriginal() {
    const ScreenshotItem original = storedItem(1, "original.png");
    ScreenshotItem crop = storedItem(2, "crop.png");
    crop.sourceItemID = original.id;
    close();
    model.reset();
    storeRecords({crop, original});
    launchWatching();
    open();
    return {crop.id, original.id};
  }
};

TEST_F(ScreenshotActionsMenuTest, EachCommandLooksAsItsTableSays) {
  model->setShowsDeleteImmediately(true);
  using Keys = QList<QKeySequence>;
  struct Row {
    Command command;
    const char* title;
    const char* symbol;
    const char* help;
    Keys keys;
  };
  const Row rows[] = {
      {Command::keep, "Keep", "checkmark", "Keep this screenshot without a deletion timer", {}},
      {Command::markTemporary, "Mark Temporary", "clock", "", {}},
      {Command::rename, "Rename", "", "", Keys{QStringLiteral("F2")}},
      {Command::useSuggestedName,
       "Use Suggested Name",
       "sparkles",
       "Rename each selected screenshot to the filename Quillmere suggested for it",
       {}},
      {Command::moveAndRename,
       "Move and Rename…",
       "folder",
       "Choose a new name and location, and keep the screenshot",
       {}},
      {Command::quickLook, "Quick Look", "", "", Keys{QStringLiteral("Ctrl+Y")}},
      {Command::showInFinder, "Show in File Manager", "finder", "Show this screenshot’s file in your file manager", {}},
      {Command::download,
       "Download",
       "arrow.down.circle",
       "Ask your sync client to download this screenshot’s image to this computer",
       {}},
      {Command::showOriginal,
       "Show Original",
       "arrow.uturn.backward",
       "Select the screenshot this one was cropped from",
       {}},
      {Command::copy, "Copy Screenshot", "document.on.document",
       "Copy this screenshot so it can be pasted into another app or into your file manager",
       Keys{QStringLiteral("Ctrl+C")}},
      {Command::share, "Share", "square.and.arrow.up", "Send this screenshot by email, or open it in another app", {}},
      {Command::extractText, "Extract Text", "text.viewfinder", "Recognize and copy text from this screenshot", {}},
      {Command::extractWindow,
       "Extract Window…",
       "macwindow",
       "Find a window in this screenshot and save it as a new image",
       {}},
      {Command::crop, "Crop…", "crop", "Crop this screenshot into a new image", Keys{QStringLiteral("Ctrl+K")}},
      {Command::analyze, "Analyze", "sparkles", "", {}},
      {Command::removeFromInbox,
       "Remove from Inbox",
       "tray.and.arrow.up",
       "Remove this screenshot from Quillmere. The file stays where it is.",
       {}},
      {Command::moveToTrash, "Move to Trash", "trash", "Move this screenshot to Trash",
       Keys{QStringLiteral("Ctrl+Backspace"), QStringLiteral("Del")}},
      {Command::deleteImmediately, "Delete Immediately…", "trash.slash", "",
       Keys{QStringLiteral("Ctrl+Alt+Backspace"), QStringLiteral("Shift+Del")}},
  };
  const auto actions = menu({}).actions();
  ASSERT_EQ(actions.size(), std::size(rows));
  for (size_t i = 0; i < actions.size(); ++i) {
    EXPECT_EQ(actions[i].command, rows[i].command) << "at " << i;
    EXPECT_EQ(actions[i].title, QString::fromUtf8(rows[i].title));
    EXPECT_EQ(actions[i].symbol, QString::fromUtf8(rows[i].symbol)) << rows[i].title;
    EXPECT_EQ(actions[i].help, QString::fromUtf8(rows[i].help)) << rows[i].title;
    EXPECT_EQ(actions[i].keys, rows[i].keys) << rows[i].title;
  }
  EXPECT_FALSE(actions.front().beginsGroup) << "a line above the first would part nothing";
}

TEST_F(ScreenshotActionsMenuTest, NoKeysStandForTwoCommands) {
  model->setShowsDeleteImmediately(true);
  QList<QKeySequence> keys;
  for (const ScreenshotAction& action : menu({}).actions()) keys += action.keys;
  for (const QKeySequence& one : keys) EXPECT_EQ(keys.count(one), 1) << one.toString().toStdString();
}

TEST_F(ScreenshotActionsMenuTest, DeleteImmediatelyIsThereOnlyWhileItsSettingIsOn) {
  const UUID id = arrive("shot.png");
  const auto lists = [&] {
    const auto actions = menu({id}).actions();
    return std::any_of(actions.begin(), actions.end(),
                       [](const auto& action) { return action.command == Command::deleteImmediately; });
  };
  EXPECT_FALSE(lists());
  perform(Command::deleteImmediately, {id});
  EXPECT_FALSE(presentation->isShowingModal());
  model->setShowsDeleteImmediately(true);
  EXPECT_TRUE(lists());
  EXPECT_TRUE(isEnabled(Command::deleteImmediately, {id}));
  model->setShowsDeleteImmediately(false);
  EXPECT_FALSE(lists());
}

// --- Which list ---

TEST_F(ScreenshotActionsMenuTest, OverNothingEverythingIsOffAndHarmless) {
  model->setShowsDeleteImmediately(true);
  arrive("shot.png");
  told.clear();
  changes.clear();
  EXPECT_THAT(enabled({}), IsEmpty());
  for (const Command command : allCommands()) perform(command, {});
  menu({}).markTemporary(TemporaryDuration::oneHour);
  EXPECT_THAT(told, IsEmpty());
  EXPECT_THAT(changes, IsEmpty());
  EXPECT_EQ(files.calls(), 0);
  EXPECT_THAT(fileManager.revealed, IsEmpty());
}

TEST_F(ScreenshotActionsMenuTest, WhatIsNoRecordIsLeftOut) {
  const UUID id = arrive("shot.png");
  EXPECT_THAT(menu({uuid(404), id, uuid(405)}).ids(), ElementsAre(id));
  EXPECT_TRUE(isEnabled(Command::rename, {uuid(404), id})) << "it is the only one";
  EXPECT_THAT(enabled({uuid(404)}), IsEmpty());
}

TEST_F(ScreenshotActionsMenuTest, ARecordThatGoesUnderTheMenuIsLeftAlone) {
  model->setShowsDeleteImmediately(true);
  const UUID first = arrive("1.png"), second = arrive("2.png");
  const auto one = menu({first});
  const auto both = menu({first, second});
  model->removeRecords({first});
  changes.clear();
  for (const Command command : allCommands()) {
    // Nothing is left of it to be asked about.
    if (command != Command::moveToTrash && command != Command::deleteImmediately) {
      EXPECT_FALSE(one.isEnabled(command));
    }
    one.perform(command);
  }
  presentation->cancelDeletion();
  EXPECT_THAT(changes, IsEmpty());
  EXPECT_FALSE(presentation->isShowingModal());
  EXPECT_THAT(both.keepable(), ElementsAre(second));
}

TEST_F(ScreenshotActionsMenuTest, TheSelectionIsInTheOrderOfTheList) {
  std::vector<UUID> oldestFirst;
  for (int i = 0; i < 8; ++i) oldestFirst.push_back(arrive(std::to_string(i) + ".png"));
  model->setSelectedItemIDs({oldestFirst[1], oldestFirst[6], oldestFirst[3], uuid(404)});
  EXPECT_THAT(ofSelection().ids(), ElementsAre(oldestFirst[6], oldestFirst[3], oldestFirst[1]));
  ofSelection().perform(Command::moveToTrash);
  EXPECT_EQ((*presentation->batchDeletion)->items, itemsOf({oldestFirst[6], oldestFirst[3], oldestFirst[1]}));
}

TEST_F(ScreenshotActionsMenuTest, WithASheetUpTheSelectionIsEmpty) {
  const UUID id = arriveRead("shot.png");
  model->setSelectedItemIDs({id});
  const auto isOff = [&] {
    const auto actions = ofSelection().actions();
    return std::none_of(actions.begin(), actions.end(), [](const auto& action) { return action.isEnabled; });
  };
  EXPECT_FALSE(isOff());
  presentation->edit(item(id), false);
  EXPECT_TRUE(isOff());
  presentation->closeEditor();
  presentation->showRecognizedText(item(id));
  EXPECT_TRUE(isOff());
  presentation->closeRecognizedText();
  presentation->requestDeletion({item(id)}, Reason::chosen);
  EXPECT_TRUE(isOff());
  presentation->cancelDeletion();
  presentation->requestDeletion(itemsOf({id, arrive("2.png")}), Reason::chosen);
  EXPECT_TRUE(isOff());
  presentation->cancelDeletion();
  EXPECT_FALSE(isOff());
}

TEST_F(ScreenshotActionsMenuTest, ASheetThatComesUpUnderAMenuStaysTheOnlyOne) {
  model->setShowsDeleteImmediately(true);
  const UUID id = arriveRead("shot.png");
  const auto open = menu({id});
  presentation->showRecognizedText(item(id));
  for (const Command command :
       {Command::crop, Command::extractWindow, Command::moveToTrash, Command::deleteImmediately}) {
    open.perform(command);
  }
  EXPECT_TRUE(*presentation->recognizedText);
  presentation->closeRecognizedText();
  EXPECT_FALSE(presentation->isShowingModal());
}

TEST_F(ScreenshotActionsMenuTest, TenThousandAreAskedForTheirStates) {
  close();
  model.reset();
  std::vector<ScreenshotItem> items;
  std::vector<UUID> ids;
  for (int i = 0; i < 10'000; ++i) {
    ScreenshotItem one = bareItem(i);
    one.state = i == 9'999 ? State::temporary : State::permanent;
    if (one.state == State::temporary) one.expiresAt = now() + 1e6;
    ids.push_back(one.id);
    items.push_back(one);
  }
  storeRecords(std::move(items));
  makeModel();
  model->start();
  open();
  ASSERT_EQ(model->items().size(), 10'000u);
  model->setSelectedItemIDs(UUIDSet(ids.begin(), ids.end()));
  EXPECT_EQ(ofSelection().ids(), ids);
  EXPECT_THAT(ofSelection().keepable(), ElementsAre(ids.back()));
  const auto on = enabled(ids);
  EXPECT_THAT(on, Contains(Command::keep)) << "for the last one's sake";
  EXPECT_THAT(on, Contains(Command::moveToTrash));
  EXPECT_THAT(on, Not(Contains(Command::markTemporary)));
  EXPECT_THAT(on, Not(Contains(Command::rename)));
}

// --- Decisions ---

TEST_F(ScreenshotActionsMenuTest, OfASavedAndAPendingOneThePendingOneIsMeant) {
  const UUID saved = arrivePermanent("saved.png"), pending = arrive("pending.png");
  EXPECT_TRUE(isEnabled(Command::keep, {saved, pending}));
  EXPECT_TRUE(isEnabled(Command::markTemporary, {saved, pending}));
  EXPECT_THAT(menu({saved, pending}).keepable(), ElementsAre(pending));
  EXPECT_THAT(menu({saved, pending}).temporaryAble(), ElementsAre(pending));
  menu({saved, pending}).markTemporary(TemporaryDuration::oneHour);
  EXPECT_EQ(stateOf(saved), State::permanent);
  EXPECT_EQ(stateOf(pending), State::temporary);
  EXPECT_EQ(item(pending).expiresAt, now() + 3600);
  perform(Command::keep, {saved, pending});
  EXPECT_EQ(stateOf(pending), State::permanent);
  EXPECT_FALSE(isEnabled(Command::keep, {saved, pending}));
}

TEST_F(ScreenshotActionsMenuTest, TemporaryOnesCanBeKeptAndNotMarkedAgain) {
  const UUID first = arriveTemporary("1.png"), second = arriveTemporary("2.png");
  EXPECT_TRUE(isEnabled(Command::keep, {first, second}));
  EXPECT_FALSE(isEnabled(Command::markTemporary, {first, second}));
  const auto before = item(first).expiresAt;
  menu({first, second}).markTemporary(TemporaryDuration::oneHour);
  EXPECT_EQ(item(first).expiresAt, before);
  perform(Command::keep, {first, second});
  EXPECT_EQ(stateOf(first), State::permanent);
  EXPECT_EQ(stateOf(second), State::permanent);
}

TEST_F(ScreenshotActionsMenuTest, NothingIsDecidedAboutAFileThatCannotBeReached) {
  const UUID far = arriveUnavailable("away.png"), here = arrive("here.png");
  EXPECT_FALSE(isEnabled(Command::keep, {far}));
  EXPECT_FALSE(isEnabled(Command::markTemporary, {far}));
  EXPECT_THAT(menu({far, here}).keepable(), ElementsAre(here));
  EXPECT_THAT(menu({far, here}).temporaryAble(), ElementsAre(here));
  perform(Command::keep, {far, here});
  EXPECT_EQ(stateOf(far), State::pending);
  EXPECT_EQ(stateOf(here), State::permanent);
}

TEST_F(ScreenshotActionsMenuTest, AnEvictedFileCanBeDecidedAbout) {
  const UUID id = arriveEvicted("shot.png");
  EXPECT_TRUE(isEnabled(Command::keep, {id}));
  EXPECT_TRUE(isEnabled(Command::markTemporary, {id}));
}

TEST_F(ScreenshotActionsMenuTest, MarkTemporaryItselfOpensAMenuAndDecidesNothing) {
  const UUID id = arrive("shot.png");
  perform(Command::markTemporary, {id});
  perform(Command::share, {id});
  EXPECT_EQ(stateOf(id), State::pending);
}

// --- Names and places ---

TEST_F(ScreenshotActionsMenuTest, WhatIsDoneToOneFileIsOffForSeveralAndForOneOutOfReach) {
  const UUID first = arrive("1.png"), second = arrive("2.png"), far = arriveUnavailable("away.png");
  for (const Command command : {Command::rename, Command::moveAndRename, Command::quickLook, Command::showInFinder}) {
    EXPECT_TRUE(isEnabled(command, {first}));
    EXPECT_FALSE(isEnabled(command, {first, second}));
    EXPECT_FALSE(isEnabled(command, {far}));
    perform(command, {first, second});
    perform(command, {far});
  }
  EXPECT_FALSE(*presentation->renameSession);
  EXPECT_THAT(chooser.saveStarts, IsEmpty());
  EXPECT_FALSE(*presentation->quickLookURL);
  EXPECT_THAT(fileManager.revealed, IsEmpty());
}

TEST_F(ScreenshotActionsMenuTest, AnEvictedFileHasANameAndAPlace) {
  const UUID id = arriveEvicted("shot.png");
  for (const Command command : {Command::rename, Command::moveAndRename, Command::quickLook, Command::showInFinder}) {
    EXPECT_TRUE(isEnabled(command, {id}));
  }
}

TEST_F(ScreenshotActionsMenuTest, RenameBeginsASession) {
  const UUID id = arrive("shot.png");
  perform(Command::rename, {id});
  EXPECT_EQ((*presentation->renameSession)->id, id);
  EXPECT_EQ((*presentation->renameSession)->text, QStringLiteral("shot"));
}

TEST_F(ScreenshotActionsMenuTest, MoveAndRenameAsksWhereTo) {
  const UUID id = arrive("shot.png");
  chooser.destination = elsewhere.appending("moved.png");
  perform(Command::moveAndRename, {id});
  EXPECT_EQ(chooser.saveStarts.size(), 1u);
  EXPECT_EQ(item(id).url, elsewhere.appending("moved.png"));
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(ScreenshotActionsMenuTest, QuickLookAndTheFileManagerGetTheFile) {
  const UUID id = arrive("shot.png");
  perform(Command::quickLook, {id});
  EXPECT_EQ(*presentation->quickLookURL, item(id).url);
  perform(Command::showInFinder, {id});
  EXPECT_THAT(fileManager.revealed, ElementsAre(item(id).url));
}

TEST_F(ScreenshotActionsMenuTest, ASuggestedNameIsUsableWhenItIsAnotherNameOfADescribedFile) {
  const UUID bare = arrive("bare.png");
  const UUID good = arriveDescribed("good.png", "Invoice");
  const UUID same = arriveDescribed("Same.png", " Same ");
  const UUID empty = arriveDescribed("empty.png", " /// ");
  const UUID far = arriveDescribed("away.png", "Elsewhere");
  makeUnavailable(far);
  unreachableFolders.clear();
  for (const UUID& id : {bare, same, empty, far}) EXPECT_FALSE(isEnabled(Command::useSuggestedName, {id}));
  EXPECT_TRUE(isEnabled(Command::useSuggestedName, {good}));
  EXPECT_THAT(menu({bare, good, same, empty, far}).renamable(), ElementsAre(good));
  perform(Command::useSuggestedName, {bare, good, same, empty, far});
  EXPECT_EQ(item(good).url, shots.appending("Invoice.png"));
  EXPECT_EQ(item(same).url, shots.appending("Same.png"));
  EXPECT_FALSE(*model->inboxError);
  EXPECT_FALSE(isEnabled(Command::useSuggestedName, {good})) << "it has it now";
}

TEST_F(ScreenshotActionsMenuTest, ASuggestedNameWithoutADescriptionIsNotUsed) {
  close();
  model.reset();
  ScreenshotItem half = storedItem(1, "half.png");
  half.suggestedName = "Invoice";
  half.analysisFailure = AnalysisFailureCode::contentBlocked;
  half.analysisRetryable = false;
  storeRecords({half});
  launchWatching();
  open();
  ASSERT_EQ(item(half.id).suggestedName, "Invoice");
  EXPECT_FALSE(isEnabled(Command::useSuggestedName, {half.id}));
}

TEST_F(ScreenshotActionsMenuTest, EachGetsItsOwnSuggestedName) {
  const UUID first = arriveDescribed("1.png", "Invoice"), second = arriveDescribed("2.png", "Letter");
  perform(Command::useSuggestedName, {first, second});
  EXPECT_EQ(item(first).url, shots.appending("Invoice.png"));
  EXPECT_EQ(item(second).url, shots.appending("Letter.png"));
}

// --- Contents ---

TEST_F(ScreenshotActionsMenuTest, OnlyWhatCanBeDownloadedIs) {
  const UUID here = arrive("here.png"), evicted = arriveEvicted("evicted.png");
  const UUID another = arriveEvicted("another.png", false), second = arriveEvicted("second.png");
  EXPECT_FALSE(isEnabled(Command::download, {here}));
  EXPECT_FALSE(isEnabled(Command::download, {another})) << "its client cannot be asked";
  EXPECT_TRUE(isEnabled(Command::download, {here, evicted}));
  EXPECT_THAT(menu({here, evicted, another, second}).downloadable(), ElementsAre(evicted, second));
  perform(Command::download, {here, evicted, another, second});
  executor.drain();
  EXPECT_THAT(downloads, UnorderedElementsAre(item(evicted).url, item(second).url));
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  EXPECT_FALSE(isEnabled(Command::download, {evicted}));
}

TEST_F(ScreenshotActionsMenuTest, TheOriginalIsSelectedWhileItIsInTheInbox) {
  const auto [crop, original] = arriveWithOriginal();
  EXPECT_FALSE(isEnabled(Command::showOriginal, {original}));
  EXPECT_FALSE(isEnabled(Command::showOriginal, {crop, original}));
  ASSERT_TRUE(isEnabled(Command::showOriginal, {crop}));
  model->setSelectedItemIDs({crop});
  ofSelection().perform(Command::showOriginal);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{original});
  makeUnavailable(crop);
  EXPECT_TRUE(isEnabled(Command::showOriginal, {crop})) << "only the record is needed";
  model->removeRecords({original});
  EXPECT_FALSE(isEnabled(Command::showOriginal, {crop}));
}

TEST_F(ScreenshotActionsMenuTest, WhatReadsThePictureNeedsItHere) {
  const UUID here = arrive("here.png"), other = arrive("other.png");
  const UUID evicted = arriveEvicted("evicted.png"), far = arriveUnavailable("away.png");
  const Command ofOne[] = {Command::copy, Command::extractWindow, Command::crop, Command::analyze};
  const Command ofSeveral[] = {Command::share, Command::extractText};
  for (const Command command : ofOne) {
    EXPECT_TRUE(isEnabled(command, {here}));
    EXPECT_FALSE(isEnabled(command, {here, other}));
    EXPECT_FALSE(isEnabled(command, {evicted}));
    EXPECT_FALSE(isEnabled(command, {far}));
  }
  for (const Command command : ofSeveral) {
    EXPECT_TRUE(isEnabled(command, {here}));
    EXPECT_TRUE(isEnabled(command, {evicted, here, far}));
    EXPECT_FALSE(isEnabled(command, {evicted, far}));
  }
  EXPECT_THAT(menu({evicted, other, far, here}).readable(), ElementsAre(other, here));
}

TEST_F(ScreenshotActionsMenuTest, CopyPutsThePictureOnTheClipboard) {
  const UUID id = arrive("shot.png");
  QImage picture(20, 20, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(item(id).url.displayPath()));
  perform(Command::copy, {id});
  executor.drain();
  ASSERT_EQ(pasteboard.items.size(), 1u);
}

TEST_F(ScreenshotActionsMenuTest, ACopyThatFailsSaysSoInTheInbox) {
  const UUID id = arrive("shot.png");
  deleteFile(item(id).url);
  perform(Command::copy, {id});
  executor.drain();
  EXPECT_THAT(pasteboard.items, IsEmpty());
  EXPECT_TRUE(*model->inboxError);
}

TEST_F(ScreenshotActionsMenuTest, WhileANameIsEditedTheKeysOfCopyAreTheFields) {
  const UUID id = arrive("shot.png"), other = arrive("other.png");
  presentation->beginRename(item(other));
  EXPECT_FALSE(isEnabled(Command::copy, {id}));
  perform(Command::copy, {id});
  executor.drain();
  EXPECT_FALSE(*model->inboxError);
  presentation->cancelRename();
  EXPECT_TRUE(isEnabled(Command::copy, {id}));
}

TEST_F(ScreenshotActionsMenuTest, TheTextOfOneIsShownAndOfSeveralRead) {
  const UUID first = arriveRead("1.png"), second = arrive("2.png"), evicted = arriveEvicted("3.png");
  perform(Command::extractText, {first});
  EXPECT_EQ((*presentation->recognizedText)->itemID, first);
  presentation->closeRecognizedText();
  analyzer.holdsReadings = true;
  perform(Command::extractText, {first, second, evicted});
  EXPECT_FALSE(*presentation->recognizedText);
  EXPECT_EQ(*presentation->textExtraction, (InboxPresentation::TextExtractionBatch{1, 0}));
  EXPECT_EQ(errorTitle(), QStringLiteral("Couldn’t Read Every Screenshot")) << "the one that is left out is told of";
}

TEST_F(ScreenshotActionsMenuTest, TheEditorBeginsWithOrWithoutWindows) {
  const UUID id = arrive("shot.png");
  perform(Command::extractWindow, {id});
  EXPECT_EQ(*presentation->editor, (InboxPresentation::EditorRequest{item(id), true}));
  presentation->closeEditor();
  perform(Command::crop, {id});
  EXPECT_EQ(*presentation->editor, (InboxPresentation::EditorRequest{item(id), false}));
}

// --- Analysis ---

TEST_F(ScreenshotActionsMenuTest, AnalyzeIsAnalyzeAgainWhereThereIsADescription) {
  const UUID first = arriveDescribed("1.png", "Invoice"), second = arriveDescribed("2.png", "Letter");
  const auto again = menu({first}).action(Command::analyze);
  EXPECT_EQ(again.title, QStringLiteral("Analyze Again"));
  EXPECT_EQ(again.symbol, QStringLiteral("arrow.clockwise"));
  EXPECT_TRUE(again.isEnabled);
  EXPECT_EQ(menu({first, second}).action(Command::analyze).title, QStringLiteral("Analyze"));
}

TEST_F(ScreenshotActionsMenuTest, AnalyzeDescribesAndDescribesAnew) {
  const UUID id = arriveDescribed("shot.png", "Invoice");
  analyzer.immediateDescriptions.push_back(ScreenshotAnalysisResult{QStringLiteral("A letter."), {}});
  perform(Command::analyze, {id});
  EXPECT_EQ(item(id).imageDescription, "A letter.");
}

TEST_F(ScreenshotActionsMenuTest, AnalyzeWaitsForTheModelTheSettingAndTheOneThatRuns) {
  const UUID id = arrive("shot.png");
  analyzer.holdsDescriptions = true;
  perform(Command::analyze, {id});
  EXPECT_FALSE(isEnabled(Command::analyze, {id})) << "it runs";
  FakeAnalyzer::answer(analyzer.descriptions.back(),
                       DescribeOutcome(AnalysisError::unavailable(AnalysisError::Unavailability::modelNotReady)));
  EXPECT_FALSE(isEnabled(Command::analyze, {id})) << "there is no model";
  systemEvents.didBecomeActive();
  executor.drain();
  model->cancelAllAnalysis();
  EXPECT_TRUE(isEnabled(Command::analyze, {id}));
  model->setAnalyzeScreenshots(false);
  EXPECT_FALSE(isEnabled(Command::analyze, {id})) << "it is off";
}

// --- Going ---

TEST_F(ScreenshotActionsMenuTest, RemovingFromTheInboxLeavesTheFileAndIsSaved) {
  const UUID id = arrive("shot.png"), other = arrive("other.png");
  EXPECT_FALSE(isEnabled(Command::removeFromInbox, {id, other}));
  perform(Command::removeFromInbox, {id, other});
  EXPECT_EQ(model->items().size(), 2u);
  perform(Command::removeFromInbox, {id});
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(fileExists(shots.appending("shot.png")));
  EXPECT_EQ(savedRecords().size(), 1u);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(ScreenshotActionsMenuTest, WhatIsOutOfReachCanBeRemovedAndAskedToBeDeleted) {
  model->setShowsDeleteImmediately(true);
  const UUID far = arriveUnavailable("away.png");
  EXPECT_THAT(enabled({far}), ElementsAre(Command::removeFromInbox, Command::moveToTrash, Command::deleteImmediately));
  perform(Command::removeFromInbox, {far});
  EXPECT_FALSE(hasRecord(far));
}

TEST_F(ScreenshotActionsMenuTest, DeletionIsAskedForWithItsReason) {
  model->setShowsDeleteImmediately(true);
  const UUID first = arrive("1.png"), second = arrive("2.png");
  perform(Command::moveToTrash, {first});
  EXPECT_EQ(*presentation->deletionCandidate, item(first));
  EXPECT_EQ(*presentation->deletionReason, Reason::chosen);
  presentation->cancelDeletion();
  perform(Command::deleteImmediately, {second, first});
  EXPECT_EQ((*presentation->batchDeletion)->items, itemsOf({second, first}));
  EXPECT_EQ(*presentation->deletionReason, Reason::deleteImmediately);
  EXPECT_EQ(files.calls(), 0) << "nothing goes before the answer";
}

}  // namespace
}  // namespace quillmere::testing
