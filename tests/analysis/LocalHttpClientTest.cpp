#include "analysis/LocalHttpClient.h"

#include <QtNetwork/QNetworkProxy>

#include "foundation/Interruptible.h"
#include "foundation/ManualExecutor.h"
#include "support/EventLoop.h"
#include "support/FakeModelServer.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::FakeModelServer;
using testing::FakeReply;
using testing::httpReply;
using testing::runLoopUntil;
using testing::TemporaryFolder;

constexpr Duration kLimit = std::chrono::seconds(60);
const QByteArray kHead = "HTTP/1.1 200 OK\r\n";

/// Real sockets; time moves only when the test says so.
class LocalHttpClientTest : public ::testing::Test {
 protected:
  LocalHttpClientTest() {
    server.script = [this](const auto&) { return reply; };
  }
  static Task<> keep(Task<HttpOutcome> task, std::optional<HttpOutcome>& outcome) {
    auto waiting = interruptible(task);
    outcome = co_await waiting;
  }
  Task<> begin(const LocalServerAddress& address, const HttpRequest& request = {.path = "/x"}) {
    outcome.reset();
    return keep(client->send(address, request, kLimit), outcome);
  }
  bool isThere(const std::function<bool()>& condition) {
    return runLoopUntil([&] {
      executor.drain();
      return condition();
    });
  }
  std::optional<HttpOutcome> finish() {
    EXPECT_TRUE(isThere([&] { return outcome.has_value(); }));
    return outcome;
  }
  /// The body of the answer, or the failure.
  std::string ask(const LocalServerAddress& address, const HttpRequest& request = {.path = "/x"}) {
    const auto task = begin(address, request);
    return told(finish());
  }
  std::string ask(const FakeReply& next) {
    reply = next;
    return ask(server.address());
  }
  static std::string told(const std::optional<HttpOutcome>& outcome) {
    if (!outcome) return "nothing";
    if (*outcome) return (*outcome)->body.toStdString();
    const char* names[] = {"cancelled", "unreachable", "lost", "timed out", "malformed", "too large"};
    return names[static_cast<int>(outcome->reason())];
  }
  bool isClosed() {
    return isThere([&] { return server.openConnections == 0; });
  }

  TemporaryFolder folder;
  ManualExecutor executor;
  std::unique_ptr<LocalHttpClient> client = std::make_unique<LocalHttpClient>(executor);
  FakeModelServer server;
  FakeReply reply = httpReply(200, "hello");
  std::optional<HttpOutcome> outcome;
};

TEST_F(LocalHttpClientTest, ARequestHasTheseBytes) {
  EXPECT_EQ(ask(server.address(), {.method = "GET", .path = "/api/version"}), "hello");
  EXPECT_EQ(server.requests.at(0).bytes,
            "GET /api/version HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(server.port()) +
                "\r\nAccept: application/json\r\nAccept-Encoding: identity\r\n"
                "Connection: close\r\n\r\n");
}

TEST_F(LocalHttpClientTest, ABodyIsSentWithItsLength) {
  EXPECT_EQ(ask(server.address(), {.method = "POST", .path = "/api/show", .body = "{\"a\":1}"}), "hello");
  EXPECT_TRUE(server.requests.at(0).bytes.endsWith(
      "Connection: close\r\nContent-Type: application/json\r\nContent-Length: 7\r\n\r\n{\"a\":1}"));
}

TEST_F(LocalHttpClientTest, ALargeBodyArrivesWhole) {
  const QByteArray body(8 * 1024 * 1024, 'x');
  EXPECT_EQ(ask(server.address(), {.method = "POST", .path = "/", .body = body}), "hello");
  EXPECT_EQ(server.requests.at(0).body, body);
}

TEST_F(LocalHttpClientTest, ALocalSocketIsAServerLikeAnother) {
  FakeModelServer local(folder.file("model.sock"));
  local.script = server.script;
  EXPECT_EQ(ask(local.address()), "hello");
  EXPECT_TRUE(local.requests.at(0).bytes.contains("\r\nHost: localhost\r\n"));
  reply = {.bytes = kHead + "\r\nto the end"};
  EXPECT_EQ(ask(local.address()), "to the end");
  reply = {.bytes = kHead + "Content-Length: 9\r\n\r\ncut"};
  EXPECT_EQ(ask(local.address()), "lost");
}

