#include "shell/WelcomeWindow.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

struct FakeTray final : DesktopTray {
  bool isThere() const override { return isThereNow; }
  void set(bool isThere) {
    isThereNow = isThere;
    changed();
  }
  bool isThereNow = true;
};

class WelcomeWindowTest : public ::testing::Test {
 protected:
  void open(bool hasOptions = true) {
    WelcomeWindow::Actions actions;
    actions.chooseFolder = [this] {
      ++panels;
      if (whilePanelIsOpen) whilePanelIsOpen();
      return isChosen;
    };
    if (hasOptions) actions.openScreenshotOptions = [this] { ++optionsOpened; };
    actions.openHelp = [this](HelpAnchor anchor) { help.push_back(anchor); };
    window = std::make_unique<WelcomeWindow>(std::move(actions), tray);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }
  QPushButton* button(const char* text) const {
    for (auto* found : window->findChildren<QPushButton*>()) {
      if (found->text() == QString::fromUtf8(text)) return found;
    }
    return nullptr;
  }
  QStringList texts() const {
    QStringList shown;
    for (const auto* label : window->findChildren<QLabel*>()) {
      if (label->isVisible()) shown.append(label->text());
    }
    return shown;
  }

  FakeTray tray;
  std::unique_ptr<WelcomeWindow> window;
  bool isChosen = true;
  std::function<void()> whilePanelIsOpen;
  int panels = 0;
  int optionsOpened = 0;
  std::vector<HelpAnchor> help;
};

TEST_F(WelcomeWindowTest, ItSaysWhatTheProgramDoes) {
  open();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Welcome to Quillmere"));
  EXPECT_EQ(texts().mid(0, 4),
            QStringList({QStringLiteral("Welcome to Quillmere"),
                         QStringLiteral("Quillmere watches the folder where your desktop saves screenshots."),
                         QStringLiteral("Every capture offers Temporary, Keep, or Move to Trash."),
                         QStringLiteral("Descriptions and names are created on this computer.")}));
}

TEST_F(WelcomeWindowTest, NobodyGivesItAnotherSize) {
  open();
  EXPECT_EQ(window->minimumSize(), window->maximumSize());
  for (const auto* label : window->findChildren<QLabel*>()) {
    if (!label->isVisible()) continue;
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
  }
}

TEST_F(WelcomeWindowTest, ItGrowsWithItsLetters) {
  open();
  const QSize before = window->size();
  QFont font = window->font();
  font.setPointSizeF(1.5 * font.pointSizeF());
  window->setFont(font);
  QApplication::processEvents();
  EXPECT_GT(window->width(), before.width());
  EXPECT_GT(window->height(), before.height());
}

TEST_F(WelcomeWindowTest, AChosenFolderEndsIt) {
  open();
  EXPECT_EQ(QApplication::focusWidget(), button("Choose Screenshot Folder…"));
  QTest::keyClick(window->focusWidget(), Qt::Key_Return);
  EXPECT_EQ(panels, 1);
  EXPECT_FALSE(window->isVisible());
}

TEST_F(WelcomeWindowTest, WithoutAChosenFolderItStays) {
  open();
  isChosen = false;
  QTest::mouseClick(button("Choose Screenshot Folder…"), Qt::LeftButton);
  EXPECT_EQ(panels, 1);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(WelcomeWindowTest, ItMayBeGoneWhenThePanelEnds) {
  open();
  whilePanelIsOpen = [this] { window.reset(); };
  // As the choice itself would be: a click touches the button once more.
  QMetaObject::invokeMethod(button("Choose Screenshot Folder…"), "clicked", Qt::QueuedConnection, Q_ARG(bool, false));
  QApplication::processEvents();
  EXPECT_EQ(panels, 1);
  EXPECT_FALSE(window);
}

TEST_F(WelcomeWindowTest, NotNowChoosesNoFolder) {
  open();
  QTest::mouseClick(button("Not Now"), Qt::LeftButton);
  EXPECT_FALSE(window->isVisible());
  open();
  QTest::keyClick(window->focusWidget(), Qt::Key_Escape);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(panels, 0);
}

TEST_F(WelcomeWindowTest, ItsHelpIsTheFirstPage) {
  open();
  QTest::mouseClick(button("Quillmere Help"), Qt::LeftButton);
  EXPECT_EQ(help, std::vector({HelpAnchor::contents}));
  EXPECT_TRUE(window->isVisible());
}

TEST_F(WelcomeWindowTest, OptionsAreOfferedWhereThereAreAny) {
  open();
  EXPECT_EQ(button("Open Screenshot Tool")->toolTip(),
            QStringLiteral("Open your screenshot tool, whose options hold what it shows after a capture"));
  QTest::mouseClick(button("Open Screenshot Tool"), Qt::LeftButton);
  EXPECT_EQ(optionsOpened, 1);
  open(false);
  EXPECT_FALSE(button("Open Screenshot Tool"));
}

TEST_F(WelcomeWindowTest, WithoutATrayItSaysHowToComeBack) {
  const QString way = QStringLiteral(
      "This desktop shows no tray icons. Quillmere goes on watching when its windows are closed. To come back to it, "
      "open it again from your launcher.");
  open();
  const int height = window->height();
  EXPECT_FALSE(texts().contains(way));
  tray.set(false);
  EXPECT_TRUE(texts().contains(way));
  QApplication::processEvents();
  EXPECT_GT(window->height(), height);
  tray.set(true);
  EXPECT_FALSE(texts().contains(way));
  QApplication::processEvents();
  EXPECT_EQ(window->height(), height);
}

TEST_F(WelcomeWindowTest, TheKeyboardGoesFromTopToBottom) {
  open();
  QStringList order;
  for (int i = 0; i < 4; ++i) {
    QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    order.append(qobject_cast<QPushButton*>(window->focusWidget())->text());
  }
  EXPECT_EQ(order, QStringList({QStringLiteral("Open Screenshot Tool"), QStringLiteral("Not Now"),
                                QStringLiteral("Quillmere Help"), QStringLiteral("Choose Screenshot Folder…")}));
}

}  // namespace
}  // namespace quillmere
