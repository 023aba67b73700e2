// Draws the Settings with each pane in each of its states, for people to look at.
//
//   settings_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--accent COLOUR] [--screen WIDTH HEIGHT]
//   [--texts FOLDER-OF-A-CATALOGUE] [--only NAME]

#include <QtCore/QDir>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTabWidget>
#include <cstdio>

#include "PictureAppearance.h"
#include "controls/ApplicationAppearance.h"
#include "fakes/ModelFixture.h"
#include "foundation/Localized.h"
#include "settings/SettingsWindow.h"
#include "settings/ShortcutRecorder.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

enum Pane { general, screenshots, popup, keyboard, intelligence };

class Scene final : public testing::ModelFixture {
 public:
  using testing::ModelFixture::analyzer;
  using testing::ModelFixture::elsewhere;
  using testing::ModelFixture::executor;
  using testing::ModelFixture::firstShortcut;
  using testing::ModelFixture::hotKeys;
  using testing::ModelFixture::keepsIdentities;
  using testing::ModelFixture::launch;
  using testing::ModelFixture::launchWatching;
  using testing::ModelFixture::location;
  using testing::ModelFixture::loginItems;
  using testing::ModelFixture::model;
  using testing::ModelFixture::report;
  using testing::ModelFixture::shots;
  using testing::ModelFixture::systemEvents;

  ~Scene() override {
    window.reset();
    model.reset();
  }
  void SetUp() override {}
  void TestBody() override {}

  void open(Pane pane) {
    SettingsServices services;
    services.openScreenshotOptions = [] {};
    services.updates = &updates;
    services.confirmSavingHere = [](const QString&) { return true; };
    window = std::make_unique<SettingsWindow>(*model, std::move(services));
    tabs().setCurrentIndex(pane);
    window->show();
    window->activateWindow();
    QCoreApplication::processEvents();
  }
  QTabWidget& tabs() const { return *window->findChild<QTabWidget*>(); }
  QPushButton& button(const QString& name) const {
    for (auto* found : window->findChildren<QPushButton*>()) {
      if (found->accessibleName() == name || found->text() == name) return *found;
    }
    throw std::logic_error(name.toStdString());
  }
  void press(quint32 scanCode, Qt::KeyboardModifiers held) const {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Q, held, scanCode, 0, 0);
    QCoreApplication::sendEvent(window.get(), &event);
  }
  QPixmap picture() {
    executor.drain();
    for (int i = 0; i < 4; ++i) QCoreApplication::processEvents();
    return window->grab();
  }

  SoftwareUpdateModel updates;
  std::unique_ptr<SettingsWindow> window;
};

struct Picture {
  const char* name;
  std::function<void(Scene&)> make;
};

void login(Scene& scene, LoginItemStatus status) {
  scene.launchWatching();
  scene.loginItems.current = status;
  scene.open(general);
}

void describing(Scene& scene, AnalysisError::Unavailability reason) {
  scene.launchWatching();
  scene.model->setAnalyzeScreenshots(true);
  scene.analyzer.unavailability = reason;
  scene.systemEvents.didBecomeActive();
  scene.executor.drain();
  scene.open(intelligence);
}

void shortcut(Scene& scene, std::optional<HotKeyShortcut> of) {
  scene.hotKeys.keyboard.scanCodes = {{24, 12}};
  scene.hotKeys.keyboard.named[12] = {QStringLiteral("q")};
  scene.firstShortcut = of;
  scene.launchWatching();
  scene.open(keyboard);
}

