#include "inbox/NameField.h"

#include <QtGui/QShortcut>
#include <QtTest/QTest>
#include <QtWidgets/QVBoxLayout>

#include "fakes/ModelFixture.h"

namespace quillmere {
namespace {

class NameFieldTest : public testing::ModelFixture {
 protected:
  NameFieldTest() {
    launchWatching();
    id = arrive("Shot.png");
    presentation = std::make_unique<InboxPresentation>(*model, InboxServices{});
    presentation->beginRename(item(id));
    auto* column = new QVBoxLayout(&window);
    field = new NameField(*presentation, **presentation->renameSession, &window);
    other->setFocusPolicy(Qt::StrongFocus);
    column->addWidget(field);
    column->addWidget(other);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    field->setFocus();
  }
  QString stem() const { return item(id).url.displayStem(); }
  bool isOpen() const { return presentation->renameSession->has_value(); }

  UUID id;
  std::unique_ptr<InboxPresentation> presentation;
  QWidget window;
  QWidget* other = new QWidget;
  NameField* field = nullptr;
};

TEST_F(NameFieldTest, HoldsTheStemSelectedAndSaysWhatKeysDo) {
  EXPECT_EQ(field->text(), QStringLiteral("Shot"));
  EXPECT_EQ(field->selectedText(), QStringLiteral("Shot"));
  EXPECT_EQ(field->accessibleName(), QStringLiteral("Name"));
  EXPECT_EQ(field->placeholderText(), QStringLiteral("Name"));
  EXPECT_EQ(field->accessibleDescription(),
            QStringLiteral("Return renames the screenshot’s file. Escape keeps its current name."));
}

TEST_F(NameFieldTest, ReturnRenames) {
  QTest::keyClicks(field, QStringLiteral("Report"));
  EXPECT_EQ((*presentation->renameSession)->text, QStringLiteral("Report"));
  QTest::keyClick(field, Qt::Key_Return);
  executor.drain();
  EXPECT_EQ(stem(), QStringLiteral("Report"));
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Renamed to Report.")));
}

TEST_F(NameFieldTest, ReturnOnTheNameAsItWasOrOnNoneRenamesNothing) {
  QTest::keyClick(field, Qt::Key_Enter);
  executor.drain();
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(stem(), QStringLiteral("Shot"));
  presentation->beginRename(item(id));
  NameField again(*presentation, **presentation->renameSession, &window);
  again.setText(QStringLiteral(" / "));
  QTest::keyClick(&again, Qt::Key_Return);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(stem(), QStringLiteral("Shot"));
}

TEST_F(NameFieldTest, EscapeAndTheLossOfTheKeyboardKeepTheName) {
  QTest::keyClicks(field, QStringLiteral("Report"));
  QTest::keyClick(field, Qt::Key_Escape);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(stem(), QStringLiteral("Shot"));
  presentation->beginRename(item(id));
  auto* again = new NameField(*presentation, **presentation->renameSession, &window);
  again->show();
  again->setFocus();
  QTest::keyClicks(again, QStringLiteral("Report"));
  other->setFocus();
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(stem(), QStringLiteral("Shot"));
}

TEST_F(NameFieldTest, ItsOwnMenuDoesNotEndIt) {
  QFocusEvent toMenu(QEvent::FocusOut, Qt::PopupFocusReason);
  QCoreApplication::sendEvent(field, &toMenu);
  EXPECT_TRUE(isOpen());
  QFocusEvent toWindow(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
  QCoreApplication::sendEvent(field, &toWindow);
  EXPECT_FALSE(isOpen());
}

TEST_F(NameFieldTest, NoShortcutOfTheWindowFires) {
  int fired = 0;
  for (const QKeySequence& keys :
       {QKeySequence(Qt::Key_Delete), QKeySequence(Qt::CTRL | Qt::Key_C), QKeySequence(Qt::CTRL | Qt::Key_Backspace),
        QKeySequence(Qt::Key_F2), QKeySequence(Qt::CTRL | Qt::Key_K), QKeySequence(Qt::Key_Return)}) {
    QObject::connect(new QShortcut(keys, &window), &QShortcut::activated, &window, [&] { ++fired; });
  }
  QTest::keyClick(field, Qt::Key_Delete);
  QTest::keyClick(field, Qt::Key_C, Qt::ControlModifier);
  QTest::keyClick(field, Qt::Key_Backspace, Qt::ControlModifier);
  QTest::keyClick(field, Qt::Key_F2);
  QTest::keyClick(field, Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(fired, 0);
  EXPECT_EQ(field->text(), QString()) << "they were the field's";
  QTest::keyClick(field, Qt::Key_Return);
  executor.drain();
  EXPECT_EQ(fired, 0);
  other->setFocus();
  QTest::keyClick(other, Qt::Key_F2);
  EXPECT_EQ(fired, 1) << "elsewhere they do";
}

TEST_F(NameFieldTest, TheFieldOfAnEarlierSessionLeavesTheNewOneAlone) {
  presentation->beginRename(item(id));
  other->setFocus();
  EXPECT_TRUE(isOpen());
}

}  // namespace
}  // namespace quillmere
