#include "platform/linux/announcing/SpeechService.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>

#include "support/EventLoop.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::runLoopUntil;
using Priority = AnnouncementPriority;

/// Speaks as much of the service's protocol as is needed, or nothing at all.
class FakeSpeechServer {
 public:
  FakeSpeechServer() {
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { accept(); });
    EXPECT_TRUE(server_.listen(folder_.file("speech.sock").displayPath()));
    qputenv("SPEECHD_ADDRESS", "unix_socket:" + server_.fullServerName().toUtf8());
  }
  ~FakeSpeechServer() { qunsetenv("SPEECHD_ADDRESS"); }

  void setHanging(bool isHanging) {
    isHanging_ = isHanging;
    for (QLocalSocket* client : clients_) answer(*client);
  }
  void hangUp() {
    for (QLocalSocket* client : clients_) client->abort();
  }
  bool hears(size_t count) {
    return runLoopUntil([&] { return spoken.size() >= count; });
  }
  bool isLeftAlone() {
    return runLoopUntil([&] {
      return std::all_of(clients_.begin(), clients_.end(),
                         [](QLocalSocket* client) { return client->state() == QLocalSocket::UnconnectedState; });
    });
  }
  bool isConnected() {
    return runLoopUntil([&] { return !clients_.empty(); });
  }

  bool isGoing = false;             ///< answers once more and hears no more of that client
  std::vector<std::string> spoken;  ///< "priority: text"

 private:
  void accept() {
    QLocalSocket* client = server_.nextPendingConnection();
    clients_.push_back(client);
    QObject::connect(client, &QLocalSocket::readyRead, client, [this, client] { answer(*client); });
  }
  void answer(QLocalSocket& client) {
    while (!isHanging_ && client.canReadLine()) {
      const QByteArray line = client.readLine().trimmed();
      // From here on whoever writes to it is told of a broken pipe, however fast it was.
      if (std::exchange(isGoing, false)) {
        ::shutdown(static_cast<int>(client.socketDescriptor()), SHUT_RD);
        client.write("208 OK\r\n");
        client.flush();
        return;
      }
      if (isText_ && line == ".") {
        isText_ = false;
        spoken.push_back(priority_ + ": " + text_);
        client.write("225-1\r\n225 OK MESSAGE QUEUED\r\n");
      } else if (isText_) {
        text_ += line.toStdString();
      } else if (line.toUpper() == "SPEAK") {
        isText_ = true;
        text_.clear();
        client.write("230 OK RECEIVING DATA\r\n");
      } else {
        if (line.toUpper().startsWith("SET SELF PRIORITY ")) priority_ = line.mid(18).toLower().toStdString();
        client.write(line.toUpper() == "QUIT" ? "231 HAPPY HACKING\r\n" : "208 OK\r\n");
      }
    }
  }

  testing::TemporaryFolder folder_;
  QLocalServer server_;
  std::vector<QLocalSocket*> clients_;
  bool isHanging_ = false;
  bool isText_ = false;
  std::string priority_;
  std::string text_;
};

TEST(SpeechServiceTest, WhatMattersInterruptsAndTheRestWaitsItsTurn) {
  FakeSpeechServer server;
  SpeechService service;
  service.say(QStringLiteral("Kept."), Priority::low);
  service.say(QStringLiteral("Ä failure."), Priority::high);
  ASSERT_TRUE(server.hears(2));
  EXPECT_EQ(server.spoken, (std::vector<std::string>{"message: Kept.", "important: Ä failure."}));
}

TEST(SpeechServiceTest, TextIsNeverACommand) {
  FakeSpeechServer server;
  SpeechService service;
  service.say(QStringLiteral("one\r\n.\r\nSTOP all"), Priority::low);
  service.say(QStringLiteral("two"), Priority::low);
  ASSERT_TRUE(server.hears(2));
  EXPECT_EQ(server.spoken.size(), 2);
  EXPECT_EQ(server.spoken.back(), "message: two");
}

TEST(SpeechServiceTest, AServiceThatHangsHoldsNobodyUp) {
  FakeSpeechServer server;
  server.setHanging(true);
  {
    SpeechService service;
    service.say(QStringLiteral("first"), Priority::low);
    ASSERT_TRUE(server.isConnected());
    for (int i = 0; i < 100; ++i) service.say(QString::number(i), Priority::low);
    server.setHanging(false);
    ASSERT_TRUE(server.hears(9));
  }
  EXPECT_EQ(server.spoken.front(), "message: first");
  EXPECT_EQ(server.spoken.size(), 9) << "of many that wait the latest are spoken";
  EXPECT_EQ(server.spoken.back(), "message: 99");
}

TEST(SpeechServiceTest, MayGoWhileTheServiceHangs) {
  FakeSpeechServer server;
  server.setHanging(true);
  {
    SpeechService service;
    service.say(QStringLiteral("first"), Priority::low);
    service.say(QStringLiteral("second"), Priority::low);
    ASSERT_TRUE(server.isConnected());
  }
  server.setHanging(false);
  ASSERT_TRUE(server.hears(1));
  EXPECT_EQ(server.spoken, std::vector<std::string>{"message: first"}) << "what waits is forgotten";
}

TEST(SpeechServiceTest, OneThatGoesBetweenTwoWordsEndsNothingElse) {
  FakeSpeechServer server;
  SpeechService service;
  service.say(QStringLiteral("first"), Priority::low);
  ASSERT_TRUE(server.hears(1));
  ASSERT_TRUE(server.isLeftAlone());
  // As it is in a program that no library has changed; Qt does when it first writes to a socket.
  const auto before = ::signal(SIGPIPE, SIG_DFL);
  server.isGoing = true;
  service.say(QStringLiteral("lost"), Priority::low);
  ASSERT_TRUE(runLoopUntil([&] { return !server.isGoing; }));
  service.say(QStringLiteral("next"), Priority::high);
  ASSERT_TRUE(server.hears(2));
  EXPECT_EQ(server.spoken, (std::vector<std::string>{"message: first", "important: next"}));
  ::signal(SIGPIPE, before);
}

TEST(SpeechServiceTest, OneThatFailsIsAskedAgainForTheNext) {
  FakeSpeechServer server;
  server.setHanging(true);
  SpeechService service;
  service.say(QStringLiteral("lost"), Priority::low);
  ASSERT_TRUE(server.isConnected());
  server.hangUp();
  server.setHanging(false);
  service.say(QStringLiteral("next"), Priority::high);
  ASSERT_TRUE(runLoopUntil([&] { return !server.spoken.empty() && server.spoken.back() == "important: next"; }));
}

}  // namespace
}  // namespace quillmere
