#include "platform/linux/reading/ReaderPool.h"

#include <sys/stat.h>
#include <QtGui/QColorSpace>
#include <QtGui/QPainter>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <vector>

#include "fakes/DecodedPictures.h"
#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ImageOperations::OperationError;
using std::chrono::milliseconds;

class ReaderPoolTest : public ::testing::Test {
 protected:
  ~ReaderPoolTest() override {
    ::unsetenv("QUILLMERE_HOSTILE");
    ::unsetenv("QUILLMERE_HOSTILE_MARK");
  }

  std::shared_ptr<ReaderPool> readers() { return std::make_shared<ReaderPool>(executor, QUILLMERE_READER); }
  /// Who say that they read, and behave as `kind` says.
  std::shared_ptr<ReaderPool> hostile(const char* kind, ReaderProcess::Patience patience = {}) {
    ::setenv("QUILLMERE_HOSTILE", kind, 1);
    return std::make_shared<ReaderPool>(executor, QUILLMERE_HOSTILE_READER, ReaderPool::Size(), patience);
  }
  /// A picture with a window and a word in it.
  FileURL drawn(const char* name = "shot.png") {
    QImage image(640, 480, QImage::Format_RGB32);
    image.fill(QColor(120, 120, 120));
    QPainter painter(&image);
    painter.fillRect(100, 80, 400, 300, Qt::white);
    painter.setPen(Qt::black);
    painter.drawRect(100, 80, 399, 299);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(20);
    painter.setFont(font);
    painter.drawText(150, 150, QStringLiteral("Quarterly report"));
    painter.end();
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const FileURL url = home.file(name);
    EXPECT_TRUE(image.save(url.displayPath()));
    return url;
  }
  static QImage imageIn(PictureReading::Picture picture) { return picture ? *std::move(picture) : QImage(); }
  QImage read(ReaderPool& pool, const FileURL& url) { return imageIn(pool.picture(url, never)); }
  /// Why it wasn't.
  std::optional<PictureError> reason(ReaderPool& pool, const FileURL& url) {
    const auto picture = pool.picture(url, never);
    return picture ? std::nullopt : std::optional(picture.reason());
  }

  TemporaryFolder home;
  ManualExecutor executor;
  DecodedPictures decoded;
  const std::atomic<bool> never = false;
};

TEST_F(ReaderPoolTest, ReadsWhatTheDecodersRead) {
  const auto pool = readers();
  for (const char* name : {"a.png", "b.jpg"}) {
    const FileURL url = drawn(name);
    EXPECT_EQ(pool->head(url), decoded.head(url));
    EXPECT_EQ(pool->failureOf(url), std::nullopt);
    const QImage picture = read(*pool, url);
    const QImage expected = imageIn(decoded.picture(url, never));
    EXPECT_EQ(picture, expected);
    EXPECT_EQ(picture.colorSpace(), expected.colorSpace());
    const QImage thumbnail = imageIn(decoded.thumbnail(url, 100, never));
    EXPECT_EQ(imageIn(pool->thumbnail(url, 100, never)), thumbnail);
    EXPECT_EQ(imageIn(pool->thumbnail(readBytes(url), 100)), thumbnail);
  }
}

/// Large enough that it is made where it is passed on, whatever becomes of it there.
TEST_F(ReaderPoolTest, ReadsLargePicturesOfEachKindAsTheyAre) {
  const auto pool = readers();
  for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_Grayscale8}) {
    QImage image(1500, 1200, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
      auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
      for (int x = 0; x < image.width(); ++x) row[x] = qRgba(x % 256, y % 256, (x * y) % 256, 255 - x % 3);
    }
    image = image.convertToFormat(format);
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const FileURL url = home.file("large.png");
    ASSERT_TRUE(image.save(url.displayPath()));
    const QImage picture = read(*pool, url);
    const QImage expected = imageIn(decoded.picture(url, never));
    EXPECT_EQ(picture, expected) << format;
    EXPECT_EQ(picture.colorSpace(), expected.colorSpace()) << format;
    const auto scan = pool->windows(url, {}, never);
    ASSERT_TRUE(scan) << format;
    EXPECT_EQ(scan->image, expected) << format;
    std::string bytes = readBytes(url);
    bytes[bytes.size() / 2] ^= 1;
    writeFile(url, bytes);
    EXPECT_EQ(reason(*pool, url), PictureError::damaged) << format;
  }
}

