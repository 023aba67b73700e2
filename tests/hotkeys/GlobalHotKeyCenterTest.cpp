#include "hotkeys/GlobalHotKeyCenter.h"

#include <gmock/gmock.h>
#include <limits>

#include "fakes/FakeHotKeySystem.h"
#include "fakes/ModelFakes.h"

namespace quillmere {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using testing::FakeHotKeySystem;
using testing::FakeKeyboardLayout;
using ::testing::IsEmpty;
using Kind = GlobalHotKeyError::Kind;

const HotKeyShortcut kStandard = HotKeyShortcut::standard();
constexpr HotKeyShortcut kOther{15, HotKeyShortcut::control | HotKeyShortcut::option};
constexpr HotKeyShortcut kThird{1, HotKeyShortcut::control | HotKeyShortcut::option};

class GlobalHotKeyCenterTest : public ::testing::Test {
 protected:
  GlobalHotKeyCenter::Token add(const HotKeyShortcut& shortcut, int& counter) {
    const auto token = center->registerShortcut(shortcut, [&counter] { ++counter; });
    EXPECT_TRUE(token.isDone());
    return *token;
  }
  GlobalHotKeyError refusalOf(const HotKeyShortcut& shortcut) {
    const auto result = center->registerShortcut(shortcut, [] {});
    if (result) ADD_FAILURE() << "it was registered";
    return result.reason();
  }

