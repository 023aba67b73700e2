#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "PaintedDesktop.h"
#include "editor/CropCanvas.h"
#include "foundation/ManualExecutor.h"

using namespace quillmere;

// From a move of the pointer to the frame in the window's own memory, on a screen of two pixels to a point.
namespace {

constexpr QSize kPicture(5120, 2880);
constexpr QSize kView(1400, 800);
constexpr int kFrames = 600;
constexpr double kMostMilliseconds = 8;
constexpr double kMostOfPicture = 1.4;

struct Times {
  std::vector<double> wall;
  std::vector<double> cpu;  ///< of this thread, which another program can't stretch by as much
};

double milliseconds(const timespec& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return milliseconds(time);
}

Times measured(const std::function<void(int)>& frame) {
  for (int i = 0; i < 20; ++i) frame(i);
  Times times;
  for (int i = 0; i < kFrames; ++i) {
    const double wall = now(CLOCK_MONOTONIC);
    const double cpu = now(CLOCK_THREAD_CPUTIME_ID);
    frame(i);
    times.cpu.push_back(now(CLOCK_THREAD_CPUTIME_ID) - cpu);
    times.wall.push_back(now(CLOCK_MONOTONIC) - wall);
  }
  std::sort(times.wall.begin(), times.wall.end());
  std::sort(times.cpu.begin(), times.cpu.end());
  return times;
}

double at(const std::vector<double>& sorted, double share) {
  return sorted[static_cast<size_t>(share * static_cast<double>(sorted.size() - 1))];
}

void print(const char* name, const Times& times, bool hasLimit) {
  std::printf("%-34s median %6.2f  99%% %6.2f  of processor time: median %6.2f  99%% %6.2f%s\n", name,
              at(times.wall, 0.5), at(times.wall, 0.99), at(times.cpu, 0.5), at(times.cpu, 0.99),
              !hasLimit                                   ? ""
              : at(times.wall, 0.99) <= kMostMilliseconds ? "  within 8"
              : at(times.cpu, 0.99) <= kMostMilliseconds  ? "  within 8 of processor time"
                                                          : "  OVER 8");
}

double peakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == "VmHWM:") {
      double kilobytes = 0;
      status >> kilobytes;
      return kilobytes / 1024;
    }
  }
  return 0;
}

class Editor {
 public:
  explicit Editor(const QImage& picture) : history(CropSelection(kPicture)) {
    canvas.resize(kView);
    canvas.show();
    canvas.resize(kView);
    canvas.setPicture(picture, kPicture);
    settle();
  }
  void settle() {
    for (int i = 0; i < 3; ++i) {
      QCoreApplication::processEvents();
      paint();
      executor.advance(seconds(1));
    }
    paint();
  }
  void paint() {
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(&canvas, &request);
  }
  void pointer(QEvent::Type type, QPointF point, Qt::KeyboardModifiers modifiers) {
    const bool isMove = type == QEvent::MouseMove;
    const bool isHeld = type != QEvent::MouseButtonRelease;
    QMouseEvent event(type, point, canvas.mapToGlobal(point), isMove ? Qt::NoButton : Qt::LeftButton,
                      isHeld ? Qt::LeftButton : Qt::NoButton, modifiers);
    QCoreApplication::sendEvent(&canvas, &event);
  }
  /// A corner goes round as fast as a hand does.
  Times drag() {
    const auto place = [](int frame) {
      return QPointF(kView.width() * (0.65 + 0.25 * std::cos(frame * 0.09)),
                     kView.height() * (0.65 + 0.25 * std::sin(frame * 0.13)));
    };
    pointer(QEvent::MouseButtonPress, {300, 200}, Qt::AltModifier);
    const Times times = measured([&](int frame) {
      pointer(QEvent::MouseMove, place(frame), Qt::AltModifier);
      paint();
    });
    pointer(QEvent::MouseButtonRelease, place(kFrames), Qt::AltModifier);
    return times;
  }
  void report(const char* name) {
    history.change([](CropSelection& selection) { selection.setByHand({}); });
    canvas.followHistory();
    settle();
    print(name, drag(), true);
    const double share = static_cast<double>(canvas.heldBytes()) / (4.0 * kPicture.width() * kPicture.height());
    std::printf("  at %.2f of real size; holds %.1f MB, %.2f of the picture%s\n", canvas.zoom().scale(),
                static_cast<double>(canvas.heldBytes()) / 1e6, share, share <= kMostOfPicture ? "" : "  OVER 1.4");
  }
  void zoomTo(double scale) {
    while (canvas.zoom().scale() < scale * 0.999) canvas.zoomIn();
  }

  ManualExecutor executor;
  CropHistory history;
  CropCanvas canvas{executor, history, nullptr};
};

/// The least that a frame takes that is painted anew as a whole.
class Copied final : public QWidget {
 public:
  explicit Copied(QImage image) : image_(std::move(image)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    resize(kView);
    show();
    resize(kView);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.scale(0.5, 0.5);
    painter.drawImage(0, 0, image_);
  }

 private:
  QImage image_;
};

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_SCALE_FACTOR", "2");
  const QApplication application(argc, argv);
  QImage desktop = paintedDesktop(kPicture, 1).convertToFormat(QImage::Format_RGB32);
  {
    Copied copied(desktop.scaled(kView * 2));
    QCoreApplication::processEvents();
    print("The whole frame copied", measured([&](int) {
            copied.update();
            QEvent request(QEvent::UpdateRequest);
            QCoreApplication::sendEvent(&copied, &request);
          }),
          false);
  }
  const double before = peakMegabytes();
  Editor editor(desktop);
  editor.report("A drag, fitting");
  std::printf("  at most %.0f MB more than with the picture alone, and all of Qt's window\n", peakMegabytes() - before);
  editor.zoomTo(0.8);
  editor.report("A drag, in between");
  editor.zoomTo(8);
  editor.report("A drag, eight times and more");
  editor.canvas.fit();
  editor.report("A drag, fitting again");
  QImage translucent = desktop.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  translucent.setPixelColor(0, 0, Qt::transparent);
  desktop = {};
  Editor other(translucent);
  other.report("A drag on checkers, fitting");
  return 0;
}
