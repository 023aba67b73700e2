// Draws the popup in all its states, through its real widgets, for people to look at.
//
//   popup_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--accent COLOUR] [--texts
//   FOLDER-OF-A-CATALOGUE]
//
// One PNG for each state; QT_SCALE_FACTOR=2 gives them at twice the size.

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <cstdio>

#include "PaintedDesktop.h"
#include "PictureAppearance.h"
#include "controls/ApplicationAppearance.h"
#include "detection/DetectedWindows.h"
#include "fakes/DecodedPictures.h"
#include "fakes/ModelFixture.h"
#include "foundation/Localized.h"
#include "popup/CapturePromptPanelController.h"
#include "popup/FakeSharing.h"
#include "popup/StillWindowSystem.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

constexpr QSize kCapture(1280, 800);
const QString kDescription = QStringLiteral(
    "A text editor with the notes of a week and a terminal below it in which a report was built without errors.");

/// One large screen.
class StillScreens final : public PanelScreenProviding {
 public:
  std::vector<PanelScreen> screens() const override { return {*mainScreen()}; }
  std::optional<PanelScreen> mainScreen() const override { return PanelScreen{frame, frame}; }
  QPointF mouseLocation() const override { return {}; }
  QRectF frame{0, 0, 1920, 1200};
};

/// A popup over a model of its own, in the state that a picture asks for.
class Scene final : public testing::ModelFixture {
 public:
  using ModelFixture::analyzer;
  using ModelFixture::arrive;
  using ModelFixture::dataless;
  using ModelFixture::executor;
  using ModelFixture::item;
  using ModelFixture::model;
  using ModelFixture::reconcileAll;

  Scene() {
    CapturePromptPanelController::Services services;
    services.executor = &executor;
    services.thumbnails = &thumbnails_;
    services.sharing = &sharing_;
    services.screens = &screens_;
    services.windowSystem = &windowSystem_;
    services.captureRect = [](const FileURL&) { return std::nullopt; };
    popup_ = std::make_unique<CapturePromptPanelController>(std::move(services));
    chooseFolderBefore(shots);
    defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
    AppModelDependencies world = dependencies();
    world.promptPresenter = popup_.get();
    model = std::make_unique<AppModel>(std::move(world));
    model->start();
    executor.drain();
  }
  ~Scene() override {
    popup_.reset();
    model.reset();
  }
  void TestBody() override {}

  void setScreen(const QSizeF& size) { screens_.frame.setSize(size); }
  UUID capture(const std::string& name = "Screenshot from 2026-11-21 09-41-07.png", const QString& about = {},
               const QRect& part = QRect(QPoint(), kCapture)) {
    static const QImage whole = paintedDesktop(kCapture, 7);
    const QImage picture = whole.copy(part);
    const FileURL url = shots.appending(name);
    picture.save(url.displayPath(), "PNG");
    if (!about.isEmpty()) {
      analyzer.immediateDescriptions = {ScreenshotAnalysisResult{about, QStringLiteral("Notes and a build")}};
    } else {
      analyzer.holdsDescriptions = true;
    }
    monitor.onScreenshot(url);
    settle();
    setKeyboard(false);
    return model->items()[0].id;
  }
  /// Gives the popup the keyboard, or as usual leaves it elsewhere.
  void setKeyboard(bool isHere) {
    QWidget& window = isHere ? static_cast<QWidget&>(panel()) : elsewhere_;
    window.show();
    panel().windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus, !isHere);
    window.activateWindow();
    settle();
  }
  void settle() {
    for (int i = 0; i < 3; ++i) {
      executor.drain();
      QCoreApplication::processEvents();
    }
  }
  void extract(bool isFound) {
    const UUID id = model->prompts().queue->front();
    model->setPromptWindowExtraction(item(id), true).detach();
    const QImage picture = paintedDesktop(kCapture, 7);
    const auto window = ImageOperations::primaryWindow(ImageOperations::detectWindows(picture, std::nullopt));
    if (isFound) scanner.answer(0, picture, window ? window->frame : QRectF(96, 70, 760, 470));
    settle();
  }
  CaptureDecisionPanel& panel() const { return *popup_->panel(); }

  QImage picture() {
    settle();
    const qreal ratio = panel().devicePixelRatioF();
    QImage image(panel().size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    const bool isDark = panel().palette().color(QPalette::Window).lightness() < 128;
    QPainter painter(&image);
    QLinearGradient ground(0, 0, panel().width(), panel().height());
    ground.setColorAt(0, isDark ? QColor(0x3b4a5c) : QColor(0x8fb0c9));
    ground.setColorAt(1, isDark ? QColor(0x1d2530) : QColor(0xd9c7b0));
    painter.fillRect(panel().rect(), ground);
    panel().render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
  }

 private:
  FakeSharing sharing_;
  QWidget elsewhere_;
  ThumbnailLoader thumbnails_{executor, testing::decodedPictures(), [](const FileURL&) { return false; }};
  StillScreens screens_;
  StillWindowSystem windowSystem_;
  std::unique_ptr<CapturePromptPanelController> popup_;
};

struct Picture {
  const char* name;
  std::function<void(Scene&)> arrange;
};

