#include "inbox/InboxPresentation.h"

#include <QtWidgets/QWidget>

#include "inbox/PresentationFixture.h"
#include "inbox/RenameSessionGuard.h"

namespace quillmere::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Reason = AppModel::DisposalReason;
using Session = InboxPresentation::RenameSession;
using Batch = InboxPresentation::TextExtractionBatch;

class InboxPresentationTest : public PresentationFixture {};

TEST_F(InboxPresentationTest, ItBeginsWithNothing) {
  EXPECT_FALSE(*presentation->renameSession);
  EXPECT_FALSE(*presentation->deletionCandidate);
  EXPECT_FALSE(*presentation->batchDeletion);
  EXPECT_FALSE(*presentation->editor);
  EXPECT_FALSE(*presentation->recognizedText);
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  EXPECT_FALSE(*presentation->quickLookURL);
  EXPECT_EQ(*presentation->filter, InboxFilter());
  EXPECT_EQ(presentation->filter->scope, InboxFilter::Scope::all);
  EXPECT_EQ(*presentation->findRequest, 0);
  EXPECT_EQ(*presentation->deletionReason, Reason::chosen);
  EXPECT_FALSE(*presentation->textExtraction);
  EXPECT_FALSE(presentation->isShowingModal());
}

TEST_F(InboxPresentationTest, WhatChangesIsToldAfterwardsAndOnlyThen) {
  const FileURL shot = shots.appending("shot.png");
  std::optional<FileURL> seen;
  const Connection connection = presentation->changed.connect([&](const InboxChange&) {
    if (*presentation->quickLookURL) seen = **presentation->quickLookURL;
  });
  presentation->setQuickLookURL(shot);
  EXPECT_EQ(seen, shot);
  presentation->setQuickLookURL(shot);
  presentation->setFilter({});
  EXPECT_THAT(told, ElementsAre(InboxField::quickLookURL));
  InboxFilter filter;
  filter.text = QStringLiteral("invoice");
  presentation->setFilter(filter);
  EXPECT_EQ(*presentation->filter, filter);
  presentation->setQuickLookURL(std::nullopt);
  EXPECT_THAT(told, ElementsAre(InboxField::quickLookURL, InboxField::filter, InboxField::quickLookURL));
}

TEST_F(InboxPresentationTest, EachFindAsksForTheKeyboard) {
  presentation->find();
  presentation->find();
  EXPECT_EQ(*presentation->findRequest, 2);
  EXPECT_THAT(told, ElementsAre(InboxField::findRequest, InboxField::findRequest));
}

TEST_F(InboxPresentationTest, WithASheetUpNothingIsSought) {
  presentation->edit(item(arrive("shot.png")), false);
  presentation->find();
  EXPECT_EQ(*presentation->findRequest, 0);
}

TEST_F(InboxPresentationTest, FourSheetsCanBeUp) {
  const UUID first = arriveRead("1.png"), second = arrive("2.png");
  const auto isModal = [&] { return presentation->isShowingModal(); };
  presentation->requestDeletion({item(first)}, Reason::chosen);
  EXPECT_TRUE(isModal());
  presentation->cancelDeletion();
  EXPECT_FALSE(isModal());
  presentation->requestDeletion(itemsOf({first, second}), Reason::chosen);
  EXPECT_TRUE(isModal());
  presentation->cancelDeletion();
  EXPECT_FALSE(isModal());
  presentation->edit(item(first), true);
  EXPECT_TRUE(isModal());
  presentation->closeEditor();
  EXPECT_FALSE(isModal());
  presentation->showRecognizedText(item(first));
  EXPECT_TRUE(isModal());
  presentation->closeRecognizedText();
  EXPECT_FALSE(isModal());
  for (const InboxField sheet :
       {InboxField::deletionCandidate, InboxField::batchDeletion, InboxField::editor, InboxField::recognizedText}) {
    EXPECT_EQ(toldOf(sheet), 2u);
  }
}

TEST_F(InboxPresentationTest, NeitherARenameNorQuickLookNorAReadingIsASheet) {
  const UUID id = arrive("shot.png");
  analyzer.holdsReadings = true;
  presentation->beginRename(item(id));
  presentation->setQuickLookURL(item(id).url);
  presentation->showRecognizedText(item(id));
  presentation->extractText({item(arrive("other.png"))});
  EXPECT_FALSE(presentation->isShowingModal());
}

TEST_F(InboxPresentationTest, OneSheetIsUpAtATime) {
  const UUID first = arriveRead("1.png"), second = arriveRead("2.png");
  presentation->edit(item(first), true);
  EXPECT_EQ((*presentation->editor)->item, item(first));
  EXPECT_TRUE((*presentation->editor)->detectWindow);
  presentation->edit(item(second), false);
  presentation->requestDeletion({item(second)}, Reason::deleteImmediately);
  presentation->requestDeletion(itemsOf({first, second}), Reason::deleteImmediately);
  presentation->showRecognizedText(item(second));
  EXPECT_EQ((*presentation->editor)->item, item(first));
  EXPECT_FALSE(*presentation->deletionCandidate);
  EXPECT_FALSE(*presentation->batchDeletion);
  EXPECT_FALSE(*presentation->recognizedText);
  EXPECT_EQ(*presentation->deletionReason, Reason::chosen);
  presentation->closeEditor();
  finish(model->disposeItem(item(second), ErrorScope::inbox, Reason::chosen));
  EXPECT_FALSE(hasRecord(second)) << "what was not asked is not protected";
}

