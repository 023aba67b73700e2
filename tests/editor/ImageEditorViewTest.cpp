#include "editor/ImageEditorView.h"

#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLayout>

#include "controls/ActionButton.h"
#include "controls/WorkIndicator.h"
#include "editor/CropBoundsFields.h"
#include "editor/CropCanvas.h"
#include "editor/EditorFixture.h"

namespace quillmere::testing {
namespace {

using Source = WindowShadowMargin::Source;

class ImageEditorViewTest : public EditorFixture {
 protected:
  void SetUp() override {
    EditorFixture::SetUp();
    around.resize(780, 700);
    around.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&around));
  }
  void TearDown() override { sheet.reset(); }
  void make(bool detectWindow = false) {
    closed.reset();
    saved.reset();
    sheet = std::make_unique<ImageEditorView>(*model, executor, item(id), detectWindow, &around);
    sheet->onSaved = [this](const UUID& record) { saved = record; };
    QObject::connect(sheet.get(), &QDialog::finished, sheet.get(), [this](int result) { closed = result; });
    sheet->open();
    sheet->activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == sheet.get(); }));
  }
  void open() {
    make();
    executor.drain();
  }
  void openWith(const std::vector<ImageOperations::DetectedWindow>& windows) {
    make(true);
    find(windows);
  }
  void select(const QRect& rect) {
    sheet->editor().change([&](CropSelection& selection) { selection.setByHand(rect); });
  }
  QRect crop() const { return sheet->editor().selection().selection(); }
  CropCanvas& canvas() const { return childOf<CropCanvas>(*sheet); }
  QPushButton& button(const char* words) const { return button(*sheet, words); }
  static QPushButton& button(const QWidget& pane, const char* words) {
    for (auto* found : pane.findChildren<QPushButton*>()) {
      if (found->text() == text(words) || found->accessibleName() == text(words)) return *found;
    }
    throw std::out_of_range(words);
  }
  PixelField& field(const char* name) const {
    for (auto* found : sheet->findChildren<QLineEdit*>()) {
      if (found->accessibleName() == text(name)) return dynamic_cast<PixelField&>(*found);
    }
    throw std::out_of_range(name);
  }
  void type(const char* name, const char* number) const {
    field(name).setFocus();
    field(name).selectAll();
    QTest::keyClicks(&field(name), text(number));
  }
  /// Whether a label that is to be seen has this in it.
  bool says(const QString& words) const {
    for (const auto* label : sheet->findChildren<QLabel*>()) {
      const QString shown = label->accessibleName().isEmpty() ? label->text() : label->accessibleName();
      if (label->isVisible() && shown.contains(words)) return true;
    }
    return false;
  }
  bool says(const char* words) const { return says(text(words)); }
  /// As far as `count` presses, the first of them a person's.
  void hold(Qt::Key key, int count) const {
    for (int i = 0; i < count; ++i) {
      QKeyEvent event(QEvent::KeyPress, key, {}, {}, i > 0);
      QCoreApplication::sendEvent(sheet->focusWidget(), &event);
    }
  }
  void letGo(Qt::Key key) const { QTest::keyRelease(sheet->focusWidget(), key); }
  void click(const char* words) const { QTest::mouseClick(&button(words), Qt::LeftButton); }
  /// Of these, those that can be pressed.
  QStringList enabled() const {
    QStringList names;
    for (const char* words : {"Undo", "Redo", "Select Whole Image", "Keep Full Screenshot", "Copy Cropped Image",
                              "Cancel", "Replace Original…", "Save as New Screenshot"}) {
      if (button(words).isVisible() && button(words).isEnabled()) names << text(words);
    }
    return names;
  }
  static QStringList list(const char* names) { return text(names).split(QStringLiteral(", ")); }
  void ask() {
    select(kWindow);
    click("Replace Original…");
    executor.drain();
    ASSERT_TRUE(sheet->question());
  }

  QWidget around;
  std::unique_ptr<ImageEditorView> sheet;
  std::optional<int> closed;
  std::optional<UUID> saved;
};

