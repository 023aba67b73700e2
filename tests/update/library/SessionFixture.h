#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <filesystem>

#include "foundation/ManualExecutor.h"
#include "support/TemporaryFolder.h"
#include "update/library/Maker.h"
#include "update/library/UpdateSession.h"

namespace quillmere::testing {

/// What is asked of the network waits until the test answers it.
class FakeTransport final : public UpdateTransport {
 public:
  std::unique_ptr<Transfer> begin(TransferRequest asked) override {
    ++count;
    request = std::move(asked);
    isUnderWay = true;
    return std::make_unique<Live>(*this);
  }
  void send(const QByteArray& bytes) { isKept = request.take(bytes); }
  void end(std::optional<UpdateFailure> failure = std::nullopt) {
    const auto ended = request.ended;
    ended(failure);
  }

  int count = 0;
  bool isUnderWay = false;
  bool isKept = true;
  TransferRequest request;

 private:
  class Live final : public Transfer {
   public:
    explicit Live(FakeTransport& owner) : owner_(owner) {}
    ~Live() override { owner_.isUnderWay = false; }

   private:
    FakeTransport& owner_;
  };
};

class FakeInstaller final : public UpdateInstaller {
 public:
  std::optional<UpdateFailure> obstacle() const override { return isInTheWay; }
  void install(std::shared_ptr<PackageFile> package, Ended told) override {
    installed = std::move(package);
    ended = std::move(told);
  }
  FileURL programToStart() const override { return FileURL::fromPath("/opt/quillmere/bin/quillmere"); }

  std::optional<UpdateFailure> isInTheWay;
  std::shared_ptr<PackageFile> installed;
  Ended ended;
};

class FakeWindows final : public UpdateWindows {
 public:
  void show(const UpdateNotice& shownNow, std::function<void(Answer)> answered) override {
    shown = shownNow;
    answer_ = std::move(answered);
  }
  void setProgress(qint64 done, qint64 whole) override { progress = {done, whole}; }
  void bringForward() override { ++forward; }
  void close() override {
    shown.reset();
    answer_ = nullptr;
  }
  void answer(Answer answer) {
    const auto answered = answer_;
    ASSERT_TRUE(answered) << "nothing is asked";
    answered(answer);
  }
  std::optional<UpdateNotice::Kind> kind() const { return shown ? std::optional(shown->kind) : std::nullopt; }

  std::optional<UpdateNotice> shown;
  std::pair<qint64, qint64> progress;
  int forward = 0;

 private:
  std::function<void(Answer)> answer_;
};

class SessionFixture : public ::testing::Test {
 protected:
  using Kind = UpdateNotice::Kind;
  using State = UpdateSession::State;
  using By = UpdateSession::By;
  static constexpr auto kAction = UpdateWindows::Answer::action;
  static constexpr auto kSafe = UpdateWindows::Answer::safe;

  SessionFixture() {
    session.changed = [this](State state) { states.push_back(state); };
  }
  QByteArray feedWith(const char* key, const QJsonValue& value) const {
    QJsonObject object = maker.feedOf(package);
    object.insert(QLatin1String(key), value);
    return maker.signedFeed(Maker::json(object));
  }
  QByteArray goodFeed() const { return maker.signedFeed(Maker::json(maker.feedOf(package))); }
  void check(const QByteArray& feed, By by = By::person) {
    session.check(by);
    transport.send(feed);
    transport.end();
  }
  void download(const QByteArray& bytes) {
    check(goodFeed());
    windows.answer(kAction);
    transport.send(bytes);
    transport.end();
    executor.drain();
  }
  void expectFailure(UpdateFailure failure) {
    ASSERT_EQ(windows.kind(), Kind::failed);
    EXPECT_EQ(windows.shown->message, wordsFor(failure));
    windows.answer(kSafe);
    EXPECT_EQ(session.state(), State::idle);
    EXPECT_FALSE(windows.shown);
    EXPECT_TRUE(std::filesystem::is_empty(packages.path()) || !std::filesystem::exists(packages.path()));
  }

  Maker maker;
  const QByteArray package = "the package";
  ManualExecutor executor;
  TemporaryFolder folder;
  FileURL packages = folder.url();
  FakeTransport transport;
  FakeInstaller installer;
  FakeWindows windows;
  Date now = Date::fromDateTime(QDateTime(QDate(2029, 1, 1), QTime(0, 0), Qt::UTC));
  std::vector<std::string> told;
  std::vector<State> states;
  bool canRelaunch = true;
  UpdateSession session{
      {.version = VersionNumber::read(QStringLiteral("0.1.0")).value(),
       .feed = QUrl(QStringLiteral("https://updates.example/feed")),
       .maker = maker.check(),
       .packages = packages},
      {.executor = executor,
       .transport = transport,
       .installer = installer,
       .windows = windows,
       .now = [this] { return now; },
       .willShow = [this] { told.emplace_back("shows"); },
       .willFinish = [this] { told.emplace_back("finished"); },
       .setInstalling = [this](bool isInstalling) { told.emplace_back(isInstalling ? "installing" : "aborted"); },
       .relaunch =
           [this](const FileURL& program) {
             told.push_back("starts " + program.path());
             return canRelaunch;
           }}};
};

}  // namespace quillmere::testing