TEST_F(InboxPresentationTest, SelectingShowsARecordThatTheFilterHides) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  model->setSelectedItemIDs({first, second});
  for (const auto shown : {InboxFilter::Scope::saved, InboxFilter::Scope::unavailable, InboxFilter::Scope::all}) {
    InboxFilter filter;
    filter.scope = shown;
    filter.text = QStringLiteral("nothing is called this");
    presentation->setFilter(filter);
    presentation->select(first);
    EXPECT_EQ(*model->selectedItemIDs, UUIDSet{first});
    EXPECT_EQ(presentation->filter->apply({model->items().find(first)}, *model->unavailableItemIDs).size(), 1u);
  }
}

TEST_F(InboxPresentationTest, SelectingLeavesAFilterThatShowsTheRecord) {
  const UUID id = arrive("invoice.png");
  InboxFilter filter;
  filter.scope = InboxFilter::Scope::pending;
  filter.text = QStringLiteral("invoice");
  presentation->setFilter(filter);
  presentation->select(id);
  EXPECT_EQ(*presentation->filter, filter);
  presentation->select(uuid(404));
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{id}) << "what is no record is not selected";
}

// --- Renaming in place ---

class InboxRename : public PresentationFixture {
 protected:
  const Session& begin(const UUID& id) {
    presentation->beginRename(item(id));
    return **presentation->renameSession;
  }
  /// What the field does at Return.
  bool enter(const QString& text) {
    presentation->setRenameText(text);
    return finish(presentation->commitRename(Session(**presentation->renameSession)));
  }
};

TEST_F(InboxRename, ASessionHoldsTheNameWithoutItsExtension) {
  const UUID id = arrive("shot.of.a.page.png");
  const Session first = begin(id);
  EXPECT_EQ(first.id, id);
  EXPECT_EQ(first.name, QStringLiteral("shot.of.a.page"));
  EXPECT_EQ(first.text, first.name);
  EXPECT_EQ(first.url, item(id).url);
  EXPECT_NE(begin(id).token, first.token) << "new for each session";
  EXPECT_EQ(toldOf(InboxField::renameSession), 2u);
}

TEST_F(InboxRename, WhatIsTypedStandsInTheSession) {
  begin(arrive("shot.png"));
  presentation->setRenameText(QStringLiteral("Inv"));
  EXPECT_EQ((*presentation->renameSession)->text, QStringLiteral("Inv"));
  EXPECT_EQ((*presentation->renameSession)->name, QStringLiteral("shot"));
  presentation->cancelRename();
  presentation->setRenameText(QStringLiteral("Invoice"));
  EXPECT_FALSE(*presentation->renameSession) << "no field comes up by itself";
}

TEST_F(InboxRename, ReturnRenamesAndSaysSo) {
  const UUID id = arrive("shot.png");
  begin(id);
  EXPECT_TRUE(enter(QStringLiteral("Invoice")));
  EXPECT_FALSE(*presentation->renameSession);
  EXPECT_EQ(item(id).url, shots.appending("Invoice.png"));
  EXPECT_TRUE(fileExists(shots.appending("Invoice.png")));
  EXPECT_THAT(announcer.said, Contains(Announcement{QStringLiteral("Renamed to Invoice."), AnnouncementPriority::low}));
}

TEST_F(InboxRename, TheSessionEndsBeforeTheFileIsRenamed) {
  const UUID id = arrive("shot.png");
  begin(id);
  bool wasOpen = true;
  files.onMove = [&](const FileURL&, const FileURL&) { wasOpen = presentation->renameSession->has_value(); };
  enter(QStringLiteral("Invoice"));
  EXPECT_EQ(files.moveCalls, 1);
  EXPECT_FALSE(wasOpen);
}

TEST_F(InboxRename, TheNameThatItGotIsSaid) {
  const UUID id = arrive("shot.png");
  writeFile(shots.appending("Invoice.png"), "another");
  begin(id);
  EXPECT_TRUE(enter(QStringLiteral(" Invoice ")));
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Renamed to Invoice (1).")));
}

