#include "shell/Confirmations.h"

#include <gtest/gtest.h>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "controls/ActionButton.h"
#include "controls/Alert.h"
#include "shell/AcknowledgmentsPopover.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

/// What the question gives when it is answered so.
bool answer(const std::function<bool()>& question, const std::function<void(Alert&)>& how) {
  bool isSeen = false;
  QTimer::singleShot(0, [&] {
    auto* box = dynamic_cast<Alert*>(QApplication::activeModalWidget());
    ASSERT_TRUE(box);
    isSeen = true;
    how(*box);
    box->close();
  });
  const bool isConfirmed = question();
  EXPECT_TRUE(isSeen);
  return isConfirmed;
}
struct Question {
  const char* text;
  const char* details;
  const char* action;
  std::function<bool()> ask;
};
class ConfirmationsTest : public ::testing::TestWithParam<Question> {};

TEST_P(ConfirmationsTest, SaysWhatWouldBeDone) {
  answer(GetParam().ask, [](const Alert& box) {
    EXPECT_EQ(box.content().heading, QString::fromUtf8(GetParam().text));
    EXPECT_EQ(box.windowTitle(), box.content().heading);
    EXPECT_EQ(box.safeButton().text(), QStringLiteral("Cancel"));
    EXPECT_EQ(box.content().message, QString::fromUtf8(GetParam().details));
    EXPECT_EQ(box.actionButton()->text(), QString::fromUtf8(GetParam().action));
    for (const auto* label : box.findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
  });
}

TEST_P(ConfirmationsTest, OnlyItsOwnButtonDoesIt) {
  EXPECT_TRUE(answer(GetParam().ask, [](const Alert& box) { QTest::mouseClick(box.actionButton(), Qt::LeftButton); }));
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
    EXPECT_FALSE(answer(GetParam().ask, [key](Alert& box) { QTest::keyClick(&box, key); })) << key;
  }
  EXPECT_FALSE(answer(GetParam().ask, [](Alert& box) { box.close(); }));
}

constexpr auto kWatching =
    "Other apps keep files of their own here. Quillmere would look at every picture that one of them puts directly "
    "into "
    "this folder, to find out whether it’s a screenshot. A folder for screenshots alone is the better choice.";

INSTANTIATE_TEST_SUITE_P(
    Each, ConfirmationsTest,
    ::testing::Values(
        Question{"Quit Quillmere?",
                 "2 screenshots are still waiting for a decision. They’ll be waiting again the next time you open "
                 "Quillmere, but a screenshot you take while it’s closed is saved without a popup.",
                 "Quit Quillmere",
                 [] {
                   return Confirmations::quit({2, false}, nullptr);
                 }},
        Question{"Quit Quillmere?",
                 "Quillmere couldn’t save its screenshot list. Recent changes may be lost when Quillmere quits.",
                 "Quit Quillmere",
                 [] {
                   return Confirmations::quit({0, true}, nullptr);
                 }},
        Question{"Quit Quillmere?",
                 "Quillmere couldn’t save its screenshot list. Recent changes may be lost when Quillmere quits.\n\n"
                 "1 screenshot is still waiting for a decision. It’ll be waiting again the next time you open "
                 "Quillmere, but a screenshot you take while it’s closed is saved without a popup.",
                 "Quit Quillmere",
                 [] {
                   return Confirmations::quit({1, true}, nullptr);
                 }},
        Question{"Delete Screenshot?",
                 "“<b>1</b>.png” will be deleted from its folder and removed from Quillmere. This can’t be undone.",
                 "Delete", [] { return Confirmations::deletion(QStringLiteral("<b>1</b>.png")); }},
        Question{"Save Screenshots to “Shots”?",
                 "Every screenshot that your screenshot tool takes will be saved there from now on. You can change it "
                 "back in the tool’s settings, or here in Quillmere.",
                 "Save Screenshots Here", [] { return Confirmations::savingScreenshotsIn(QStringLiteral("Shots")); }},
        Question{"Clear Inbox Records?",
                 "Quillmere forgets every screenshot in the Inbox, with its description and deletion timer. The files "
                 "stay where they are, and Temporary screenshots won’t be moved to Trash.",
                 "Clear Records", [] { return Confirmations::clearingRecords(); }},
        Question{"Watch Your Whole Home Folder?", kWatching, "Watch This Folder",
                 [] { return Confirmations::watching(FileURL::fromPath("/tmp"), FileURL::fromPath("/tmp")); }},
        Question{"Watch the Computer’s Root Folder?", kWatching, "Watch This Folder",
                 [] { return Confirmations::watching(FileURL::fromPath("/"), FileURL::fromPath("/tmp")); }}));

TEST(ConfirmationsOverAPopoverTest, BelongToItsWindowWhichDoesNotGo) {
  const std::function<bool()> deletion = [] { return Confirmations::deletion(QStringLiteral("1.png")); };
  const std::function<bool()> quit = [] { return Confirmations::quit({1, false}, nullptr); };
  for (const auto& question : {deletion, quit, std::function<bool()>(&Confirmations::clearingRecords)}) {
    QWidget window;
    const QPushButton button(&window);
    window.show();
    const QPointer<AcknowledgmentsPopover> popover =
        new AcknowledgmentsPopover({{QStringLiteral("Qt"), QStringLiteral("LGPL-3.0-only")}}, &window);
    popover->setAttribute(Qt::WA_DeleteOnClose);
    popover->openBeside(button);
    popover->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(popover));
    EXPECT_TRUE(answer(question, [&](const Alert& box) {
      EXPECT_EQ(box.parentWidget(), &window);
      EXPECT_TRUE(testing::runLoopUntil([&] { return !popover || !popover->isVisible(); }));
      QTest::mouseClick(box.actionButton(), Qt::LeftButton);
    }));
  }
}

TEST(ConfirmationsOfOrdinaryFoldersTest, AreNotAskedFor) {
  EXPECT_TRUE(Confirmations::watching(FileURL::fromPath("/tmp/Shots"), FileURL::fromPath("/tmp")));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace
}  // namespace quillmere
