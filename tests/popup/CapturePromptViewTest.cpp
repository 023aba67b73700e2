#include "popup/CapturePromptView.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

#include "controls/ActionButton.h"
#include "model/ModelFixture.h"
#include "popup/DurationPicker.h"
#include "popup/PromptErrorBanner.h"

namespace quillmere {
namespace {

using testing::FakeAnalyzer;
using testing::State;

/// The view over a model, shown in a window that has the keyboard.
class CapturePromptViewTest : public testing::ModelFixture {
 protected:
  CapturePromptViewTest() {
    launchWatching();
    id = arrive("Screenshot 1.png");
    view = std::make_unique<CapturePromptView>(*model, executor, thumbnails, nullptr);
    view->onKeyboardWanted = [this] { ++keyboardWanted; };
    view->confirmDeletion = [this](const QString& fileName) {
      confirmed.push_back(fileName);
      return confirms;
    };
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
  void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

  QLineEdit* field() const { return view->findChild<QLineEdit*>(); }
  DurationPicker* picker() const { return view->findChild<DurationPicker*>(); }
  ActionButton* button(const char* name) const {
    for (auto* candidate : view->findChildren<ActionButton*>()) {
      const bool isNamed =
          candidate->text() == QLatin1String(name) || candidate->accessibleName() == QLatin1String(name);
      if (isNamed) return candidate;
    }
    ADD_FAILURE() << "no button " << name;
    return nullptr;
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
  ThumbnailLoader thumbnails{executor, [](const FileURL&) { return false; }};
  std::unique_ptr<CapturePromptView> view;
  int keyboardWanted = 0;
  std::vector<QString> confirmed;
  bool confirms = true;
};

// --- What it starts with ---

TEST_F(CapturePromptViewTest, StartsWithTheFilesNameTheLastDurationAndTheMainButton) {
  EXPECT_EQ(field()->text(), QStringLiteral("Screenshot 1"));
  EXPECT_TRUE(showsText(QStringLiteral(".png")));
  EXPECT_EQ(picker()->duration(), *model->lastTemporaryDuration);
  EXPECT_EQ(QApplication::focusWidget(), button("Temporary"));
  EXPECT_FALSE(isErrorShown());
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
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(item(id).url.lastPathComponent(), "Receipt.png");
  EXPECT_NEAR(*item(id).expiresAt - now(), 3600, 0.001);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot marked as temporary.")));
}

TEST_F(CapturePromptViewTest, KeepTakesTheName) {
  type(QStringLiteral("Receipt"));
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).url.lastPathComponent(), "Receipt.png");
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot kept.")));
}

TEST_F(CapturePromptViewTest, MoveToTrashAsksNothing) {
  QTest::mouseClick(button("Move to Trash"), Qt::LeftButton);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("Screenshot 1.png"));
  EXPECT_TRUE(confirmed.empty());
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot moved to Trash.")));
}

TEST_F(CapturePromptViewTest, DeletingAsksFirst) {
  model->setDeletesChosenImmediately(true);
  refresh();
  confirms = false;
  QTest::mouseClick(button("Delete"), Qt::LeftButton);
  EXPECT_EQ(confirmed, std::vector<QString>{QStringLiteral("Screenshot 1.png")});
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
  confirms = true;
  QTest::mouseClick(button("Delete"), Qt::LeftButton);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_EQ(files.removeCalls, 1);
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Screenshot deleted.")));
}

TEST_F(CapturePromptViewTest, ARefusedTrashAnnouncesNoSuccessAndShowsWhy) {
  files.refuse(item(id).url);
  QTest::mouseClick(button("Move to Trash"), Qt::LeftButton);
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
  for (int i = 0; i < 6; ++i) {
    press(Qt::Key_Tab);
    visited.push_back(QApplication::focusWidget());
  }
  EXPECT_EQ(visited, (std::vector<QWidget*>{button("Keep"), picker(), button("Move to Trash"),
                                            button("Dismiss Screenshot Popup"), field(), button("Temporary")}));
}

TEST_F(CapturePromptViewTest, ARequestForTheKeyboardPutsItOnTheMainButton) {
  field()->setFocus();
  model->reviewPending(false);
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
  button("Dismiss Screenshot Popup")->setFocus();
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
  refresh();
  EXPECT_EQ(field()->text(), QStringLiteral("2"));
  EXPECT_EQ(picker()->duration(), *model->lastTemporaryDuration);
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

}  // namespace
}  // namespace quillmere
