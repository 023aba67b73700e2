#include "support/FaultyCalls.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <QtCore/QFile>
#include <atomic>
#include <filesystem>
#include <thread>

#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class FaultyCallsTest : public ::testing::Test {
 protected:
  /// The system's answer to opening a file for reading.
  static int errorOfOpening(const FileURL& url) {
    errno = 0;
    const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC);
    const int error = errno;
    if (descriptor >= 0) ::close(descriptor);
    return descriptor >= 0 ? 0 : error;
  }

  TemporaryFolder folder;
  FileURL file = folder.file("a.txt");
};

TEST_F(FaultyCallsTest, NothingFailsUntilToldAndOnlyOnce) {
  writeFile(file, "text");
  FaultyCalls faults(folder.url());
  EXPECT_EQ(errorOfOpening(file), 0);
  faults.failOnly(Call::open, 2, EIO);
  EXPECT_EQ(errorOfOpening(file), EIO);
  EXPECT_EQ(errorOfOpening(file), 0);
}

TEST_F(FaultyCallsTest, OutsideTheFolderNothingCountsOrFails) {
  const TemporaryFolder elsewhere;
  writeFile(elsewhere.file("a.txt"), "text");
  FaultyCalls faults(folder.url());
  faults.failEvery(Call::open, EIO);
  EXPECT_EQ(errorOfOpening(elsewhere.file("a.txt")), 0);
  EXPECT_EQ(errorOfOpening(FileURL::fromPath(folder.path() + "-not")), ENOENT);
  EXPECT_TRUE(faults.made().empty());
}

TEST_F(FaultyCallsTest, EverythingWorksAgainAfterwards) {
  writeFile(file, "text");
  {
    FaultyCalls faults(folder.url());
    faults.failEvery(Call::open, EIO);
    EXPECT_EQ(errorOfOpening(file), EIO);
  }
  EXPECT_EQ(errorOfOpening(file), 0);
}

TEST_F(FaultyCallsTest, CallsAreCountedByKindWithTheirPaths) {
  const auto made = callsMade(folder.url(), [&] {
    writeFile(file, "text");
    EXPECT_EQ(::rename(file.c_str(), folder.file("b.txt").c_str()), 0);
  });
  std::vector<std::string> words;
  for (const auto& call : made) words.push_back(nameOf(call.call) + " " + call.path.substr(folder.path().size()));
  EXPECT_THAT(words, ::testing::ElementsAre("open /a.txt", "write /a.txt", "close /a.txt", "rename /a.txt"));
}

TEST_F(FaultyCallsTest, RelativePathsCountByTheirFolder) {
  writeFile(file, "text");
  const int descriptor = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_GE(descriptor, 0);
  {
    FaultyCalls faults(folder.url());
    faults.failOnly(Call::unlink, 1, EROFS);
    EXPECT_EQ(::unlinkat(descriptor, "a.txt", 0), -1);
    EXPECT_EQ(errno, EROFS);
    ASSERT_EQ(faults.made().size(), 1u);
    EXPECT_EQ(faults.made()[0].path, file.path());
  }
  ::close(descriptor);
}

TEST_F(FaultyCallsTest, LibrariesCallTheseFunctionsToo) {
  writeFile(file, "text");
  const auto count = [&](const std::function<void()>& operation) { return callsMade(folder.url(), operation).size(); };
  EXPECT_GT(count([&] { EXPECT_TRUE(QFile::exists(file.displayPath())); }), 0u) << "Qt";
  EXPECT_GT(count([&] { EXPECT_TRUE(std::filesystem::exists(file.path())); }), 0u) << "the standard library";
  EXPECT_GT(count([&] { EXPECT_TRUE(g_file_test(file.c_str(), G_FILE_TEST_EXISTS)); }), 0u) << "GLib";
  EXPECT_GT(count([&] {
              GFile* object = g_file_new_for_path(file.c_str());
              EXPECT_TRUE(g_file_query_exists(object, nullptr));
              g_object_unref(object);
            }),
            0u)
      << "GIO";
}

TEST_F(FaultyCallsTest, AWriteThatFallsShortTakesHalf) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_GE(descriptor, 0);
  {
    FaultyCalls faults(folder.url());
    faults.shorten(1);
    EXPECT_EQ(::write(descriptor, "12345678", 8), 4);
    EXPECT_EQ(::write(descriptor, "5678", 4), 4);
  }
  ::close(descriptor);
  EXPECT_EQ(readBytes(file), "12345678");
}

TEST_F(FaultyCallsTest, AFailedCloseHasClosed) {
  writeFile(file, "text");
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  FaultyCalls faults(folder.url());
  faults.failOnly(Call::close, 1, EINTR);
  EXPECT_EQ(::close(descriptor), -1);
  EXPECT_EQ(errno, EINTR);
  EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1) << "still open";
}

TEST_F(FaultyCallsTest, TheProcessEndsBeforeOrAfterTheCall) {
  using Moment = FaultyCalls::Moment;
  for (const auto moment : {Moment::before, Moment::after}) {
    writeFile(file, "text");
    EXPECT_EQ(exitCodeOfChild([&] {
                FaultyCalls faults(folder.url());
                faults.endProcess(1, moment);
                ::unlink(file.c_str());
                return 0;
              }),
              FaultyCalls::kEnded);
    EXPECT_EQ(std::filesystem::exists(file.path()), moment == Moment::before);
  }
}

TEST_F(FaultyCallsTest, EveryThreadsCallsCount) {
  writeFile(file, "text");
  constexpr int kThreads = 4;
  constexpr int kCalls = 200;
  FaultyCalls faults(folder.url());
  faults.failOnly(Call::access, kThreads * kCalls / 2, EIO);
  std::atomic<int> failed = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int call = 0; call < kCalls; ++call) failed += ::access(file.c_str(), R_OK) == 0 ? 0 : 1;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(faults.made().size(), static_cast<size_t>(kThreads * kCalls));
  EXPECT_EQ(failed, 1);
}

}  // namespace
}  // namespace quillmere::testing