TEST_F(InboxRename, ATextThatGivesNoOtherNameRenamesNothingAndSaysNothing) {
  const UUID id = arrive("shot.png");
  announcer.said.clear();
  for (const char* text : {"shot", "", "   ", "///", " shot "}) {
    begin(id);
    EXPECT_FALSE(enter(QString::fromUtf8(text))) << text;
    EXPECT_FALSE(*presentation->renameSession);
  }
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
  EXPECT_THAT(announcer.said, IsEmpty());
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxRename, EscapeKeepsTheName) {
  const UUID id = arrive("shot.png");
  begin(id);
  presentation->setRenameText(QStringLiteral("Invoice"));
  const Session session = **presentation->renameSession;
  presentation->cancelRename();
  EXPECT_FALSE(finish(presentation->commitRename(session))) << "a field that goes loses the keyboard, too";
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(InboxRename, OnlyTheSessionThatIsOpenCounts) {
  const UUID id = arrive("shot.png");
  Session old = begin(id);
  old.text = QStringLiteral("Old");
  const Session open = begin(id);
  EXPECT_FALSE(finish(presentation->commitRename(old)));
  EXPECT_EQ(**presentation->renameSession, open) << "it goes on";
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(InboxRename, AFileThatIsRenamedFromElsewhereEndsIt) {
  QWidget window;
  RenameSessionGuard guard(*presentation, window);
  const UUID id = arrive("shot.png");
  Session session = begin(id);
  session.text = QStringLiteral("Typed");
  ASSERT_TRUE(finish(model->rename(id, QStringLiteral("Renamed"), ErrorScope::popup)));
  EXPECT_FALSE(*presentation->renameSession);
  EXPECT_FALSE(finish(presentation->commitRename(session)));
  EXPECT_EQ(item(id).url, shots.appending("Renamed.png"));
}

TEST_F(InboxRename, AFileThatIsMovedEndsIt) {
  QWidget window;
  RenameSessionGuard guard(*presentation, window);
  const UUID id = arrive("shot.png");
  begin(id);
  finish(model->move(id, elsewhere.appending("shot.png")));
  ASSERT_EQ(item(id).url, elsewhere.appending("shot.png"));
  EXPECT_FALSE(*presentation->renameSession);
}

TEST_F(InboxRename, ADiskThatGoesAwayEndsIt) {
  QWidget window;
  RenameSessionGuard guard(*presentation, window);
  begin(arrive("shot.png"));
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  EXPECT_FALSE(*presentation->renameSession);
}

TEST_F(InboxRename, ARecordThatGoesEndsIt) {
  QWidget window;
  RenameSessionGuard guard(*presentation, window);
  const UUID id = arrive("shot.png");
  begin(id);
  model->removeRecords({id});
  EXPECT_FALSE(*presentation->renameSession);
}

TEST_F(InboxRename, ADecisionAndOtherRecordsLeaveItOpen) {
  QWidget window;
  RenameSessionGuard guard(*presentation, window);
  const UUID id = arrive("shot.png");
  const UUID other = arrive("other.png");
  const Session session = begin(id);
  model->keepBatch({id});
  finish(model->rename(other, QStringLiteral("Renamed"), ErrorScope::inbox));
  model->removeRecords({other});
  arrive("third.png");
  EXPECT_EQ(*presentation->renameSession, session);
}

TEST_F(InboxRename, AFailureIsShownAndTheFieldStaysAway) {
  const UUID id = arrive("shot.png");
  begin(id);
  announcer.said.clear();
  files.refuse(item(id).url);
  EXPECT_FALSE(enter(QStringLiteral("Invoice")));
  EXPECT_FALSE(*presentation->renameSession);
  EXPECT_EQ(errorTitle(), QStringLiteral("Couldn’t Rename Screenshot"));
  EXPECT_EQ(item(id).url, shots.appending("shot.png"));
  EXPECT_THAT(announcer.said, IsEmpty());
}

TEST_F(InboxRename, ANameThatIsNoTextStaysUnlessItIsWrittenAnew) {
  const UUID id = arrive("shot \xff.png");
  begin(id);
  EXPECT_FALSE(enter(QString((*presentation->renameSession)->name)));
  EXPECT_EQ(item(id).url, shots.appending("shot \xff.png"));
  EXPECT_EQ(files.calls(), 0);
  begin(id);
  EXPECT_TRUE(enter(QStringLiteral("Invoice")));
  EXPECT_EQ(item(id).url, shots.appending("Invoice.png"));
}

TEST_F(InboxRename, AnotherWindowHasASessionOfItsOwn) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  InboxPresentation other(*model, services);
  const Session mine = begin(first);
  other.beginRename(item(second));
  Session others = **other.renameSession;
  EXPECT_FALSE(finish(presentation->commitRename(others)));
  others.text = QStringLiteral("Invoice");
  EXPECT_TRUE(finish(other.commitRename(others)));
  EXPECT_EQ(*presentation->renameSession, mine);
}

// --- Deletion ---

class InboxDeletion : public PresentationFixture {
 protected:
  void ask(const std::vector<UUID>& ids, Reason reason = Reason::chosen) {
    presentation->requestDeletion(itemsOf(ids), reason);
  }
  /// Whether a disposal from elsewhere is refused because the record is in use.
  bool isProtected(const UUID& id) {
    finish(model->disposeItem(item(id), ErrorScope::popup, Reason::chosen));
    return *model->promptError && (*model->promptError)->title == QStringLiteral("Screenshot Is in Use") &&
           hasRecord(id);
  }
  void expectGone(const std::vector<UUID>& ids) {
    for (const UUID& id : ids) EXPECT_FALSE(hasRecord(id));
  }
};

TEST_F(InboxDeletion, OneIsACandidate) {
  const UUID id = arrive("shot.png");
  ask({id}, Reason::deleteImmediately);
  EXPECT_EQ(*presentation->deletionCandidate, item(id));
  EXPECT_FALSE(*presentation->batchDeletion);
  EXPECT_EQ(*presentation->deletionReason, Reason::deleteImmediately);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(InboxDeletion, SeveralAreARequestWithAFreshId) {
  const std::vector<UUID> ids{arrive("1.png"), arrive("2.png")};
  ask(ids);
  ASSERT_TRUE(*presentation->batchDeletion);
  const auto first = **presentation->batchDeletion;
  EXPECT_EQ(first.items, itemsOf(ids)) << "in their order";
  EXPECT_FALSE(*presentation->deletionCandidate);
  presentation->cancelDeletion();
  ask(ids);
  EXPECT_NE((*presentation->batchDeletion)->id, first.id);
}

TEST_F(InboxDeletion, OfNothingNothingIsAsked) {
  presentation->requestDeletion({}, Reason::deleteImmediately);
  EXPECT_FALSE(presentation->isShowingModal());
  EXPECT_EQ(*presentation->deletionReason, Reason::chosen);
  presentation->confirmDeletion();
  executor.drain();
  presentation->cancelDeletion();
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(InboxDeletion, TheReasonAndTheSettingDecideWhetherItIsForGood) {
  const UUID id = arrive("shot.png");
  EXPECT_FALSE(presentation->isDeletingForGood());
  ask({id}, Reason::deleteImmediately);
  EXPECT_TRUE(presentation->isDeletingForGood());
  presentation->cancelDeletion();
  ask({id}, Reason::chosen);
  EXPECT_FALSE(presentation->isDeletingForGood());
  model->setDeletesChosenImmediately(true);
  EXPECT_TRUE(presentation->isDeletingForGood());
}

TEST_F(InboxDeletion, ConfirmingDisposesOfAllForTheReason) {
  const std::vector<UUID> one{arrive("1.png")};
  ask(one);
  presentation->confirmDeletion();
  executor.drain();
  expectGone(one);
  EXPECT_TRUE(isInTrashFolder("1.png"));
  EXPECT_FALSE(presentation->isShowingModal());

  const std::vector<UUID> several{arrive("2.png"), arrive("3.png"), arrive("4.png")};
  ask(several);
  presentation->confirmDeletion();
  executor.drain();
  expectGone(several);
  EXPECT_EQ(files.trashCalls, 4);
  EXPECT_EQ(files.removeCalls, 0);

  const std::vector<UUID> forGood{arrive("5.png"), arrive("6.png")};
  ask(forGood, Reason::deleteImmediately);
  presentation->confirmDeletion();
  executor.drain();
  expectGone(forGood);
  EXPECT_EQ(files.trashCalls, 4);
  EXPECT_EQ(files.removeCalls, 2);
  EXPECT_FALSE(presentation->isShowingModal());
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxDeletion, CancellingTouchesNothing) {
  const std::vector<UUID> ids{arrive("1.png"), arrive("2.png")};
  ask(ids, Reason::deleteImmediately);
  presentation->cancelDeletion();
  EXPECT_FALSE(presentation->isShowingModal());
  presentation->confirmDeletion();
  executor.drain();
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(model->items().size(), 2u);
}

TEST_F(InboxDeletion, AskingEndsARename) {
  const UUID id = arrive("shot.png");
  presentation->beginRename(item(id));
  ask({id});
  EXPECT_FALSE(*presentation->renameSession);
}

TEST_F(InboxDeletion, UntilTheAnswerNothingDisposesOfThem) {
  const UUID first = arrive("1.png"), second = arrive("2.png"), third = arrive("3.png");
  ask({first});
  EXPECT_TRUE(isProtected(first));
  presentation->cancelDeletion();
  ask({first, second});
  EXPECT_TRUE(isProtected(first));
  EXPECT_TRUE(isProtected(second));
  EXPECT_FALSE(isProtected(third)) << "it was not asked about";
  EXPECT_FALSE(hasRecord(third));
  presentation->cancelDeletion();
  finish(model->disposeItem(item(second), ErrorScope::inbox, Reason::chosen));
  EXPECT_FALSE(hasRecord(second));
}

TEST_F(InboxDeletion, UntilTheAnswerTheirTimeDoesNotRunOut) {
  const UUID first = arriveTemporary("1.png", TemporaryDuration::oneMinute);
  const UUID second = arriveTemporary("2.png", TemporaryDuration::oneMinute);
  ask({first, second});
  advance(90);
  EXPECT_TRUE(hasRecord(first));
  EXPECT_TRUE(hasRecord(second));
  presentation->cancelDeletion();
  advance(60);
  EXPECT_FALSE(hasRecord(first));
  EXPECT_FALSE(hasRecord(second));
}

TEST_F(InboxDeletion, EachAnswerTakesBackOneProtectionAndNoOthers) {
  const std::function<void()> answers[] = {[&] { presentation->cancelDeletion(); },
                                           [&] { presentation->confirmDeletion(); }, [&] { presentation->close(); },
                                           [&] { close(); }};
  for (const bool isSeveral : {false, true}) {
    for (const auto& answer : answers) {
      if (!presentation) open();
      const UUID id = arrive("shot.png"), other = arrive("other.png");
      model->protect(id);  // the save panel has it open
      if (isSeveral) {
        ask({id, other});
      } else {
        ask({id});
      }
      answer();
      if (presentation) presentation->cancelDeletion();
      EXPECT_TRUE(isProtected(id)) << "still by the other";
      model->unprotect(id);
      EXPECT_FALSE(isProtected(id)) << "and by nothing else";
      if (hasRecord(other)) finish(model->disposeItem(item(other), ErrorScope::inbox, Reason::chosen));
      expectGone({id, other});
      std::filesystem::remove_all(trash.path());
    }
  }
}

TEST_F(InboxDeletion, ClosingTheWindowIsNoAnswer) {
  const UUID id = arrive("shot.png");
  ask({id}, Reason::deleteImmediately);
  close();
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(InboxDeletion, AFileThatWasRewrittenUnderTheQuestionStays) {
  for (const Reason reason : {Reason::chosen, Reason::deleteImmediately}) {
    const UUID id = arrive("shot.png");
    ask({id}, reason);
    writeFile(shots.appending("shot.png"), "another picture in the same file");
    presentation->confirmDeletion();
    executor.drain();
    EXPECT_EQ(files.calls(), 0);
    EXPECT_TRUE(hasRecord(id));
    EXPECT_EQ(errorTitle(), QStringLiteral("Screenshot Has Changed"));
    EXPECT_FALSE(presentation->isShowingModal());
    model->removeRecords({id});
  }
}

TEST_F(InboxDeletion, AfterThatTheNextAnswerCounts) {
  const UUID id = arrive("shot.png");
  ask({id});
  writeFile(shots.appending("shot.png"), "another picture in the same file");
  presentation->confirmDeletion();
  executor.drain();
  ask({id});
  presentation->confirmDeletion();
  executor.drain();
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(InboxDeletion, WhenDeletingForGoodEachOfSeveralIsLookedAt) {
  const UUID first = arrive("1.png"), second = arrive("2.png"), third = arrive("3.png");
  ask({first, second, third}, Reason::deleteImmediately);
  writeFile(shots.appending("1.png"), "another picture in the same file");
  writeFile(shots.appending("3.png"), "another picture in the same file, too");
  presentation->confirmDeletion();
  executor.drain();
  EXPECT_TRUE(fileExists(shots.appending("1.png")));
  EXPECT_TRUE(fileExists(shots.appending("3.png")));
  EXPECT_EQ(files.removeCalls, 1);
  expectGone({second});
  EXPECT_EQ(errorMessage(), QStringLiteral("2 screenshots have changed since they were shown. Look at them again, then "
                                           "decide. They are still in Quillmere."));
}

TEST_F(InboxDeletion, OutOfTrashARewrittenOneOfSeveralCanBeHadBack) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  ask({first, second});
  writeFile(shots.appending("1.png"), "another picture in the same file");
  presentation->confirmDeletion();
  executor.drain();
  expectGone({first, second});
  EXPECT_TRUE(isInTrashFolder("1.png"));
}

TEST_F(InboxDeletion, AReplacedOneOfSeveralStays) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  ask({first, second});
  identities[shots.appending("1.png").path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  presentation->confirmDeletion();
  executor.drain();
  EXPECT_TRUE(hasRecord(first));
  expectGone({second});
}

TEST_F(InboxDeletion, ARenameUnderTheQuestionIsNoChangeOfTheFile) {
  const UUID id = arrive("shot.png");
  ask({id}, Reason::deleteImmediately);
  ASSERT_TRUE(finish(model->rename(id, QStringLiteral("Renamed"), ErrorScope::popup)));
  presentation->confirmDeletion();
  executor.drain();
  expectGone({id});
  EXPECT_FALSE(fileExists(shots.appending("Renamed.png")));
}

TEST_F(InboxDeletion, RecordsThatWentMeanwhileAreNotTouched) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  ask({first}, Reason::deleteImmediately);
  model->removeRecords({first});
  presentation->confirmDeletion();
  executor.drain();
  EXPECT_EQ(files.calls(), 0);
  const UUID third = arrive("3.png");
  ask({second, third}, Reason::deleteImmediately);
  model->removeRecords({second});
  presentation->confirmDeletion();
  executor.drain();
  expectGone({third});
  EXPECT_TRUE(fileExists(shots.appending("1.png")));
  EXPECT_TRUE(fileExists(shots.appending("2.png")));
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxDeletion, WhatSettingsMadeOfTheQuestionIsAskedAnew) {
  const std::vector<UUID> ids{arrive("1.png"), arrive("2.png")};
  ask(ids);
  const UUID asked = (*presentation->batchDeletion)->id;
  model->setDeletesChosenImmediately(true);
  presentation->confirmDeletion();
  executor.drain();
  EXPECT_EQ(files.calls(), 0) << "a move to Trash was agreed to";
  ASSERT_TRUE(*presentation->batchDeletion);
  EXPECT_NE((*presentation->batchDeletion)->id, asked);
  EXPECT_TRUE(isProtected(ids[0]));
  presentation->confirmDeletion();
  executor.drain();
  expectGone(ids);
  EXPECT_EQ(files.removeCalls, 2);
}

// --- Extract Text: one ---

class InboxText : public PresentationFixture {
 protected:
  void answer(size_t reading, const char* text) {
    FakeAnalyzer::answer(analyzer.readings.at(reading), text ? std::optional(QString::fromUtf8(text)) : std::nullopt);
  }
  /// Those whose file the analyzer was asked to read, in order, and is not reading for anyone else.
  std::vector<std::string> asked() const {
    std::vector<std::string> names;
    for (const auto& reading : analyzer.readings) names.push_back(reading->url.lastPathComponent());
    return names;
  }
  void extract(const std::vector<UUID>& ids) { presentation->extractText(itemsOf(ids)); }
  void show(const UUID& id) { presentation->showRecognizedText(item(id)); }
  std::optional<UUID> sheet() const {
    return *presentation->recognizedText ? std::optional((*presentation->recognizedText)->itemID) : std::nullopt;
  }
  std::optional<Batch> progress() const { return *presentation->textExtraction; }
  size_t announcements() const {
    return static_cast<size_t>(std::count_if(announcer.said.begin(), announcer.said.end(), [](const auto& one) {
      return one.text.startsWith(QStringLiteral("Read the text"));
    }));
  }
};

TEST_F(InboxText, TextThatIsThereIsShownAndNothingIsRead) {
  const UUID id = arriveRead("shot.png");
  analyzer.read.clear();
  show(id);
  EXPECT_EQ(sheet(), id);
  EXPECT_THAT(analyzer.read, IsEmpty());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
}

TEST_F(InboxText, ARecordIsAskedForItsTextOfNow) {
  const UUID id = arrive("shot.png");
  const ScreenshotItem before = item(id);
  analyzer.text = QStringLiteral("Total 12");
  model->startAnalysis(id);
  analyzer.read.clear();
  presentation->showRecognizedText(before);
  EXPECT_EQ(sheet(), id);
  EXPECT_THAT(analyzer.read, IsEmpty());
}

TEST_F(InboxText, TextIsReadAndThenShown) {
  const UUID id = arrive("shot.png");
  analyzer.holdsReadings = true;
  show(id);
  EXPECT_THAT(*presentation->extractingTextIDs, UnorderedElementsAre(id));
  EXPECT_FALSE(sheet());
  show(id);
  EXPECT_EQ(analyzer.readings.size(), 1u) << "one reading a screenshot";
  answer(0, "Total 12");
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  EXPECT_EQ(sheet(), id);
  EXPECT_EQ(item(id).recognizedText, "Total 12");
}

TEST_F(InboxText, SeveralAreReadOneByOneBesideEachOther) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  show(first);
  show(second);
  EXPECT_THAT(*presentation->extractingTextIDs, UnorderedElementsAre(first, second));
  answer(1, "two");
  EXPECT_EQ(sheet(), second);
  EXPECT_THAT(*presentation->extractingTextIDs, UnorderedElementsAre(first));
}

TEST_F(InboxText, AReadingThatFailsShowsNothing) {
  const UUID id = arrive("shot.png");
  analyzer.holdsReadings = true;
  show(id);
  answer(0, nullptr);
  EXPECT_FALSE(sheet());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  show(id);
  EXPECT_EQ(analyzer.readings.size(), 2u) << "it can be tried again";
}

TEST_F(InboxText, AReadingThatIsCancelledShowsNothing) {
  const UUID id = arrive("shot.png");
  analyzer.holdsReadings = true;
  show(id);
  model->cancelAnalysis(id);
  EXPECT_FALSE(sheet());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
}

TEST_F(InboxText, TextIsNotShownOverAnotherSheet) {
  const UUID id = arrive("shot.png");
  analyzer.holdsReadings = true;
  show(id);
  presentation->edit(item(id), false);
  answer(0, "Total 12");
  EXPECT_FALSE(sheet());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  presentation->closeEditor();
  show(id);
  EXPECT_EQ(sheet(), id) << "it stands in the record";
}

TEST_F(InboxText, WhatIsNoRecordIsNotRead) {
  const UUID id = arrive("shot.png");
  const ScreenshotItem gone = item(id);
  model->removeRecords({id});
  analyzer.read.clear();
  presentation->showRecognizedText(gone);
  presentation->extractText({gone, gone});
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  EXPECT_THAT(analyzer.read, IsEmpty());
  EXPECT_FALSE(progress());
}

TEST_F(InboxText, TheWindowMayGoWhileOneIsRead) {
  const UUID id = arrive("shot.png");
  analyzer.holdsReadings = true;
  show(id);
  close();
  answer(0, "Total 12");
  EXPECT_EQ(item(id).recognizedText, "Total 12");
}

// --- Extract Text: several ---

TEST_F(InboxText, SeveralAreReadOneAfterAnother) {
  const UUID first = arrive("1.png"), second = arrive("2.png"), third = arrive("3.png");
  analyzer.holdsReadings = true;
  extract({second, third, first});
  EXPECT_EQ(progress(), (Batch{3, 0}));
  EXPECT_THAT(*presentation->extractingTextIDs, UnorderedElementsAre(first, second, third));
  EXPECT_THAT(asked(), ElementsAre("2.png"));
  answer(0, "two");
  EXPECT_EQ(progress(), (Batch{3, 1}));
  EXPECT_THAT(*presentation->extractingTextIDs, UnorderedElementsAre(first, third));
  EXPECT_THAT(asked(), ElementsAre("2.png", "3.png"));
  answer(1, "three");
  EXPECT_EQ(progress(), (Batch{3, 2}));
  EXPECT_EQ(announcements(), 0u);
  answer(2, "one");
  EXPECT_THAT(asked(), ElementsAre("2.png", "3.png", "1.png"));
  EXPECT_EQ(analyzer.mostReading, 1);
  EXPECT_FALSE(progress());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  EXPECT_FALSE(sheet()) << "the text of several is not shown";
  EXPECT_EQ(item(third).recognizedText, "three");
  EXPECT_EQ(announcer.said.back(),
            (Announcement{QStringLiteral("Read the text in 3 screenshots."), AnnouncementPriority::low}));
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxText, ItIsOverWhenItIsSaid) {
  extract({arrive("1.png"), arrive("2.png")});
  EXPECT_FALSE(progress());
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Read the text in 2 screenshots.")));
  extract({arrive("3.png"), arriveRead("4.png")});
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Read the text in 1 screenshot.")));
}

TEST_F(InboxText, WithoutTextToFindItCountsAsRead) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  extract({first, second});
  answer(0, nullptr);
  EXPECT_EQ(progress(), (Batch{2, 1}));
  answer(1, nullptr);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Read the text in 2 screenshots.")));
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxText, WhatHasItsTextIsLeftOut) {
  const UUID first = arrive("1.png"), read = arriveRead("2.png"), third = arrive("3.png");
  analyzer.holdsReadings = true;
  extract({first, read, third});
  EXPECT_EQ(progress(), (Batch{2, 0}));
  EXPECT_FALSE(presentation->extractingTextIDs->contains(read));
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxText, WhenAllHaveTheirTextNothingHappens) {
  const std::vector<UUID> ids{arriveRead("1.png"), arriveRead("2.png")};
  told.clear();
  announcer.said.clear();
  analyzer.read.clear();
  extract(ids);
  EXPECT_THAT(told, IsEmpty());
  EXPECT_THAT(announcer.said, IsEmpty());
  EXPECT_THAT(analyzer.read, IsEmpty());
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxText, WhatCannotBeReadIsToldAtTheStart) {
  const UUID evicted = arriveEvicted("evicted.png");
  const UUID unavailable = arriveUnavailable("unavailable.png");
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  extract({unavailable, first, evicted, second});
  EXPECT_EQ(progress(), (Batch{2, 0}));
  EXPECT_EQ(errorTitle(), QStringLiteral("Couldn’t Read Every Screenshot"));
  EXPECT_EQ(errorMessage(),
            QStringLiteral("1 screenshot has an image that is in the cloud rather than on this computer. 1 screenshot "
                           "is on a disk or in a folder that isn’t available. Their text wasn’t read."));
  answer(0, "one");
  answer(1, "two");
  EXPECT_THAT(asked(), ElementsAre("1.png", "2.png"));
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Read the text in 2 screenshots.")));
  EXPECT_THAT(downloads, IsEmpty()) << "nothing is downloaded for it";
}

TEST_F(InboxText, OnlyTheReasonsThatApplyAreTold) {
  const UUID evicted = arriveEvicted("1.png"), other = arriveEvicted("2.png", false);
  extract({evicted, other});
  EXPECT_EQ(errorMessage(),
            QStringLiteral("2 screenshots have images that are in the cloud rather than on this computer. Their text "
                           "wasn’t read."));
  EXPECT_FALSE(progress());
  EXPECT_EQ(announcements(), 0u) << "nothing was read";

  const UUID unavailable = arriveUnavailable("3.png");
  extract({unavailable, arriveRead("4.png")});
  EXPECT_EQ(errorMessage(), QStringLiteral("1 screenshot is on a disk or in a folder that isn’t available. Their text "
                                           "wasn’t read."));
}

TEST_F(InboxText, WhatHasItsTextIsNotMissedWhereverItsFileIs) {
  const UUID evicted = arriveRead("1.png");
  dataless.insert(item(evicted).url.path());
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(evicted));
  extract({evicted, arriveRead("2.png")});
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(InboxText, WhatIsBothUnavailableAndEvictedIsUnavailable) {
  const UUID id = arriveEvicted("1.png");
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  ASSERT_TRUE(model->unavailableItemIDs->contains(id));
  extract({id, id});
  EXPECT_TRUE(errorMessage().startsWith(QStringLiteral("2 screenshots are on a disk"))) << errorMessage().toStdString();
}

TEST_F(InboxText, WhileSeveralAreReadNoOthersAreBegun) {
  const UUID first = arrive("1.png"), second = arrive("2.png"), evicted = arriveEvicted("3.png");
  analyzer.holdsReadings = true;
  extract({first});
  extract({second, evicted});
  EXPECT_EQ(progress(), (Batch{1, 0}));
  EXPECT_THAT(*presentation->extractingTextIDs, UnorderedElementsAre(first));
  EXPECT_FALSE(*model->inboxError);
  answer(0, "one");
  EXPECT_THAT(asked(), ElementsAre("1.png"));
  extract({second});
  EXPECT_THAT(asked(), ElementsAre("1.png", "2.png")) << "afterwards again";
}

TEST_F(InboxText, OneOfSeveralIsNotReadTwice) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  extract({first, second});
  show(second);
  EXPECT_THAT(asked(), ElementsAre("1.png"));
  answer(0, "one");
  answer(1, "two");
  EXPECT_FALSE(sheet());
  EXPECT_FALSE(progress());
}