// --- Opening ---

TEST_F(ImageEditorViewTest, ItSaysAtOnceThatItLoads) {
  make();
  EXPECT_TRUE(says("Loading image…"));
  EXPECT_TRUE(says("Crop"));
  EXPECT_TRUE(says("Shot.png"));
  EXPECT_EQ(enabled(), list("Cancel"));
  EXPECT_FALSE(canvas().isVisible());
  EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
  executor.drain();
  EXPECT_FALSE(says("Loading image…"));
  EXPECT_TRUE(canvas().isVisible());
  EXPECT_TRUE(canvas().hasFocus());
  EXPECT_TRUE(
      says("Save the crop as a new screenshot, or replace the original. Drag on the image, use the arrow keys, "
           "or enter pixel bounds measured from the top-left corner."));
}

TEST_F(ImageEditorViewTest, ItSaysThatItLooksForWindowsAndWhatCameOfIt) {
  make(true);
  EXPECT_TRUE(says("Finding possible windows…"));
  EXPECT_TRUE(says("Extract Window"));
  find({window(kWindow), window(kSmaller)});
  EXPECT_EQ(crop(), kWindow);
  EXPECT_TRUE(says("These are estimated boundaries, not guaranteed windows. Check the preview and adjust the crop."));
  EXPECT_TRUE(sheet->findChild<QComboBox*>()->isVisible());
  openWith({});
  EXPECT_TRUE(
      says("No window was detected, so nothing is selected. Drag on the image to choose an area, or keep the "
           "full screenshot."));
  EXPECT_FALSE(sheet->findChild<QComboBox*>()->isVisible());
  model->keepBatch({id});
  EXPECT_TRUE(
      says("No window was detected, so nothing is selected. Drag on the image to choose an area, or choose "
           "Select Whole Image to save a full-size copy."));
}

TEST_F(ImageEditorViewTest, WhatCantBeReadLeavesOnlyCancel) {
  deleteFile(file);
  open();
  EXPECT_TRUE(says("Quillmere couldn’t open this screenshot. Close this window and try again."));
  EXPECT_EQ(enabled(), list("Cancel"));
  click("Cancel");
  EXPECT_EQ(closed, QDialog::Rejected);
}

TEST_F(ImageEditorViewTest, ClosedWhileItLoadsItLetsGo) {
  make();
  QTest::keyClick(sheet.get(), Qt::Key_Escape);
  EXPECT_EQ(closed, QDialog::Rejected);
  EXPECT_FALSE(isProtected());
  executor.drain();
  EXPECT_FALSE(sheet->editor().hasPicture());
}

// --- What can be done ---

TEST_F(ImageEditorViewTest, WhatCanBeDoneGoesByTheSelection) {
  open();
  EXPECT_EQ(enabled(), list("Select Whole Image, Keep Full Screenshot, Cancel"));
  select(kWindow);
  EXPECT_EQ(enabled(), list("Undo, Select Whole Image, Keep Full Screenshot, Copy Cropped Image, Cancel, Replace "
                            "Original…, Save as New Screenshot"));
  select({});
  EXPECT_EQ(enabled(), list("Undo, Select Whole Image, Keep Full Screenshot, Cancel"));
  click("Undo");
  EXPECT_EQ(crop(), kWindow);
  EXPECT_TRUE(button("Redo").isEnabled());
}

TEST_F(ImageEditorViewTest, KeepIsShownOnlyWhileTheRecordAwaitsItsDecision) {
  open();
  EXPECT_TRUE(button("Keep Full Screenshot").isVisible());
  model->markTemporaryBatch({id}, TemporaryDuration::oneHour);
  EXPECT_FALSE(button("Keep Full Screenshot").isVisible());
}

TEST_F(ImageEditorViewTest, KeepKeepsAndCloses) {
  open();
  click("Keep Full Screenshot");
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(closed, QDialog::Accepted);
  EXPECT_FALSE(saved);
}

