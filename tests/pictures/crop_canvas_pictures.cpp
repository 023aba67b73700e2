// Draws the crop editor's canvas in all its states into a folder, for people to look at. On a screen of more pixels to
// a point with QT_SCALE_FACTOR.

#include <QtCore/QDir>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <cstdio>
#include <functional>

#include "PaintedDesktop.h"
#include "PictureAppearance.h"
#include "controls/ApplicationAppearance.h"
#include "editor/CropCanvas.h"
#include "foundation/ManualExecutor.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

/// A canvas that a hand has to do with.
class Scene {
 public:
  explicit Scene(const QImage& picture, std::vector<WindowCandidate> windows = {})
      : history_(CropSelection(picture.size(), std::move(windows))) {
    canvas.resize(900, 560);
    canvas.setPicture(picture, picture.size());
    canvas.show();
    canvas.activateWindow();
    settle();
  }
  void select(const QRect& rect) {
    history_.change([&](CropSelection& selection) { selection.setByHand(rect); });
    canvas.followHistory();
  }
  void pick(size_t index) {
    history_.change([&](CropSelection& selection) { selection.pick(selection.candidates()[index].id); });
    canvas.followHistory();
  }
  void pointer(QEvent::Type type, QPointF pixel, Qt::MouseButtons buttons) {
    const QPointF at = canvas.zoom().viewAt(pixel);
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, canvas.mapToGlobal(at), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&canvas, &event);
  }
  void hover(QPointF pixel) { pointer(QEvent::MouseMove, pixel, Qt::NoButton); }
  void hold(QPointF from, QPointF to) {
    pointer(QEvent::MouseButtonPress, from, Qt::LeftButton);
    pointer(QEvent::MouseMove, to, Qt::LeftButton);
  }
  void zoomTo(qreal scale) {
    while (canvas.zoom().scale() < scale) canvas.zoomIn();
    settle();
  }
  void settle() {
    for (int i = 0; i < 3; ++i) {
      QCoreApplication::processEvents();
      canvas.grab();
      executor_.advance(seconds(1));
    }
  }

 private:
  ManualExecutor executor_;
  CropHistory history_;

 public:
  CropCanvas canvas{executor_, history_, nullptr};
};

QImage windowWithShadow() {
  constexpr int kShadow = 48;
  QImage image(760, 520, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const QRectF window = QRectF(image.rect()).adjusted(kShadow, kShadow, -kShadow, -kShadow);
  for (int i = kShadow; i > 0; i -= 2) {
    painter.setBrush(QColor(0, 0, 0, 3));
    painter.drawRoundedRect(window.adjusted(-i, -i, i, i), 12 + i, 12 + i);
  }
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(window, 12, 12);
  return image;
}

bool drawAll(const QString& folder) {
  const QImage desktop = paintedDesktop({2560, 1440}, 1);
  const std::vector<WindowCandidate> windows{{UUID::createUuid(), 1, {300, 200, 1300, 900}, {}},
                                             {UUID::createUuid(), 2, {1500, 300, 800, 700}, {}}};
  bool isWhole = true;
  const auto draw = [&](const char* name, Scene& scene) {
    isWhole &= scene.canvas.grab().save(QDir(folder).filePath(QString::fromLatin1(name) + QStringLiteral(".png")));
  };
  {
    Scene scene(desktop, windows);
    draw("nothing-selected", scene);
    scene.pick(0);
    scene.hover({1900, 900});
    draw("fit-with-hover", scene);
    scene.select({600, 300, 900, 500});
    scene.hover({20, 20});
    scene.canvas.clearFocus();
    scene.canvas.setFocus(Qt::TabFocusReason);
    draw("fit-focused", scene);
    scene.canvas.clearFocus();
    scene.select({0, 0, 2560, 1440});
    draw("whole", scene);
    scene.select({1000, 700, 60, 60});
    draw("small", scene);
    scene.select({1000, 700, 4, 3});
    draw("tiny", scene);
    scene.select({600, 300, 900, 500});
    scene.hold({1500, 550}, {1702.6, 612});
    draw("edge-drag", scene);
    scene.pointer(QEvent::MouseButtonRelease, {1702.6, 612}, Qt::NoButton);
    scene.hold({2300, 1000}, {2555, 1436});
    draw("drawing-into-the-corner", scene);
  }
  {
    Scene scene(desktop, windows);
    scene.select({1270, 710, 24, 18});
    scene.zoomTo(8);
    draw("eight-times", scene);
    scene.select({100, 100, 2000, 1200});
    draw("inside-eight-times", scene);
  }
  {
    Scene scene(desktop, windows);
    scene.select({1200, 650, 160, 120});
    scene.zoomTo(4);
    scene.hold({1360, 700}, {1371, 704});
    draw("four-times-drag", scene);
  }
  {
    Scene scene(windowWithShadow());
    scene.select({48, 48, 664, 424});
    draw("alpha", scene);
    scene.hold({712, 260}, {730, 40});
    draw("alpha-drag", scene);
  }
  for (const QColor& color : {QColor(Qt::white), QColor(Qt::black)}) {
    QImage plain(1200, 700, QImage::Format_RGB32);
    plain.fill(color);
    Scene scene(plain, {{UUID::createUuid(), 1, {500, 300, 600, 350}, {}}});
    scene.select({100, 100, 300, 200});
    scene.hover({700, 500});
    draw(color == Qt::white ? "white" : "black", scene);
    scene.zoomTo(8);
    draw(color == Qt::white ? "white-grid" : "black-grid", scene);
  }
  return isWhole;
}

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("crop_canvas_pictures FOLDER [--dark] [--contrast] [--accent COLOUR]\n", stderr);
    return 2;
  }
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  QDir().mkpath(arguments[1]);
  return drawAll(arguments[1]) ? 0 : 1;
}
