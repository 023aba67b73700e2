#include <benchmark/benchmark.h>
#include <QtGui/QGuiApplication>

#include "Limits.h"
#include "LiveWorld.h"
#include "PaintedDesktop.h"
#include "formats/ImageOperations.h"

// How long the crop editor waits for its picture.
using namespace quillmere;

namespace {

LiveWorld* world = nullptr;

/// The floor: the picture alone, on this thread.
void LoadImage(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ImageOperations::loadImage(world->shot(1)));
}

/// As the editor has it done, with the looks at the file before it and the ways between the threads.
void open(benchmark::State& state, bool detectsWindows) {
  ScreenshotItem item;
  item.url = world->shot(1);
  for (auto _ : state) {
    const auto opening = world->model().openPicture(item, detectsWindows);
    while (!opening.isDone()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const auto opened = opening.await_resume();
    if (!opened || opened->windows.empty() == detectsWindows) state.SkipWithError("open");
  }
}
void OpenPicture(benchmark::State& state) {
  open(state, false);
}
void OpenPictureWithWindows(benchmark::State& state) {
  open(state, true);
}
BENCHMARK(LoadImage)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(OpenPicture)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(OpenPictureWithWindows)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  LiveWorld live;
  if (!paintedDesktop(QSize(5120, 2880), 1).save(live.shot(1).displayPath())) return 1;
  live.makeModel({});
  world = &live;
  return runWithLimits(argc, argv, {{"OpenPicture", "LoadImage", 1.15}, {"OpenPictureWithWindows", "LoadImage", 1.6}},
                       {});
}
