#include <benchmark/benchmark.h>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

#include "Limits.h"
#include "PaintedDesktop.h"
#include "controls/PictureCanvas.h"
#include "foundation/ManualExecutor.h"

using namespace quillmere;

namespace {

constexpr QSize kPicture(7680, 4320);
constexpr QSize kView(1920, 1080);
/// Of the whole picture in the view.
constexpr double kFit = static_cast<double>(kView.width()) / kPicture.width();

const QImage* picture = nullptr;

/// A frame of the view, in hundredths of the picture's own size.
void paint(benchmark::State& state, double scale, bool hasCopies = true) {
  ManualExecutor executor;
  PictureCanvas canvas(executor, nullptr);
  canvas.resize(kView);
  canvas.setPicture(*picture, kPicture);
  QImage frame(kView, QImage::Format_RGB32);
  if (hasCopies) executor.drain();
  const double fit = kFit;
  while (canvas.zoom().scale() < scale * 0.999) canvas.zoomIn();
  if (scale < fit) canvas.zoomOut();
  canvas.render(&frame);
  if (hasCopies) executor.advance(seconds(1));
  for (auto _ : state) canvas.render(&frame);
  state.counters["scale"] = canvas.zoom().scale();
}

void Fit(benchmark::State& state) {
  paint(state, kFit);
}
/// Between two copies, where the painter must reckon each pixel: while two fingers zoom.
void Between(benchmark::State& state) {
  paint(state, 0.6);
}
void RealSize(benchmark::State& state) {
  paint(state, 1);
}
void Twice(benchmark::State& state) {
  paint(state, 2);
}
void EightTimes(benchmark::State& state) {
  paint(state, 8);
}
/// The one frame before the smaller copies are there.
void FitWithoutCopies(benchmark::State& state) {
  paint(state, kFit, false);
}
/// The floor: the same view filled from a picture that has its size already.
void Filled(benchmark::State& state) {
  const QImage scaled = picture->scaled(kView);
  QImage frame(kView, QImage::Format_RGB32);
  for (auto _ : state) {
    QPainter painter(&frame);
    painter.drawImage(0, 0, scaled);
  }
}
/// What a painter takes that is given the whole picture.
void WholeToPainter(benchmark::State& state) {
  QImage frame(kView, QImage::Format_RGB32);
  for (auto _ : state) {
    QPainter painter(&frame);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(QPointF(), kView), *picture);
  }
}
BENCHMARK(Fit)->UseRealTime();
BENCHMARK(Between)->UseRealTime();
BENCHMARK(RealSize)->UseRealTime();
BENCHMARK(Twice)->UseRealTime();
BENCHMARK(EightTimes)->UseRealTime();
BENCHMARK(FitWithoutCopies)->UseRealTime();
BENCHMARK(Filled)->UseRealTime();
BENCHMARK(WholeToPainter)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  const QImage desktop = paintedDesktop(kPicture, 1).convertToFormat(QImage::Format_RGB32);
  picture = &desktop;
  return runWithLimits(argc, argv,
                       {{"Fit", "Filled", 2},
                        {"RealSize", "Filled", 2},
                        {"EightTimes", "Filled", 4},
                        {"Twice", "Filled", 6},
                        {"Between", "Filled", 8}},
                       {});
}