TEST_F(ImageEditorViewTest, AnObstacleToReplacingIsSeenAndGoesAgain) {
  open();
  select(kWindow);
  EXPECT_FALSE(says(kObstacle));
  finish(model->rename(id, QStringLiteral("Other"), ErrorScope::inbox));
  EXPECT_TRUE(says(kObstacle));
  EXPECT_FALSE(button("Replace Original…").isEnabled());
  EXPECT_EQ(button("Replace Original…").accessibleDescription(), text(kObstacle));
  EXPECT_TRUE(button("Save as New Screenshot").isEnabled());
  finish(model->rename(id, QStringLiteral("Shot"), ErrorScope::inbox));
  executor.drain();
  EXPECT_FALSE(says(kObstacle));
  EXPECT_TRUE(button("Replace Original…").isEnabled());
}

TEST_F(ImageEditorViewTest, ARewrittenFileIsNoticedWithinASecond) {
  open();
  select(kWindow);
  rewrite();
  executor.advance(seconds(1));
  EXPECT_TRUE(says(kObstacle));
  EXPECT_FALSE(button("Replace Original…").isEnabled());
}

TEST_F(ImageEditorViewTest, KeepWaitsForThePopupThatSavesItsWindow) {
  model->setPromptWindowExtraction(item(id), true).detach();
  scanner.answer(0, picture(), kWindow);
  open();
  EXPECT_TRUE(button("Keep Full Screenshot").isEnabled());
  executor.holdBackground();
  model->keepPrompt(id).detach();
  ASSERT_TRUE(model->windowExtraction().isSaving(id));
  EXPECT_TRUE(button("Keep Full Screenshot").isVisible());
  EXPECT_FALSE(button("Keep Full Screenshot").isEnabled());
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_FALSE(closed);
}

TEST_F(ImageEditorViewTest, KeepCanBePressedAgainWhereThePopupCouldNotSave) {
  model->setPromptWindowExtraction(item(id), true).detach();
  scanner.answer(0, picture(), kWindow);
  open();
  files.refuse(file);
  model->keepPrompt(id).detach();
  EXPECT_FALSE(button("Keep Full Screenshot").isEnabled());
  executor.drain();
  EXPECT_TRUE(button("Keep Full Screenshot").isEnabled());
  click("Keep Full Screenshot");
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(closed, QDialog::Accepted);
}

// --- The selection ---

TEST_F(ImageEditorViewTest, TheMenuPicksAndTheBoxTakesTheShadowIn) {
  openWith({withShadow(window(kWindow), Source::estimated), window(kSmaller)});
  auto& box = *sheet->findChild<QCheckBox*>();
  box.click();
  EXPECT_EQ(crop(), kWindow.adjusted(-5, -5, 5, 5));
  EXPECT_TRUE(box.isChecked());
  EXPECT_TRUE(
      says("The shadow couldn’t be told apart from what’s behind this window, so this is a typical shadow size "
           "rather than a measurement. Check the preview and adjust the bounds."));
  QTest::keyClick(sheet->findChild<QComboBox*>(), Qt::Key_Down);
  EXPECT_EQ(crop(), kSmaller);
  EXPECT_FALSE(box.isChecked());
  EXPECT_FALSE(box.isEnabled());
  EXPECT_FALSE(says("The shadow couldn’t be told apart"));
}

TEST_F(ImageEditorViewTest, FieldsAndCanvasShowTheSameSelection) {
  open();
  select(kWindow);
  EXPECT_EQ(field("Width").text(), QStringLiteral("60"));
  canvas().setFocus();
  QTest::keyClick(&canvas(), Qt::Key_Right);
  EXPECT_EQ(field("X").text(), QStringLiteral("11"));
  type("X", "3");
  QTest::keyClick(&field("X"), Qt::Key_Return);
  EXPECT_EQ(crop(), kWindow.translated(-7, 0));
  EXPECT_FALSE(closed) << "Return in a field only takes what is typed";
  type("X", "99");
  QTest::keyClick(&field("X"), Qt::Key_Return);
  EXPECT_TRUE(says("Enter bounds inside the image."));
  EXPECT_TRUE(announcer.hasSaid(text("Enter bounds inside the image.")));
  click("Select Whole Image");
  EXPECT_FALSE(says("Enter bounds inside the image."));
  EXPECT_EQ(crop(), QRect(0, 0, 100, 80));
}

