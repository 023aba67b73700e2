// Draws the crop editor in all its states, for people to look at.
//
//   editor_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--size WIDTH HEIGHT] [--texts
//   FOLDER-OF-A-CATALOGUE]

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <cstdio>

#include "PaintedDesktop.h"
#include "PictureAppearance.h"
#include "controls/ApplicationAppearance.h"
#include "controls/Theme.h"
#include "editor/CropCanvas.h"
#include "editor/ImageEditorView.h"
#include "fakes/ModelFixture.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

constexpr QSize kPicture(1920, 1200);

class Scene final : public testing::ModelFixture {
 public:
  using ModelFixture::deleteFile;
  using ModelFixture::executor;
  using ModelFixture::files;
  using ModelFixture::model;

  explicit Scene(const QSize& size) {
    launchWatching();
    const FileURL url = shots.appending("Screenshot from 2026-11-21 09-41-07.png");
    static const QImage picture = paintedDesktop(kPicture, 7);
    picture.save(url.displayPath(), "PNG");
    monitor.onScreenshot(url);
    executor.drain();
    id = model->items()[0].id;
    window_.resize(size);
    window_.show();
  }
  ~Scene() override {
    sheet.reset();
    model.reset();
  }
  void TestBody() override {}

  void begin(bool detectWindow = false) {
    sheet = std::make_unique<ImageEditorView>(*model, executor, *model->items().find(id), detectWindow, &window_);
    sheet->open();
    sheet->activateWindow();
    QCoreApplication::processEvents();
  }
  void open() {
    begin();
    settle();
  }
  void openWithWindows() {
    begin(true);
    settle();
    ImageOperations::DetectedWindow large;
    large.frame = QRectF(230, 140, 1180, 760);
    large.shadow.left = large.shadow.top = large.shadow.right = large.shadow.bottom = 40;
    large.shadow.source = WindowShadowMargin::Source::estimated;
    ImageOperations::DetectedWindow small;
    small.frame = QRectF(1300, 700, 420, 300);
    scanner.answer(0, testing::FakeWindowScanner::Outcome(
                          ImageOperations::WindowScan{paintedDesktop(kPicture, 7), {large, small}}));
    settle();
  }
  void openWithoutWindows() {
    begin(true);
    settle();
    scanner.answer(0, paintedDesktop(kPicture, 7), std::nullopt);
    settle();
  }
  CropCanvas& canvas() const {
    const auto all = sheet->findChildren<QWidget*>();
    return dynamic_cast<CropCanvas&>(
        **std::find_if(all.begin(), all.end(), [](QWidget* one) { return dynamic_cast<CropCanvas*>(one) != nullptr; }));
  }
  void select(const QRect& rect = QRect(300, 200, 1000, 620)) {
    sheet->editor().change([&](CropSelection& selection) { selection.setByHand(rect); });
  }
  void includeShadow() {
    sheet->editor().change([](CropSelection& selection) { selection.setIncludesShadow(true); });
  }
  void rename() { finish(model->rename(id, QStringLiteral("Another name"), ErrorScope::inbox)); }
  void type(const QString& number) {
    auto* field = sheet->findChild<QLineEdit*>();
    field->setFocus();
    field->setText(number);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QCoreApplication::sendEvent(field, &press);
  }
  void settle() {
    for (int i = 0; i < 6; ++i) {
      executor.advance(seconds(0.05));
      QCoreApplication::processEvents();
      if (sheet) sheet->grab();
    }
  }
  QImage picture() {
    settle();
    return over(sheet->question() ? static_cast<QWidget&>(*sheet->question()) : *sheet);
  }
  QImage pictureAsItIs() { return over(*sheet); }

  UUID id;
  std::unique_ptr<ImageEditorView> sheet;

