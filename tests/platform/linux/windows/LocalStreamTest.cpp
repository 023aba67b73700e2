#include "platform/linux/windows/LocalStream.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <cstring>
#include <thread>

#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class LocalStreamTest : public ::testing::Test {
 protected:
  LocalStreamTest() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    EXPECT_EQ(::bind(listener.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listener.number(), 1), 0);
    stream = LocalStream::connectedTo(path);
    other = Descriptor(::accept(listener.number(), nullptr, nullptr));
  }

  TemporaryFolder home;
  std::string path = home.file("socket").path();
  Descriptor listener{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  std::optional<LocalStream> stream;
  Descriptor other;
};

TEST_F(LocalStreamTest, BytesThatComeInPiecesAreOneAnswer) {
  ASSERT_TRUE(stream);
  std::thread sending([&] {
    for (const char letter : std::string("whole")) ::send(other.number(), &letter, 1, MSG_NOSIGNAL);
  });
  EXPECT_EQ(stream->receive(5), "whole");
  sending.join();
}

TEST_F(LocalStreamTest, AnAnswerThatEndsEarlyIsNone) {
  ::send(other.number(), "ab", 2, MSG_NOSIGNAL);
  other = {};
  EXPECT_EQ(stream->receive(5), std::nullopt);
}

TEST_F(LocalStreamTest, WhoeverIsGoneIsToldNothing) {
  other = {};
  EXPECT_FALSE(stream->send("anybody?"));
}

TEST_F(LocalStreamTest, HangingUpEndsAWait) {
  std::optional<std::string> got = "";
  std::thread waiting([&] { got = stream->receive(1); });
  stream->hangUp();
  waiting.join();
  EXPECT_EQ(got, std::nullopt);
}

}  // namespace
}  // namespace quillmere::testing
