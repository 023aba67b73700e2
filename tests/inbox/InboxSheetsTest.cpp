#include "inbox/InboxSheets.h"

#include <QtTest/QTest>
#include <QtWidgets/QLabel>

#include "controls/ActionButton.h"
#include "inbox/DetailFixture.h"

namespace quillmere {
namespace {

using Reason = AppModel::DisposalReason;

class InboxSheetsTest : public testing::DetailFixture {
 protected:
  InboxSheetsTest() {
    window.resize(900, 700);
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    sheets = std::make_unique<InboxSheets>(*presentation, window);
  }
  void ask() {
    presentation->requestDeletion({item(id)}, Reason::chosen);
    ASSERT_TRUE(sheets->question());
  }
  /// The record is read, and its text shown.
  void showText(const QString& text) {
    analyzer.text = text;
    presentation->showRecognizedText(item(id));
    executor.drain();
    ASSERT_TRUE(sheets->text());
  }
  /// With a screenshot that is a real picture.
  void openEditor(bool detectWindow = false) {
    QImage picture(100, 80, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    ASSERT_TRUE(picture.save(item(id).url.displayPath(), "PNG"));
    reconcileAll();
    presentation->edit(item(id), detectWindow);
    ASSERT_TRUE(sheets->editor());
  }
  void selectAll() {
    executor.drain();
    sheets->editor()->editor().change([](CropSelection& selection) { selection.selectWholeImage(); });
  }
  QWidget window;
  std::unique_ptr<InboxSheets> sheets;
};

TEST_F(InboxSheetsTest, TheQuestionHoldsUpItsWindowAloneAndNothingWaits) {
  ask();
  EXPECT_TRUE(sheets->question()->isVisible());
  EXPECT_EQ(sheets->question()->windowModality(), Qt::WindowModal);
  EXPECT_EQ(sheets->question()->parentWidget(), &window);
}

TEST_F(InboxSheetsTest, ReturnAndEscapeCancel) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
    ask();
    QTest::keyClick(sheets->question(), key);
    EXPECT_FALSE(sheets->question());
    EXPECT_FALSE(presentation->isShowingModal());
    EXPECT_TRUE(hasRecord(id));
  }
}

TEST_F(InboxSheetsTest, TheActionIsDoneByClickOrSpace) {
  ask();
  QTest::mouseClick(sheets->question()->actionButton(), Qt::LeftButton);
  executor.drain();
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("Shot.png"));
  EXPECT_FALSE(sheets->question());
  id = arrive("2.png");
  ask();
  sheets->question()->actionButton()->setFocus(Qt::TabFocusReason);
  QTest::keyClick(sheets->question()->actionButton(), Qt::Key_Space);
  executor.drain();
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(InboxSheetsTest, TheQuestionGoesWithItsRequest) {
  ask();
  const QPointer<Alert> alert = sheets->question();
  presentation->cancelDeletion();
  EXPECT_FALSE(sheets->question());
  EXPECT_FALSE(alert && alert->isVisible());
}

TEST_F(InboxSheetsTest, ARecordThatWentMeanwhileDoesNoHarm) {
  ask();
  model->removeRecords({id});
  ASSERT_TRUE(sheets->question());
  QTest::mouseClick(sheets->question()->actionButton(), Qt::LeftButton);
  executor.drain();
  EXPECT_FALSE(sheets->question());
  EXPECT_FALSE(presentation->isShowingModal());
}

TEST_F(InboxSheetsTest, WhatWouldNowBeDeletedIsNotWhatWasAsked) {
  ask();
  model->setDeletesChosenImmediately(true);
  EXPECT_FALSE(sheets->question());
  EXPECT_TRUE(hasRecord(id));
}

TEST_F(InboxSheetsTest, TheTextOpensAndClosesWithItsRequest) {
  showText(QStringLiteral("words"));
  EXPECT_TRUE(sheets->text()->isVisible());
  EXPECT_EQ(sheets->text()->windowModality(), Qt::WindowModal);
  QTest::keyClick(sheets->text(), Qt::Key_Escape);
  EXPECT_FALSE(sheets->text());
  EXPECT_FALSE(*presentation->recognizedText);
  showText(QStringLiteral("words"));
  presentation->closeRecognizedText();
  EXPECT_FALSE(sheets->text());
}

TEST_F(InboxSheetsTest, CopyTextGoesThroughTheModelAndIsAnnounced) {
  showText(QStringLiteral("all of the words"));
  QTest::mouseClick(button(*sheets->text(), "Copy Text"), Qt::LeftButton);
  EXPECT_EQ(pasteboard.texts, std::vector{QStringLiteral("all of the words")});
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Text copied")));
}

TEST_F(InboxSheetsTest, TheTextOutlivesItsRecord) {
  showText(QStringLiteral("words"));
  model->removeRecords({id});
  ASSERT_TRUE(sheets->text());
  QTest::mouseClick(button(*sheets->text(), "Copy Text"), Qt::LeftButton);
  EXPECT_EQ(pasteboard.texts.size(), 1U);
  QTest::mouseClick(button(*sheets->text(), "Done"), Qt::LeftButton);
  EXPECT_FALSE(presentation->isShowingModal());
}

TEST_F(InboxSheetsTest, TheEditorOpensOverItsWindowAndClosesWithItsRequest) {
  openEditor();
  EXPECT_TRUE(sheets->editor()->isVisible());
  EXPECT_EQ(sheets->editor()->windowModality(), Qt::WindowModal);
  EXPECT_EQ(sheets->editor()->parentWidget(), &window);
  EXPECT_FALSE(sheets->editor()->editor().detectsWindow());
  EXPECT_TRUE(presentation->isShowingModal());
  QTest::mouseClick(button(*sheets->editor(), "Cancel"), Qt::LeftButton);
  EXPECT_FALSE(sheets->editor());
  EXPECT_FALSE(presentation->isShowingModal());
  presentation->edit(item(id), true);
  EXPECT_TRUE(sheets->editor()->editor().detectsWindow());
  presentation->close();
  EXPECT_FALSE(sheets->editor());
  executor.drain();
}

TEST_F(InboxSheetsTest, WhatIsSavedAsNewIsSelected) {
  openEditor();
  selectAll();
  QTest::mouseClick(button(*sheets->editor(), "Save as New Screenshot"), Qt::LeftButton);
  executor.drain();
  EXPECT_FALSE(sheets->editor());
  EXPECT_FALSE(presentation->isShowingModal());
  ASSERT_EQ(model->items().size(), 2U);
  EXPECT_EQ(model->items()[0].sourceItemID, id);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{model->items()[0].id});
}

