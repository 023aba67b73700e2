#include <unistd.h>
#include <QtGui/QImage>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "foundation/ManualExecutor.h"
#include "platform/linux/reading/ReaderPool.h"

using namespace quillmere;

namespace {

const std::atomic<bool> kNever = false;
/// Tells the reader to send a picture of 8 by 8, and all that goes with it.
constexpr std::string_view kWell("\x01\x00\x02\0\0\0\0\0\0\0\0\0\0\0\0\x80\0\0", 18);

FileURL place() {
  return FileURL::fromPath("/dev/shm/quillmere-fuzz-" + std::to_string(::getpid()));
}
FileURL written(std::string_view script) {
  FileURL url = place();
  ::unlink(url.c_str());
  std::ofstream(url.path(), std::ios::binary) << script;
  return url;
}

/// Every byte of it is there, and none is beyond it.
uint64_t looked(const QImage& image) {
  uint64_t sum = 0;
  for (int y = 0; y < image.height(); ++y) {
    const uchar* row = image.constScanLine(y);
    for (qsizetype i = 0; i < image.bytesPerLine(); ++i) sum += row[i];
  }
  for (const QRgb colour : image.colorTable()) sum += colour;
  return sum + static_cast<uint64_t>(image.convertToFormat(QImage::Format_ARGB32).sizeInBytes());
}

void ask(ReaderPool& pool, uint8_t what, std::string_view script) {
  constexpr int kSmall = 8;
  switch (what % 8) {
    case 0:
      if (const auto head = pool.head(written(script)); head && head->size.isEmpty()) std::abort();
      return;
    case 1:
      pool.failureOf(written(script));
      return;
    case 2:
      if (const auto picture = pool.picture(written(script), kNever)) looked(*picture);
      return;
    case 3: {
      const auto small = pool.thumbnail(written(script), kSmall, kNever);
      if (small && (small->width() > kSmall || small->height() > kSmall)) std::abort();
      if (small) looked(*small);
      return;
    }
    case 4:
      if (const auto small = pool.thumbnail(script, kSmall)) looked(*small);
      return;
    case 5: {
      const auto scan = pool.windows(written(script), {}, kNever);
      if (!scan) return;
      looked(scan->image);
      for (const auto& window : scan->windows) {
        if (!QRectF(scan->image.rect()).contains(window.frame) && !window.frame.isEmpty()) std::abort();
      }
      return;
    }
    case 6:
      pool.text(written(script), kNever);
      return;
    default: {
      QImage image(static_cast<int>(script.size() / 4 * 4 + 4), 1, QImage::Format_Grayscale8);
      image.fill(0);
      std::copy(script.begin(), script.end(), image.bits());
      static_cast<void>(pool.encoded(image, PictureFormat::png));
      return;
    }
  }
}

size_t openDescriptors() {
  size_t count = 0;
  for ([[maybe_unused]] const auto& one : std::filesystem::directory_iterator("/proc/self/fd")) ++count;
  return count;
}

}  // namespace

/// A reader that is on its way to be started has what it is started with in a place that nobody sees for a moment.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): the leak checker asks by this name
extern "C" const char* __lsan_default_suppressions() {
  return "leak:posix_spawn_file_actions\n";
}

/// The input is what is asked, and in the place of a picture what the reader makes of it: not the truth. The program
/// goes on, keeps nothing open, and has the next picture read.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t kMost = 4096;
  if (size < 2 || size > kMost) return 0;
  static auto* executor = new ManualExecutor;
  static const ReaderProcess::Patience patience{
      .file = std::chrono::seconds(10), .work = std::chrono::seconds(10), .texts = std::chrono::seconds(10)};
  static const auto pool =
      std::make_shared<ReaderPool>(*executor, QUILLMERE_LYING_READER, ReaderPool::Size{1, 1}, patience);
  ask(*pool, data[0], std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
  // What it says too early may be taken for an answer, or end it; some time it has no more to say.
  QImage picture;
  for (int attempt = 0; attempt < 16 && picture.isNull(); ++attempt) {
    auto read = pool->picture(written(kWell), kNever);
    if (read && read->size() == QSize(8, 8)) picture = *std::move(read);
  }
  if (picture.isNull()) std::abort();
  static const size_t usual = openDescriptors();
  // Two readers, and those that are on their way out.
  constexpr size_t kMore = 12;
  if (openDescriptors() > usual + kMore) std::abort();
  executor->drain();
  ::unlink(place().c_str());
  return 0;
}
