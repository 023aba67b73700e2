#include "platform/linux/passing/PacketSocket.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <cstdint>
#include <vector>

namespace quillmere {
namespace {

struct Word {
  uint32_t first;
  uint32_t second;
};

class PacketSocketTest : public ::testing::Test {
 protected:
  PacketSocket::Pair ends = *PacketSocket::pair();
};

TEST_F(PacketSocketTest, KeepsPacketsApart) {
  EXPECT_TRUE(ends.one.send(Word{1, 2}));
  EXPECT_TRUE(ends.one.send(Word{3, 4}));
  EXPECT_EQ(ends.other.receive<Word>()->second, 2u);
  EXPECT_EQ(ends.other.receive<Word>()->second, 4u);
}

TEST_F(PacketSocketTest, HandsOverADescriptorThatIsNotInherited) {
  const Descriptor file(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
  EXPECT_TRUE(ends.one.send(Word{1, 2}, file.number()));
  Descriptor came;
  ASSERT_TRUE(ends.other.receive<Word>(&came));
  ASSERT_TRUE(came);
  EXPECT_NE(came.number(), file.number());
  EXPECT_TRUE(::fcntl(came.number(), F_GETFD) & FD_CLOEXEC);
}

TEST_F(PacketSocketTest, HandsOverManyDescriptorsInTheirOrder) {
  std::vector<Descriptor> files;
  std::vector<int> numbers;
  for (size_t i = 0; i < PacketSocket::kMostDescriptors; ++i) {
    files.emplace_back(::memfd_create("one", MFD_CLOEXEC));
    ASSERT_EQ(::ftruncate(files.back().number(), static_cast<off_t>(i)), 0);
    numbers.push_back(files.back().number());
  }
  std::vector<Descriptor> came;
  EXPECT_TRUE(ends.one.sendWith(Word{1, 2}, numbers));
  ASSERT_TRUE(ends.other.receiveWith<Word>(came, PacketSocket::kMostDescriptors));
  ASSERT_EQ(came.size(), files.size());
  for (size_t i = 0; i < came.size(); ++i) {
    EXPECT_EQ(::lseek(came[i].number(), 0, SEEK_END), static_cast<off_t>(i));
    EXPECT_TRUE(::fcntl(came[i].number(), F_GETFD) & FD_CLOEXEC);
  }
  EXPECT_TRUE(ends.one.sendWith(Word{1, 2}, numbers));
  EXPECT_FALSE(ends.other.receiveWith<Word>(came, PacketSocket::kMostDescriptors - 1));
  numbers.push_back(0);
  EXPECT_FALSE(ends.one.sendWith(Word{1, 2}, numbers));
}

TEST_F(PacketSocketTest, TakesNothingOfAnotherLength) {
  EXPECT_TRUE(ends.one.send(uint32_t{1}));
  EXPECT_FALSE(ends.other.receive<Word>());
  EXPECT_TRUE(ends.one.send(std::array<Word, 2>{}));
  EXPECT_FALSE(ends.other.receive<Word>());
}

TEST_F(PacketSocketTest, ClosesADescriptorThatNobodyAskedFor) {
  const int next = ::dup(0);
  ::close(next);
  const Descriptor file(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
  EXPECT_TRUE(ends.one.send(Word{1, 2}, file.number()));
  EXPECT_FALSE(ends.other.receive<Word>());
  const Descriptor after(::dup(0));
  EXPECT_EQ(after.number(), next + 1) << "only the file of this test has come between";
}

TEST_F(PacketSocketTest, SaysThatTheOtherEndIsGone) {
  ends.other = PacketSocket();
  EXPECT_FALSE(ends.one.send(Word{1, 2})) << "and no signal ends the program";
  EXPECT_FALSE(ends.one.receive<Word>());
}

}  // namespace
}  // namespace quillmere