TEST_F(LocalHttpClientTest, TheLoopbackAddressOfVersion6IsReached) {
  QTcpServer probe;
  if (!probe.listen(QHostAddress::LocalHostIPv6)) GTEST_SKIP() << "this machine has no IPv6";
  FakeModelServer six(QHostAddress::LocalHostIPv6);
  six.script = server.script;
  const QString text = QStringLiteral("[::1]:%1").arg(six.port());
  EXPECT_EQ(ask(*LocalServerAddress::parse(text, 0)), "hello");
  EXPECT_TRUE(six.requests.at(0).bytes.contains("\r\nHost: " + text.toLatin1() + "\r\n"));
}

TEST_F(LocalHttpClientTest, NoProxyIsUsed) {
  FakeModelServer proxy;
  QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.port()});
  EXPECT_EQ(ask(server.address()), "hello");
  QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
  EXPECT_EQ(proxy.connections, 0);
}

TEST_F(LocalHttpClientTest, AnAnswerMayComeInAnyPieces) {
  FakeReply split = httpReply(200, "hello");
  split.pieceSize = 1;
  EXPECT_EQ(ask(split), "hello");
  EXPECT_EQ(
      ask({.bytes = kHead + "Transfer-Encoding: chunked\r\n\r\n3\r\nhel\r\n2\r\nlo\r\n0\r\n\r\n", .pieceSize = 4}),
      "hello");
}

