#include <gtest/gtest.h>
#include <signal.h>
#include <QtGui/QImage>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <thread>

#include "formats/Pictures.h"
#include "foundation/ManualExecutor.h"
#include "hostile/HostileReading.h"
#include "hostile/PictureEntryPoints.h"
#include "platform/linux/reading/ReaderPool.h"
#include "support/TemporaryFolder.h"

// The same pictures, asked of the process that reads them for the program: what becomes of each is the same.
namespace quillmere {
namespace {

using testing::HostilePicture;
using testing::TemporaryFolder;

/// The processes that this one has started and that run, and the ticks of work that they took.
std::map<pid_t, int64_t> readers() {
  std::map<pid_t, int64_t> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream file(entry.path() / "stat");
    std::string line;
    if (!std::getline(file, line) || line.find(')') == std::string::npos) continue;
    // Behind the name: state, parent, and at the twelfth and thirteenth place the work in programs and in the kernel.
    std::istringstream words(line.substr(line.rfind(')') + 2));
    std::vector<std::string> fields;
    for (std::string word; words >> word;) fields.push_back(word);
    constexpr size_t kWork = 11;
    if (fields.size() <= kWork + 1 || fields[0] == "Z" || std::stoi(fields[1]) != ::getpid()) continue;
    found[std::stoi(entry.path().filename().string())] = std::stoll(fields[kWork]) + std::stoll(fields[kWork + 1]);
  }
  return found;
}
std::set<pid_t> numbers(const std::map<pid_t, int64_t>& processes) {
  std::set<pid_t> numbers;
  for (const auto& [number, work] : processes) numbers.insert(number);
  return numbers;
}

/// A reader of the program's own, and a picture that nothing is wrong with.
class ReadersAcross : public ::testing::Test {
 protected:
  ReadersAcross() { testing::writeFile(good, testing::encoded(testing::redAndBlue(64, 64), "PNG")); }

  /// All that is asked of a picture; told in the words of the corpus.
  std::string outcome() {
    const auto size = pool->pixelSize(url);
    const auto failure = pool->failureOf(url);
    std::string read;
    {
      const auto picture = pool->picture(url, never);
      read = picture ? testing::told(picture->size()) : testing::told(picture.reason());
      if (picture && size && picture->size() != *size) return "unsteady: header and picture";
    }
    constexpr int kSmall = 256;
    const auto small = pool->thumbnail(url, kSmall, never);
    const bool isRead = read.find('x') != std::string::npos;
    if ((small ? "" : testing::told(small.reason())) != (isRead ? "" : read)) return "unsteady: small";
    const auto scan = pool->windows(url, {}, never);
    if (scan.isDone() != isRead) return "unsteady: windows";
    constexpr size_t kMostWindows = 512;
    if (scan && scan->windows.size() > kMostWindows) return "unsteady: too many windows";
    return (size ? testing::told(*size) : "none") + ", " + read + ", " + (failure ? testing::told(*failure) : "whole");
  }
  bool readsTheGoodOne() { return pool->picture(good, never).isDone(); }

  TemporaryFolder folder;
  const FileURL url = folder.file("Screenshot from 2026-01-02 03-04-05.png");
  const FileURL good = folder.file("good.png");
  ManualExecutor executor;
  std::shared_ptr<ReaderPool> pool = std::make_shared<ReaderPool>(executor, QUILLMERE_READER);
  const std::atomic<bool> never = false;
};

class HostilePicturesAcross : public ReadersAcross, public ::testing::WithParamInterface<HostilePicture> {};

TEST_P(HostilePicturesAcross, AreTheSame) {
  testing::writeHostile(GetParam(), url);
  ASSERT_TRUE(readsTheGoodOne());
  const auto before = numbers(readers());
  // Of what is read, nothing comes to lie in the memory of who asks: it is only looked at where it is used.
#ifdef __SANITIZE_ADDRESS__
  // What it gives back, the checker keeps for a while.
  constexpr int64_t kMostMegabytes = 64;
#else
  constexpr int64_t kMostMegabytes = 4;
#endif
  const testing::MemoryTaken taken;
  EXPECT_EQ(outcome(), GetParam().outcome);
  EXPECT_LE(taken.megabytes(), kMostMegabytes);
  EXPECT_EQ(numbers(readers()), before) << "it ended its reader";
  EXPECT_TRUE(readsTheGoodOne());
}

TEST_F(ReadersAcross, WhatKillsTwoOfThemIsNotReadAgain) {
  // Takes them many seconds.
  testing::writeFile(url, testing::longJpeg());
  std::atomic<int> killed = 0;
  std::atomic<bool> isOver = false;
  std::thread killing([&] {
    constexpr int64_t kAtWork = 50;
    std::map<pid_t, int64_t> idle;
    while (!isOver) {
      for (const auto& [number, work] : readers()) {
        const int64_t before = idle.try_emplace(number, work).first->second;
        if (work - before < kAtWork || ::kill(number, SIGKILL) != 0) continue;
        ++killed;
        // Its end is seen by who asked before anybody else is killed.
        while (readers().contains(number)) std::this_thread::yield();
      }
    }
  });
  const auto picture = pool->picture(url, never);
  isOver = true;
  killing.join();
  EXPECT_GE(killed, 2) << "who was killed before it began is not counted";
  ASSERT_FALSE(picture);
  EXPECT_EQ(picture.reason(), PictureError::tooCostly);
  EXPECT_EQ(pool->failureOf(url), PictureError::tooCostly);
  EXPECT_EQ(pool->running(), 0u) << "nobody is asked any more";
  EXPECT_TRUE(readsTheGoodOne());
}

TEST_F(ReadersAcross, WhatTwoOfThemAreStoppedAtIsNotReadAgain) {
  testing::writeFile(url, testing::readBytes(good));
  ReaderProcess::Patience patience;
  patience.file = std::chrono::milliseconds(200);
  const auto patient =
      std::exchange(pool, std::make_shared<ReaderPool>(executor, QUILLMERE_READER, ReaderPool::Size(), patience));
  const auto others = numbers(readers());
  QImage pixel(1, 1, QImage::Format_RGB32);
  pixel.fill(Qt::white);
  for (const PictureError expected : {PictureError::unreadable, PictureError::tooCostly}) {
    // One that is there, and stands still before it is asked.
    while (pool->running() == 0) static_cast<void>(pool->encoded(pixel, PictureFormat::png));
    for (const auto& [number, work] : readers()) {
      if (!others.contains(number)) ::kill(number, SIGSTOP);
    }
    const auto picture = pool->picture(url, never);
    ASSERT_FALSE(picture);
    EXPECT_EQ(picture.reason(), expected);
    EXPECT_EQ(pool->running(), 0u);
  }
  EXPECT_EQ(pool->failureOf(url), PictureError::tooCostly);
  EXPECT_EQ(pool->running(), 0u) << "nobody is asked any more";
}

INSTANTIATE_TEST_SUITE_P(Each, HostilePicturesAcross, ::testing::ValuesIn(testing::hostilePictures()),
                         [](const auto& one) { return testing::testName(one.param); });

}  // namespace
}  // namespace quillmere