  FakeHotKeySystem system;
  FakeKeyboardLayout layout;
  std::unique_ptr<GlobalHotKeyCenter> center = std::make_unique<GlobalHotKeyCenter>(system, layout);
  int runs = 0;
  int otherRuns = 0;
};

TEST_F(GlobalHotKeyCenterTest, NothingIsToldToTheSystemBeforeTheFirstRegistration) {
  EXPECT_THAT(system.told(), IsEmpty());
  EXPECT_EQ(center->setSuspended(true), std::nullopt);
  center->unregister(1);
  EXPECT_THAT(system.told(), IsEmpty());
  center.reset();
  EXPECT_THAT(system.told(), IsEmpty()) << "no handler was there to be removed";
}

TEST_F(GlobalHotKeyCenterTest, TheHandlerIsInstalledOnceAndTheIDsCountFromOne) {
  EXPECT_EQ(add(kStandard, runs), 1u);
  EXPECT_EQ(add(kOther, otherRuns), 2u);
  EXPECT_THAT(system.told(), ElementsAre("install", "register 1", "register 2"));
  EXPECT_THAT(system.signatures, Each(kHotKeySignature));
  EXPECT_EQ(kHotKeySignature, ('Q' << 24) + ('L' << 16) + ('M' << 8) + 'R');
}

TEST_F(GlobalHotKeyCenterTest, AnInvalidShortcutIsRefusedForItsIssue) {
  const GlobalHotKeyError error = refusalOf({11, HotKeyShortcut::shift});
  EXPECT_EQ(error.kind, Kind::invalidShortcut);
  EXPECT_EQ(error.issue, HotKeyShortcut::Issue::needsModifier);
  EXPECT_THAT(system.told(), IsEmpty());
}

TEST_F(GlobalHotKeyCenterTest, TheSameShortcutTwiceIsUnavailableWithoutAskingTheSystem) {
  add(kStandard, runs);
  system.told();
  EXPECT_EQ(refusalOf(kStandard), (GlobalHotKeyError{.kind = Kind::unavailable, .shortcut = "Ctrl+Shift+Super+B"}));
  EXPECT_THAT(system.told(), IsEmpty());
}

TEST_F(GlobalHotKeyCenterTest, TheSameKeyWithOtherModifiersIsAnother) {
  add(kStandard, runs);
  add({kStandard.keyCode, HotKeyShortcut::control | HotKeyShortcut::option}, otherRuns);
  EXPECT_EQ(system.registered.size(), 2u);
}

TEST_F(GlobalHotKeyCenterTest, AHandlerThatCannotBeInstalledIsToldAndTriedAgain) {
  system.handlerStatus = -50;
  EXPECT_EQ(refusalOf(kStandard), (GlobalHotKeyError{.kind = Kind::handlerInstallationFailed, .status = -50}));
  EXPECT_THAT(system.told(), ElementsAre("install"));
  system.handlerStatus = hotKeyDone;
  EXPECT_EQ(add(kStandard, runs), 1u) << "a failure takes no id";
  EXPECT_THAT(system.told(), ElementsAre("install", "register 1"));
}

TEST_F(GlobalHotKeyCenterTest, StatusesOfTheSystemAreToldAsErrors) {
  struct Row {
    HotKeySystem::Answer answer;
    GlobalHotKeyError error;
  };
  const QString symbols = "Ctrl+Shift+Super+B";
  const std::vector<Row> rows{
      {{-9878, std::nullopt}, {.kind = Kind::unavailable, .shortcut = symbols}},
      {{0, std::nullopt}, {.kind = Kind::registrationFailed, .shortcut = symbols, .status = 0}},
      {{-50, std::nullopt}, {.kind = Kind::registrationFailed, .shortcut = symbols, .status = -50}},
      {{-9879, 7}, {.kind = Kind::registrationFailed, .shortcut = symbols, .status = -9879}},
      {{11, std::nullopt}, {.kind = Kind::registrationFailed, .shortcut = symbols, .status = 11}},
  };
  for (const Row& row : rows) {
    system.answers[1] = row.answer;
    EXPECT_EQ(refusalOf(kStandard), row.error) << row.answer.status;
  }
  EXPECT_THAT(system.told(),
              ElementsAre("install", "register 1", "register 1", "register 1", "register 1", "register 1"));
  system.answers.clear();
  EXPECT_EQ(add(kStandard, runs), 1u) << "what failed is not kept";
}

TEST_F(GlobalHotKeyCenterTest, APressRunsItsActionAndNoOther) {
  add(kStandard, runs);
  add(kOther, otherRuns);
  EXPECT_EQ(system.press(2), hotKeyDone);
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(otherRuns, 1);
}

TEST_F(GlobalHotKeyCenterTest, PressesThatAreNotOursAreNotHandled) {
  add(kStandard, runs);
  const HotKeyPress ours{.key = {.id = 1}};
  EXPECT_EQ(system.handler(nullptr), -9874);
  EXPECT_EQ(GlobalHotKeyCenter::handle(nullptr, center.get()), -9874);
  EXPECT_EQ(GlobalHotKeyCenter::handle(&ours, nullptr), -9874);
  const HotKeyPress unread{.status = -9870, .key = {.id = 1}};
  EXPECT_EQ(system.handler(&unread), -9870);
  const HotKeyPress foreign{.key = {.signature = 0x41424344, .id = 1}};
  EXPECT_EQ(system.handler(&foreign), -9874);
  EXPECT_EQ(system.press(2), -9874);
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(system.handler(&ours), 0);
  EXPECT_EQ(runs, 1);
}

TEST_F(GlobalHotKeyCenterTest, AnActionMayUnregisterItself) {
  std::optional<GlobalHotKeyCenter::Token> token;
  const auto runner = std::make_shared<int>(0);
  token = *center->registerShortcut(kStandard, [this, &token, runner] {
    center->unregister(*token);
    ++*runner;
  });
  EXPECT_EQ(system.press(*token), hotKeyDone);
  EXPECT_EQ(*runner, 1);
  EXPECT_EQ(runner.use_count(), 1) << "the action is gone with its registration";
}

TEST_F(GlobalHotKeyCenterTest, UnregisteringFreesTheShortcutAndKeepsTheHandler) {
  const auto token = add(kStandard, runs);
  system.told();
  center->unregister(token + 1);
  EXPECT_THAT(system.told(), IsEmpty()) << "of an unknown id";
  center->unregister(token);
  EXPECT_THAT(system.told(), ElementsAre("unregister 1"));
  EXPECT_EQ(system.press(token), -9874);
  center->unregister(token);
  EXPECT_THAT(system.told(), IsEmpty());
  EXPECT_EQ(add(kStandard, runs), 2u) << "ids are never used twice";
  EXPECT_THAT(system.told(), ElementsAre("register 2"));
}

TEST_F(GlobalHotKeyCenterTest, APressWhileSuspendedRunsNothing) {
  add(kStandard, runs);
  add(kOther, otherRuns);
  system.told();
  EXPECT_EQ(center->setSuspended(true), std::nullopt);
  EXPECT_THAT(system.told(), ElementsAre("unregister 1", "unregister 2"));
  EXPECT_EQ(system.press(1), -9874);
  EXPECT_EQ(center->setSuspended(true), std::nullopt);
  EXPECT_THAT(system.told(), IsEmpty()) << "twice is once";
  EXPECT_EQ(center->setSuspended(false), std::nullopt);
  EXPECT_THAT(system.told(), ElementsAre("register 1", "register 2"));
  EXPECT_EQ(center->setSuspended(false), std::nullopt);
  EXPECT_THAT(system.told(), IsEmpty());
  EXPECT_EQ(system.press(1), 0);
  EXPECT_EQ(runs, 1);
}

TEST_F(GlobalHotKeyCenterTest, WhatIsRegisteredWhileSuspendedGoesToTheSystemAtResume) {
  center->setSuspended(true);
  const auto token = add(kStandard, runs);
  EXPECT_THAT(system.told(), ElementsAre("install"));
  EXPECT_EQ(system.press(token), -9874);
  EXPECT_EQ(refusalOf(kStandard).kind, Kind::unavailable) << "it is kept";
  center->setSuspended(false);
  EXPECT_THAT(system.told(), ElementsAre("register 1"));
  EXPECT_EQ(system.press(token), 0);
}

TEST_F(GlobalHotKeyCenterTest, WhatIsUnregisteredWhileSuspendedStaysAway) {
  const auto token = add(kStandard, runs);
  center->setSuspended(true);
  system.told();
  center->unregister(token);
  center->setSuspended(false);
  EXPECT_THAT(system.told(), IsEmpty());
}

TEST_F(GlobalHotKeyCenterTest, AResumeTriesAllAndTellsTheFirstFailure) {
  add(kStandard, runs);
  add(kOther, otherRuns);
  add(kThird, otherRuns);
  center->setSuspended(true);
  system.told();
  system.answers[1] = {-9878, std::nullopt};
  system.answers[3] = {-50, std::nullopt};
  EXPECT_EQ(center->setSuspended(false),
            (GlobalHotKeyError{.kind = Kind::unavailable, .shortcut = "Ctrl+Shift+Super+B"}));
  EXPECT_THAT(system.told(), ElementsAre("register 1", "register 2", "register 3"));
  EXPECT_EQ(system.press(1), -9874);
  EXPECT_EQ(system.press(2), 0);
  EXPECT_EQ(otherRuns, 1);

  // What failed is still there, and comes with the next resume.
  system.answers.clear();
  center->setSuspended(true);
  EXPECT_THAT(system.told(), ElementsAre("unregister 2"));
  EXPECT_EQ(center->setSuspended(false), std::nullopt);
  EXPECT_EQ(system.press(1), 0);
}

TEST_F(GlobalHotKeyCenterTest, ALaterRefusalIsToldAndGivesBackTheRegistration) {
  std::vector<std::pair<quint32, GlobalHotKeyError>> told;
  const auto connection = center->refusedAfterwards.connect(
      [&](quint32 token, const GlobalHotKeyError& error) { told.emplace_back(token, error); });
  const auto token = add(kStandard, runs);
  system.told();
  system.refusedLater(token + 5, -9878);
  EXPECT_TRUE(told.empty()) << "of an unknown id";
  system.refusedLater(token, -9878);
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0].first, token);
  EXPECT_EQ(told[0].second, (GlobalHotKeyError{.kind = Kind::unavailable, .shortcut = "Ctrl+Shift+Super+B"}));
  EXPECT_THAT(system.told(), ElementsAre("unregister 1"));
  EXPECT_EQ(system.press(token), -9874);
  system.refusedLater(token, -9878);
  EXPECT_EQ(told.size(), 1u) << "one that isn't registered can't be refused";
}

TEST_F(GlobalHotKeyCenterTest, ItsEndGivesEverythingBackAndThenTheHandler) {
  add(kStandard, runs);
  add(kOther, otherRuns);
  system.told();
  center.reset();
  EXPECT_THAT(system.told(), ElementsAre("unregister 1", "unregister 2", "remove"));
}

TEST_F(GlobalHotKeyCenterTest, RunningOutOfIDsIsAFault) {
  constexpr quint32 kLast = std::numeric_limits<quint32>::max();
  center = std::make_unique<GlobalHotKeyCenter>(system, layout, kLast - 1);
  EXPECT_EQ(add(kStandard, runs), kLast - 1);
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH((void)center->registerShortcut(kOther, [] {}), "ids");
}

}  // namespace
}  // namespace quillmere