TEST_F(LocalHttpClientTest, AWholeAnswerIsNotWaitedForAnyLonger) {
  reply.then = FakeReply::Then::staysOpen;
  EXPECT_EQ(ask(reply), "hello");
  EXPECT_TRUE(isClosed()) << "by this side";
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(LocalHttpClientTest, AnErrorIsAnAnswerToo) {
  ask(httpReply(503, "busy", "Retry-After: 7\r\n"));
  ASSERT_TRUE(outcome && *outcome);
  EXPECT_EQ((*outcome)->status, 503);
  EXPECT_EQ((*outcome)->header("retry-after"), "7");
}

TEST_F(LocalHttpClientTest, ARedirectIsNotFollowed) {
  FakeModelServer other;
  ask(httpReply(307, "", "Location: http://127.0.0.1:" + QByteArray::number(other.port()) + "/\r\n"));
  ASSERT_TRUE(outcome && *outcome);
  EXPECT_TRUE((*outcome)->isRedirect());
  EXPECT_EQ(other.connections, 0);
  EXPECT_EQ(server.requests.size(), 1u);
}

TEST_F(LocalHttpClientTest, WhereNobodyListensNothingIsReached) {
  server.stopListening();
  EXPECT_EQ(ask(server.address()), "unreachable");
  EXPECT_EQ(ask(*LocalServerAddress::parse(folder.file("missing").displayPath(), 0)), "unreachable");
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(LocalHttpClientTest, AConnectionThatEndsTooEarlyIsLost) {
  EXPECT_EQ(ask({.bytes = {}}), "lost");
  EXPECT_EQ(ask({.bytes = "HTTP/1.1 200"}), "lost");
  EXPECT_EQ(ask({.bytes = kHead + "Content-Length: 9\r\n\r\ncut"}), "lost");
  EXPECT_EQ(ask({.bytes = kHead + "Transfer-Encoding: chunked\r\n\r\n3\r\ncut\r\n"}), "lost");
}

TEST_F(LocalHttpClientTest, WhatIsNotHttpIsMalformed) {
  EXPECT_EQ(ask({.bytes = "SSH-2.0-server\r\n\r\n"}), "malformed");
  EXPECT_EQ(ask({.bytes = kHead + "Content-Length: -1\r\n\r\n", .then = FakeReply::Then::staysOpen}), "malformed");
  EXPECT_TRUE(isClosed());
}

TEST_F(LocalHttpClientTest, AHugeAnswerIsCutOff) {
  EXPECT_EQ(ask({.bytes = kHead + "Content-Length: 4000000000\r\n\r\n", .then = FakeReply::Then::staysOpen}),
            "too large");
  EXPECT_EQ(ask({.bytes = kHead + "\r\n" + QByteArray(5 << 20, 'x'), .then = FakeReply::Then::staysOpen}), "too large");
  EXPECT_EQ(ask({.bytes = kHead + "A: " + QByteArray(1 << 20, 'x'), .then = FakeReply::Then::staysOpen}), "too large");
  EXPECT_TRUE(isClosed());
}

TEST_F(LocalHttpClientTest, AServerThatNeverAnswersIsWaitedForUntilTheLimit) {
  server.script = nullptr;
  const auto task = begin(server.address());
  ASSERT_TRUE(isThere([&] { return server.requests.size() == 1; }));
  executor.advance(kLimit - Duration(1));
  EXPECT_FALSE(outcome);
  executor.advance(Duration(1));
  EXPECT_EQ(told(outcome), "timed out");
  EXPECT_TRUE(isClosed());
}

TEST_F(LocalHttpClientTest, DrippingDoesNotMoveTheLimit) {
  reply = {.bytes = kHead + "Content-Length: 100\r\n\r\n", .then = FakeReply::Then::staysOpen};
  const auto task = begin(server.address());
  ASSERT_TRUE(isThere([&] { return server.requests.size() == 1; }));
  for (int second = 0; second < 59; ++second) {
    server.send("x");
    QCoreApplication::processEvents();
    executor.advance(seconds(1));
  }
  EXPECT_FALSE(outcome);
  executor.advance(seconds(1));
  EXPECT_EQ(told(outcome), "timed out");
}

TEST_F(LocalHttpClientTest, CancellingClosesTheConnectionAtOnce) {
  server.script = nullptr;
  const auto task = begin(server.address());
  ASSERT_TRUE(isThere([&] { return server.requests.size() == 1; }));
  task.cancel();
  EXPECT_EQ(told(outcome), "cancelled") << "without a turn of the loop";
  EXPECT_TRUE(isClosed());
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(LocalHttpClientTest, CancellingBeforeTheConnectionIsMadeSendsNothing) {
  const auto task = begin(server.address());
  task.cancel();
  EXPECT_EQ(told(outcome), "cancelled");
  ASSERT_TRUE(isThere([&] { return server.connections == 0 || server.openConnections == 0; }));
  EXPECT_TRUE(server.requests.empty());
}

TEST_F(LocalHttpClientTest, ACancelledAnswerThatHadBegunIsDropped) {
  reply = {.bytes = kHead + "Content-Length: 100\r\n\r\n", .then = FakeReply::Then::staysOpen};
  const auto task = begin(server.address());
  ASSERT_TRUE(isThere([&] { return server.requests.size() == 1; }));
  server.send("some");
  QCoreApplication::processEvents();
  task.cancel();
  EXPECT_EQ(told(outcome), "cancelled");
  EXPECT_TRUE(isClosed());
}

TEST_F(LocalHttpClientTest, SeveralQuestionsMayBeUnderWay) {
  std::optional<HttpOutcome> second;
  const auto first = begin(server.address());
  const auto other = keep(client->send(server.address(), {.path = "/y"}, kLimit), second);
  ASSERT_TRUE(isThere([&] { return outcome && second; }));
  EXPECT_EQ(told(outcome), "hello");
  EXPECT_EQ(told(second), "hello");
  EXPECT_EQ(server.connections, 2);
}

TEST_F(LocalHttpClientTest, WhatIsOverIsNotKept) {
  const auto task = begin(server.address());
  EXPECT_EQ(client->underWay(), 1u);
  EXPECT_EQ(told(finish()), "hello");
  EXPECT_EQ(client->underWay(), 0u);
  EXPECT_EQ(ask(*LocalServerAddress::parse(folder.file("missing").displayPath(), 0)), "unreachable");
  EXPECT_EQ(client->underWay(), 0u) << "though it was over before anybody waited";
  server.script = nullptr;
  begin(server.address()).cancel();
  EXPECT_EQ(client->underWay(), 0u);
}

TEST_F(LocalHttpClientTest, WhatIsUnderWayGoesWithTheClient) {
  server.script = nullptr;
  const auto task = begin(server.address());
  ASSERT_TRUE(isThere([&] { return server.requests.size() == 1; }));
  client.reset();
  EXPECT_TRUE(isClosed());
  EXPECT_FALSE(outcome);
  EXPECT_FALSE(task.isDone());
  EXPECT_EQ(executor.pendingDelays(), 0u);
  task.cancel();
}

}  // namespace
}  // namespace quillmere