TEST_F(ReaderPoolTest, FindsTheSameWindows) {
  const auto pool = readers();
  const FileURL url = drawn();
  const auto scan = pool->windows(url, {}, never);
  const auto expected = decoded.windows(url, {}, never);
  ASSERT_TRUE(scan && expected);
  EXPECT_EQ(scan->image, expected->image);
  ASSERT_FALSE(expected->windows.empty());
  EXPECT_EQ(scan->windows, expected->windows);
}

TEST_F(ReaderPoolTest, KnowsTheSameWindowsAndFindsThemAgain) {
  const auto pool = readers();
  const FileURL url = drawn();
  const QSize size = imageIn(decoded.picture(url, never)).size();
  WindowStack state;
  state.root = QSize(4000, 3000);
  state.monitors = {QRect(QPoint(), state.root)};
  WindowStack::Window window;
  window.frame = QRect(QPoint(17, 23), size);
  state.windows.push_back(window);
  const auto known = pool->knownWindows(url, {state}, Date{1}, never);
  ASSERT_TRUE(known);
  EXPECT_EQ(known, decoded.knownWindows(url, {state}, Date{1}, never));
  EXPECT_EQ(known->kind, CaptureKind::window);
  const auto scan = pool->windows(url, known, never);
  ASSERT_TRUE(scan);
  EXPECT_EQ(scan->windows, decoded.windows(url, known, never)->windows);
  ASSERT_EQ(scan->windows.size(), 1u);
  EXPECT_EQ(scan->windows[0].frame, QRectF(QPointF(), size));
  EXPECT_TRUE(scan->windows[0].isInFront);
  EXPECT_FALSE(pool->knownWindows(url, {WindowStack()}, Date{1}, never));
  EXPECT_FALSE(pool->knownWindows(home.file("nowhere.png"), {state}, Date{1}, never));
}

TEST_F(ReaderPoolTest, ReadsTheText) {
  EXPECT_EQ(readers()->text(drawn(), never), QStringLiteral("Quarterly report"));
}

TEST_F(ReaderPoolTest, EncodesInEachFormatThatIsWritten) {
  const auto pool = readers();
  const QImage image = imageIn(decoded.picture(drawn(), never));
  for (const PictureFormat format : kPictureFormats) {
    if (!traits(format).isWritable) continue;
    const auto bytes = pool->encoded(image, format);
    ASSERT_TRUE(bytes) << static_cast<int>(format);
    // Of HEIC no two are alike.
    if (format != PictureFormat::heif) {
      EXPECT_EQ(*bytes, *decoded.encoded(image, format)) << static_cast<int>(format);
    }
    EXPECT_EQ(imageIn(pool->thumbnail(bytes->toStdString(), 1000)).size(), image.size()) << static_cast<int>(format);
  }
  EXPECT_EQ(pool->encoded(QImage(), PictureFormat::png).reason(), OperationError::encoding);
}

TEST_F(ReaderPoolTest, SaysWhatCannotBeRead) {
  const auto pool = readers();
  const FileURL text = home.file("text.png");
  writeFile(text, "no picture");
  EXPECT_EQ(pool->head(text), std::nullopt);
  EXPECT_EQ(pool->failureOf(text), PictureError::noPicture);
  EXPECT_EQ(reason(*pool, text), PictureError::noPicture);
  EXPECT_EQ(pool->windows(text, {}, never).reason(), OperationError::unreadable);
  EXPECT_EQ(pool->text(text, never), std::nullopt);
  EXPECT_EQ(pool->thumbnail(std::string_view("no picture"), 10).reason(), PictureError::noPicture);
  EXPECT_EQ(pool->running(), 2u) << "which harms no reader";
}

TEST_F(ReaderPoolTest, SaysWhyAPictureIsNotRead) {
  const auto pool = readers();
  for (const char* name : {"a.png", "b.jpg"}) {
    const FileURL url = drawn(name);
    const std::string whole = readBytes(url);
    writeFile(url, whole.substr(0, 60));
    EXPECT_EQ(reason(*pool, url), PictureError::damaged) << name;
    EXPECT_EQ(pool->failureOf(url), PictureError::damaged) << name;
    EXPECT_EQ(pool->windows(url, {}, never).reason(), OperationError::unreadable) << name;
    writeFile(url, whole + std::string(40'000'000, 'x'));
    EXPECT_EQ(reason(*pool, url), PictureError::tooCostly) << name;
    EXPECT_EQ(pool->failureOf(url), PictureError::tooCostly) << name;
    EXPECT_EQ(pool->thumbnail(url, 100, never).reason(), PictureError::tooCostly) << name;
    EXPECT_EQ(pool->windows(url, {}, never).reason(), OperationError::tooCostly) << name;
    EXPECT_EQ(pool->text(url, never), std::nullopt) << name;
  }
  EXPECT_EQ(reason(*pool, home.file("missing.png")), PictureError::unreadable);
}

