#include "popup/CapturePromptView.h"

#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <stdexcept>

#include "controls/ActionButton.h"
#include "controls/ScreenshotThumbnail.h"
#include "fakes/DecodedPictures.h"
#include "fakes/ModelFixture.h"
#include "popup/DurationPicker.h"
#include "popup/FakeSharing.h"
#include "popup/PreviewButton.h"
#include "popup/PromptErrorBanner.h"
#include "popup/PromptPreview.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"

namespace quillmere {
namespace {

using testing::FakeAnalyzer;
using testing::readBytes;
using testing::State;

/// The view over a model, shown in a window that has the keyboard.
class CapturePromptViewTest : public testing::ModelFixture {
 protected:
  CapturePromptViewTest() {
    launchWatching();
    id = arrive("Screenshot 1.png");
    const CapturePromptView::Services services{model.get(), &executor, &thumbnails, &sharing};
    view = std::make_unique<CapturePromptView>(services, nullptr);
    view->onKeyboardWanted = [this] { ++keyboardWanted; };
    refresh();
    static_cast<QWidget&>(*view).show();
    view->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
    pastGate();
    announcer.said.clear();
  }

  /// What the window does at every change of the model.
  void refresh() {
    if (const auto content = CapturePromptContent::make(*model, [](const auto&) { return std::nullopt; })) {
      view->show(*content);
    }
  }
  void pastGate() { executor.advance(PromptActionGate::kDelay); }
  void type(const QString& text) {
    field()->setFocus();
    field()->selectAll();
    QTest::keyClicks(field(), text);
  }
  void press(Qt::Key key) {
    QTest::keyClick(QApplication::focusWidget(), key);
    executor.drain();
  }

  QLineEdit* field() const { return view->findChild<QLineEdit*>(); }
  DurationPicker* picker() const { return view->findChild<DurationPicker*>(); }
  /// Of two with one name, the one that is there.
  bool isDimmed(const char* name) const { return dynamic_cast<ActionButton&>(*button(name)).isDimmed(); }
  QPushButton* button(const char* name) const {
    QPushButton* found = nullptr;
    for (auto* candidate : view->findChildren<QPushButton*>()) {
      const bool isNamed =
          candidate->text() == QLatin1String(name) || candidate->accessibleName() == QLatin1String(name);
      if (isNamed && (!found || candidate->isVisibleTo(view.get()))) found = candidate;
    }
    if (!found) ADD_FAILURE() << "no button " << name;
    return found;
  }
  template <typename Widget>
  Widget& part() const {
    for (auto* widget : view->findChildren<QWidget*>()) {
      if (auto* wanted = dynamic_cast<Widget*>(widget)) return *wanted;
    }
    throw std::logic_error("no such part");
  }
  void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }
  std::optional<PromptPreviewNotice> notice() const {
    for (auto* widget : view->findChildren<QWidget*>()) {
      const auto* candidate = dynamic_cast<PromptPreviewNoticeView*>(widget);
      if (candidate && candidate->isVisible()) return candidate->notice();
    }
    return std::nullopt;
  }
  bool isErrorShown() const {
    for (const auto* widget : view->findChildren<QWidget*>()) {
      if (dynamic_cast<const PromptErrorBanner*>(widget)) return widget->isVisible();
    }
    return false;
  }
  bool showsText(const QString& text) const {
    for (const auto* label : view->findChildren<QLabel*>()) {
      if (label->isVisibleTo(view.get()) && label->text() == text) return true;
    }
    return false;
  }
  const std::optional<AppModel::PromptNameEdit>& edit() const { return model->promptNameEdit(); }

  UUID id;
  FakeSharing sharing;
  ThumbnailLoader thumbnails{executor, testing::decodedPictures(), [](const FileURL&) { return false; }};
  std::unique_ptr<CapturePromptView> view;
  int keyboardWanted = 0;
};

// --- What it starts with ---

TEST_F(CapturePromptViewTest, StartsWithTheFilesNameTheLastDurationAndTheMainButton) {
  EXPECT_EQ(field()->text(), QStringLiteral("Screenshot 1"));
  EXPECT_TRUE(showsText(QStringLiteral(".png")));
  EXPECT_EQ(picker()->duration(), *model->settings().lastTemporaryDuration);
  EXPECT_EQ(QApplication::focusWidget(), button("Temporary"));
  EXPECT_FALSE(isErrorShown());
}

TEST_F(CapturePromptViewTest, WhatIsDecidedTakesNothingMoreWhileTheDiskIsWaitedFor) {
  const UUID next = arrive("Screenshot 2.png");
  disk.holdBackground();
  click("Keep");
  refresh();
  for (const char* name : {"Temporary", "Keep", "Copy", "Move to Trash"}) {
    EXPECT_TRUE(isDimmed(name)) << name;
  }
  EXPECT_EQ(QApplication::focusWidget(), button("Temporary")) << "the keyboard stays where it is";
  press(Qt::Key_Return);
  press(Qt::Key_Escape);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_TRUE(fileExists(item(id).url));
  EXPECT_EQ(model->promptedItem()->id, id);
  disk.runHeldBackground();
  refresh();
  EXPECT_EQ(model->promptedItem()->id, next);
  EXPECT_FALSE(isDimmed("Temporary"));
  EXPECT_EQ(QApplication::focusWidget(), button("Temporary"));
}

TEST_F(CapturePromptViewTest, OnAFrozenDiskTheNextIsDecidedAndTheDiskTold) {
  const UUID next = arrive("Screenshot 2.png");
  disk.holdBackground();
  click("Keep");
  executor.advance(seconds(2));
  refresh();
  EXPECT_EQ(model->promptedItem()->id, next);
  EXPECT_TRUE(showsText(QStringLiteral("Waiting for the disk…")));
  pastGate();
  click("Keep");
  EXPECT_EQ(stateOf(next), State::permanent);
  disk.runHeldBackground();
  refresh();
  EXPECT_EQ(model->promptedItem(), nullptr);
  EXPECT_EQ(savedRecord(next)->state, State::permanent);
}

TEST_F(CapturePromptViewTest, TheQueueIsCountedOnlyWhileOthersWait) {
  EXPECT_FALSE(showsText(QStringLiteral("1 more")));
  arrive("2.png");
  refresh();
  EXPECT_TRUE(showsText(QStringLiteral("1 more")));
}

// --- Decisions ---

TEST_F(CapturePromptViewTest, TemporaryTakesTheDurationAndTheName) {
  type(QStringLiteral("Receipt"));
  picker()->setDuration(TemporaryDuration::oneHour);
  QTest::mouseClick(button("Temporary"), Qt::LeftButton);
  executor.drain();
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(item(id).url.lastPathComponent(), "Receipt.png");
  EXPECT_NEAR(*item(id).expiresAt - now(), 3600, 0.001);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot marked as temporary.")));
}

TEST_F(CapturePromptViewTest, KeepTakesTheName) {
  type(QStringLiteral("Receipt"));
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url.lastPathComponent(), "Receipt.png");
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot kept.")));
}

