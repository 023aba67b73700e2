#include "update/library/Updater.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <QtWidgets/QApplication>
#include <fstream>

#include "foundation/ManualExecutor.h"
#include "update/library/Maker.h"
#include "update/library/UpdateServer.h"

namespace quillmere {
namespace {

/// What the program keeps and is told.
struct FakeProgram {
  bool canCheck = false;
  std::vector<bool> automatic;
  bool storedAutomatic = true;
  double lastCheck = -1;
  std::vector<std::string> told;

  static FakeProgram& of(void* context) { return *static_cast<FakeProgram*>(context); }
  QuillmereUpdateHost host{
      .context = this,
      .setCanCheck = [](void* context, bool can) { of(context).canCheck = can; },
      .setChecksAutomatically = [](void* context, bool checks) { of(context).automatic.push_back(checks); },
      .setInstalling = [](void* context, bool is) { of(context).told.emplace_back(is ? "installing" : "aborted"); },
      .borrowActivation = [](void* context) { of(context).told.emplace_back("borrows"); },
      .repayActivation = [](void* context) { of(context).told.emplace_back("repays"); },
      .quit =
          [](void* context) {
            of(context).told.emplace_back("is asked to quit");
            return false;
          },
      .storedChecksAutomatically = [](void* context) { return of(context).storedAutomatic; },
      .storeChecksAutomatically = [](void* context, bool checks) { of(context).storedAutomatic = checks; },
      .storedLastCheck = [](void* context) { return of(context).lastCheck; },
      .storeLastCheck = [](void* context, double seconds) { of(context).lastCheck = seconds; },
  };
};

class UpdaterTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { server = new testing::UpdateServer; }
  static void TearDownTestSuite() { delete server; }
  std::unique_ptr<Updater> make(const char* feedPath = "/files/feed") {
    feed = server->url(feedPath).toEncoded();
    return make(QuillmereUpdateConfiguration{.feed = feed.constData(),
                                             .key = reinterpret_cast<const unsigned char*>(key.constData()),
                                             .authority = authority.constData(),
                                             .version = "0.1.0",
                                             .program = "/usr/bin/quillmere",
                                             .isSingleFile = false});
  }
  std::unique_ptr<Updater> make(const QuillmereUpdateConfiguration& given) {
    configuration = given;
    return Updater::make(program.host, given, executor);
  }
  static UpdateWindow* window() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* found = dynamic_cast<UpdateWindow*>(widget);
      if (found && found->isVisible()) return found;
    }
    return nullptr;
  }
  bool comesTo(UpdateNotice::Kind kind) {
    return testing::runLoopUntil([&] {
      executor.drain();
      return window() && window()->notice().kind == kind;
    });
  }

  static testing::UpdateServer* server;
  testing::Maker maker;
  const QByteArray key = maker.publicKey();
  const QByteArray authority = server->authority().toUtf8();
  QByteArray feed;
  QuillmereUpdateConfiguration configuration{};
  FakeProgram program;
  ManualExecutor executor;
};
testing::UpdateServer* UpdaterTest::server = nullptr;

TEST_F(UpdaterTest, CanCheckFromTheStartAndDoesByItself) {
  const auto updater = make();
  ASSERT_TRUE(updater);
  EXPECT_TRUE(program.canCheck);
  EXPECT_EQ(program.automatic, std::vector{true});
  EXPECT_EQ(executor.pendingDelays(), 1U);
  updater->setChecksAutomatically(false);
  EXPECT_EQ(executor.pendingDelays(), 0U);
  EXPECT_FALSE(program.storedAutomatic);
  EXPECT_EQ(program.automatic, (std::vector{true, false}));
}

TEST_F(UpdaterTest, WhatMakesNoSenseIsNoUpdater) {
  ASSERT_TRUE(make());
  for (const char* url : {"http://localhost/feed", "", "nonsense"}) {
    QuillmereUpdateConfiguration other = configuration;
    other.feed = url;
    EXPECT_FALSE(Updater::make(program.host, other, executor)) << url;
  }
  QuillmereUpdateConfiguration other = configuration;
  other.version = "next";
  EXPECT_FALSE(Updater::make(program.host, other, executor));
  other = configuration;
  other.authority = "/etc/passwd";
  EXPECT_FALSE(Updater::make(program.host, other, executor));
}

TEST_F(UpdaterTest, AWindowBorrowsTheActivationAndPaysItBack) {
  server->serve("feed", maker.signedFeed(testing::Maker::json(maker.feedOf("p"))));
  const auto updater = make();
  updater->check();
  EXPECT_GT(program.lastCheck, 0);
  ASSERT_TRUE(comesTo(UpdateNotice::Kind::found));
  window()->reject();
  executor.drain();
  EXPECT_FALSE(window());
  EXPECT_EQ(program.told, (std::vector<std::string>{"borrows", "repays"}));
}

TEST_F(UpdaterTest, WhereTheProgramGoesOnAfterAllTheUpdateIsOver) {
  const testing::TemporaryFolder folder;
  const FileURL file = folder.file("Quillmere.AppImage");
  std::ofstream(file.path()) << "the old program";
  ASSERT_EQ(::chmod(file.c_str(), 0755), 0);
  qputenv("APPIMAGE", file.c_str());
  qputenv("APPDIR", "/usr");
  QJsonObject object = maker.feedOf("the new program");
  object.insert(QStringLiteral("package"), server->url("/files/package").toString());
  server->serve("package", "the new program");
  server->serve("feed", maker.signedFeed(testing::Maker::json(object)));
  make();
  configuration.isSingleFile = true;
  const auto updater = make(configuration);
  updater->check();
  ASSERT_TRUE(comesTo(UpdateNotice::Kind::found));
  window()->accept();
  ASSERT_TRUE(comesTo(UpdateNotice::Kind::ready));
  window()->accept();
  EXPECT_TRUE(testing::runLoopUntil([&] {
    executor.drain();
    return program.told.size() == 5;
  }));
  EXPECT_EQ(program.told, (std::vector<std::string>{"borrows", "installing", "is asked to quit", "aborted", "repays"}));
  EXPECT_FALSE(window());
  qunsetenv("APPIMAGE");
  qunsetenv("APPDIR");
}

TEST_F(UpdaterTest, ACheckByScheduleFailsInSilence) {
  const auto updater = make("/files/none");
  executor.advance(UpdateSchedule::kFirstLook);
  EXPECT_GT(program.lastCheck, 0);
  EXPECT_TRUE(testing::runLoopUntil([&] { return server->requestsTo("secure") > 0; }));
  updater->check();
  ASSERT_TRUE(comesTo(UpdateNotice::Kind::failed));
  EXPECT_EQ(program.told, std::vector<std::string>{"borrows"});
}

TEST_F(UpdaterTest, EndsInTheMiddleOfADownload) {
  server->serve("package", QByteArray(5000, 'p'));
  QJsonObject object = maker.feedOf(QByteArray(5000, 'p'));
  object.insert(QStringLiteral("package"), server->url("/drip/package").toString());
  server->serve("feed", maker.signedFeed(testing::Maker::json(object)));
  auto updater = make();
  updater->check();
  ASSERT_TRUE(comesTo(UpdateNotice::Kind::found));
  window()->accept();
  ASSERT_TRUE(comesTo(UpdateNotice::Kind::downloading));
  updater.reset();
  EXPECT_FALSE(window());
  EXPECT_EQ(executor.pendingDelays(), 0U);
}

}  // namespace
}  // namespace quillmere
