#include "analysis/HttpExchange.h"

#include "foundation/ManualExecutor.h"
#include "support/EventLoop.h"
#include "support/FakeModelServer.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::FakeModelServer;
using testing::httpReply;
using testing::runLoopUntil;
using testing::TemporaryFolder;

/// What bytes on the wire mean is asked of the client; here, who hears of it, when, and how often.
class HttpExchangeTest : public ::testing::Test {
 protected:
  void start(const LocalServerAddress& address) { exchange->start(address, "GET / HTTP/1.1\r\n\r\n", seconds(60)); }
  bool isThere(const std::function<bool()>& condition) {
    return runLoopUntil([&] {
      executor.drain();
      return condition();
    });
  }

  /// Handed over to the exchange, as a client's waiting coroutine is.
  struct Handover {
    HttpExchange& exchange;
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> task) { exchange.keep(std::make_shared<Continuation>(task)); }
    void await_resume() const {}
  };
  static Task<> wait(Handover handover, std::vector<std::string>& told, [[maybe_unused]] std::shared_ptr<int> held) {
    co_await handover;
    told.emplace_back("waiter");
  }

  ManualExecutor executor;
  FakeModelServer server;
  std::vector<std::string> told;
  std::shared_ptr<HttpExchange> exchange = std::make_shared<HttpExchange>(executor, [this](const HttpOutcome& outcome) {
    told.emplace_back(outcome ? outcome->body.toStdString() : "failure");
  });
};

TEST_F(HttpExchangeTest, TheOutcomeIsToldBeforeWhoeverWaitsGoesOn) {
  server.script = [](const auto&) { return httpReply(200, "hello"); };
  start(server.address());
  const auto waiting = wait({*exchange}, told, nullptr);
  ASSERT_TRUE(isThere([&] { return waiting.isDone(); }));
  EXPECT_EQ(told, (std::vector<std::string>{"hello", "waiter"}));
}

TEST_F(HttpExchangeTest, ThereIsOneOutcomeOnly) {
  start(server.address());
  exchange->cancel();
  exchange->cancel();
  executor.advance(seconds(60));
  EXPECT_EQ(told, (std::vector<std::string>{"failure"}));
}

TEST_F(HttpExchangeTest, AtALocalSocketThatNobodyHasItIsOverWhenItHasStarted) {
  const TemporaryFolder folder;
  start(*LocalServerAddress::parse(folder.file("missing").displayPath(), 0));
  EXPECT_EQ(told, (std::vector<std::string>{"failure"}));
}

TEST_F(HttpExchangeTest, WhatWaitsGoesWithItUntold) {
  const auto held = std::make_shared<int>();
  start(server.address());
  const auto waiting = wait({*exchange}, told, held);
  EXPECT_EQ(held.use_count(), 2);
  exchange.reset();
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_TRUE(told.empty());
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(HttpExchangeTest, WhoeverHearsTheOutcomeMayLetItGo) {
  server.script = [](const auto&) { return httpReply(200, "hello"); };
  exchange = std::make_shared<HttpExchange>(executor, [this](const HttpOutcome&) {
    exchange.reset();
    told.emplace_back("let go");
  });
  const std::weak_ptr<HttpExchange> gone = exchange;
  start(server.address());
  ASSERT_TRUE(isThere([&] { return gone.expired() && server.connections == 1 && server.openConnections == 0; }));
  EXPECT_EQ(told, (std::vector<std::string>{"let go"}));
}

}  // namespace
}  // namespace quillmere
