#include <benchmark/benchmark.h>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>

#include "Limits.h"
#include "PaintedDesktop.h"
#include "detection/WindowScan.h"
#include "formats/ImageFile.h"
#include "formats/ImageOperations.h"
#include "foundation/ManualExecutor.h"
#include "platform/linux/reading/ReaderPool.h"
#include "reading/ScreenPicture.h"

using namespace quillmere;

namespace {

constexpr QSize kLarge(5120, 2880);
constexpr int kThumbnail = 600;
const std::atomic<bool> kNever = false;

struct World {
  explicit World(const QString& folder) : large(FileURL::fromPath(folder + QStringLiteral("/large.png"))) {
    paintedDesktop(kLarge, 1).save(large.displayPath());
  }
  FileURL large;
  ManualExecutor executor;
  std::shared_ptr<ReaderPool> readers = std::make_shared<ReaderPool>(executor, QUILLMERE_READER);
};
const World* world = nullptr;

/// As whoever shows it does: pages that nobody has touched cost nothing yet.
void touch(const QImage& image) {
  constexpr qsizetype kPage = 4096;
  unsigned sum = 0;
  for (qsizetype at = 0; at < image.sizeInBytes(); at += kPage) sum += image.constBits()[at];
  benchmark::DoNotOptimize(sum);
}

void LoadHere(benchmark::State& state) {
  for (auto _ : state) touch(ImageOperations::loadImage(world->large).value());
}
void LoadByReader(benchmark::State& state) {
  for (auto _ : state) touch(*world->readers->picture(world->large, kNever));
}
void ThumbnailHere(benchmark::State& state) {
  for (auto _ : state) touch(pictureForScreen(ImageFile::thumbnail(world->large, kThumbnail)));
}
void ThumbnailByReader(benchmark::State& state) {
  for (auto _ : state) touch(*world->readers->thumbnail(world->large, kThumbnail, kNever));
}
void ScanHere(benchmark::State& state) {
  for (auto _ : state) touch(ImageOperations::scanWindowsNow(world->large).value().image);
}
void ScanByReader(benchmark::State& state) {
  for (auto _ : state) touch(world->readers->windows(world->large, {}, kNever).value().image);
}
void HeadHere(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ImageFile::head(world->large));
}
void HeadByReader(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(world->readers->head(world->large));
}
/// What the first picture of all waits for.
void StartOfAReader(benchmark::State& state) {
  const std::atomic<bool> never = false;
  for (auto _ : state) benchmark::DoNotOptimize(ReaderProcess::start(QUILLMERE_READER, "pictures", {}, never));
}
BENCHMARK(LoadHere)->UseRealTime();
BENCHMARK(LoadByReader)->UseRealTime();
BENCHMARK(ThumbnailHere)->UseRealTime();
BENCHMARK(ThumbnailByReader)->UseRealTime();
BENCHMARK(ScanHere)->UseRealTime();
BENCHMARK(ScanByReader)->UseRealTime();
BENCHMARK(HeadHere)->UseRealTime();
BENCHMARK(HeadByReader)->UseRealTime();
BENCHMARK(StartOfAReader)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const QTemporaryDir folder;
  const World made(folder.path());
  world = &made;
  const int result = runWithLimits(argc, argv,
                                   {{"LoadByReader", "LoadHere", 1.1},
                                    {"ThumbnailByReader", "ThumbnailHere", 1.1},
                                    {"ScanByReader", "ScanHere", 1.1}},
                                   {});
  made.readers->end();
  return result;
}
