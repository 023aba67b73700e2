#include "platform/linux/passing/SharedPixels.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <cstring>

#include "platform/linux/passing/SealedMemory.h"
#include "support/ChildProcess.h"

namespace quillmere {
namespace {

constexpr int kWidth = 1100;
constexpr int kHeight = 1000;
constexpr size_t kPicture = size_t{4} * kWidth * kHeight;

QImage pictureAt(uint8_t* bytes) {
  return {bytes, kWidth, kHeight, qsizetype{4} * kWidth, QImage::Format_RGB32};
}

TEST(SharedPixels, PassAPictureOnWithoutACopy) {
  SharedPixels pixels;
  uint8_t* bytes = pixels.take(kPicture + 5000);
  ASSERT_NE(bytes, nullptr);
  std::memset(bytes, 7, kPicture + 5000);
  EXPECT_TRUE(pixels.hold(pictureAt(bytes)));
  const auto memory = pixels.sealed(kPicture, {"one ", "two"});
  ASSERT_TRUE(memory);
  const auto mapped = SealedMemory::mapped(*memory, kPicture + 7);
  ASSERT_TRUE(mapped) << "sealed, and not longer than what it says";
  EXPECT_EQ(mapped->bytes().substr(0, kPicture), std::string(kPicture, 7));
  EXPECT_EQ(mapped->bytes().substr(kPicture), "one two");
  EXPECT_EQ(::mmap(nullptr, 4, PROT_WRITE, MAP_SHARED, memory->number(), 0), MAP_FAILED);
}

TEST(SharedPixels, NeedNoThread) {
  const auto take = [] {
    const rlimit none{0, 0};
    if (!testing::becomeOrdinaryUser() || ::setrlimit(RLIMIT_NPROC, &none) != 0) return testing::kCannotSetUp;
    SharedPixels pixels;
    uint8_t* bytes = pixels.take(kPicture);
    if (!bytes) return 1;
    std::memset(bytes, 7, kPicture);
    return pixels.sealed(kPicture, {}) ? 0 : 2;
  };
  EXPECT_EQ(testing::exitCodeOfChild(take), 0);
}

TEST(SharedPixels, HoldNoOtherPicture) {
  SharedPixels pixels;
  EXPECT_FALSE(pixels.hold(QImage()));
  uint8_t* bytes = pixels.take(kPicture);
  ASSERT_NE(bytes, nullptr);
  EXPECT_FALSE(pixels.hold(pictureAt(bytes).copy()));
  EXPECT_FALSE(pixels.hold(pictureAt(bytes + 4 * kWidth).copy()));
  EXPECT_FALSE(pixels.sealed(kPicture + 1, {})) << "more than there is";
}

TEST(SharedPixels, AreTakenOnceAndForALargePicture) {
  SharedPixels small;
  EXPECT_EQ(small.take(SharedPixels::kLeast - 1), nullptr);
  EXPECT_FALSE(small.sealed(0, {}));
  SharedPixels pixels;
  EXPECT_NE(pixels.take(kPicture), nullptr);
  EXPECT_EQ(pixels.take(kPicture), nullptr);
}

TEST(SharedPixels, GoWithoutHavingBeenPassedOn) {
  SharedPixels pixels;
  EXPECT_NE(pixels.take(64 * SharedPixels::kLeast), nullptr);
}

}  // namespace
}  // namespace quillmere
