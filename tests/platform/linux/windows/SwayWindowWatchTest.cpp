#include "platform/linux/windows/SwayWindowWatch.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <thread>

#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Speaks as sway does, with one window.
class FakeSway {
 public:
  explicit FakeSway(const std::string& path) : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    EXPECT_EQ(::bind(listener_.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listener_.number(), 2), 0);
  }
  ~FakeSway() {
    ::shutdown(listener_.number(), SHUT_RDWR);
    leave();
    for (std::thread& thread : threads_) thread.join();
  }

  /// Takes both of the program's connections.
  void accept() {
    for (Descriptor* one : {&questions_, &events_}) {
      *one = Descriptor(::accept4(listener_.number(), nullptr, nullptr, SOCK_CLOEXEC));
      threads_.emplace_back([this, socket = one->number()] { answer(socket); });
    }
  }
  void leave() {
    for (const Descriptor* one : {&questions_, &events_}) ::shutdown(one->number(), SHUT_RDWR);
  }
  void tellOfChange() { tell(events_.number(), 0x80000003U, R"({"change":"focus"})"); }

  std::atomic<int> left = 100;  ///< where the window stands
  std::atomic<int> asked = 0;
  std::atomic<bool> isSubscribed = false;
  std::atomic<bool> isSilent = false;

 private:
  static void tell(int socket, uint32_t type, const std::string& payload) {
    const auto size = static_cast<uint32_t>(payload.size());
    std::string bytes = "i3-ipc";
    bytes.append(reinterpret_cast<const char*>(&size), sizeof size);
    bytes.append(reinterpret_cast<const char*>(&type), sizeof type);
    bytes += payload;
    [[maybe_unused]] const auto sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }

  void answer(int socket) {
    char head[14];
    while (::recv(socket, head, sizeof head, MSG_WAITALL) == sizeof head) {
      uint32_t size = 0;
      uint32_t type = 0;
      std::memcpy(&size, head + 6, sizeof size);
      std::memcpy(&type, head + 10, sizeof type);
      std::string payload(size, '\0');
      if (size > 0 && ::recv(socket, payload.data(), size, MSG_WAITALL) != static_cast<ssize_t>(size)) return;
      if (isSilent) continue;
      if (type == 2) {
        isSubscribed = payload.find("window") != std::string::npos;
        tell(socket, type, R"({"success":true})");
      } else if (type == 3) {
        tell(socket, type,
             R"([{"name":"A","active":true,"scale":1.0,"rect":{"x":0,"y":0,"width":1600,"height":1000}}])");
      } else {
        ++asked;
        tell(
            socket, type,
            R"({"type":"root","nodes":[{"name":"A","current_workspace":"1","rect":{"x":0,"y":0,"width":1600,)"
            R"("height":1000},"nodes":[{"type":"workspace","name":"1","rect":{"x":0,"y":0,"width":1600,"height":1000},)"
            R"("floating_nodes":[{"id":8,"visible":true,"rect":{"x":)" +
                std::to_string(left) + R"(,"y":50,"width":300,"height":200}}]}]}]})");
      }
    }
  }

  Descriptor listener_, questions_, events_;
  std::vector<std::thread> threads_;
};

class SwayWindowWatchTest : public ::testing::Test {
 protected:
  void start() {
    auto connection = SwayConnection::at(path);
    ASSERT_TRUE(connection);
    sway->accept();
    watch = std::make_unique<SwayWindowWatch>([this] { return Date{clock.load()}; }, std::move(*connection));
  }
  /// Ends by the test's own limit of time if it never comes.
  template <typename Condition>
  static void waitUntil(const Condition& condition) {
    while (!condition()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::vector<int> places() const {
    std::vector<int> result;
    for (const WindowStack& state : watch->states()) result.push_back(state.windows.at(0).frame.x());
    return result;
  }

  TemporaryFolder home;
  std::string path = home.file("sway.sock").path();
  std::atomic<double> clock = 1000;
  std::unique_ptr<FakeSway> sway = std::make_unique<FakeSway>(path);
  std::unique_ptr<SwayWindowWatch> watch;
};

TEST_F(SwayWindowWatchTest, KnowsWhatIsShownFromTheStart) {
  start();
  waitUntil([&] { return !watch->states().empty(); });
  EXPECT_TRUE(sway->isSubscribed);
  EXPECT_THAT(places(), ElementsAre(100));
  EXPECT_EQ(watch->states()[0].since, Date{1000});
}

TEST_F(SwayWindowWatchTest, LooksWhenItIsToldOfAChange) {
  start();
  waitUntil([&] { return !watch->states().empty(); });
  sway->left = 200;
  clock = 1001;
  sway->tellOfChange();
  waitUntil([&] { return watch->states().size() == 2; });
  EXPECT_THAT(places(), ElementsAre(100, 200));
  EXPECT_EQ(watch->states()[1].since, Date{1001});
}

TEST_F(SwayWindowWatchTest, WhatChangedUnheardDidSoAfterTheLastLook) {
  start();
  waitUntil([&] { return !watch->states().empty(); });
  clock = 1002;
  const int before = sway->asked;
  watch->lookAgain();
  waitUntil([&] { return sway->asked > before; });
  sway->left = 300;
  clock = 1003;
  watch->lookAgain();
  waitUntil([&] { return watch->states().size() == 2; });
  EXPECT_THAT(places(), ElementsAre(100, 300));
  EXPECT_EQ(watch->states()[1].since, Date{1002});
}

TEST_F(SwayWindowWatchTest, WhenSwayGoesNothingIsKnownAnyMore) {
  start();
  waitUntil([&] { return !watch->states().empty(); });
  sway->leave();
  waitUntil([&] { return watch->states().empty(); });
  EXPECT_THAT(places(), IsEmpty());
}

TEST_F(SwayWindowWatchTest, ASwayThatDoesNotAnswerHoldsNobodyUp) {
  sway->isSilent = true;
  start();
  watch.reset();
  SUCCEED() << "it did not wait for an answer";
}

TEST_F(SwayWindowWatchTest, WhereNobodyListensThereIsNone) {
  EXPECT_FALSE(SwayConnection::at(path + ".other"));
  EXPECT_FALSE(SwayConnection::at(""));
  EXPECT_FALSE(SwayConnection::at(std::string(500, 'x')));
}

}  // namespace
}  // namespace quillmere::testing