QPushButton* buttonOf(Scene& scene, const char* key) {
  const QString name = localized(key);
  for (auto* button : scene.panel().findChildren<QPushButton*>()) {
    if (button->accessibleName() == name || button->text() == name) return button;
  }
  return nullptr;
}

const std::vector<Picture> kPictures{
    {"preview", [](Scene& scene) { scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription); }},
    {"analyzing",
     [](Scene& scene) {
       scene.capture();
       for (int i = 0; i < 12; ++i) scene.arrive(std::to_string(i) + ".png");
     }},
    {"without-preview",
     [](Scene& scene) {
       scene.model->setShowPopupThumbnail(false);
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription);
     }},
    {"extracting",
     [](Scene& scene) {
       scene.capture();
       scene.extract(false);
     }},
    {"extracted",
     [](Scene& scene) {
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription);
       scene.extract(true);
     }},
    {"notice",
     [](Scene& scene) {
       scene.analyzer.text = QStringLiteral("words");
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription);
       scene.executor.advance(std::chrono::seconds(1));
       scene.settle();
       if (auto* button = buttonOf(scene, "Copy Text")) button->click();
       scene.settle();
       // It appears by itself, in time that no clock of a test moves.
       QElapsedTimer shown;
       shown.start();
       while (shown.elapsed() < 400) scene.settle();
     }},
    {"error",
     [](Scene& scene) {
       scene.capture();
       scene.model->show(
           ErrorScope::popup, QStringLiteral("Couldn’t Save the Window"),
           QStringLiteral("There isn’t enough space on the disk. The screenshot hasn’t changed. Try again, "
                          "or turn off Extract Window to decide on the whole screenshot."));
     }},
    {"unavailable",
     [](Scene& scene) {
       const UUID id = scene.capture();
       scene.dataless.insert(scene.item(id).url.path());
       scene.reconcileAll();
     }},
    {"long-name",
     [](Scene& scene) {
       scene.capture(
           "Quarterly figures of the northern region with all corrections and the remarks of the third reading.png",
           kDescription);
     }},
    {"long-description",
     [](Scene& scene) { scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription.repeated(4)); }},
    {"whole-description",
     [](Scene& scene) {
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription.repeated(4));
       if (auto* button = buttonOf(scene, "More")) button->click();
       scene.settle();
     }},
    {"scrolls",
     [](Scene& scene) {
       scene.setScreen(QSizeF(853, 533));
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription.repeated(8));
       if (auto* button = buttonOf(scene, "More")) button->click();
       scene.settle();
     }},
    {"running-down",
     [](Scene& scene) {
       scene.model->setPopupAutoSaveEnabled(true);
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription);
       scene.executor.advance(std::chrono::seconds(4));
     }},
    {"several",
     [](Scene& scene) {
       scene.model->setPopupGathersSeries(true);
       scene.model->setPopupWaitsForPause(true);
       for (int i = 0; i < 4; ++i) scene.capture(std::to_string(i) + ".png");
       scene.executor.advance(std::chrono::seconds(6));
     }},
    {"small-picture",
     [](Scene& scene) {
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription, QRect(520, 300, 240, 120));
     }},
    {"low-screen",
     [](Scene& scene) {
       scene.setScreen(QSizeF(800, 420));
       scene.capture("Screenshot from 2026-11-21 09-41-07.png", kDescription);
     }},
    {"no-name",
     [](Scene& scene) {
       scene.capture();
       scene.panel().findChild<QLineEdit*>()->setText(QStringLiteral("   "));
     }},
    {"deletes",
     [](Scene& scene) {
       scene.model->setDeletesChosenImmediately(true);
       scene.capture();
     }},
    {"focus-name",
     [](Scene& scene) {
       scene.capture();
       scene.setKeyboard(true);
       scene.panel().findChild<QLineEdit*>()->setFocus();
       scene.panel().findChild<QLineEdit*>()->selectAll();
     }},
    {"focus-main",
     [](Scene& scene) {
       scene.capture();
       scene.setKeyboard(true);
       if (auto* button = buttonOf(scene, "Temporary")) button->setFocus(Qt::TabFocusReason);
     }},
    {"focus-extract",
     [](Scene& scene) {
       scene.capture();
       scene.setKeyboard(true);
       if (auto* button = buttonOf(scene, "Extract Window")) button->setFocus(Qt::TabFocusReason);
     }},
};

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs(
        "popup_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--accent COLOUR] [--texts "
        "FOLDER-OF-A-CATALOGUE]\n",
        stderr);
    return 2;
  }
  const qsizetype texts = arguments.indexOf(QStringLiteral("--texts"));
  if (texts > 0) QDir::addSearchPath(QStringLiteral("catalogues"), arguments.value(texts + 1));
  QApplication::setFont(QFont(QStringLiteral("Inter"), 10));
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  if (arguments.contains(QStringLiteral("--rtl"))) QGuiApplication::setLayoutDirection(Qt::RightToLeft);

  QDir().mkpath(arguments[1]);
  for (const Picture& picture : kPictures) {
    Scene scene;
    picture.arrange(scene);
    const QString path = QDir(arguments[1]).filePath(QString::fromLatin1(picture.name) + QStringLiteral(".png"));
    if (!scene.picture().save(path)) {
      std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
      return 1;
    }
  }
  return 0;
}
