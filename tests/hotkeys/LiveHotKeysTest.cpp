#include "hotkeys/LiveHotKeys.h"

#include <gmock/gmock.h>

#include "fakes/FakeHotKeySystem.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using testing::FakeHotKeySystem;

class Layout final : public ChangingKeyboardLayout {
 public:
  QStringList texts(quint32) const override { return {name}; }
  std::optional<quint32> keyCode(quint32 nativeScanCode) const override { return nativeScanCode - 8; }
  QString name = "b";
};

class LiveHotKeysTest : public ::testing::Test {
 protected:
  FakeHotKeySystem* system = new FakeHotKeySystem;
  Layout* layout = new Layout;
  std::unique_ptr<LiveHotKeys> hotKeys = std::make_unique<LiveHotKeys>(std::unique_ptr<HotKeySystem>(system),
                                                                       std::unique_ptr<ChangingKeyboardLayout>(layout));
};

TEST_F(LiveHotKeysTest, EachOperationIsTheCenters) {
  int runs = 0;
  const auto token = hotKeys->registerShortcut(HotKeyShortcut::standard(), [&] { ++runs; });
  ASSERT_TRUE(token.isDone());
  EXPECT_EQ(system->press(*token), hotKeyDone);
  EXPECT_EQ(runs, 1);
  system->answers[*token] = {-9878, std::nullopt};
  EXPECT_EQ(hotKeys->setSuspended(true), std::nullopt);
  EXPECT_EQ(hotKeys->setSuspended(false)->kind, GlobalHotKeyError::Kind::unavailable);
  system->answers.clear();
  hotKeys->setSuspended(true);
  hotKeys->setSuspended(false);
  hotKeys->unregister(*token);
  EXPECT_TRUE(system->registered.empty());
}

TEST_F(LiveHotKeysTest, TheReachAndTheDesktopsChoiceAreTheSystems) {
  EXPECT_EQ(hotKeys->reach(), HotKeyReach::everywhere);
  system->reaches = HotKeyReach::windowsOfX11;
  system->chosen = "Meta+R";
  EXPECT_EQ(hotKeys->reach(), HotKeyReach::windowsOfX11);
  EXPECT_EQ(hotKeys->chosenByDesktop(), "Meta+R");
  EXPECT_EQ(&hotKeys->layout(), layout);
}

TEST_F(LiveHotKeysTest, AChangeOfLayoutOrReachIsTold) {
  int changes = 0;
  const auto connection = hotKeys->changed.connect([&] { ++changes; });
  layout->changed();
  EXPECT_EQ(changes, 1);
  system->changed();
  EXPECT_EQ(changes, 2);
}

TEST_F(LiveHotKeysTest, ALaterRefusalIsToldInTheWordsOfTheLayout) {
  std::vector<std::pair<quint32, QString>> told;
  const auto connection = hotKeys->refusedAfterwards.connect(
      [&](quint32 token, const GlobalHotKeyError& error) { told.emplace_back(token, message(error)); });
  const auto token = *hotKeys->registerShortcut(HotKeyShortcut::standard(), [] {});
  layout->name = "и";
  system->refusedLater(token, -9878);
  EXPECT_THAT(told, ElementsAre(std::pair<quint32, QString>(
                        token, "Ctrl+Shift+Super+И is already in use. Choose a different shortcut.")));
}

TEST_F(LiveHotKeysTest, ItsEndGivesEverythingBackWhileTheSystemIsThere) {
  std::vector<std::string> calls;
  ASSERT_TRUE(hotKeys->registerShortcut(HotKeyShortcut::standard(), [] {}).isDone());
  system->onEnd = [&, was = system] { calls = was->calls; };
  hotKeys.reset();
  EXPECT_THAT(calls, ElementsAre("install", "register 1", "unregister 1", "remove"));
}

}  // namespace
}  // namespace quillmere