TEST_F(CapturePromptViewTest, MoveToTrashAsksNothing) {
  QTest::mouseClick(button("Move to Trash"), Qt::LeftButton);
  executor.drain();
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("Screenshot 1.png"));
  EXPECT_TRUE(deletionQuestions.empty());
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot moved to Trash.")));
}

TEST_F(CapturePromptViewTest, DeletingAsksFirst) {
  model->setDeletesChosenImmediately(true);
  refresh();
  confirmsDeletion = false;
  QTest::mouseClick(button("Delete"), Qt::LeftButton);
  executor.drain();
  EXPECT_EQ(deletionQuestions, std::vector<QString>{QStringLiteral("Screenshot 1.png")});
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
  confirmsDeletion = true;
  QTest::mouseClick(button("Delete"), Qt::LeftButton);
  executor.drain();
  EXPECT_FALSE(hasRecord(id));
  EXPECT_EQ(files.removeCalls, 1);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot deleted.")));
}

TEST_F(CapturePromptViewTest, ARefusedTrashAnnouncesNoSuccessAndShowsWhy) {
  files.refuse(item(id).url);
  QTest::mouseClick(button("Move to Trash"), Qt::LeftButton);
  executor.drain();
  EXPECT_TRUE(hasRecord(id));
  EXPECT_FALSE(announcer.hasSaid(QStringLiteral("Screenshot moved to Trash.")));
  refresh();
  EXPECT_TRUE(isErrorShown());
  EXPECT_TRUE(showsText(QStringLiteral("Couldn’t Move to Trash")));
  QTest::mouseClick(button("Dismiss"), Qt::LeftButton);
  refresh();
  EXPECT_FALSE(isErrorShown());
}

TEST_F(CapturePromptViewTest, CloseKeepsTheScreenshotPending) {
  QTest::mouseClick(button("Dismiss Screenshot Popup"), Qt::LeftButton);
  EXPECT_TRUE(queue().empty());
  EXPECT_EQ(stateOf(id), State::pending);
}

// --- The gate ---

TEST_F(CapturePromptViewTest, AClickTooSoonAfterTheNextScreenshotCameUpDecidesNothing) {
  const UUID second = arrive("2.png");
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  ASSERT_EQ(stateOf(id), State::permanent);
  refresh();
  for (const char* name : {"Keep", "Temporary", "Move to Trash", "Dismiss Screenshot Popup"}) {
    QTest::mouseClick(button(name), Qt::LeftButton);
  }
  executor.advance(std::chrono::milliseconds(290));
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  EXPECT_EQ(stateOf(second), State::pending);
  EXPECT_EQ(queue(), std::vector<UUID>{second});
  executor.advance(std::chrono::milliseconds(10));
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  EXPECT_EQ(stateOf(second), State::permanent);
}

TEST_F(CapturePromptViewTest, AClickBeforeTheCardHasFollowedTheModelDecidesNothing) {
  const UUID next = arrive("Screenshot 2.png");
  button("Dismiss Screenshot Popup")->click();
  ASSERT_EQ(queue(), std::vector{next});
  button("Dismiss Screenshot Popup")->click();
  EXPECT_EQ(queue(), std::vector{next});
}

TEST_F(CapturePromptViewTest, AnUntouchedNameIsLeftAsItIs) {
  model->dismissPrompt();
  for (const std::string& name : {std::string("Screenshot 3:04.png"), std::string("Screenshot \xFF.png")}) {
    const UUID odd = arrive(name);
    refresh();
    pastGate();
    button("Keep")->click();
    EXPECT_EQ(item(odd).state, ScreenshotItem::State::permanent);
    EXPECT_EQ(item(odd).url.lastPathComponent(), name);
  }
}

TEST_F(CapturePromptViewTest, ReturnTooSoonIsDroppedAndTheTextStays) {
  arrive("2.png");
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  refresh();
  type(QStringLiteral("Typed"));
  press(Qt::Key_Return);
  EXPECT_EQ(item(queue().front()).state, State::pending);
  EXPECT_EQ(field()->text(), QStringLiteral("Typed"));
  pastGate();
  press(Qt::Key_Return);
  EXPECT_TRUE(queue().empty());
}

TEST_F(CapturePromptViewTest, TheSameContentAgainDoesNotRestartTheGate) {
  arrive("2.png");
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  refresh();
  executor.advance(std::chrono::milliseconds(200));
  arrive("3.png");
  refresh();
  executor.advance(std::chrono::milliseconds(100));
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  EXPECT_EQ(queue().size(), 1u);
}

// --- The keyboard ---

TEST_F(CapturePromptViewTest, ReturnIsTemporaryWhateverButtonHasTheFocus) {
  button("Keep")->setFocus();
  press(Qt::Key_Return);
  EXPECT_EQ(stateOf(id), State::temporary);
}

