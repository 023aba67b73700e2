#include "update/library/UpdateDownload.h"

#include <gtest/gtest.h>

#include "foundation/ManualExecutor.h"
#include "update/library/UpdateServer.h"

namespace quillmere {
namespace {

using testing::runLoopUntil;

class UpdateDownloadTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    server = new testing::UpdateServer;
    server->serve("package", package());
  }
  static void TearDownTestSuite() { delete server; }
  static QByteArray package() { return QByteArray(300'000, 'p') + "end"; }

  void begin(const QUrl& url, qint64 mostBytes = 1'000'000) {
    came.clear();
    told.reset();
    transfer = download.begin({.url = url,
                               .mostBytes = mostBytes,
                               .longest = seconds(60),
                               .take =
                                   [this](const QByteArray& bytes) {
                                     came += bytes;
                                     return isKept;
                                   },
                               .ended = [this](auto failure) { told = failure; }});
  }
  /// How it ends; the test's executor stands still meanwhile.
  std::optional<UpdateFailure> endOf(const QUrl& url, qint64 mostBytes = 1'000'000) {
    begin(url, mostBytes);
    EXPECT_TRUE(runLoopUntil([this] {
      executor.drain();
      return told.has_value();
    })) << url.toString().toStdString();
    return told.value_or(std::nullopt);
  }

  static testing::UpdateServer* server;
  ManualExecutor executor;
  UpdateDownload download{executor, server->authority()};
  bool isKept = true;
  QByteArray came;
  std::optional<std::optional<UpdateFailure>> told;
  std::unique_ptr<Transfer> transfer;
};
testing::UpdateServer* UpdateDownloadTest::server = nullptr;

TEST_F(UpdateDownloadTest, AFileComesWhole) {
  EXPECT_EQ(endOf(server->url("/files/package")), std::nullopt);
  EXPECT_EQ(came, package());
  EXPECT_EQ(executor.pendingDelays(), 0U);
}

TEST_F(UpdateDownloadTest, ARedirectWithinTheServerIsFollowed) {
  EXPECT_EQ(endOf(server->url("/to/package")), std::nullopt);
  EXPECT_EQ(came, package());
}

TEST_F(UpdateDownloadTest, ARedirectToAnotherServerIsNotFollowed) {
  const int before = server->requestsTo("other");
  EXPECT_EQ(endOf(server->url("/away?other/package")), UpdateFailure::redirected);
  EXPECT_EQ(server->requestsTo("other"), before);
  EXPECT_TRUE(came.isEmpty());
}

TEST_F(UpdateDownloadTest, ARedirectToPlainHttpIsNotFollowed) {
  EXPECT_EQ(endOf(server->url("/away?plain/package")), UpdateFailure::redirected);
  EXPECT_EQ(endOf(server->url("/files/package", "plain")), UpdateFailure::redirected);
  EXPECT_EQ(server->requestsTo("plain"), 0);
}

TEST_F(UpdateDownloadTest, ARedirectWithoutEndIsNotFollowedForEver) {
  EXPECT_EQ(endOf(server->url("/around")), UpdateFailure::redirected);
}

TEST_F(UpdateDownloadTest, ACertificateOfAnotherAuthorityOrNameIsRefused) {
  EXPECT_EQ(endOf(server->url("/files/package", "stranger")), UpdateFailure::notTrusted);
  EXPECT_EQ(endOf(server->url("/files/package", "misnamed")), UpdateFailure::notTrusted);
  UpdateDownload ofTheSystem(executor, QString());
  const int before = server->requestsTo("secure");
  std::optional<UpdateFailure> failure;
  const auto asked = ofTheSystem.begin({.url = server->url("/files/package"),
                                        .mostBytes = 1'000'000,
                                        .longest = seconds(60),
                                        .take = [](const QByteArray&) { return true; },
                                        .ended = [&](auto why) { failure = why; }});
  EXPECT_TRUE(runLoopUntil([&] { return failure.has_value(); }));
  EXPECT_EQ(failure, UpdateFailure::notTrusted);
  EXPECT_EQ(server->requestsTo("secure"), before);
  EXPECT_EQ(server->requestsTo("stranger") + server->requestsTo("misnamed"), 0);
}

TEST_F(UpdateDownloadTest, AConnectionThatIsCutIsTold) {
  EXPECT_EQ(endOf(server->url("/cut/package")), UpdateFailure::cutShort);
}

TEST_F(UpdateDownloadTest, MoreThanAnnouncedEndsIt) {
  EXPECT_EQ(endOf(server->url("/files/package"), 1000), UpdateFailure::tooLarge);
  EXPECT_EQ(endOf(server->url("/long/package"), 400'000), UpdateFailure::tooLarge);
  EXPECT_TRUE(came.size() <= 400'000) << came.size();
}

TEST_F(UpdateDownloadTest, AServerThatSaysNoIsNotReached) {
  EXPECT_EQ(endOf(server->url("/files/none")), UpdateFailure::notReached);
  EXPECT_EQ(endOf(server->url("/refused")), UpdateFailure::notReached);
  EXPECT_EQ(endOf(QUrl(QStringLiteral("https://localhost:1/"))), UpdateFailure::notReached);
}

TEST_F(UpdateDownloadTest, ASilentServerIsTooSlow) {
  UpdateDownload hasty(executor, server->authority(), {.silence = std::chrono::milliseconds(200)});
  std::optional<UpdateFailure> failure;
  const auto asked = hasty.begin({.url = server->url("/silent"),
                                  .mostBytes = 1000,
                                  .longest = seconds(60),
                                  .take = [](const QByteArray&) { return true; },
                                  .ended = [&](auto why) { failure = why; }});
  EXPECT_TRUE(runLoopUntil([&] { return failure.has_value(); }));
  EXPECT_EQ(failure, UpdateFailure::tooSlow);
}

/// It is never silent for long, and would go on for hours.
TEST_F(UpdateDownloadTest, AServerThatDripsIsTooSlow) {
  begin(server->url("/drip/package"));
  EXPECT_TRUE(runLoopUntil([this] { return came.size() > 2; }));
  executor.advance(seconds(60));
  EXPECT_EQ(told, std::optional(UpdateFailure::tooSlow));
}

TEST_F(UpdateDownloadTest, TheWholeOfItHasATimeToo) {
  UpdateDownload patient(executor, server->authority(), {.leastBytes = 0});
  std::optional<UpdateFailure> failure;
  const auto asked = patient.begin({.url = server->url("/drip/package"),
                                    .mostBytes = 1'000'000,
                                    .longest = seconds(600),
                                    .take = [](const QByteArray&) { return true; },
                                    .ended = [&](auto why) { failure = why; }});
  executor.advance(seconds(599));
  EXPECT_FALSE(failure);
  executor.advance(seconds(1));
  EXPECT_EQ(failure, UpdateFailure::tooSlow);
}

TEST_F(UpdateDownloadTest, WhatCannotBeKeptEndsIt) {
  isKept = false;
  EXPECT_EQ(endOf(server->url("/files/package")), UpdateFailure::notStored);
}

TEST_F(UpdateDownloadTest, CancelledItTellsNothingMore) {
  begin(server->url("/drip/package"));
  EXPECT_TRUE(runLoopUntil([this] { return !came.isEmpty(); }));
  transfer.reset();
  const auto before = came.size();
  EXPECT_EQ(executor.pendingDelays(), 0U);
  for (int i = 0; i < 50; ++i) QCoreApplication::processEvents();
  EXPECT_EQ(came.size(), before);
  EXPECT_FALSE(told);
}

TEST(SameServer, IsTheSameHostAndPortOverHttps) {
  const QUrl from(QStringLiteral("https://updates.example/feed"));
  for (const char* to : {"https://updates.example/x", "https://updates.example:443/x", "https://UPDATES.example/x"}) {
    EXPECT_TRUE(isSameServer(from, QUrl(QLatin1String(to)))) << to;
  }
  for (const char* to :
       {"http://updates.example/x", "https://updates.example:444/x", "https://example/x", "https://a.updates.example/x",
        "https://u:p@updates.example/x", "ftp://updates.example/x", "file:///x", ""}) {
    EXPECT_FALSE(isSameServer(from, QUrl(QLatin1String(to)))) << to;
  }
}

}  // namespace
}  // namespace quillmere