TEST_F(InboxSheetsTest, ARecordWhoseEditorIsOpenCantBeDeleted) {
  openEditor();
  executor.drain();
  finish(model->disposeConfirmed({item(id)}, {}, Reason::chosen));
  EXPECT_TRUE(hasRecord(id));
  ASSERT_TRUE(*model->inboxError);
  EXPECT_EQ((*model->inboxError)->message,
            QString::fromUtf8("Close the crop editor or save dialog before deleting this screenshot."));
  presentation->closeEditor();
  finish(model->disposeConfirmed({item(id)}, {}, Reason::chosen));
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(InboxSheetsTest, TheWindowMayCloseWhileAnActionOrAQuestionOfTheEditorIsOpen) {
  openEditor();
  selectAll();
  QTest::mouseClick(button(*sheets->editor(), "Replace Original…"), Qt::LeftButton);
  executor.drain();
  ASSERT_TRUE(sheets->editor()->question());
  presentation->close();
  EXPECT_FALSE(sheets->editor());
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  openEditor();
  selectAll();
  QTest::mouseClick(button(*sheets->editor(), "Save as New Screenshot"), Qt::LeftButton);
  sheets.reset();
  executor.drain();
  EXPECT_EQ(model->items().size(), 2U);
}

}  // namespace
}  // namespace quillmere