TEST_F(CapturePromptViewTest, ReturnAndEnterAreTemporaryInTheDurationMenuAndTheName) {
  picker()->setFocus();
  press(Qt::Key_Enter);
  EXPECT_EQ(stateOf(id), State::temporary);
  const UUID second = arrive("2.png");
  refresh();
  pastGate();
  type(QStringLiteral("Named"));
  press(Qt::Key_Return);
  EXPECT_EQ(stateOf(second), State::temporary);
  EXPECT_EQ(item(second).url.lastPathComponent(), "Named.png");
}

TEST_F(CapturePromptViewTest, SpacePressesTheButtonThatHasTheFocus) {
  button("Keep")->setFocus();
  press(Qt::Key_Space);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(CapturePromptViewTest, SpaceInTheNameIsText) {
  type(QStringLiteral("a b"));
  EXPECT_EQ(field()->text(), QStringLiteral("a b"));
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(CapturePromptViewTest, EscapeDismisses) {
  press(Qt::Key_Escape);
  EXPECT_TRUE(queue().empty());
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(CapturePromptViewTest, TheFirstEscapeInTheNameUndoesTypingAndTheSecondDismisses) {
  type(QStringLiteral("Typed"));
  press(Qt::Key_Escape);
  EXPECT_EQ(field()->text(), QStringLiteral("Screenshot 1"));
  EXPECT_EQ(queue(), std::vector<UUID>{id});
  press(Qt::Key_Escape);
  EXPECT_TRUE(queue().empty());
}

TEST_F(CapturePromptViewTest, UndoingTypingDoesNotAskTheGate) {
  arrive("2.png");
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  refresh();
  type(QStringLiteral("Typed"));
  press(Qt::Key_Escape);
  EXPECT_EQ(field()->text(), QStringLiteral("2"));
  press(Qt::Key_Escape);
  EXPECT_EQ(queue().size(), 1u) << "dismissing does";
}

TEST_F(CapturePromptViewTest, TabGoesThroughEveryControlAndBackToTheFirst) {
  std::vector<QWidget*> visited;
  for (int i = 0; i < 10; ++i) {
    press(Qt::Key_Tab);
    visited.push_back(QApplication::focusWidget());
  }
  EXPECT_EQ(visited, (std::vector<QWidget*>{button("Keep"), button("Copy"), picker(), button("Move to Trash"),
                                            button("Dismiss Screenshot Popup"), button("Extract Window"),
                                            button("Copy Text"), button("Share"), field(), button("Temporary")}));
}

TEST_F(CapturePromptViewTest, ARequestForTheKeyboardPutsItOnTheMainButton) {
  field()->setFocus();
  model->reviewPending(FocusNews::silent);
  refresh();
  EXPECT_EQ(QApplication::focusWidget(), button("Temporary"));
}

TEST_F(CapturePromptViewTest, AClickIntoTheNameWantsTheKeyboard) {
  QTest::mouseClick(button("Temporary")->parentWidget(), Qt::LeftButton, Qt::NoModifier, QPoint(0, 0));
  EXPECT_EQ(keyboardWanted, 0);
  QTest::mouseClick(field(), Qt::LeftButton);
  EXPECT_EQ(keyboardWanted, 1);
}

// --- The name ---

TEST_F(CapturePromptViewTest, TheDescriptionOrWhyThereIsNoneStandsUnderThePicture) {
  const auto status = [&] { return view->findChild<QLabel*>(QStringLiteral("analysisStatus"))->text(); };
  EXPECT_EQ(status(), QStringLiteral("No description yet."));
  analyzer.holdsDescriptions = true;
  model->startAnalysis(id);
  refresh();
  EXPECT_EQ(status(), QStringLiteral("Analyzing screenshot…"));
  FakeAnalyzer::answer<DescribeOutcome>(analyzer.descriptions[0],
                                        AnalysisError{.kind = AnalysisError::Kind::contentBlocked});
  refresh();
  EXPECT_EQ(status(), analysisNote(AnalysisFailureCode::contentBlocked));
  EXPECT_FALSE(button("Analyze Again")->isVisible()) << "it would be refused again";
}

TEST_F(CapturePromptViewTest, AFailureThatMayPassOffersToTryAgain) {
  analyzer.immediateDescriptions = {
      AnalysisError{.kind = AnalysisError::Kind::invalidResponse},
      ScreenshotAnalysisResult{QStringLiteral("<b>An invoice</b>"), QStringLiteral("Invoice")}};
  model->startAnalysis(id);
  refresh();
  ASSERT_TRUE(button("Analyze Again")->isVisible());
  part<PromptPreviewActions>().controls().back()->setFocus();
  press(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), button("Analyze Again")) << "where it stands on the card";
  press(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), field());
  button("Analyze Again")->click();
  refresh();
  const auto* text = view->findChild<QLabel*>(QStringLiteral("analysisStatus"));
  EXPECT_EQ(text->text(), QStringLiteral("<b>An invoice</b>"));
  EXPECT_EQ(text->textFormat(), Qt::PlainText) << "a model's words are no markup";
}

TEST_F(CapturePromptViewTest, ADescriptionTakesTheKeyboardAndAStatusDoesNot) {
  int wishes = 0;
  view->onKeyboardWanted = [&] { ++wishes; };
  auto* text = view->findChild<QLabel*>(QStringLiteral("analysisStatus"));
  QTest::mouseClick(text, Qt::LeftButton);
  EXPECT_EQ(wishes, 0) << "nothing to select";
  analyzer.immediateDescriptions = {ScreenshotAnalysisResult{QStringLiteral("An invoice"), QStringLiteral("Invoice")}};
  model->startAnalysis(id);
  refresh();
  QTest::mouseClick(text, Qt::LeftButton);
  EXPECT_EQ(wishes, 1);
  text->setFocus();
  press(Qt::Key_Return);
  EXPECT_EQ(stateOf(id), State::temporary);
}

TEST_F(CapturePromptViewTest, ALateSuggestionTakesThePlaceOfANameThatNobodyTouched) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  auto content = *CapturePromptContent::make(*model, [](const auto&) { return std::nullopt; });
  content.item.imageDescription = "A receipt";
  content.item.suggestedName = "Receipt/ from a shop";
  view->show(content);
  EXPECT_EQ(field()->text(), displayName(content.item, ScreenshotNaming::suggested));
  EXPECT_NE(field()->text(), QStringLiteral("Screenshot 1"));
  EXPECT_FALSE(edit()->isEdited);
  press(Qt::Key_Escape);
  EXPECT_TRUE(queue().empty()) << "nothing was typed";
}