TEST_F(InboxText, OneThatIsBeingReadAlreadyIsSharedWithSeveral) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  show(first);
  extract({first, second});
  EXPECT_THAT(asked(), ElementsAre("1.png"));
  answer(0, "one");
  EXPECT_EQ(sheet(), first);
  EXPECT_EQ(progress(), (Batch{2, 1}));
  EXPECT_THAT(*presentation->extractingTextIDs, UnorderedElementsAre(second));
}

TEST_F(InboxText, ARecordThatGoesIsPassedOver) {
  const UUID first = arrive("1.png"), second = arrive("2.png"), third = arrive("3.png");
  analyzer.holdsReadings = true;
  extract({first, second, third});
  model->removeRecords({second});
  model->removeRecords({first});
  EXPECT_TRUE(analyzer.readings[0]->isCancelled);
  EXPECT_THAT(asked(), ElementsAre("1.png", "3.png"));
  EXPECT_EQ(progress(), (Batch{3, 2}));
  answer(1, "three");
  EXPECT_FALSE(progress());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
}

TEST_F(InboxText, AllRecordsMayGoTogether) {
  std::vector<UUID> ids;
  for (int i = 0; i < 20; ++i) ids.push_back(arrive(std::to_string(i) + ".png"));
  analyzer.holdsReadings = true;
  extract(ids);
  model->removeRecords(UUIDSet(ids.begin(), ids.end()));
  for (const auto& reading : analyzer.readings) {
    if (reading->waiter) FakeAnalyzer::answer(reading, std::optional(QStringLiteral("late")));
  }
  EXPECT_TRUE(model->items().empty());
  EXPECT_FALSE(progress());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  EXPECT_EQ(analyzer.reading, 0);
}

