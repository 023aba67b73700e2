// Draws the Quick Look window in all its states into a folder, for people to look at.

#include <QtCore/QDir>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <cstdio>
#include <functional>

#include "PaintedDesktop.h"
#include "PictureAppearance.h"
#include "controls/ApplicationAppearance.h"
#include "controls/PictureCanvas.h"
#include "fakes/DecodedPictures.h"
#include "foundation/ManualExecutor.h"
#include "inbox/QuickLookWindow.h"
#include "support/Files.h"
#include "support/PrivateEnvironment.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

/// A window with round corners and a shadow, as tools capture one.
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
  painter.setBrush(QColor(0x3584e4));
  painter.drawRoundedRect(window.adjusted(40, 60, -260, -300), 8, 8);
  painter.setPen(QColor(0x333333));
  for (int i = 0; i < 7; ++i)
    painter.drawText(QPointF(100, 280 + 24 * i), QStringLiteral("A line of text in a window"));
  return image;
}

class Album {
 public:
  Album(QString folder, QString screen) : folder_(std::move(folder)), screen_(std::move(screen)) {
    QDir().mkpath(folder_);
  }

  FileURL write(const QString& name, const QImage& picture) {
    const FileURL url = FileURL::fromPath(QDir(screen_).filePath(name));
    isWhole_ &= picture.save(url.displayPath(), "PNG");
    return url;
  }
  void draw(const char* name, const FileURL& url, const std::function<void(PictureCanvas&)>& pose,
            bool hasImageData = true) {
    QuickLookWindow window(thumbnails_, executor_, nullptr);
    window.onOpenElsewhere = [] {};
    QuickLookWindow::Content content;
    content.url = url;
    content.title = url.displayName();
    content.hasImageData = hasImageData;
    window.show(content);
    executor_.drain();
    // The platform without a display has a small screen.
    window.resize(1000, 640);
    settle(window);
    for (QWidget* child : window.findChildren<QWidget*>()) {
      if (auto* canvas = dynamic_cast<PictureCanvas*>(child)) pose(*canvas);
    }
    settle(window);
    isWhole_ &= window.grab().save(QDir(folder_).filePath(QString::fromLatin1(name) + QStringLiteral(".png")));
  }
  bool isWhole() const { return isWhole_; }

 private:
  void settle(QWidget& window) {
    for (int i = 0; i < 3; ++i) {
      QCoreApplication::processEvents();
      window.grab();
      executor_.advance(seconds(1));
    }
  }

  QString folder_;
  QString screen_;
  ManualExecutor executor_;
  ThumbnailLoader thumbnails_{executor_, testing::decodedPictures(), [](const FileURL&) { return false; }};
  bool isWhole_ = true;
};

void drawAll(Album& album) {
  const auto asItOpens = [](PictureCanvas&) {};
  const auto realSize = [](PictureCanvas& canvas) { canvas.showRealSize(); };
  const auto eightTimes = [](PictureCanvas& canvas) {
    canvas.showRealSize();
    while (canvas.zoom().scale() < 8) canvas.zoomIn();
  };
  const FileURL desktop =
      album.write(QStringLiteral("Screenshot from 2026-11-21 09-41-07.png"), paintedDesktop({2560, 1440}, 1));
  album.draw("fit", desktop, asItOpens);
  album.draw("real-size", desktop, realSize);
  album.draw("eight-times", desktop, eightTimes);
  album.draw("zoomed-out", desktop, [](PictureCanvas& canvas) {
    for (int i = 0; i < 3; ++i) canvas.zoomOut();
  });
  const FileURL window = album.write(QStringLiteral("A window with its shadow.png"), windowWithShadow());
  album.draw("alpha", window, asItOpens);
  QImage white(600, 380, QImage::Format_RGB32);
  white.fill(Qt::white);
  album.draw("small-white", album.write(QStringLiteral("White.png"), white), asItOpens);
  QImage page(900, 9000, QImage::Format_RGB32);
  page.fill(QColor(0xf4f1ea));
  QPainter painter(&page);
  painter.setPen(Qt::black);
  for (int y = 40; y < page.height(); y += 26) {
    painter.drawText(60, y, QStringLiteral("A long page that was scrolled through, and captured all at once"));
  }
  painter.end();
  const FileURL tall = album.write(
      QStringLiteral(
          "A page with a name that is longer than any window has room for beside the size of its picture and "
          "the buttons, up to its end.png"),
      page);
  album.draw("tall", tall, asItOpens);
  const FileURL broken = album.write(QStringLiteral("Broken.png"), white);
  testing::writeFile(broken, "no picture");
  album.draw("unreadable", broken, asItOpens);
  album.draw("elsewhere", desktop, asItOpens, false);
}

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("quick_look_pictures FOLDER [--dark] [--contrast] [--rtl] [--accent COLOUR]\n", stderr);
    return 2;
  }
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  if (arguments.contains(QStringLiteral("--rtl"))) QApplication::setLayoutDirection(Qt::RightToLeft);
  const quillmere::testing::TemporaryFolder screen;
  Album album(arguments[1], QString::fromStdString(screen.path()));
  drawAll(album);
  return album.isWhole() ? 0 : 1;
}