TEST_F(CapturePromptViewTest, ALateSuggestionDoesNotOverwriteTyping) {
  type(QStringLiteral("Mine"));
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  auto content = *CapturePromptContent::make(*model, [](const auto&) { return std::nullopt; });
  content.item.imageDescription = "A receipt";
  content.item.suggestedName = "Receipt";
  view->show(content);
  EXPECT_EQ(field()->text(), QStringLiteral("Mine"));
  press(Qt::Key_Escape);
  EXPECT_EQ(field()->text(), QStringLiteral("Screenshot 1")) << "the name that it started with";
}

TEST_F(CapturePromptViewTest, WhatTheAnalysisBringsIsToldOnceWhileTheCardHasTheKeyboard) {
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  auto content = *CapturePromptContent::make(*model, [](const auto&) { return std::nullopt; });
  content.item.imageDescription = "A receipt.";
  content.item.suggestedName = "Receipt";
  view->show(content);
  ASSERT_EQ(announcer.said.size(), 2u);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Description: A receipt.")));
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Suggested filename: Receipt")));
  for (const auto& one : announcer.said) EXPECT_EQ(one.priority, AnnouncementPriority::low);
  content.availability = AnalysisAvailability::turnedOff;
  view->show(content);
  EXPECT_EQ(announcer.said.size(), 2u) << "not twice";
}

TEST_F(CapturePromptViewTest, ASuggestionThatIsNotTakenIsNotTold) {
  type(QStringLiteral("Mine"));
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  auto content = *CapturePromptContent::make(*model, [](const auto&) { return std::nullopt; });
  content.item.imageDescription = "A receipt.";
  content.item.suggestedName = "Receipt";
  view->show(content);
  ASSERT_EQ(announcer.said.size(), 1u);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Description: A receipt.")));
}

TEST_F(CapturePromptViewTest, WithoutTheKeyboardTheAnalysisIsNotTold) {
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  auto content = *CapturePromptContent::make(*model, [](const auto&) { return std::nullopt; });
  content.item.imageDescription = "A receipt.";
  content.item.suggestedName = "Receipt";
  view->show(content);
  EXPECT_EQ(field()->text(), QStringLiteral("Receipt"));
  EXPECT_TRUE(announcer.said.empty());
  view->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
  view->show(content);
  EXPECT_TRUE(announcer.said.empty()) << "nor later";
}

TEST_F(CapturePromptViewTest, ANameThatIsNotTakenIsToldPolitely) {
  type(QStringLiteral("/"));
  ASSERT_EQ(announcer.said.size(), 1u);
  EXPECT_TRUE(announcer.hasSaid(nameCaption(QStringLiteral("/"))));
  EXPECT_EQ(announcer.said[0].priority, AnnouncementPriority::low);
}

TEST_F(CapturePromptViewTest, WhatIsTypedIsReportedToTheModel) {
  EXPECT_EQ(edit(), (AppModel::PromptNameEdit{id, QStringLiteral("Screenshot 1"), false, false}));
  type(QStringLiteral("New"));
  QCoreApplication::processEvents();
  EXPECT_EQ(edit(), (AppModel::PromptNameEdit{id, QStringLiteral("New"), true, true}));
  EXPECT_TRUE(model->isPopupPaused(id));
  press(Qt::Key_Escape);
  EXPECT_EQ(edit(), (AppModel::PromptNameEdit{id, QStringLiteral("Screenshot 1"), false, true}));
  press(Qt::Key_Tab);
  QCoreApplication::processEvents();
  EXPECT_EQ(edit(), (AppModel::PromptNameEdit{id, QStringLiteral("Screenshot 1"), false, false}));
}

TEST_F(CapturePromptViewTest, TheNextScreenshotStartsAnew) {
  const UUID second = arrive("2.png");
  type(QStringLiteral("Mine"));
  picker()->setDuration(TemporaryDuration::oneMinute);
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  executor.drain();
  refresh();
  EXPECT_EQ(field()->text(), QStringLiteral("2"));
  EXPECT_EQ(picker()->duration(), *model->settings().lastTemporaryDuration);
  EXPECT_EQ(QApplication::focusWidget(), button("Temporary"));
  EXPECT_EQ(edit(), (AppModel::PromptNameEdit{second, QStringLiteral("2"), false, false}));
}

TEST_F(CapturePromptViewTest, AnyOtherChangeLeavesTypingDurationAndFocusAlone) {
  type(QStringLiteral("Mine"));
  picker()->setDuration(TemporaryDuration::oneMinute);
  arrive("2.png");
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message"));
  model->setShowPopupThumbnail(false);
  refresh();
  EXPECT_EQ(field()->text(), QStringLiteral("Mine"));
  EXPECT_EQ(picker()->duration(), TemporaryDuration::oneMinute);
  EXPECT_EQ(QApplication::focusWidget(), field());
}

TEST_F(CapturePromptViewTest, TheCaptionFollowsTheName) {
  EXPECT_TRUE(showsText(QStringLiteral("Filename")));
  type(QStringLiteral("   "));
  EXPECT_TRUE(showsText(nameCaption(QStringLiteral("   "))));
  type(QStringLiteral("///"));
  EXPECT_TRUE(showsText(nameCaption(QStringLiteral("///"))));
}