TEST_F(InboxText, ClosingTheWindowEndsTheReading) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  extract({first, second});
  presentation->close();
  EXPECT_TRUE(analyzer.readings[0]->isCancelled);
  EXPECT_THAT(asked(), ElementsAre("1.png"));
  EXPECT_FALSE(progress());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  EXPECT_EQ(announcements(), 0u);
  EXPECT_EQ(analyzer.reading, 0);
}

TEST_F(InboxText, ClosingTheWindowLeavesWhatTheDescriptionNeeds) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  model->startAnalysis(first);
  extract({first, second});
  presentation->close();
  EXPECT_FALSE(analyzer.readings[0]->isCancelled);
  EXPECT_THAT(*model->analyzingIDs, UnorderedElementsAre(first));
  answer(0, "one");
  EXPECT_EQ(item(first).recognizedText, "one");
  EXPECT_THAT(asked(), ElementsAre("1.png")) << "and reads no further";
  EXPECT_FALSE(progress());
  EXPECT_THAT(*presentation->extractingTextIDs, IsEmpty());
  EXPECT_EQ(announcements(), 0u);
}

TEST_F(InboxText, ClosingTheWindowTakesOneThatWaitsItsTurnOutOfTheLine) {
  const UUID first = arrive("1.png"), second = arrive("2.png"), third = arrive("3.png");
  analyzer.holdsReadings = true;
  model->startAnalysis(first);
  model->startAnalysis(second);
  ASSERT_EQ(analyzer.reading, 2);
  extract({third});
  presentation->close();
  EXPECT_FALSE(progress());
  answer(0, "one");
  answer(1, "two");
  EXPECT_THAT(asked(), ElementsAre("1.png", "2.png"));
}

TEST_F(InboxText, TheWindowMayGoWhileSeveralAreRead) {
  const UUID first = arrive("1.png"), second = arrive("2.png");
  analyzer.holdsReadings = true;
  extract({first, second});
  close();
  EXPECT_TRUE(analyzer.readings[0]->isCancelled);
  EXPECT_THAT(asked(), ElementsAre("1.png"));
  EXPECT_EQ(announcements(), 0u);

  open();
  model->startAnalysis(first);
  extract({first, second});
  close();
  EXPECT_FALSE(analyzer.readings[1]->isCancelled);
  answer(1, "one");
  EXPECT_THAT(asked(), ElementsAre("1.png", "1.png"));
  EXPECT_EQ(announcements(), 0u);
}

TEST_F(InboxText, ClosingWithNothingUnderWayDoesNothing) {
  presentation->close();
  presentation->close();
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(InboxText, ClosingEndsARename) {
  presentation->beginRename(item(arrive("shot.png")));
  presentation->close();
  EXPECT_FALSE(*presentation->renameSession);
}

}  // namespace
}  // namespace quillmere::testing
