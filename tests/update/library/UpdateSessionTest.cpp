#include "update/library/UpdateSession.h"

#include <unistd.h>

#include "update/library/SessionFixture.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using UpdateSessionTest = testing::SessionFixture;

TEST_F(UpdateSessionTest, AnUpdateIsAskedAboutTwiceAndThenStarted) {
  check(goodFeed());
  EXPECT_EQ(windows.kind(), Kind::found);
  EXPECT_EQ(windows.shown->notes, QStringLiteral("Faster."));
  EXPECT_EQ(transport.count, 1);  // nothing is downloaded without the person's word
  windows.answer(kAction);
  EXPECT_EQ(transport.request.url, QUrl(QStringLiteral("https://updates.example/quillmere_0.2.0_amd64.deb")));
  EXPECT_EQ(transport.request.mostBytes, package.size());
  transport.send(package.left(4));
  EXPECT_EQ(windows.progress, std::pair(qint64{4}, qint64{11}));
  transport.send(package.mid(4));
  transport.end();
  executor.drain();
  EXPECT_EQ(windows.kind(), Kind::ready);
  EXPECT_FALSE(installer.installed);  // nor installed
  windows.answer(kAction);
  ASSERT_TRUE(installer.installed);
  EXPECT_TRUE(installer.installed->isWholeAndGenuine());
  EXPECT_TRUE(windows.shown->safe.isEmpty());
  installer.ended(std::nullopt);
  EXPECT_THAT(told, ElementsAre("shows", "installing", "starts /opt/quillmere/bin/quillmere"));
  EXPECT_THAT(states, ElementsAre(State::checking, State::found, State::downloading, State::ready, State::installing));
}

TEST_F(UpdateSessionTest, NotNowEndsItWithoutATrace) {
  check(goodFeed());
  windows.answer(kSafe);
  EXPECT_THAT(told, ElementsAre("shows", "finished"));
  EXPECT_EQ(session.state(), State::idle);
  download(package);
  windows.answer(kSafe);
  EXPECT_EQ(session.state(), State::idle);
  EXPECT_TRUE(std::filesystem::is_empty(packages.path()));
  EXPECT_FALSE(installer.installed);
}

TEST_F(UpdateSessionTest, TheSameAndOlderVersionsAreNoUpdates) {
  for (const char* version : {"0.1", "0.1.0", "0.0.9"}) {
    QJsonObject object = maker.feedOf(package);
    object.insert(QStringLiteral("version"), QLatin1String(version));
    object.insert(QStringLiteral("minimumVersion"), QStringLiteral("0"));
    check(maker.signedFeed(testing::Maker::json(object)));
    EXPECT_EQ(windows.kind(), Kind::upToDate) << version;
    windows.answer(kSafe);
  }
  EXPECT_EQ(transport.count, 3);
}

TEST_F(UpdateSessionTest, AFeedThatCannotBeTrustedIsRefused) {
  check(goodFeed().chopped(1));
  expectFailure(UpdateFailure::notSigned);
  check(QByteArray());
  expectFailure(UpdateFailure::notSigned);
  check(feedWith("expires", QStringLiteral("2029-01-01T00:00:00Z")));
  expectFailure(UpdateFailure::expired);
  check(feedWith("minimumVersion", QStringLiteral("0.1.1")));
  expectFailure(UpdateFailure::programTooOld);
  check(feedWith("package", QStringLiteral("http://updates.example/p.deb")));
  expectFailure(UpdateFailure::badFeed);
  EXPECT_EQ(transport.count, 5);
}

TEST_F(UpdateSessionTest, FailuresOfTheNetworkAreTold) {
  session.check(By::person);
  transport.end(UpdateFailure::redirected);
  expectFailure(UpdateFailure::redirected);
  check(goodFeed());
  windows.answer(kAction);
  transport.send("the");
  transport.end(UpdateFailure::cutShort);
  expectFailure(UpdateFailure::cutShort);
  EXPECT_THAT(told, ElementsAre("shows", "finished", "shows", "finished"));
}

TEST_F(UpdateSessionTest, APackageThatIsNotTheMakersIsNotOffered) {
  download("the packagf");
  expectFailure(UpdateFailure::packageNotSigned);
  download("the pack");
  expectFailure(UpdateFailure::cutShort);
  EXPECT_FALSE(installer.installed);
}

