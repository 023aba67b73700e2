#include "platform/linux/sharing/RecentTargets.h"

#include <gtest/gtest.h>

#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class RecentTargetsTest : public ::testing::Test {
 protected:
  QString settings() const { return folder.file("settings.json").displayPath(); }
  /// What the targets say in their order.
  QString sorted(std::vector<ShareTarget> targets) const {
    recent.sort(targets);
    QStringList ids;
    for (const ShareTarget& target : targets) ids += target.id;
    return ids.join(QLatin1Char(' '));
  }
  static ShareTarget program(const char* id) { return {QString::fromLatin1(id), {}, {}}; }
  static ShareTarget mail(const char* id) { return {QString::fromLatin1(id), {}, {}, ShareTarget::Group::mail}; }

  testing::TemporaryFolder folder;
  UserDefaults defaults{settings()};
  RecentTargets recent{defaults};
};

TEST_F(RecentTargetsTest, TheLastUsedComesFirstInItsGroup) {
  const std::vector<ShareTarget> targets{program("a"), mail("m"), program("b"), mail("n"), program("c")};
  EXPECT_EQ(sorted(targets), QStringLiteral("m n a b c"));
  recent.note(QStringLiteral("c"));
  recent.note(QStringLiteral("n"));
  EXPECT_EQ(sorted(targets), QStringLiteral("n m c a b"));
  recent.note(QStringLiteral("b"));
  EXPECT_EQ(sorted(targets), QStringLiteral("n m b c a"));
  recent.note(QStringLiteral("c"));
  EXPECT_EQ(sorted(targets), QStringLiteral("n m c b a"));
}

TEST_F(RecentTargetsTest, AreRememberedUnderAKeyOfOurs) {
  recent.note(QStringLiteral("a.desktop"));
  recent.note(QStringLiteral("b.desktop"));
  const UserDefaults again(settings());
  EXPECT_EQ(again.text(QStringLiteral("quillmere.share-recent")), QStringLiteral("b.desktop\na.desktop"));
}

TEST_F(RecentTargetsTest, OneThatIsGoneIsForgottenAndOfManyTheOldest) {
  for (int i = 0; i < RecentTargets::kMost + 2; ++i) recent.note(QString::number(i));
  EXPECT_EQ(recent.ids(), QStringLiteral("9 8 7 6 5 4 3 2").split(QLatin1Char(' ')));
  recent.forget({QStringLiteral("8"), QStringLiteral("2"), QStringLiteral("never there")});
  EXPECT_EQ(recent.ids(), QStringLiteral("9 7 6 5 4 3").split(QLatin1Char(' ')));
  recent.forget(recent.ids());
  EXPECT_EQ(recent.ids(), QStringList());
  EXPECT_EQ(defaults.text(QStringLiteral("quillmere.share-recent")), std::nullopt);
}

TEST_F(RecentTargetsTest, WhatSomebodyWroteIntoTheSettingsIsLimited) {
  defaults.set(QStringLiteral("quillmere.share-recent"), QStringLiteral("\n\nx\n").repeated(100));
  EXPECT_EQ(recent.ids().size(), RecentTargets::kMost);
  defaults.set(QStringLiteral("quillmere.share-recent"), true);
  EXPECT_EQ(recent.ids(), QStringList());
}

}  // namespace
}  // namespace quillmere
