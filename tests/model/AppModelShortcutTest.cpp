#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = GlobalHotKeyError::Kind;

constexpr HotKeyShortcut kOther{15, HotKeyShortcut::control | HotKeyShortcut::option};  // R
const QString kKey = QStringLiteral("quillmere.review-shortcut");

class AppModelShortcut : public ModelFixture {
 protected:
  /// With settings in which nothing was ever chosen.
  void launchFirst() {
    defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
    model = std::make_unique<AppModel>(dependencies());
    model->start();
    executor.drain();
  }
  void launchWith(const QByteArray& stored) {
    UserDefaults(settingsFile.displayPath()).set(kKey, stored);
    launch();
  }
  /// What the system holds now.
  std::vector<HotKeyShortcut> registered() const {
    std::vector<HotKeyShortcut> shortcuts;
    for (const auto& [token, registration] : hotKeys.registered) shortcuts.push_back(registration.first);
    return shortcuts;
  }
  static GlobalHotKeyError taken(const QString& symbols) { return {.kind = Kind::unavailable, .shortcut = symbols}; }
  static QString takenText(const QString& symbols) {
    return symbols + QStringLiteral(" is already in use. Choose a different shortcut.");
  }
};

TEST_F(AppModelShortcut, AFirstStartHasTheStandardOne) {
  launchFirst();
  EXPECT_EQ(*model->settings().hotKeyShortcut, HotKeyShortcut::standard());
  EXPECT_THAT(registered(), ElementsAre(HotKeyShortcut::standard()));
  EXPECT_EQ(*model->hotKeyError, std::nullopt);
}

TEST_F(AppModelShortcut, ItIsRegisteredAtTheStartAndNotBefore) {
  firstShortcut = kOther;
  makeModel();
  EXPECT_THAT(registered(), IsEmpty());
  model->start();
  EXPECT_THAT(registered(), ElementsAre(kOther));
}

TEST_F(AppModelShortcut, AChoiceSurvivesARelaunch) {
  launch();
  model->setHotKeyShortcut(kOther);
  EXPECT_THAT(registered(), ElementsAre(kOther));
  launch();
  EXPECT_EQ(*model->settings().hotKeyShortcut, kOther);
  EXPECT_THAT(registered(), ElementsAre(kOther)) << "the model that has gone gave its own back";
}

TEST_F(AppModelShortcut, TheChoiceOfNoneSurvivesARelaunch) {
  launchFirst();
  model->setHotKeyShortcut(std::nullopt);
  EXPECT_THAT(registered(), IsEmpty());
  model.reset();
  launchFirst();
  EXPECT_EQ(*model->settings().hotKeyShortcut, std::nullopt);
  EXPECT_THAT(registered(), IsEmpty());
}

TEST_F(AppModelShortcut, WhatCannotBeReadGivesTheStandardOne) {
  for (const char* corrupt : {"{", "{}", R"({"keyCode":11})", "[null]"}) {
    launchWith(corrupt);
    EXPECT_EQ(*model->settings().hotKeyShortcut, HotKeyShortcut::standard()) << corrupt;
    EXPECT_THAT(registered(), ElementsAre(HotKeyShortcut::standard())) << corrupt;
  }
}

TEST_F(AppModelShortcut, StrayFlagsOfAStoredOneHaveNoEffect) {
  launchWith(R"({"keyCode":11,"modifiers":1441793})");
  EXPECT_EQ(*model->settings().hotKeyShortcut, HotKeyShortcut::standard());
}

TEST_F(AppModelShortcut, TheSameOneAgainIsNothing) {
  firstShortcut = kOther;
  launch();
  const auto token = hotKeys.lastToken;
  changes.clear();
  model->setHotKeyShortcut(kOther);
  EXPECT_EQ(hotKeys.lastToken, token);
  EXPECT_TRUE(changes.empty());
}

TEST_F(AppModelShortcut, AnotherOneReplacesIt) {
  firstShortcut = kOther;
  launch();
  model->setHotKeyShortcut(HotKeyShortcut::standard());
  EXPECT_THAT(registered(), ElementsAre(HotKeyShortcut::standard()));
  EXPECT_EQ(defaults->data(kKey), StoredShortcut::encode(HotKeyShortcut::standard()));
}

TEST_F(AppModelShortcut, AFailureKeepsTheChoiceAndTellsTheReason) {
  launch();
  hotKeys.refusal = taken("Ctrl+Alt+R");
  model->setHotKeyShortcut(kOther);
  EXPECT_EQ(*model->settings().hotKeyShortcut, kOther);
  EXPECT_EQ(*model->hotKeyError, takenText("Ctrl+Alt+R"));
  EXPECT_THAT(registered(), IsEmpty());
  EXPECT_GT(changesOf(ModelField::hotKeyError), 0u);

  // The same one again is a new try.
  hotKeys.refusal.reset();
  model->setHotKeyShortcut(kOther);
  EXPECT_EQ(*model->hotKeyError, std::nullopt);
  EXPECT_THAT(registered(), ElementsAre(kOther));
}

TEST_F(AppModelShortcut, NoneIsNoFailure) {
  firstShortcut = kOther;
  hotKeys.refusal = taken("Ctrl+Alt+R");
  launch();
  EXPECT_EQ(*model->hotKeyError, takenText("Ctrl+Alt+R"));
  model->setHotKeyShortcut(std::nullopt);
  EXPECT_EQ(*model->hotKeyError, std::nullopt);
}

