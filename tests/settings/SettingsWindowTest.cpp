#include "settings/SettingsWindow.h"

#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTabWidget>

#include "controls/Alert.h"
#include "fakes/ModelFixture.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class SettingsWindowTest : public testing::ModelFixture {
 protected:
  SettingsWindowTest() {
    launchWatching();
    window = std::make_unique<SettingsWindow>(*model);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  }
  QCheckBox& box(const char* text) const {
    for (auto* found : window->findChildren<QCheckBox*>()) {
      if (found->text() == QLatin1String(text)) return *found;
    }
    throw std::logic_error(text);
  }
  QPushButton& pushButton(const char* text) const {
    for (auto* found : window->findChildren<QPushButton*>()) {
      if (found->text() == QString::fromUtf8(text)) return *found;
    }
    throw std::logic_error(text);
  }
  QSpinBox& number(const char* name) const {
    for (auto* box : window->findChildren<QSpinBox*>()) {
      if (box->accessibleName() == QLatin1String(name)) return *box;
    }
    throw std::logic_error(name);
  }
  QSpinBox& seconds() const { return number("Popup timeout in seconds"); }
  QComboBox& naming() const { return *window->findChild<QComboBox*>(); }
  QLineEdit& address() const {
    for (auto* field : window->findChildren<QLineEdit*>()) {
      if (field->accessibleName() == QStringLiteral("Model server address")) return *field;
    }
    throw std::logic_error("no address");
  }
  bool says(const QString& text) const {
    for (const auto* label : window->findChildren<QLabel*>()) {
      if (label->text() == text && label->isVisibleTo(label->parentWidget())) return true;
    }
    return false;
  }
  std::unique_ptr<SettingsWindow> window;
};

TEST_F(SettingsWindowTest, HasItsPanesInThisOrder) {
  QStringList panes;
  const auto* tabs = window->findChild<QTabWidget*>();
  for (int i = 0; i < tabs->count(); ++i) panes += tabs->tabText(i);
  EXPECT_EQ(panes.join(QLatin1Char('|')), QStringLiteral("General|Screenshots|Popup|Intelligence"));
}

TEST_F(SettingsWindowTest, EachControlWritesAtOnceAndFollowsTheModel) {
  const auto& settings = model->settings();
  struct Row {
    const char* text;
    std::function<bool()> isOn;
    std::function<void(bool)> set;
  };
  const Row rows[] = {
      {"Also detect images from other apps", [&] { return *settings.includesNonCaptureImages; },
       [&](bool isOn) { model->setIncludesNonCaptureImages(isOn); }},
      {"Show image thumbnail in popup", [&] { return *settings.showPopupThumbnail; },
       [&](bool isOn) { model->setShowPopupThumbnail(isOn); }},
      {"Automatically dismiss the popup", [&] { return *settings.popupAutoSaveEnabled; },
       [&](bool isOn) { model->setPopupAutoSaveEnabled(isOn); }},
      {"Analyze screenshots", [&] { return *settings.analyzeScreenshots; },
       [&](bool isOn) { model->setAnalyzeScreenshots(isOn); }},
  };
  for (const Row& row : rows) {
    QCheckBox& control = box(row.text);
    const bool before = row.isOn();
    EXPECT_EQ(control.isChecked(), before) << row.text;
    control.click();
    EXPECT_EQ(row.isOn(), !before) << row.text;
    row.set(before);
    EXPECT_EQ(control.isChecked(), before) << row.text;
  }
  naming().setCurrentIndex(1);
  EXPECT_EQ(*settings.screenshotNaming, ScreenshotNaming::suggested);
  model->setScreenshotNaming(ScreenshotNaming::original);
  EXPECT_EQ(naming().currentIndex(), 0);
}

TEST_F(SettingsWindowTest, TheTimeoutCanBeSetWhileThereIsOne) {
  model->setPopupAutoSaveEnabled(false);
  EXPECT_FALSE(seconds().isEnabled());
  model->setPopupAutoSaveEnabled(true);
  EXPECT_TRUE(seconds().isEnabled());
  EXPECT_EQ(seconds().accessibleName(), QStringLiteral("Popup timeout in seconds"));
  EXPECT_EQ(seconds().minimum(), Settings::kShortestPopupSeconds);
  EXPECT_EQ(seconds().maximum(), Settings::kLongestPopupSeconds);
}

TEST_F(SettingsWindowTest, ANumberIsSetOnceItIsTyped) {
  model->setPopupAutoSaveEnabled(true);
  const int before = *model->settings().popupAutoSaveSeconds;
  auto* tabs = window->findChild<QTabWidget*>();
  tabs->setCurrentIndex(2);
  seconds().setFocus();
  seconds().selectAll();
  QTest::keyClicks(&seconds(), QStringLiteral("25"));
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, before) << "2 was no setting";
  QTest::keyClick(&seconds(), Qt::Key_Return);
  EXPECT_EQ(*model->settings().popupAutoSaveSeconds, 25);
  EXPECT_TRUE(says(QStringLiteral("Dismiss after 25 seconds")));
}

TEST_F(SettingsWindowTest, ThePopupCanWaitForTheEndOfASeries) {
  QSpinBox& pause = number("Seconds after the last screenshot");
  EXPECT_FALSE(pause.isEnabled());
  box("Show the popup when you stop capturing").click();
  EXPECT_TRUE(*model->settings().popupWaitsForPause);
  EXPECT_TRUE(pause.isEnabled());
  EXPECT_TRUE(says(QStringLiteral("Show it 5 seconds after the last screenshot")));
  pause.setValue(1);
  EXPECT_EQ(*model->settings().popupPauseSeconds, 1);
  EXPECT_TRUE(says(QStringLiteral("Show it 1 second after the last screenshot")));
  box("Show several screenshots as a small note first").click();
  EXPECT_TRUE(*model->settings().popupGathersSeries);
}

