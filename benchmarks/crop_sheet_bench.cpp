// The crop editor's sheet on the live model, on a screen of two pixels to a point: from the command to its first frame,
// and from a move of the pointer to the frame with everything that follows it, fields and buttons too.

#include <QtCore/QTemporaryFile>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

#include "LiveWorld.h"
#include "PaintedDesktop.h"
#include "controls/ApplicationAppearance.h"
#include "editor/CropCanvas.h"
#include "editor/ImageEditorView.h"

using namespace quillmere;

namespace {

constexpr QSize kWindow(1400, 900);
constexpr double kTwoFrames = 1000.0 / 60 * 2;
constexpr double kMostForADrag = 8;

using Milliseconds = std::chrono::duration<double, std::milli>;

double timeOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return Milliseconds(std::chrono::steady_clock::now() - start).count();
}

void print(const char* name, std::vector<double> times, double share, double limit) {
  std::sort(times.begin(), times.end());
  const double worst = times[static_cast<size_t>(share * static_cast<double>(times.size() - 1))];
  std::printf("%-28s median %6.2f  %.0f%% %6.2f ms, limit %.1f: %s\n", name, times[times.size() / 2], share * 100,
              worst, limit, worst <= limit ? "kept" : "OVER");
}

void paint(QWidget& window) {
  QEvent request(QEvent::UpdateRequest);
  QCoreApplication::sendEvent(&window, &request);
}

void pointer(QWidget& canvas, QEvent::Type type, QPointF point) {
  const bool isMove = type == QEvent::MouseMove;
  const bool isHeld = type != QEvent::MouseButtonRelease;
  QMouseEvent event(type, point, canvas.mapToGlobal(point), isMove ? Qt::NoButton : Qt::LeftButton,
                    isHeld ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&canvas, &event);
}

std::unique_ptr<ImageEditorView> opened(LiveWorld& world, QWidget& window) {
  auto sheet =
      std::make_unique<ImageEditorView>(world.model(), world.executor(), world.model().items()[0], false, &window);
  sheet->open();
  QCoreApplication::sendPostedEvents();
  paint(*sheet);
  return sheet;
}

}  // namespace

int main(int argc, char** argv) {
  QTemporaryFile screens;
  if (!screens.open()) return 1;
  screens.write(R"({"screens": [{"name": "main", "x": 0, "y": 0, "width": 3840, "height": 2160, "dpr": 1}]})");
  screens.flush();
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens.fileName()));
  qputenv("QT_SCALE_FACTOR", "2");
  const QApplication application(argc, argv);
  const ApplicationAppearance look;
  LiveWorld world;
  if (!paintedDesktop(QSize(5120, 2880), 1).save(world.shot(1).displayPath())) return 1;
  ScreenshotItem item;
  item.id = UUID::createUuid();
  item.url = world.shot(1);
  item.state = ScreenshotItem::State::permanent;
  world.makeModel({item});
  QWidget window;
  window.resize(kWindow);
  window.show();

  std::vector<double> openings;
  std::unique_ptr<ImageEditorView> sheet;
  for (int i = 0; i < 30; ++i) {
    sheet.reset();
    openings.push_back(timeOf([&] { sheet = opened(world, window); }));
  }
  print("the sheet's first frame", openings, 1, kTwoFrames);

  while (!sheet->editor().hasPicture()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  CropCanvas* canvas = nullptr;
  for (QWidget* widget : sheet->findChildren<QWidget*>()) {
    if (auto* found = dynamic_cast<CropCanvas*>(widget)) canvas = found;
  }
  const auto settle = [] {
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(800);
    while (std::chrono::steady_clock::now() < until) QCoreApplication::processEvents();
  };
  for (const double scale : {0.0, 0.8, 8.0}) {
    while (canvas->zoom().scale() < scale * 0.999) canvas->zoomIn();
    sheet->editor().change([](CropSelection& selection) { selection.setByHand({}); });
    settle();
    const QSizeF size = canvas->size();
    const auto place = [&](int frame) {
      return QPointF(size.width() * (0.65 + 0.25 * std::cos(frame * 0.09)),
                     size.height() * (0.65 + 0.25 * std::sin(frame * 0.13)));
    };
    pointer(*canvas, QEvent::MouseButtonPress, QPointF(size.width() * 0.2, size.height() * 0.2));
    std::vector<double> frames;
    for (int i = 0; i < 600; ++i) {
      frames.push_back(timeOf([&] {
        pointer(*canvas, QEvent::MouseMove, place(i));
        QCoreApplication::sendPostedEvents();
        paint(*sheet);
      }));
    }
    pointer(*canvas, QEvent::MouseButtonRelease, place(600));
    const QByteArray name = "a drag at " + QByteArray::number(canvas->zoom().scale(), 'f', 2);
    print(name.constData(), {frames.begin() + 20, frames.end()}, 0.99, kMostForADrag);
  }
  return 0;
}