TEST_F(AppModelShortcut, WhatFailedIsTriedAgainWhenAWindowIsUsedAndAfterASleep) {
  firstShortcut = kOther;
  for (Signal<>* event : {&systemEvents.didBecomeActive, &systemEvents.didWake}) {
    hotKeys.refusal = taken("Ctrl+Alt+R");
    launch();
    (*event)();
    EXPECT_EQ(*model->hotKeyError, takenText("Ctrl+Alt+R"));
    hotKeys.refusal.reset();
    (*event)();
    EXPECT_EQ(*model->hotKeyError, std::nullopt);
    EXPECT_THAT(registered(), ElementsAre(kOther));
  }
}

TEST_F(AppModelShortcut, WhatWorksIsLeftAlone) {
  firstShortcut = kOther;
  launch();
  const auto token = hotKeys.lastToken;
  systemEvents.didBecomeActive();
  systemEvents.didWake();
  hotKeys.reaches = HotKeyReach::windowsOfX11;
  hotKeys.changed();
  EXPECT_EQ(hotKeys.lastToken, token);
}

TEST_F(AppModelShortcut, WhatFailedIsTriedAgainWithWhoeverHearsShortcutsNow) {
  firstShortcut = kOther;
  hotKeys.refusal = taken("Ctrl+Alt+R");
  hotKeys.reaches = HotKeyReach::windowsOfX11;
  launch();
  hotKeys.refusal.reset();
  hotKeys.changed();
  EXPECT_THAT(registered(), IsEmpty()) << "of the layout alone";
  hotKeys.reaches = HotKeyReach::everywhere;
  hotKeys.changed();
  EXPECT_EQ(*model->hotKeyError, std::nullopt);
  EXPECT_THAT(registered(), ElementsAre(kOther));
}

TEST_F(AppModelShortcut, ALaterRefusalOfOursIsTold) {
  firstShortcut = kOther;
  launch();
  hotKeys.refusedAfterwards(hotKeys.lastToken + 1, taken("Ctrl+Alt+X"));
  EXPECT_EQ(*model->hotKeyError, std::nullopt) << "of somebody else's";
  const auto token = hotKeys.lastToken;
  hotKeys.refusedAfterwards(token, taken("Ctrl+Alt+R"));
  EXPECT_EQ(*model->hotKeyError, takenText("Ctrl+Alt+R"));
  systemEvents.didBecomeActive();
  EXPECT_EQ(*model->hotKeyError, std::nullopt);
  EXPECT_THAT(registered(), ElementsAre(kOther)) << "once: the refused one was given back";
  EXPECT_NE(hotKeys.lastToken, token);
}

TEST_F(AppModelShortcut, WhileOneIsRecordedNothingIsHeard) {
  firstShortcut = kOther;
  launch();
  model->setHotKeysSuspended(true);
  EXPECT_TRUE(hotKeys.isSuspended);
  model->setHotKeysSuspended(false);
  EXPECT_FALSE(hotKeys.isSuspended);
  EXPECT_EQ(*model->hotKeyError, std::nullopt);
}

TEST_F(AppModelShortcut, AResumeThatFailsIsToldOnce) {
  firstShortcut = kOther;
  launch();
  hotKeys.resumeRefusal = taken("Ctrl+Alt+R");
  model->setHotKeysSuspended(false);
  EXPECT_EQ(*model->hotKeyError, std::nullopt) << "nothing was suspended";
  model->setHotKeysSuspended(true);
  EXPECT_EQ(*model->hotKeyError, std::nullopt);
  model->setHotKeysSuspended(false);
  EXPECT_EQ(*model->hotKeyError, takenText("Ctrl+Alt+R"));
}

TEST_F(AppModelShortcut, APressBeginsTheReview) {
  firstShortcut = kOther;
  launchWatching();
  arrive("one.png");
  const int before = presenter.focuses;
  hotKeys.press(kOther);
  EXPECT_EQ(presenter.focuses, before + 1);
}

TEST_F(AppModelShortcut, OnlyKeysThatAreHeardAreTold) {
  constexpr auto kPlain = "Screenshot ready for a decision.";
  launchWatching();
  const auto told = [&](std::string_view name) {
    announcer.said.clear();
    arrive(name);
    model->dismissPrompt();
    return announcer.said.empty() ? QString() : announcer.said.front().text;
  };
  hotKeys.refusal = taken(QStringLiteral("Ctrl+Alt+R"));
  model->setHotKeyShortcut(kOther);
  EXPECT_EQ(told("refused.png"), kPlain);
  hotKeys.refusal.reset();
  model->setHotKeyShortcut(kOther);
  EXPECT_EQ(told("heard.png"), "Screenshot ready for a decision. Press Ctrl+Alt+R to review it.");
  hotKeys.chosen = "Meta+F9";
  EXPECT_EQ(told("chosen.png"), "Screenshot ready for a decision. Press Meta+F9 to review it.");
  hotKeys.chosen.clear();
  hotKeys.reaches = HotKeyReach::nowhere;
  EXPECT_EQ(told("nowhere.png"), kPlain);
}

TEST_F(AppModelShortcut, APressThatComesTooLateFindsNoModel) {
  firstShortcut = kOther;
  launchWatching();
  arrive("one.png");
  const auto action = hotKeys.registered.at(hotKeys.lastToken).second;
  const int before = presenter.focuses;
  model.reset();
  EXPECT_THAT(registered(), IsEmpty());
  action();
  EXPECT_EQ(presenter.focuses, before);
}

}  // namespace
}  // namespace quillmere::testing