TEST_F(ReaderPoolTest, JudgesManyAsItJudgesEach) {
  const auto pool = readers();
  const std::string whole = readBytes(drawn());
  const std::array contents{whole, whole.substr(0, 60), std::string("no picture"), std::string()};
  std::vector<FileURL> urls{home.file("missing.png"), home.url()};
  for (size_t i = 0; i < 2 * ReaderMessages::kMostFiles; ++i) {
    urls.push_back(home.file(std::to_string(i) + ".png"));
    writeFile(urls.back(), contents[i % contents.size()]);
  }
  urls.push_back(home.file("costly.png"));
  writeFile(urls.back(), whole + std::string(40'000'000, 'x'));
  QImage large(4200, 4200, QImage::Format_RGB32);
  large.fill(Qt::red);
  urls.push_back(home.file("large.png"));
  ASSERT_TRUE(large.save(urls.back().displayPath()));
  const auto failures = pool->failuresOf(urls);
  EXPECT_EQ(pool->running(), 1u);
  ASSERT_EQ(failures.size(), urls.size());
  for (size_t i = 0; i < urls.size(); ++i) EXPECT_EQ(failures[i], pool->failureOf(urls[i])) << urls[i].path();
  EXPECT_EQ(failures[2], std::nullopt);
  EXPECT_EQ(failures[3], PictureError::damaged);
  EXPECT_EQ(failures.back(), std::nullopt);
}

TEST_F(ReaderPoolTest, AsksAloneWhereManyGetNoAnswer) {
  const std::vector<FileURL> urls{drawn("a.png"), drawn("b.png"), drawn("c.png")};
  ReaderProcess::Patience impatience;
  impatience.work = milliseconds(1);
  impatience.many = milliseconds(1);
  for (const auto& [kind, patience] : {std::pair("hangs", impatience), {"dies", ReaderProcess::Patience()}}) {
    const auto pool = hostile(kind, patience);
    const auto alone = hostile(kind, patience);
    const auto failures = pool->failuresOf(urls);
    for (size_t i = 0; i < urls.size(); ++i) EXPECT_EQ(failures[i], alone->failureOf(urls[i])) << kind;
    EXPECT_EQ(pool->running(), 0u) << kind;
  }
  for (const char* kind : {"garbage", "well", "wrong-verdicts"}) {
    const auto pool = hostile(kind);
    for (const auto& failure : pool->failuresOf(urls)) EXPECT_NE(failure, std::nullopt) << kind;
  }
}

TEST_F(ReaderPoolTest, BlamesNoPictureForAReaderThatEndedOverMany) {
  const auto pool = hostile("dies-once");
  ::setenv("QUILLMERE_HOSTILE_MARK", home.file("mark").c_str(), 1);
  const std::vector<FileURL> urls{drawn("a.png"), drawn("b.png")};
  pool->failuresOf(urls);
  for (const FileURL& url : urls) EXPECT_FALSE(read(*pool, url).isNull()) << "it was to blame for nothing";
}

TEST_F(ReaderPoolTest, OpensNothingButFiles) {
  const auto pool = readers();
  const FileURL link = home.file("link.png");
  std::filesystem::create_symlink(drawn().path(), link.path());
  const FileURL pipe = home.file("pipe.png");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const FileURL& url : {link, pipe, home.url(), home.file("missing.png")}) {
    EXPECT_TRUE(read(*pool, url).isNull()) << url.path();
  }
  EXPECT_EQ(pool->running(), 0u) << "nobody was asked";
}

TEST_F(ReaderPoolTest, EndsItsReadersWhenNobodyNeedsThemForAWhile) {
  const auto pool = readers();
  const FileURL url = drawn();
  EXPECT_EQ(pool->running(), 0u);
  EXPECT_FALSE(read(*pool, url).isNull());
  EXPECT_EQ(pool->running(), 1u);
  executor.drain();
  executor.advance(ReaderPool::kWarm - seconds(1));
  EXPECT_FALSE(read(*pool, url).isNull());
  executor.drain();
  executor.advance(seconds(2));
  EXPECT_EQ(pool->running(), 1u) << "the last use counts";
  executor.advance(ReaderPool::kWarm);
  EXPECT_EQ(pool->running(), 0u);
  EXPECT_FALSE(read(*pool, url).isNull()) << "one is started again";
}