TEST_F(CapturePromptViewTest, ANameThatCannotBeUsedDoesNotBlockTheDecision) {
  type(QStringLiteral("///"));
  press(Qt::Key_Return);
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(item(id).url.lastPathComponent(), "Screenshot 1.png");
}

TEST_F(CapturePromptViewTest, TheHintOfTemporaryTellsTheDuration) {
  for (const TemporaryDuration duration : kTemporaryDurations) {
    picker()->setDuration(duration);
    EXPECT_EQ(picker()->duration(), duration);
    EXPECT_EQ(button("Temporary")->accessibleDescription(), temporaryHint(duration));
  }
}

TEST_F(CapturePromptViewTest, ClearedItStartsAnewWithTheSameScreenshot) {
  type(QStringLiteral("Mine"));
  view->clear();
  refresh();
  EXPECT_EQ(field()->text(), QStringLiteral("Screenshot 1"));
}

// --- The gate ---

TEST_F(CapturePromptViewTest, EveryActionButThoseThatDecideNothingAsksTheGate) {
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message"));
  arrive("2.png");
  model->dismissPrompt();
  refresh();
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message"));
  refresh();
  const UUID shown = queue().front();
  executor.advance(std::chrono::milliseconds(290));
  for (const char* name : {"Temporary", "Keep", "Copy", "Move to Trash", "Dismiss Screenshot Popup", "Extract Window",
                           "Copy Text", "Dismiss"}) {
    click(name);
    executor.drain();
  }
  press(Qt::Key_Return);
  press(Qt::Key_Escape);
  EXPECT_EQ(queue(), std::vector<UUID>{shown});
  EXPECT_EQ(stateOf(shown), State::pending);
  EXPECT_TRUE(scanner.calls.empty());
  EXPECT_TRUE(pasteboard.items.empty());
  EXPECT_TRUE(pasteboard.texts.empty());
  EXPECT_TRUE(model->promptError->has_value());
  executor.advance(std::chrono::milliseconds(10));
  click("Dismiss");
  EXPECT_FALSE(model->promptError->has_value()) << "exactly 0.3 seconds are enough";
}

TEST_F(CapturePromptViewTest, TheDurationCanBeChosenAtOnce) {
  arrive("2.png");
  model->dismissPrompt();
  refresh();
  picker()->setDuration(TemporaryDuration::oneHour);
  EXPECT_EQ(picker()->duration(), TemporaryDuration::oneHour);
  EXPECT_NE(*model->settings().lastTemporaryDuration, TemporaryDuration::oneHour) << "stored with the decision alone";
}

// --- Copy and Copy Text ---

TEST_F(CapturePromptViewTest, CopyLeavesThePopupOpen) {
  click("Copy");
  executor.drain();
  ASSERT_EQ(pasteboard.items.size(), 1U);
  EXPECT_EQ(pasteboard.items[0].url, item(id).url);
  EXPECT_EQ(queue(), std::vector<UUID>{id});
}

TEST_F(CapturePromptViewTest, CopySaysForTwoSecondsThatItDid) {
  const auto note = [this] { return dynamic_cast<ActionButton&>(*button("Copy")).note(); };
  click("Copy");
  executor.drain();
  EXPECT_EQ(note(), QStringLiteral("Copied"));
  executor.advance(seconds(1));
  click("Copy");
  executor.advance(std::chrono::milliseconds(1999));
  EXPECT_EQ(note(), QStringLiteral("Copied")) << "two seconds from the second time";
  executor.advance(std::chrono::milliseconds(1));
  EXPECT_EQ(note(), QString());
}

TEST_F(CapturePromptViewTest, ACopyThatFailsIsNotSaidToBeDone) {
  deleteFile(item(id).url);
  click("Copy");
  executor.drain();
  EXPECT_TRUE(dynamic_cast<ActionButton&>(*button("Copy")).note().isEmpty());
}

TEST_F(CapturePromptViewTest, TheNextScreenshotWasNotCopied) {
  arrive("2.png");
  click("Copy");
  executor.drain();
  click("Keep");
  refresh();
  EXPECT_TRUE(dynamic_cast<ActionButton&>(*button("Copy")).note().isEmpty());
}

TEST_F(CapturePromptViewTest, CopyTextTellsThatItDid) {
  analyzer.text = QStringLiteral("words");
  click("Copy Text");
  executor.drain();
  EXPECT_EQ(pasteboard.texts, std::vector<QString>{QStringLiteral("words")});
  EXPECT_EQ(notice(), PromptPreviewNotice::textCopied);
}

TEST_F(CapturePromptViewTest, TwoPressesOfCopyTextDoNotOverlap) {
  analyzer.holdsReadings = true;
  click("Copy Text");
  click("Copy Text");
  executor.drain();
  ASSERT_EQ(analyzer.readings.size(), 1U);
  EXPECT_TRUE(dynamic_cast<PreviewButton&>(*button("Copy Text")).isWorking());
  FakeAnalyzer::answer<std::optional<QString>>(analyzer.readings[0], QStringLiteral("words"));
  executor.drain();
  EXPECT_EQ(pasteboard.texts.size(), 1U);
  EXPECT_FALSE(dynamic_cast<PreviewButton&>(*button("Copy Text")).isWorking());
}

TEST_F(CapturePromptViewTest, TextThatComesAfterThePopupWentOnIsCopiedAndNotTold) {
  analyzer.holdsReadings = true;
  click("Copy Text");
  arrive("2.png");
  model->dismissPrompt();
  refresh();
  FakeAnalyzer::answer<std::optional<QString>>(analyzer.readings[0], QStringLiteral("words"));
  executor.drain();
  EXPECT_EQ(notice(), std::nullopt);
  EXPECT_FALSE(dynamic_cast<PreviewButton&>(*button("Copy Text")).isWorking());
}