TEST_F(UpdateSessionTest, CancelStopsTheDownloadAndRemovesWhatCame) {
  check(goodFeed());
  windows.answer(kAction);
  transport.send("the ");
  EXPECT_FALSE(std::filesystem::is_empty(packages.path()));
  windows.answer(kSafe);
  EXPECT_FALSE(transport.isUnderWay);
  EXPECT_TRUE(std::filesystem::is_empty(packages.path()));
  EXPECT_EQ(session.state(), State::idle);
}

TEST_F(UpdateSessionTest, CancelWhileThePackageIsLookedThroughCounts) {
  executor.holdBackground();
  download(package);
  windows.answer(kSafe);
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(session.state(), State::idle);
  EXPECT_FALSE(windows.shown);
  EXPECT_TRUE(std::filesystem::is_empty(packages.path()));
}

TEST_F(UpdateSessionTest, ACheckByScheduleShowsOnlyAnUpdate) {
  check(goodFeed().chopped(1), By::schedule);
  EXPECT_EQ(session.state(), State::idle);
  check(feedWith("version", QStringLiteral("0.1")), By::schedule);
  session.check(By::schedule);
  transport.end(UpdateFailure::notReached);
  EXPECT_THAT(told, IsEmpty());
  check(goodFeed(), By::schedule);
  EXPECT_EQ(windows.kind(), Kind::found);
  EXPECT_THAT(told, ElementsAre("shows"));
}

TEST_F(UpdateSessionTest, WhatThePersonGoesOnWithFailsAloud) {
  check(goodFeed(), By::schedule);
  windows.answer(kAction);
  transport.end(UpdateFailure::tooSlow);
  expectFailure(UpdateFailure::tooSlow);
}

TEST_F(UpdateSessionTest, AskedTwiceItIsOneCheck) {
  session.check(By::person);
  session.check(By::person);
  session.check(By::schedule);
  EXPECT_EQ(transport.count, 1);
  EXPECT_EQ(windows.forward, 1);
}

TEST_F(UpdateSessionTest, APersonWhoAsksDuringASilentCheckSeesIt) {
  session.check(By::schedule);
  EXPECT_FALSE(windows.shown);
  session.check(By::person);
  EXPECT_EQ(windows.kind(), Kind::checking);
  transport.end(UpdateFailure::notReached);
  expectFailure(UpdateFailure::notReached);
}

TEST_F(UpdateSessionTest, WhatIsInTheWayIsToldBeforeAnythingIsDownloaded) {
  installer.isInTheWay = UpdateFailure::notReplaceable;
  check(goodFeed());
  expectFailure(UpdateFailure::notReplaceable);
  EXPECT_EQ(transport.count, 1);
}

TEST_F(UpdateSessionTest, AnInstallerThatRefusesLeavesTheProgramRunning) {
  download(package);
  windows.answer(kAction);
  installer.ended(UpdateFailure::installerRefused);
  installer.installed.reset();
  expectFailure(UpdateFailure::installerRefused);
  EXPECT_THAT(told, ElementsAre("shows", "finished"));
}

TEST_F(UpdateSessionTest, AProgramThatCannotBeStartedAnewIsNotInstallingAnyMore) {
  canRelaunch = false;
  download(package);
  windows.answer(kAction);
  installer.ended(std::nullopt);
  EXPECT_THAT(told, ElementsAre("shows", "installing", "starts /opt/quillmere/bin/quillmere", "aborted", "finished"));
  EXPECT_EQ(session.state(), State::idle);
}

TEST_F(UpdateSessionTest, WithoutAPlaceForThePackageNothingIsDownloaded) {
  ASSERT_EQ(::rmdir(packages.path().c_str()), 0);
  ASSERT_EQ(::symlink("/dev/null/none", packages.path().c_str()), 0);
  check(goodFeed());
  windows.answer(kAction);
  EXPECT_EQ(windows.kind(), Kind::failed);
  EXPECT_EQ(windows.shown->message, wordsFor(UpdateFailure::notStored));
  EXPECT_EQ(transport.count, 1);
}

}  // namespace
}  // namespace quillmere