TEST_F(ReaderPoolTest, AsksOnceMoreWhenAReaderDies) {
  const auto pool = hostile("dies-once");
  ::setenv("QUILLMERE_HOSTILE_MARK", home.file("mark").c_str(), 1);
  EXPECT_EQ(read(*pool, drawn()).size(), QSize(40, 30));
}

TEST_F(ReaderPoolTest, BlamesNoPictureForAReaderThatEndedOtherwise) {
  const auto pool = hostile("leaves");
  const FileURL url = drawn();
  for (int i = 0; i < 4; ++i) EXPECT_FALSE(read(*pool, url).isNull()) << i;
}

TEST_F(ReaderPoolTest, GivesUpAPictureThatKillsTwiceUntilItChanges) {
  const auto killing = hostile("dies");
  const FileURL url = drawn();
  EXPECT_EQ(reason(*killing, url), PictureError::tooCostly);
  EXPECT_EQ(killing->running(), 0u);
  ::setenv("QUILLMERE_HOSTILE", "well", 1);
  EXPECT_EQ(reason(*killing, url), PictureError::tooCostly) << "nobody is asked about it";
  EXPECT_EQ(killing->running(), 0u);
  EXPECT_FALSE(read(*killing, drawn("other.png")).isNull());
  writeFile(url, readBytes(url) + "changed");
  EXPECT_FALSE(read(*killing, url).isNull());
}

TEST_F(ReaderPoolTest, EndsAReaderThatTakesTooLong) {
  ReaderProcess::Patience patience;
  patience.work = milliseconds(1);
  const auto pool = hostile("hangs", patience);
  const FileURL url = drawn();
  EXPECT_EQ(reason(*pool, url), PictureError::unreadable) << "another time it may be quicker";
  EXPECT_EQ(pool->running(), 0u);
  EXPECT_EQ(reason(*pool, url), PictureError::tooCostly);
  ::setenv("QUILLMERE_HOSTILE", "well", 1);
  EXPECT_EQ(reason(*pool, url), PictureError::tooCostly) << "it has been too much for two";
}

TEST_F(ReaderPoolTest, DoesNotWaitForEverForAFile) {
  ReaderProcess::Patience patience;
  patience.file = milliseconds(1);
  EXPECT_TRUE(read(*hostile("hangs-before", patience), drawn()).isNull());
}

TEST_F(ReaderPoolTest, AsksAnotherWhenAReaderIsHalted) {
  for (const char* kind : {"is-halted-once", "is-halted-at-work-once"}) {
    const auto pool = hostile(kind);
    ::setenv("QUILLMERE_HOSTILE_MARK", home.file(kind).c_str(), 1);
    EXPECT_EQ(read(*pool, drawn()).size(), QSize(40, 30)) << kind;
    EXPECT_EQ(pool->running(), 1u) << kind;
  }
}

