#include "settings/PopupPane.h"

#include <QtWidgets/QSpinBox>

#include "settings/SettingsFixture.h"

namespace quillmere {
namespace {

class PopupPaneTest : public testing::SettingsFixture {
 protected:
  PopupPaneTest() { showPane(std::make_unique<PopupPane>(*model, nullptr)); }
  QSpinBox& seconds() const { return find<QSpinBox>(QStringLiteral("Popup timeout in seconds")); }
  QSpinBox& pause() const { return find<QSpinBox>(QStringLiteral("Seconds after the last screenshot")); }
};

TEST_F(PopupPaneTest, EachControlWritesAtOnceAndFollowsTheModel) {
  const Settings& settings = model->settings();
  expectToWriteAndFollow(
      {{"Show image thumbnail in popup", [&] { return *settings.showPopupThumbnail; },
        [&](bool isOn) { model->setShowPopupThumbnail(isOn); }},
       {"Automatically dismiss the popup", [&] { return *settings.popupAutoSaveEnabled; },
        [&](bool isOn) { model->setPopupAutoSaveEnabled(isOn); }},
       {"Show the popup when you stop capturing", [&] { return *settings.popupWaitsForPause; },
        [&](bool isOn) { model->setPopupWaitsForPause(isOn); }},
       {"Show several screenshots as a small note first", [&] { return *settings.popupGathersSeries; },
        [&](bool isOn) { model->setPopupGathersSeries(isOn); }}});
}

TEST_F(PopupPaneTest, TheTimeoutCanBeSetWhileThereIsOne) {
  model->setPopupAutoSaveEnabled(false);
  EXPECT_FALSE(seconds().isEnabled());
  model->setPopupAutoSaveEnabled(true);
  EXPECT_TRUE(seconds().isEnabled());
  EXPECT_EQ(seconds().minimum(), 3);
  EXPECT_EQ(seconds().maximum(), 300);
}

TEST_F(PopupPaneTest, ANumberIsSetOnceItIsTyped) {
  model->setPopupAutoSaveEnabled(true);
  const int before = *model->settings().popupAutoSaveSeconds;
  seconds().setFocus();
  seconds().selectAll();
  QTest::keyClicks(&seconds(), QStringLiteral("25"));
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, before) << "2 was no setting";
  QTest::keyClick(&seconds(), Qt::Key_Return);
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, 25);
  EXPECT_TRUE(says("Dismiss after 25 seconds"));
}

TEST_F(PopupPaneTest, ThePopupCanWaitForTheEndOfASeries) {
  EXPECT_FALSE(pause().isEnabled());
  model->setPopupWaitsForPause(true);
  EXPECT_TRUE(pause().isEnabled());
  EXPECT_TRUE(says("Show it 5 seconds after the last screenshot"));
  pause().setValue(1);
  EXPECT_EQ(*model->settings().popupPauseSeconds, 1);
  EXPECT_TRUE(says("Show it 1 second after the last screenshot"));
}

}  // namespace
}  // namespace quillmere