TEST_F(SettingsWindowTest, EveryPaneHasRoomForItsTexts) {
  auto* tabs = window->findChild<QTabWidget*>();
  for (int i = 0; i < tabs->count(); ++i) {
    tabs->setCurrentIndex(i);
    QCoreApplication::processEvents();
    for (auto* label : tabs->widget(i)->findChildren<QLabel*>()) {
      if (!label->isVisible() || label->text().isEmpty()) continue;
      const int needed = label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
      EXPECT_GE(label->height(), needed) << label->text().toStdString();
    }
  }
}

TEST_F(SettingsWindowTest, AnotherUsersServerIsUsedOnlyOnceItIsAllowed) {
  const QString question = QStringLiteral(
      "“someone”, another user of this computer, runs a model server at there. It "
      "would see your screenshots and their text.");
  const QString warning = QStringLiteral(
      "Screenshots and their text are sent to the model server of “someone”, another "
      "user of this computer, at there.");
  EXPECT_FALSE(says(question));
  const auto found = [&](std::optional<ForeignModelServer> server) {
    analyzer.foreign = std::move(server);
    model->refreshModelAvailability();
  };
  const ForeignModelServer server{QStringLiteral("someone"), QStringLiteral("there"), QStringLiteral("1001@there")};
  found(server);
  EXPECT_TRUE(says(question));
  EXPECT_FALSE(model->isAllowed(server));

  pushButton("Use It").click();
  EXPECT_TRUE(model->isAllowed(server));
  EXPECT_EQ(Settings::storedForeignModelServers(*defaults), QStringList{QStringLiteral("1001@there")});
  EXPECT_TRUE(says(warning));
  const ForeignModelServer another{QStringLiteral("else"), QStringLiteral("there"), QStringLiteral("1002@there")};
  EXPECT_FALSE(model->isAllowed(another));
  model->setAllowed(another, true);
  pushButton("Don’t Use").click();
  EXPECT_FALSE(model->isAllowed(server));
  EXPECT_TRUE(model->isAllowed(another)) << "each by itself";
  EXPECT_TRUE(says(question));

  model->setAnalyzeScreenshots(false);
  EXPECT_FALSE(says(question)) << "nothing is described";
  model->setAnalyzeScreenshots(true);
  found(std::nullopt);
  EXPECT_FALSE(says(question));
}

TEST_F(SettingsWindowTest, AFolderWhoseFilesCannotBeFollowedIsToldOf) {
  const QString warning = QStringLiteral(
      "The disk of this folder keeps too little about its files: a screenshot that you rename or move "
      "with another app may become unavailable here, and one that can’t be told from another file isn’t "
      "deleted when its time is up.");
  EXPECT_FALSE(says(warning));
  keepsIdentities = false;
  window->hide();
  window->show();
  EXPECT_TRUE(says(warning));
  moveFile(shots, away);
  report(WatcherStatus::notFound);
  EXPECT_FALSE(says(warning));
}

TEST_F(SettingsWindowTest, TheFolderIsNamedWithItsState) {
  EXPECT_TRUE(says(QStringLiteral("shots")));
  EXPECT_TRUE(says(statusText(WatcherStatus::watching)));
  moveFile(shots, away);
  report(WatcherStatus::notFound);
  EXPECT_TRUE(says(statusText(WatcherStatus::notFound)));
  EXPECT_FALSE(says(statusText(WatcherStatus::watching)));
}

TEST_F(SettingsWindowTest, WhyThereAreNoDescriptionsIsSaidWhileTheyAreWanted) {
  const QString none = QStringLiteral(
      "No model server was found on this computer, so screenshots aren’t described. Text extraction still works.");
  model->setAnalyzeScreenshots(true);
  EXPECT_FALSE(says(none));
  analyzer.unavailability = AnalysisError::Unavailability::deviceNotEligible;
  systemEvents.didBecomeActive();
  executor.drain();
  EXPECT_TRUE(says(none));
  model->setAnalyzeScreenshots(false);
  EXPECT_FALSE(says(none));
}

TEST_F(SettingsWindowTest, TheAddressIsSetWhenItIsWhole) {
  window->findChild<QTabWidget*>()->setCurrentIndex(3);
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  address().setFocus();
  QTest::keyClicks(&address(), QStringLiteral("localhost:8080"));
  EXPECT_EQ(*model->settings().modelAddress, QString());
  model->setAnalyzeScreenshots(!*model->settings().analyzeScreenshots);
  EXPECT_EQ(address().text(), QStringLiteral("localhost:8080")) << "what is being typed stays";
  QTest::keyClick(&address(), Qt::Key_Return);
  EXPECT_EQ(*model->settings().modelAddress, QStringLiteral("localhost:8080"));
}

TEST_F(SettingsWindowTest, AnErrorIsShownOnceAfterWhatFailedIsOver) {
  bool isSeen = false;
  model->show(ErrorScope::settings, QStringLiteral("Title"), QStringLiteral("Message"));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QTimer::singleShot(0, [&] {
    auto* alert = dynamic_cast<Alert*>(QApplication::activeModalWidget());
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->content().heading, QStringLiteral("Title"));
    isSeen = true;
    alert->accept();
  });
  ASSERT_TRUE(testing::runLoopUntil([&] { return isSeen; }));
  EXPECT_FALSE(*model->settingsError);
}

}  // namespace
}  // namespace quillmere