TEST_F(ReaderPoolTest, WhereNoMoreCanBeStartedThoseThatRunHaveToDo) {
  const FileURL program = home.file("reader");
  std::filesystem::copy_file(QUILLMERE_READER, program.path());
  const auto pool = std::make_shared<ReaderPool>(executor, program.path());
  const FileURL url = drawn();
  EXPECT_FALSE(read(*pool, url).isNull());
  std::filesystem::remove(program.path());
  std::vector<std::thread> threads;
  std::atomic<int> whole = 0;
  for (int i = 0; i < 6; ++i) {
    threads.emplace_back([&] { whole += pool->failureOf(url) == std::nullopt && !read(*pool, url).isNull(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(whole, 6);
  EXPECT_EQ(pool->running(), 1u);
}

TEST_F(ReaderPoolTest, TellsAReaderToStopAndKeepsIt) {
  const auto pool = hostile("stops-when-told");
  std::atomic<bool> isStopped = false;
  std::thread stopping([&] { isStopped = true; });
  EXPECT_FALSE(pool->picture(drawn(), isStopped));
  stopping.join();
  EXPECT_LE(pool->running(), 1u);
}

TEST_F(ReaderPoolTest, EndsAReaderThatDoesNotStop) {
  ReaderProcess::Patience patience;
  patience.stop = milliseconds(1);
  const auto pool = hostile("hangs", patience);
  std::atomic<bool> isStopped = false;
  std::thread stopping([&] { isStopped = true; });
  const FileURL url = drawn();
  EXPECT_EQ(pool->picture(url, isStopped).reason(), PictureError::unreadable);
  stopping.join();
  EXPECT_EQ(pool->running(), 0u);
  ::setenv("QUILLMERE_HOSTILE", "well", 1);
  EXPECT_FALSE(read(*pool, url).isNull()) << "the picture is not to blame";
}

TEST_F(ReaderPoolTest, BelievesNothing) {
  for (const char* kind : {"garbage", "begins-twice", "unsealed", "short", "long", "without-memory", "too-large",
                           "too-much-beside", "unknown-reason"}) {
    const auto pool = hostile(kind);
    EXPECT_TRUE(read(*pool, drawn()).isNull()) << kind;
    EXPECT_EQ(pool->running(), 0u) << kind << ": it is not asked again";
  }
  EXPECT_FALSE(hostile("wrong-windows")->windows(drawn(), {}, never));
  EXPECT_FALSE(hostile("wrong-head")->head(drawn()));
  EXPECT_FALSE(hostile("well")->thumbnail(drawn(), 20, never)) << "larger than it was to be";
  EXPECT_EQ(hostile("well")->text(drawn(), never), std::nullopt) << "a picture was not asked for";
  EXPECT_NE(hostile("well")->failureOf(drawn()), std::nullopt) << "nor was it here";
}

TEST_F(ReaderPoolTest, WithoutAReaderNothingCanBeRead) {
  for (const char* kind : {"ends-at-once", "other-version"}) {
    EXPECT_TRUE(read(*hostile(kind), drawn()).isNull()) << kind;
  }
  ReaderProcess::Patience patience;
  patience.start = milliseconds(1);
  EXPECT_TRUE(read(*hostile("silent", patience), drawn()).isNull());
  const auto missing = std::make_shared<ReaderPool>(executor, home.file("missing").path());
  EXPECT_TRUE(read(*missing, drawn()).isNull());
  EXPECT_EQ(missing->failureOf(drawn()), std::nullopt) << "its person is asked about it all the same";
  missing->end();
  EXPECT_EQ(missing->failureOf(drawn()), PictureError::unreadable);
}

TEST_F(ReaderPoolTest, ReadsSeveralAtATime) {
  const auto pool = readers();
  const FileURL url = drawn();
  std::vector<std::thread> threads;
  std::atomic<int> read = 0;
  for (int i = 0; i < 6; ++i) {
    threads.emplace_back([&] { read += pool->thumbnail(url, 64, never).isDone(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(read, 6);
  EXPECT_LE(pool->running(), static_cast<size_t>(ReaderPool::Size().pictures));
}

TEST_F(ReaderPoolTest, WhatTakesAllMemoryIsReadAlone) {
  const auto pool = hostile("takes-all-memory");
  ::setenv("QUILLMERE_HOSTILE_MARK", home.file("busy").c_str(), 1);
  const std::array urls{drawn("a.png"), drawn("b.png"), drawn("c.png")};
  std::vector<std::thread> threads;
  threads.reserve(urls.size());
  for (const FileURL& url : urls) {
    threads.emplace_back([&] { EXPECT_FALSE(read(*pool, url).isNull()) << "two were at it at the same time"; });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(ReaderPoolTest, AtTheEndNobodyWaits) {
  const auto pool = hostile("hangs");
  const FileURL url = drawn();
  std::thread waiting([&] { EXPECT_TRUE(read(*pool, url).isNull()); });
  while (pool->running() == 0) std::this_thread::yield();
  pool->end();
  waiting.join();
  EXPECT_TRUE(read(*pool, url).isNull());
  EXPECT_EQ(pool->running(), 0u);
}

TEST_F(ReaderPoolTest, AtTheEndNobodyWaitsForAReaderThatStarts) {
  const auto pool = hostile("silent");
  const FileURL url = drawn();
  std::thread waiting([&] { EXPECT_TRUE(read(*pool, url).isNull()); });
  std::this_thread::sleep_for(milliseconds(50));
  pool->end();
  waiting.join();
  EXPECT_EQ(pool->running(), 0u);
}

TEST_F(ReaderPoolTest, IsFoundWhereItIsInstalledOrBuilt) {
  const FileURL program = home.file("bin");
  EXPECT_EQ(ReaderPool::programBesides(program), program.path() + "/libexec/quillmere/reader");
  const FileURL installed = home.file("libexec").appending("quillmere").appending("reader");
  std::filesystem::create_directories(installed.parent().path());
  writeFile(installed, "");
  EXPECT_EQ(ReaderPool::programBesides(program), installed.path());
}

}  // namespace
}  // namespace quillmere::testing
