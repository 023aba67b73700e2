#include "settings/ScreenshotLocationRow.h"

#include <QtTest/QTest>
#include <QtWidgets/QPushButton>

#include "fakes/ModelFixture.h"

namespace quillmere {
namespace {

class ScreenshotLocationRowTest : public testing::ModelFixture {
 protected:
  ScreenshotLocationContent content() const { return ScreenshotLocationContent::make(*model); }
  void makeRow() {
    SettingsServices services;
    services.confirmSavingHere = [this](const QString& folder) {
      asked.push_back(folder);
      return confirms;
    };
    services.openHelp = [this](HelpAnchor anchor) { helped.push_back(anchor); };
    row = std::make_unique<ScreenshotLocationRow>(*model, services, &window);
    row->update();
  }
  /// Presses the button and lets the row follow.
  void press(const char* name) {
    for (auto* button : row->findChildren<QPushButton*>()) {
      if (button->text() != QString::fromUtf8(name) && button->accessibleName() != QString::fromUtf8(name)) continue;
      EXPECT_TRUE(button->isVisibleTo(row.get())) << name;
      button->click();
      executor.drain();
      return row->update();
    }
    ADD_FAILURE() << "no button " << name;
  }

  QWidget window;
  std::unique_ptr<ScreenshotLocationRow> row;
  std::vector<QString> asked;
  std::vector<HelpAnchor> helped;
  bool confirms = true;
};

TEST_F(ScreenshotLocationRowTest, WhereNothingCanBeComparedNothingIsSaid) {
  launchWatching();
  EXPECT_EQ(content(), ScreenshotLocationContent());
  makeRow();
  EXPECT_FALSE(row->isVisibleTo(&window));
}

TEST_F(ScreenshotLocationRowTest, OneFolderForBothIsWell) {
  location.value = shots.displayPath();
  launchWatching();
  EXPECT_EQ(content().status, QStringLiteral("Matches where your desktop saves screenshots"));
  EXPECT_EQ(content().symbol, QStringLiteral("checkmark.circle"));
  EXPECT_FALSE(content().offersUndo || content().offersThisFolder || content().offersSavingHere);
}

TEST_F(ScreenshotLocationRowTest, TwoFoldersAreNamedAndCanBeBroughtTogether) {
  location.value = elsewhere.displayPath();
  launchWatching();
  EXPECT_EQ(content().status, QStringLiteral("Your desktop saves screenshots to elsewhere"));
  EXPECT_EQ(content().watched, QStringLiteral("Quillmere watches shots"));
  EXPECT_TRUE(content().offersThisFolder && content().offersSavingHere);
  location.isChangeable = false;
  EXPECT_TRUE(content().offersThisFolder);
  EXPECT_FALSE(content().offersSavingHere) << "of a tool whose folder is fixed";
}

TEST_F(ScreenshotLocationRowTest, HelpIsOfferedWhereTwoFoldersDiffer) {
  location.value = elsewhere.displayPath();
  launchWatching();
  makeRow();
  press("Help");
  EXPECT_EQ(helped, (std::vector<HelpAnchor>{HelpAnchor::folderMismatch}));
  location.value = shots.displayPath();
  model->refreshScreenshotLocation();
  EXPECT_FALSE(content().offersHelp);
}

TEST_F(ScreenshotLocationRowTest, SavingHereIsAskedAboutFirst) {
  location.value = elsewhere.displayPath();
  launchWatching();
  makeRow();
  confirms = false;
  press("Save Screenshots Here…");
  EXPECT_EQ(asked, (std::vector<QString>{QStringLiteral("shots")}));
  EXPECT_EQ(location.writes, 0);
  confirms = true;
  press("Save Screenshots to shots");
  EXPECT_EQ(location.value, shots.displayPath());
  EXPECT_EQ(content().status, QStringLiteral("Your desktop now saves screenshots to shots"));
}

TEST_F(ScreenshotLocationRowTest, AChangeCanBeUndoneOrWavedAway) {
  location.value = elsewhere.displayPath();
  launchWatching();
  makeRow();
  press("Save Screenshots Here…");
  press("Undo");
  EXPECT_EQ(location.value, elsewhere.displayPath());
  press("Save Screenshots Here…");
  press("Dismiss");
  EXPECT_EQ(location.value, shots.displayPath());
  EXPECT_EQ(content().status, QStringLiteral("Matches where your desktop saves screenshots"));
}

TEST_F(ScreenshotLocationRowTest, TheDesktopsFolderIsWatchedInstead) {
  location.value = elsewhere.displayPath();
  launchWatching();
  makeRow();
  chooser.answer = elsewhere;
  press("Use This Folder…");
  ASSERT_EQ(chooser.starts.size(), 1u);
  EXPECT_EQ(chooser.starts[0].directory, elsewhere);
  EXPECT_EQ(*model->watchFolderURL, elsewhere);
}

}  // namespace
}  // namespace quillmere