const std::vector<Picture> kPictures{
    {"general", [](Scene& scene) { login(scene, LoginItemStatus::notRegistered); }},
    {"general-on",
     [](Scene& scene) {
       scene.updates.setChecksForUpdatesAutomaticallyAction = [](bool) {};
       scene.updates.setChecksAutomatically(true);
       login(scene, LoginItemStatus::enabled);
       scene.model->setScreenshotNaming(ScreenshotNaming::suggested);
     }},
    {"general-waiting",
     [](Scene& scene) {
       login(scene, LoginItemStatus::requiresApproval);
       scene.model->setMenuBarEnabled(false);
     }},
    {"general-not-installed", [](Scene& scene) { login(scene, LoginItemStatus::notFound); }},
    {"screenshots",
     [](Scene& scene) {
       scene.location.value = scene.shots.displayPath();
       scene.launchWatching();
       scene.open(screenshots);
     }},
    {"screenshots-no-folder",
     [](Scene& scene) {
       scene.launch();
       scene.open(screenshots);
     }},
    {"screenshots-differs",
     [](Scene& scene) {
       scene.location.value = scene.elsewhere.displayPath();
       scene.launchWatching();
       scene.open(screenshots);
     }},
    {"screenshots-changed",
     [](Scene& scene) {
       scene.location.value = scene.elsewhere.displayPath();
       scene.launchWatching();
       scene.open(screenshots);
       scene.model->pointMacOSAtWatchFolder();
     }},
    {"screenshots-lost",
     [](Scene& scene) {
       scene.launchWatching();
       scene.report(WatcherStatus::notFound);
       scene.open(screenshots);
     }},
    {"screenshots-disk-away",
     [](Scene& scene) {
       scene.launchWatching();
       scene.report(WatcherStatus::volumeNotConnected);
       scene.open(screenshots);
     }},
    {"screenshots-cannot-follow",
     [](Scene& scene) {
       scene.keepsIdentities = false;
       scene.launchWatching();
       scene.open(screenshots);
     }},
    {"screenshots-end",
     [](Scene& scene) {
       scene.launchWatching();
       scene.open(screenshots);
       QCoreApplication::processEvents();
       QScrollBar& bar = *qobject_cast<QScrollArea*>(scene.tabs().currentWidget())->verticalScrollBar();
       bar.setValue(bar.maximum());
     }},
    {"popup",
     [](Scene& scene) {
       scene.launchWatching();
       scene.open(popup);
     }},
    {"popup-on",
     [](Scene& scene) {
       scene.launchWatching();
       scene.model->setPopupAutoSaveEnabled(true);
       scene.model->setPopupWaitsForPause(true);
       scene.open(popup);
     }},
    {"keyboard", [](Scene& scene) { shortcut(scene, HotKeyShortcut::standard()); }},
    {"keyboard-none", [](Scene& scene) { shortcut(scene, std::nullopt); }},
    {"keyboard-recording",
     [](Scene& scene) {
       shortcut(scene, HotKeyShortcut::standard());
       scene.button(localized("Review screenshot")).click();
     }},
    {"keyboard-issue",
     [](Scene& scene) {
       shortcut(scene, HotKeyShortcut::standard());
       scene.button(localized("Review screenshot")).click();
       scene.press(24, Qt::MetaModifier);
     }},
    {"keyboard-notes",
     [](Scene& scene) {
       scene.hotKeys.refusal =
           GlobalHotKeyError{GlobalHotKeyError::Kind::unavailable, std::nullopt, QStringLiteral("Ctrl+Alt+R")};
       scene.hotKeys.reaches = HotKeyReach::windowsOfX11;
       scene.hotKeys.chosen = QStringLiteral("Meta+F9");
       shortcut(scene, HotKeyShortcut{15, HotKeyShortcut::control | HotKeyShortcut::option});
     }},
    {"intelligence",
     [](Scene& scene) {
       scene.launchWatching();
       scene.open(intelligence);
     }},
    {"intelligence-no-model",
     [](Scene& scene) { describing(scene, AnalysisError::Unavailability::appleIntelligenceNotEnabled); }},
    {"intelligence-no-server",
     [](Scene& scene) { describing(scene, AnalysisError::Unavailability::deviceNotEligible); }},
    {"intelligence-loading", [](Scene& scene) { describing(scene, AnalysisError::Unavailability::modelNotReady); }},
    {"intelligence-foreign",
     [](Scene& scene) {
       scene.analyzer.foreign = ForeignModelServer{QStringLiteral("amira"), QStringLiteral("127.0.0.1:11434"),
                                                   QStringLiteral("1001@127.0.0.1:11434")};
       describing(scene, AnalysisError::Unavailability::deviceNotEligible);
       scene.model->refreshModelAvailability();
     }},
};

void writeScreen(const QString& path, const QSize& size) {
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(QStringLiteral(R"({"screens":[{"name":"S","x":0,"y":0,"width":%1,"height":%2,"logicalDpi":96,)"
                            R"("logicalBaseDpi":96,"dpr":1}]})")
                 .arg(size.width())
                 .arg(size.height())
                 .toUtf8());
}

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  const QStringList arguments(argv, argv + argc);
  if (arguments.size() < 2) {
    std::fputs("settings_pictures FOLDER [--dark] [--contrast] [--rtl] [--font NAME SIZE] [--screen WIDTH HEIGHT]\n",
               stderr);
    return 2;
  }
  const auto argument = [&](const char* name, int number = 1) {
    const qsizetype at = arguments.indexOf(QLatin1String(name));
    return at > 0 ? arguments.value(at + number) : QString();
  };
  const QString screens = QDir::home().filePath(QStringLiteral("screens.json"));
  const bool isSmall = !argument("--screen").isEmpty();
  writeScreen(screens,
              isSmall ? QSize(argument("--screen").toInt(), argument("--screen", 2).toInt()) : QSize(3840, 4000));
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens));
  QApplication application(argc, argv);
  if (const QString texts = argument("--texts"); !texts.isEmpty()) {
    QDir::addSearchPath(QStringLiteral("catalogues"), texts);
  }
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  look.setCompositing([] { return true; });
  if (arguments.contains(QStringLiteral("--rtl"))) QGuiApplication::setLayoutDirection(Qt::RightToLeft);

  const QDir folder(arguments[1]);
  QDir().mkpath(folder.path());
  bool isWhole = true;
  for (const Picture& picture : kPictures) {
    const QString name = QString::fromLatin1(picture.name);
    if (const QString only = argument("--only"); !only.isEmpty() && only != name) continue;
    Scene scene;
    picture.make(scene);
    isWhole &= scene.picture().save(folder.filePath(name + QStringLiteral(".png")));
  }
  return isWhole ? 0 : 1;
}