// --- Notices ---

TEST_F(CapturePromptViewTest, ANoticeStaysTwoSeconds) {
  analyzer.text = QString();
  click("Copy Text");
  executor.drain();
  executor.advance(std::chrono::milliseconds(1999));
  EXPECT_EQ(notice(), PromptPreviewNotice::noText);
  executor.advance(std::chrono::milliseconds(1));
  EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(CapturePromptViewTest, ASecondNoticeTakesThePlaceOfTheFirstAndStaysItsFullTime) {
  analyzer.text = QString();
  click("Copy Text");
  executor.drain();
  executor.advance(std::chrono::milliseconds(1500));
  click("Extract Window");
  scanner.answer(0, QImage(10, 10, QImage::Format_RGB32), std::nullopt);
  EXPECT_EQ(notice(), PromptPreviewNotice::noWindow);
  executor.advance(std::chrono::milliseconds(1999));
  EXPECT_EQ(notice(), PromptPreviewNotice::noWindow);
  executor.advance(std::chrono::milliseconds(1));
  EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(CapturePromptViewTest, ANoticeGoesWithItsScreenshot) {
  analyzer.text = QString();
  click("Copy Text");
  executor.drain();
  arrive("2.png");
  model->dismissPrompt();
  refresh();
  EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(CapturePromptViewTest, WithoutThePreviewANoticeHasARowOfItsOwn) {
  model->setShowPopupThumbnail(false);
  refresh();
  int heightChanges = 0;
  view->onExtraHeightChanged = [&] { ++heightChanges; };
  EXPECT_EQ(view->extraHeight(), 0);
  const int natural = view->naturalHeight();
  analyzer.text = QString();
  click("Copy Text");
  executor.drain();
  EXPECT_EQ(notice(), PromptPreviewNotice::noText);
  EXPECT_GT(view->extraHeight(), 0);
  EXPECT_EQ(heightChanges, 1);
  EXPECT_EQ(view->naturalHeight(), natural) << "the row does not count among what is measured";
}

// --- Extract Window ---

TEST_F(CapturePromptViewTest, NothingCanBeDecidedWhileAWindowIsSought) {
  click("Extract Window");
  refresh();
  for (const char* name : {"Temporary", "Keep", "Copy"}) EXPECT_FALSE(button(name)->isEnabled()) << name;
  EXPECT_TRUE(button("Move to Trash")->isEnabled());
  EXPECT_TRUE(button("Extract Window")->isChecked());
  EXPECT_TRUE(dynamic_cast<PreviewButton&>(*button("Extract Window")).isWorking());
  press(Qt::Key_Return);
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(CapturePromptViewTest, ReturnInTheNameFieldDecidesOnTheWholeScreenshotMeanwhile) {
  click("Extract Window");
  refresh();
  field()->setFocus();
  press(Qt::Key_Return);
  EXPECT_EQ(stateOf(id), State::temporary);
}

TEST_F(CapturePromptViewTest, TheMainButtonGetsTheKeyboardBackAfterTheSearch) {
  ASSERT_EQ(QApplication::focusWidget(), button("Temporary"));
  click("Extract Window");
  refresh();
  EXPECT_EQ(QApplication::focusWidget(), view.get()) << "no other button";
  scanner.answer(0, QImage(10, 10, QImage::Format_RGB32), std::nullopt);
  refresh();
  EXPECT_EQ(QApplication::focusWidget(), button("Temporary"));
}

TEST_F(CapturePromptViewTest, TheToggleIsOffAgainWhereThereIsNoWindow) {
  click("Extract Window");
  scanner.answer(0, QImage(10, 10, QImage::Format_RGB32), std::nullopt);
  refresh();
  EXPECT_FALSE(button("Extract Window")->isChecked());
  EXPECT_FALSE(dynamic_cast<PreviewButton&>(*button("Extract Window")).isWorking());
  EXPECT_TRUE(button("Keep")->isEnabled());
}

TEST_F(CapturePromptViewTest, AnExtractedWindowIsCalledSo) {
  click("Extract Window");
  scanner.answer(0, QImage(100, 100, QImage::Format_RGB32), QRectF(10, 10, 50, 40));
  refresh();
  EXPECT_TRUE(button("Extract Window")->isChecked());
  QStringList names;
  for (const auto* widget : view->findChildren<QWidget*>()) names << widget->accessibleName();
  EXPECT_TRUE(names.contains(QStringLiteral("Extracted window preview")));
  click("Extract Window");
  refresh();
  EXPECT_FALSE(button("Extract Window")->isChecked());
}

TEST_F(CapturePromptViewTest, KeepingAnExtractedWindowIsAnnouncedOnceItIsKept) {
  QImage picture(100, 100, QImage::Format_RGB32);
  picture.fill(Qt::green);
  ASSERT_TRUE(picture.save(item(id).url.displayPath(), "PNG"));
  reconcileAll();
  click("Extract Window");
  scanner.answer(0, picture, QRectF(10, 10, 50, 40));
  refresh();
  click("Keep");
  refresh();
  EXPECT_FALSE(announcer.hasSaid(QStringLiteral("Screenshot kept.")));
  for (const char* name : {"Temporary", "Keep", "Copy", "Move to Trash", "Extract Window"}) {
    EXPECT_FALSE(button(name)->isEnabled()) << name;
  }
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot kept.")));
}

// --- What there is to do with the picture ---

TEST_F(CapturePromptViewTest, AnUnreadableImageHasNoPreviewActions) {
  makeUnavailable(id);
  ASSERT_FALSE(queue().empty());
  refresh();
  EXPECT_FALSE(button("Extract Window")->isVisible());
}

TEST_F(CapturePromptViewTest, AnEvictedImageCanStillBeDecided) {
  dataless.insert(item(id).url.path());
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  refresh();
  for (const char* name : {"Extract Window", "Copy Text", "Share"}) EXPECT_FALSE(button(name)->isVisible()) << name;
  for (const char* name : {"Temporary", "Keep", "Move to Trash"}) EXPECT_TRUE(button(name)->isVisible()) << name;
  model->setShowPopupThumbnail(false);
  refresh();
  for (const char* name : {"Copy Text", "Share"}) EXPECT_FALSE(button(name)->isVisible()) << name;
}

TEST_F(CapturePromptViewTest, WithoutThePreviewCopyTextAndShareStandOnTheCard) {
  model->setShowPopupThumbnail(false);
  refresh();
  EXPECT_EQ(button("Copy Text")->text(), QStringLiteral("Copy Text"));
  EXPECT_EQ(button("Copy Text")->toolTip(), QStringLiteral("Copy the text in this screenshot"));
  EXPECT_EQ(button("Share")->toolTip(), QStringLiteral("Share this screenshot"));
  EXPECT_FALSE(button("Extract Window")->isVisible());
}

TEST_F(CapturePromptViewTest, ShareOffersWhatTakesThePictureAndSendsItUnderItsName) {
  sharing.offered = {{QStringLiteral("email"), QStringLiteral("Mail"), {}},
                     {QStringLiteral("viewer"), QStringLiteral("Viewer"), {}}};
  type(QStringLiteral("Receipt"));
  QTimer::singleShot(0, [] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    ASSERT_EQ(menu->actions().size(), 2);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
  });
  click("Share");
  executor.drain();
  EXPECT_EQ(sharing.asked, std::vector{QStringList{QStringLiteral("image/png")}});
  ASSERT_EQ(sharing.sent.size(), 1U);
  ASSERT_EQ(sharing.sent[0].first.size(), 1U);
  EXPECT_EQ(sharing.sent[0].first[0].lastPathComponent(), "Receipt.png");
  EXPECT_EQ(sharing.sent[0].second, QStringLiteral("viewer"));
  EXPECT_EQ(readBytes(sharing.sent[0].first[0]), "Screenshot 1.png");
}

TEST_F(CapturePromptViewTest, TellsThatNothingWasShared) {
  sharing.offered = {{QStringLiteral("viewer"), QStringLiteral("Viewer"), {}}};
  sharing.takes = false;
  QTimer::singleShot(0, [] {
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
  });
  click("Share");
  executor.drain();
  EXPECT_EQ(sharing.sent.size(), 1U);
  ASSERT_TRUE(model->promptError->has_value());
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Share Screenshot");
}

TEST_F(CapturePromptViewTest, TheShareMenuHasGroupsAndShowsNamesAsTheyAre) {
  const QString hostile = QStringLiteral("<b>A</b> & B\tC\n") + QString(1000, QLatin1Char('n'));
  sharing.offered = {{QStringLiteral("email"), QStringLiteral("Mail"), {}, ShareTarget::Group::mail},
                     {QStringLiteral("hostile"), hostile, QStringLiteral("/no/such.png")},
                     {QStringLiteral("viewer"), QStringLiteral("Viewer"), {}}};
  QStringList texts;
  int width = 0;
  QTimer::singleShot(0, [&] {
    const auto& menu = dynamic_cast<QMenu&>(*QApplication::activePopupWidget());
    for (const QAction* action : menu.actions()) texts += action->isSeparator() ? QStringLiteral("-") : action->text();
    width = menu.width();
    for (int i = 0; i < 2; ++i) QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
  });
  click("Share");
  executor.drain();
  ASSERT_EQ(texts.size(), 4);
  EXPECT_EQ(texts[0], QStringLiteral("Mail"));
  EXPECT_EQ(texts[1], QStringLiteral("-"));
  EXPECT_TRUE(texts[2].startsWith(QStringLiteral("<b>A</b> && B C nnn"))) << texts[2].toStdString();
  EXPECT_EQ(texts[3], QStringLiteral("Viewer"));
  EXPECT_LT(width, 500);
  ASSERT_EQ(sharing.sent.size(), 1u) << "the keyboard goes past the line between the groups";
  EXPECT_EQ(sharing.sent[0].second, QStringLiteral("hostile"));
}

TEST_F(CapturePromptViewTest, TwoPressesOfShareOpenOneMenu) {
  sharing.offered = {{QStringLiteral("email"), QStringLiteral("Mail"), {}}};
  sharing.executor = &executor;
  click("Share");
  click("Share");
  QTimer::singleShot(0, [] { QApplication::activePopupWidget()->close(); });
  executor.drain();
  EXPECT_EQ(sharing.asked.size(), 1U);
  QTimer::singleShot(0, [] { QApplication::activePopupWidget()->close(); });
  click("Share");
  executor.drain();
  EXPECT_EQ(sharing.asked.size(), 2U) << "later there is another one";
}

TEST_F(CapturePromptViewTest, AClosedShareMenuSendsNothing) {
  sharing.offered = {{QStringLiteral("email"), QStringLiteral("Mail"), {}}};
  QTimer::singleShot(0, [] { QApplication::activePopupWidget()->close(); });
  click("Share");
  executor.drain();
  EXPECT_TRUE(sharing.sent.empty());
  EXPECT_EQ(readBytes(item(id).url), "Screenshot 1.png");
}

TEST_F(CapturePromptViewTest, AMovedPointerBeginsToDragThePicture) {
  auto& preview = part<PromptPreview>();
  int begun = 0;
  preview.onDragBegun = [&] { ++begun; };
  const QPoint middle = preview.rect().center();
  const auto send = [&](QEvent::Type type, QPoint place, Qt::MouseButtons buttons) {
    QMouseEvent event(type, place, preview.mapToGlobal(place),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(&preview, &event);
  };
  send(QEvent::MouseButtonPress, middle, Qt::LeftButton);
  send(QEvent::MouseMove, middle + QPoint(2, 1), Qt::LeftButton);
  EXPECT_EQ(begun, 0) << "a hand that trembles drags nothing";
  send(QEvent::MouseMove, middle + QPoint(30, 0), Qt::LeftButton);
  send(QEvent::MouseMove, middle + QPoint(60, 0), Qt::LeftButton);
  EXPECT_EQ(begun, 1);
}

// --- Words ---

TEST_F(CapturePromptViewTest, EveryControlHasItsNameHelpAndHint) {
  struct Words {
    const char* name;
    const char* help;
    const char* hint;
  };
  for (const Words& words : std::vector<Words>{
           {"Dismiss Screenshot Popup", "Dismiss. The screenshot stays in the Inbox.", ""},
           {"Temporary", "Keep for the selected time, then move to Trash",
            "Moves this screenshot to Trash in 5 minutes."},
           {"Keep", "Keep this screenshot without a deletion timer", ""},
           {"Copy", "Copy this screenshot so it can be pasted into another app or into your file manager", ""},
           {"Move to Trash", "Move this screenshot to Trash",
            "Moves only this image to Trash, without asking. You can restore it from Trash in your file manager."},
           {"Extract Window", "Save only the window in this screenshot",
            "When on, Keep, Temporary, Copy, and the timeout save only the window found in the screenshot, and the "
            "original moves to Trash. Share sends only the window too."},
           {"Copy Text", "Copy the text in this preview",
            "Recognizes the text in the preview and puts it on the clipboard."},
           {"Share", "Send this screenshot by email, or open it in another app",
            "Opens the share menu for the picture in the preview, under the name in the Filename field."}}) {
    EXPECT_EQ(button(words.name)->toolTip(), QString::fromUtf8(words.help)) << words.name;
    EXPECT_EQ(button(words.name)->accessibleDescription(), QString::fromUtf8(words.hint)) << words.name;
  }
  EXPECT_EQ(picker()->toolTip(), QStringLiteral("Choose how long to keep this screenshot"));
  EXPECT_EQ(picker()->accessibleName(), QStringLiteral("Temporary duration"));
  EXPECT_EQ(field()->accessibleName(), QStringLiteral("Filename"));
  EXPECT_EQ(field()->toolTip(), QStringLiteral("Rename this screenshot. Keep and Temporary save it with this name."));
  EXPECT_EQ(field()->accessibleDescription(),
            QStringLiteral("Return saves this screenshot as Temporary with this name. Escape puts back the name it "
                           "started with."));
}

// --- What must not happen unnoticed ---

/// As a button does under some desktops' themes.
class PressedByReturn final : public QObject {
 public:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return) {
      static_cast<QPushButton*>(watched)->click();
    }
    return false;
  }
};

TEST_F(CapturePromptViewTest, NoButtonSeesReturn) {
  PressedByReturn theme;
  QPushButton* toTrash = button("Move to Trash");
  // Filters installed last come first: the card's own is put before the theme's.
  toTrash->removeEventFilter(view.get());
  toTrash->installEventFilter(&theme);
  toTrash->installEventFilter(view.get());
  toTrash->setFocus();
  press(Qt::Key_Return);
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_TRUE(fileExists(item(id).url));
}

TEST_F(CapturePromptViewTest, TheWheelDoesNotChangeTheDuration) {
  const TemporaryDuration before = picker()->duration();
  const QPointF middle = QRectF(picker()->rect()).center();
  for (const int delta : {120, -120}) {
    QWheelEvent event(middle, picker()->mapToGlobal(middle), {}, QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(picker(), &event);
    EXPECT_EQ(picker()->duration(), before);
  }
}

TEST_F(CapturePromptViewTest, AChangeOfTheContentMovesNoFocus) {
  ASSERT_EQ(QApplication::focusWidget(), button("Temporary"));
  int moves = 0;
  const auto connection = QObject::connect(qApp, &QApplication::focusChanged, [&] { ++moves; });
  arrive("2.png");
  refresh();
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message"));
  refresh();
  EXPECT_EQ(moves, 0);
  QObject::disconnect(connection);
}

TEST_F(CapturePromptViewTest, CopyTextWithoutThePreviewKeepsTheFocus) {
  model->setShowPopupThumbnail(false);
  refresh();
  analyzer.holdsReadings = true;
  button("Copy Text")->setFocus();
  press(Qt::Key_Space);
  EXPECT_EQ(QApplication::focusWidget(), button("Copy Text"));
  press(Qt::Key_Space);
  executor.drain();
  EXPECT_EQ(analyzer.readings.size(), 1U);
}

TEST_F(CapturePromptViewTest, ThePopupWaitsForTheAnswerWhetherToDelete) {
  model->setPopupAutoSaveEnabled(true);
  model->setPopupAutoSaveSeconds(3);
  model->setDeletesChosenImmediately(true);
  refresh();
  onDeletionQuestion = [this] { executor.advance(std::chrono::seconds(10)); };
  confirmsDeletion = false;
  click("Delete");
  EXPECT_EQ(deletionQuestions.size(), 1U);
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(CapturePromptViewTest, AClosedPopupLetsGoOfItsTextAndPicture) {
  type(QStringLiteral("Typed"));
  view->clear();
  EXPECT_EQ(field()->text(), QString());
  EXPECT_TRUE(part<ScreenshotThumbnail>().image().isNull());
  EXPECT_EQ(model->promptNameEdit()->text, QStringLiteral("Typed")) << "nothing was edited by that";
}

TEST_F(CapturePromptViewTest, APictureThatIsElsewhereHasItsHelpAndOffersNoDrag) {
  dataless.insert(item(id).url.path());
  reconcileAll();
  refresh();
  executor.drain();
  EXPECT_EQ(part<PromptPreview>().toolTip(),
            QStringLiteral("The image isn’t on this computer. Choose Download, or open the screenshot in your file "
                           "manager, to bring it back."));
  EXPECT_EQ(part<ScreenshotThumbnail>().accessibleDescription(), QString());
}

}  // namespace
}  // namespace quillmere
