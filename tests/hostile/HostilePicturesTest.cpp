#include "hostile/HostilePictures.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <QtGui/QImage>
#include <array>
#include <set>

#include "formats/ImageFile.h"
#include "hostile/HostileReading.h"
#include "hostile/PictureEntryPoints.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::exitCodeOfChild;
using testing::HostilePicture;
using testing::TemporaryFolder;

/// What it took to read one picture, and what came of it.
struct Reading {
  std::array<char, 64> outcome{};
  int64_t megabytes = 0;
  int64_t bytesRead = 0;
};

/// In a process of its own, that ends when it takes far more memory or work than any picture may.
int read(const FileURL& url, int result) {
#ifndef __SANITIZE_ADDRESS__
  constexpr rlim_t kMostMemory = rlim_t{3} << 30;
  const rlimit memory{kMostMemory, kMostMemory};
  // Not of addresses: where those run out, the decoder of HEIC waits for ever for a thread that it could not start.
  ::setrlimit(RLIMIT_DATA, &memory);
#endif
  constexpr rlim_t kMostSeconds = 60;  // of its own work, not of the clock
  const rlimit work{kMostSeconds, kMostSeconds};
  ::setrlimit(RLIMIT_CPU, &work);
  const testing::MemoryTaken taken;
  const int64_t readBefore = testing::numberIn("/proc/self/io", "rchar:");
  Reading reading;
  const std::string outcome = testing::outcomeOfPicture(url);
  reading.bytesRead = testing::numberIn("/proc/self/io", "rchar:") - readBefore;
  reading.megabytes = taken.megabytes();
  outcome.copy(reading.outcome.data(), reading.outcome.size() - 1);
  return ::write(result, &reading, sizeof reading) == sizeof reading ? 0 : 1;
}

class HostilePictures : public ::testing::TestWithParam<HostilePicture> {
 protected:
  TemporaryFolder folder;
};

TEST_P(HostilePictures, CostLittleAndGiveWhatTheyAre) {
  const HostilePicture& picture = GetParam();
  const FileURL url = folder.file("Screenshot from 2026-01-02 03-04-05.png");
  testing::writeHostile(picture, url);
  const FileURL result = folder.file("result");
  const int descriptor = ::open(result.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(exitCodeOfChild([&] { return read(url, descriptor); }), 0) << "it ended the process";
  ::close(descriptor);
  Reading reading;
  const std::string bytes = testing::readBytes(result);
  ASSERT_EQ(bytes.size(), sizeof reading);
  bytes.copy(reinterpret_cast<char*>(&reading), sizeof reading);
  EXPECT_EQ(std::string(reading.outcome.data()), picture.outcome);
#ifndef __SANITIZE_ADDRESS__
  EXPECT_LE(reading.megabytes, picture.mostMegabytes);
#endif
  EXPECT_LE(reading.bytesRead, picture.mostBytesRead);
}

INSTANTIATE_TEST_SUITE_P(Each, HostilePictures, ::testing::ValuesIn(testing::hostilePictures()),
                         [](const auto& one) { return testing::testName(one.param); });

TEST(HostilePicturesTest, AreThreeHundredOrMoreOfDifferentNames) {
  std::set<std::string> names;
  for (const auto& picture : testing::hostilePictures()) EXPECT_TRUE(names.insert(picture.name).second) << picture.name;
  EXPECT_GE(names.size(), 300U);
}

}  // namespace
}  // namespace quillmere