TEST_F(ImageEditorViewTest, AClickAndAButtonRightAfterItAreTwoSteps) {
  open();
  select(kSmaller);
  const QPoint beside = canvas().zoom().viewAt({5, 5}).toPoint();
  QTest::mouseClick(&canvas(), Qt::LeftButton, {}, beside);
  EXPECT_TRUE(crop().isEmpty());
  click("Select Whole Image");
  EXPECT_EQ(crop(), QRect(0, 0, 100, 80));
  click("Undo");
  EXPECT_TRUE(crop().isEmpty());
  click("Undo");
  EXPECT_EQ(crop(), kSmaller);
  click("Redo");
  EXPECT_TRUE(crop().isEmpty());
}

TEST_F(ImageEditorViewTest, AnUndoInTheMiddleOfADragEndsIt) {
  open();
  select(kSmaller);
  const auto at = [this](QPointF pixel) { return canvas().zoom().viewAt(pixel).toPoint(); };
  QTest::mousePress(&canvas(), Qt::LeftButton, {}, at({50, 40}));
  QTest::mouseMove(&canvas(), at({60, 60}));
  EXPECT_NE(crop(), kSmaller);
  QTest::keyClick(&canvas(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(crop(), kSmaller);
  QTest::mouseMove(&canvas(), at({70, 70}));
  EXPECT_EQ(crop(), kSmaller);
}

TEST_F(ImageEditorViewTest, AKeyThatIsHeldInAFieldIsOneStep) {
  open();
  select(kWindow);
  field("X").setFocus();
  hold(Qt::Key_Up, 4);
  EXPECT_EQ(crop(), kWindow.translated(4, 0));
  letGo(Qt::Key_Up);
  hold(Qt::Key_Down, 2);
  // The button does not take the keyboard.
  click("Undo");
  EXPECT_EQ(crop(), kWindow.translated(4, 0));
  hold(Qt::Key_Down, 2);
  EXPECT_EQ(crop(), kWindow.translated(2, 0)) << "another one, until the key goes up";
  field("Y").setFocus();
  hold(Qt::Key_Up, 3);
  click("Select Whole Image");
  letGo(Qt::Key_Up);
  for (const QRect& before : {kWindow.translated(2, 3), kWindow.translated(2, 0), kWindow.translated(4, 0), kWindow}) {
    click("Undo");
    EXPECT_EQ(crop(), before);
  }
}

TEST_F(ImageEditorViewTest, KeysUndoAndRedoOutsideOfFields) {
  open();
  select(kWindow);
  canvas().setFocus();
  QTest::keyClick(&canvas(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(crop().isEmpty());
  QTest::keyClick(&canvas(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(crop(), kWindow);
  type("X", "7");
  QTest::keyClick(&field("X"), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(crop(), kWindow) << "that was the field's";
}

// --- Actions ---

TEST_F(ImageEditorViewTest, ReturnOnTheCanvasSavesAndClosesAndTellsTheRecord) {
  open();
  select(kWindow);
  QTest::keyClick(&canvas(), Qt::Key_Return);
  executor.drain();
  EXPECT_EQ(closed, QDialog::Accepted);
  ASSERT_TRUE(saved);
  EXPECT_EQ(item(*saved).url, newFile());
  EXPECT_EQ(sizeOf(newFile()), kWindow.size());
}

TEST_F(ImageEditorViewTest, ReturnOnAButtonPressesThatButton) {
  open();
  select(kWindow);
  button("Cancel").setFocus();
  QTest::keyClick(&button("Cancel"), Qt::Key_Return);
  executor.drain();
  EXPECT_EQ(closed, QDialog::Rejected);
  EXPECT_EQ(model->items().size(), 1U);
}

TEST_F(ImageEditorViewTest, WhileAnActionIsUnderWayOnlyCancelCanBePressed) {
  open();
  select(kWindow);
  button("Save as New Screenshot").setFocus();
  click("Save as New Screenshot");
  EXPECT_EQ(enabled(), list("Cancel"));
  EXPECT_TRUE(canvas().isLocked());
  EXPECT_FALSE(field("X").isEnabled());
  click("Save as New Screenshot");
  QTest::keyClick(sheet.get(), Qt::Key_Return);
  EXPECT_FALSE(closed);
  executor.drain();
  EXPECT_EQ(closed, QDialog::Accepted);
  EXPECT_EQ(model->items().size(), 2U) << "once";
}

TEST_F(ImageEditorViewTest, CancelledDuringAnActionItClosesAndTheActionGoesOn) {
  open();
  select(kWindow);
  click("Save as New Screenshot");
  click("Cancel");
  EXPECT_EQ(closed, QDialog::Rejected);
  executor.drain();
  EXPECT_TRUE(fileExists(newFile()));
  EXPECT_FALSE(saved);
}

TEST_F(ImageEditorViewTest, AFailureStandsInTheSheetAndTheKeyboardComesBack) {
  open();
  select(kWindow);
  button("Save as New Screenshot").setFocus();
  std::filesystem::rename(shots.path(), home.file("other").path());
  click("Save as New Screenshot");
  executor.drain();
  QCoreApplication::processEvents();
  EXPECT_TRUE(says("The new image couldn’t be saved. "));
  EXPECT_TRUE(says(" Check that the screenshot folder is available, then try again."));
  EXPECT_FALSE(closed);
  EXPECT_EQ(crop(), kWindow);
  EXPECT_EQ(sheet->focusWidget(), &button("Save as New Screenshot"));
  std::filesystem::rename(home.file("other").path(), shots.path());
}

TEST_F(ImageEditorViewTest, WhatIsTypedIsSavedToo) {
  open();
  select(kWindow);
  type("Width", "30");
  click("Save as New Screenshot");
  executor.drain();
  EXPECT_EQ(sizeOf(newFile()), QSize(30, 40));
}

TEST_F(ImageEditorViewTest, WhatCantBeTakenIsToldBeforeAnythingIsSaved) {
  open();
  select(kWindow);
  type("Width", "3000");
  click("Save as New Screenshot");
  executor.drain();
  EXPECT_FALSE(closed);
  EXPECT_TRUE(says("Enter bounds inside the image."));
  EXPECT_EQ(model->items().size(), 1U);
}

TEST_F(ImageEditorViewTest, CopySaysSoForAWhileAndStaysOpen) {
  open();
  select(kWindow);
  canvas().setFocus();
  QTest::keyClick(&canvas(), Qt::Key_C, Qt::ControlModifier);
  executor.drain();
  EXPECT_EQ(pasteboard.items.size(), 1U);
  EXPECT_TRUE(says("Cropped image copied."));
  executor.advance(ImageEditor::kMessageTime);
  EXPECT_FALSE(says("Cropped image copied."));
  click("Copy Cropped Image");
  executor.drain();
  EXPECT_EQ(pasteboard.items.size(), 2U);
  EXPECT_FALSE(closed);
}

// --- The question ---

TEST_F(ImageEditorViewTest, ReplaceAsksFirstWithTheSafeAnswerForReturn) {
  open();
  ask();
  EXPECT_EQ(sheet->question()->windowModality(), Qt::WindowModal);
  EXPECT_EQ(sheet->question()->content().heading, text("Replace the Original Screenshot?"));
  EXPECT_TRUE(sheet->question()->content().message.contains(text("“Shot.png”")));
  QTest::keyClick(sheet->question(), Qt::Key_Return);
  executor.drain();
  EXPECT_FALSE(sheet->question());
  EXPECT_FALSE(closed);
  EXPECT_EQ(sizeOf(file), QSize(100, 80));
}

TEST_F(ImageEditorViewTest, AnsweredWithYesItReplacesAndCloses) {
  open();
  ask();
  EXPECT_EQ(sheet->question()->actionButton()->text(), text("Replace Original"));
  QTest::mouseClick(sheet->question()->actionButton(), Qt::LeftButton);
  executor.drain();
  EXPECT_EQ(closed, QDialog::Accepted);
  EXPECT_EQ(sizeOf(file), kWindow.size());
  EXPECT_TRUE(announcer.hasSaid(text("Original replaced and moved to Trash.")));
}

TEST_F(ImageEditorViewTest, TheQuestionGoesWhenItsFileChangesAndWithTheSheet) {
  open();
  ask();
  rewrite();
  executor.advance(seconds(1));
  EXPECT_FALSE(sheet->question());
  EXPECT_TRUE(says(kObstacle));
  open();
  ask();
  const QPointer<Alert> alert = sheet->question();
  sheet->hide();
  EXPECT_FALSE(alert && alert->isVisible());
}

// --- Keyboard and size ---

TEST_F(ImageEditorViewTest, TabGoesAsTheEyeDoes) {
  openWith({withShadow(window(kWindow), Source::measured)});
  select({});
  sheet->editor().undo();
  QStringList order;
  canvas().setFocus();
  for (int i = 0; i < 12; ++i) {
    QTest::keyClick(sheet->focusWidget(), Qt::Key_Tab);
    const auto* now = sheet->focusWidget();
    const auto* pressed = qobject_cast<const QAbstractButton*>(now);
    order << (now->accessibleName().isEmpty() && pressed ? pressed->text() : now->accessibleName());
  }
  EXPECT_EQ(order, list("Detected content, Include window shadow, X, Y, Width, Height, Select Whole Image, Keep Full "
                        "Screenshot, Copy Cropped Image, Cancel, Replace Original…, Save as New Screenshot"));
}

TEST_F(ImageEditorViewTest, ItsSizeGoesByTheWindowsAndHoldsWhatItHas) {
  open();
  const QSize before = sheet->size();
  EXPECT_NEAR(before.width(), 0.92 * around.width() + 2 * PopupSurface::kReach, 1);
  around.resize(720, 560);
  QCoreApplication::processEvents();
  EXPECT_LT(sheet->width(), before.width());
  around.resize(200, 100);
  QCoreApplication::processEvents();
  QCoreApplication::processEvents();
  EXPECT_GE(sheet->height(), sheet->layout()->totalMinimumHeightForWidth(sheet->width()));
  EXPECT_LE(sheet->height(), around.screen()->availableSize().height());
  for (const char* words : {"Cancel", "Save as New Screenshot", "Copy Cropped Image", "Select Whole Image"}) {
    const QRect place(button(words).mapTo(sheet.get(), QPoint(0, 0)), button(words).size());
    EXPECT_TRUE(sheet->rect().contains(place)) << words;
  }
}

TEST_F(ImageEditorViewTest, TheCanvasGivesWayToATextOnce) {
  open();
  select(kWindow);
  QCoreApplication::processEvents();
  const QSize without = canvas().size();
  finish(model->rename(id, QStringLiteral("Other"), ErrorScope::inbox));
  QCoreApplication::processEvents();
  const QSize with = canvas().size();
  EXPECT_LT(with.height(), without.height());
  EXPECT_EQ(with.width(), without.width());
  finish(model->rename(id, QStringLiteral("Shot"), ErrorScope::inbox));
  executor.drain();
  QCoreApplication::processEvents();
  EXPECT_EQ(canvas().size(), with);
}

}  // namespace
}  // namespace quillmere::testing