 private:
  static QImage over(QWidget& widget) {
    for (int i = 0; i < 4; ++i) QCoreApplication::processEvents();
    const QPixmap shot = widget.grab();
    QImage picture(shot.size(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(shot.devicePixelRatio());
    picture.fill(Theme(QApplication::palette()).isDark ? QColor(0x4a5568) : QColor(0xa8c0d8));
    QPainter(&picture).drawPixmap(0, 0, shot);
    return picture;
  }
  QWidget window_;
};

struct Picture {
  const char* name;
  std::function<QImage(Scene&)> draw;
};

const std::vector<Picture> kPictures{
    {"loading",
     [](Scene& scene) {
       scene.begin();
       return scene.pictureAsItIs();
     }},
    {"finding",
     [](Scene& scene) {
       scene.begin(true);
       return scene.pictureAsItIs();
     }},
    {"unreadable",
     [](Scene& scene) {
       scene.deleteFile(scene.model->items()[0].url);
       scene.open();
       return scene.picture();
     }},
    {"empty",
     [](Scene& scene) {
       scene.open();
       return scene.picture();
     }},
    {"selected",
     [](Scene& scene) {
       scene.open();
       scene.select();
       return scene.picture();
     }},
    {"zoomed",
     [](Scene& scene) {
       scene.open();
       scene.select();
       for (int i = 0; i < 6; ++i) scene.canvas().zoomIn();
       return scene.picture();
     }},
    {"candidates",
     [](Scene& scene) {
       scene.openWithWindows();
       return scene.picture();
     }},
    {"shadow",
     [](Scene& scene) {
       scene.openWithWindows();
       scene.includeShadow();
       return scene.picture();
     }},
    {"none-found",
     [](Scene& scene) {
       scene.openWithoutWindows();
       return scene.picture();
     }},
    {"none-found-kept",
     [](Scene& scene) {
       scene.model->keepBatch({scene.id});
       scene.openWithoutWindows();
       return scene.picture();
     }},
    {"not-replaceable",
     [](Scene& scene) {
       scene.open();
       scene.select();
       scene.rename();
       return scene.picture();
     }},
    {"bounds-outside",
     [](Scene& scene) {
       scene.open();
       scene.select();
       scene.type(QStringLiteral("1900"));
       return scene.picture();
     }},
    {"copied",
     [](Scene& scene) {
       scene.open();
       scene.select();
       scene.sheet->editor().copy();
       return scene.picture();
     }},
    {"working",
     [](Scene& scene) {
       scene.open();
       scene.select();
       scene.settle();
       scene.executor.holdBackground();
       scene.sheet->editor().saveAsNew();
       return scene.pictureAsItIs();
     }},
    {"confirming",
     [](Scene& scene) {
       scene.open();
       scene.select();
       scene.sheet->editor().askToReplace();
       return scene.picture();
     }},
    {"replace-failed",
     [](Scene& scene) {
       scene.openWithWindows();
       scene.includeShadow();
       scene.files.refuse(scene.model->items()[0].url);
       scene.sheet->editor().askToReplace();
       scene.settle();
       scene.sheet->editor().answerReplace(true);
       return scene.picture();
     }},
};

/// A screen that is large enough for the widest window.
void writeScreens(const QString& path) {
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(R"({"screens":[{"name":"S","x":0,"y":0,"width":4800,"height":3200,"logicalDpi":96,"logicalBaseDpi":96,
"dpr":1}]})");
}

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  const QString screens = QDir::home().filePath(QStringLiteral("screens.json"));
  writeScreens(screens);
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens));
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("editor_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--size WIDTH HEIGHT]\n",
               stderr);
    return 2;
  }
  if (const qsizetype texts = arguments.indexOf(QStringLiteral("--texts")); texts > 0) {
    QDir::addSearchPath(QStringLiteral("catalogues"), arguments.value(texts + 1));
  }
  QSize size(1040, 760);
  if (const qsizetype at = arguments.indexOf(QStringLiteral("--size")); at > 0) {
    size = QSize(arguments.value(at + 1).toInt(), arguments.value(at + 2).toInt());
  }
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  if (arguments.contains(QStringLiteral("--rtl"))) QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  const QDir folder(arguments[1]);
  QDir().mkpath(folder.path());
  bool isWhole = true;
  for (const Picture& picture : kPictures) {
    Scene scene(size);
    const QImage image = picture.draw(scene);
    isWhole &= image.save(folder.filePath(QString::fromLatin1(picture.name) + QStringLiteral(".png")));
  }
  return isWhole ? 0 : 1;
}
