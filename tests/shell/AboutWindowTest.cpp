#include "shell/AboutWindow.h"

#include <gtest/gtest.h>
#include <QtGui/QClipboard>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "shell/AcknowledgmentsPopover.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

class AboutWindowTest : public ::testing::Test {
 protected:
  AboutWindowTest() {
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }
  void press(const char* text) const {
    for (auto* found : window.findChildren<QPushButton*>()) {
      if (found->text() == QString::fromUtf8(text)) return QTest::mouseClick(found, Qt::LeftButton);
    }
    ADD_FAILURE() << text;
  }
  QLabel* label(const QString& text) const {
    for (auto* found : window.findChildren<QLabel*>()) {
      if (found->text() == text) return found;
    }
    return nullptr;
  }
  AcknowledgmentsPopover* popover() const {
    for (auto* child : window.findChildren<QDialog*>()) {
      if (auto* found = dynamic_cast<AcknowledgmentsPopover*>(child)) return found;
    }
    return nullptr;
  }

  QStringList opened;
  AboutWindow window{{.version = QStringLiteral("0.1.0"),
                      .build = QStringLiteral("7"),
                      .libraries = {{QStringLiteral("Qt"), QStringLiteral("LGPL-3.0-only")}}},
                     {.openWebsite = [this] { opened.append(QStringLiteral("website")); },
                      .openSupport = [this] { opened.append(QStringLiteral("support")); },
                      .openPrivacyPolicy = [this] { opened.append(QStringLiteral("privacy")); }}};
};

TEST_F(AboutWindowTest, ItSaysWhatTheProgramIs) {
  EXPECT_EQ(window.windowTitle(), QStringLiteral("About Quillmere"));
  for (const char* text : {"Quillmere", "Screenshot now, decide later.", "Version 0.1.0 (Build 7)",
                           "Copyright © 2026 The Quillmere developers"}) {
    EXPECT_TRUE(label(QString::fromUtf8(text))) << text;
  }
  EXPECT_EQ(window.minimumSize(), window.maximumSize());
}

TEST_F(AboutWindowTest, TheVersionCanBeCopiedByKeyboard) {
  QLabel* version = label(QStringLiteral("Version 0.1.0 (Build 7)"));
  version->setFocus();
  QTest::keyClick(version, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(version, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("Version 0.1.0 (Build 7)"));
}

TEST_F(AboutWindowTest, EachLinkOpensItsOwnPage) {
  press("Website");
  press("Support");
  press("Privacy Policy");
  EXPECT_EQ(opened, QStringList({QStringLiteral("website"), QStringLiteral("support"), QStringLiteral("privacy")}));
}

TEST_F(AboutWindowTest, EscapeClosesIt) {
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(AboutWindowTest, AcknowledgmentsOpenOverIt) {
  press("Acknowledgments");
  ASSERT_TRUE(popover());
  EXPECT_TRUE(popover()->isVisible());
  EXPECT_TRUE(label(QStringLiteral("Qt")));
  QTest::keyClick(popover(), Qt::Key_Escape);
  EXPECT_TRUE(testing::runLoopUntil([this] { return !popover(); }));
  EXPECT_TRUE(window.isVisible());
}

}  // namespace
}  // namespace quillmere
