#include <QtWidgets/QApplication>

#include "controls/ApplicationAppearance.h"
#include "imaging/ThumbnailLoader.h"
#include "model/AppModel.h"
#include "platform/linux/ApplicationBus.h"
#include "platform/linux/CloudFiles.h"
#include "platform/linux/DesktopAppearance.h"
#include "platform/linux/LiveServices.h"
#include "platform/linux/RunMarker.h"
#include "platform/linux/ScreenCaptureAttributes.h"
#include "platform/linux/SessionEvents.h"
#include "platform/linux/TerminationSignals.h"
#include "platform/linux/X11PanelWindowSystem.h"
#include "popup/CapturePromptPanelController.h"
#include "popup/LivePanelScreens.h"
#include "shell/Confirmations.h"
#include "shell/FilePanels.h"
#include "shell/QuillmereApp.h"

using namespace quillmere;

namespace {

/// A Wayland client cannot place its own windows; there the application asks for the X server that runs beside it.
/// Applications that this one opens choose for themselves.
class PreferredX11 {
 public:
  PreferredX11() {
    isPreferred_ = qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !qEnvironmentVariableIsEmpty("DISPLAY");
    if (isPreferred_) qputenv("QT_QPA_PLATFORM", "xcb");
  }
  /// Once it was read.
  void forget() const {
    if (isPreferred_) qunsetenv("QT_QPA_PLATFORM");
  }

 private:
  bool isPreferred_ = false;
};

/// Qt asks once whether a screen reader runs, when the accessibility bus appears, and never again; but one may start
/// later. Being on that bus costs little while nobody listens there. For good, since the bus may appear at any time.
void beAlwaysAccessible() {
  constexpr const char* kAlwaysOn = "QT_LINUX_ACCESSIBILITY_ALWAYS_ON";
  if (!qEnvironmentVariableIsSet(kAlwaysOn)) qputenv(kAlwaysOn, "1");
}

}  // namespace

int main(int argc, char** argv) {
  const PreferredX11 preferredX11;
  beAlwaysAccessible();
  TerminationSignals::block();
  std::function<void()> terminate;
  QApplication application(argc, argv);
  preferredX11.forget();
  QApplication::setApplicationName(QStringLiteral("Quillmere"));
  QApplication::setApplicationVersion(QStringLiteral(QUILLMERE_VERSION));
  // The C locale's own forms of dates are made for machines.
  if (QLocale().language() == QLocale::C) QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  QGuiApplication::setDesktopFileName(QStringLiteral("com.quillmere.app"));
  const TerminationSignals terminationSignals([&terminate] {
    if (terminate) terminate();
  });

  QuillmereApp* app = nullptr;
  ApplicationBus bus({[&app] {
                        if (app) app->reopen();
                      },
                      [&app](const QString& action) {
                        if (app) app->perform(action);
                      }});
  const ApplicationPaths paths = ApplicationPaths::standard();
  const bool isFirst = bus.registerOnBus();
  const RunMarker runMarker(paths.runMarker, paths.recordList);
  if (!isFirst || runMarker.isTaken()) {
    ApplicationBus::activateOther();
    return 0;
  }

  LiveServices services(paths);
  ApplicationAppearance look;
  const DesktopAppearance desktop(services.executor, AppearanceSources::live(),
                                  [&look](const Appearance& appearance) { look.show(appearance); });
  X11PanelWindowSystem windowSystem;
  LivePanelScreens screens(&windowSystem);
  FilePanels filePanels;
  ThumbnailLoader thumbnails(services.executor, &CloudFiles::isDataless);
  CapturePromptPanelController::Services popupServices;
  popupServices.executor = &services.executor;
  popupServices.thumbnails = &thumbnails;
  popupServices.sharing = &services.sharing;
  popupServices.screens = &screens;
  popupServices.windowSystem = &windowSystem;
  popupServices.isDataless = &CloudFiles::isDataless;
  popupServices.captureRect = &ScreenCaptureAttributes::globalRect;
  CapturePromptPanelController popup(std::move(popupServices));

  AppModelDependencies dependencies = services.dependencies(paths);
  dependencies.promptPresenter = &popup;
  dependencies.fileChooser = &filePanels;
  dependencies.confirmDeletion = &Confirmations::deletion;
  dependencies.interruptedSince = runMarker.interruptedSince();
  AppModel model(std::move(dependencies));
  SessionEvents session(services.executor, services.systemEvents);
  const Connection followers = model.changed.connect([&](const ModelChange& change) {
    if (change.field == ModelField::watchFolderURL) {
      services.securityScope.setWatchedFolder(*model.watchFolderURL);
    } else if (change.field == ModelField::promptQueue || change.field == ModelField::popupAutoSaveEnabled) {
      // A countdown stands still while the displays are off, which on X11 has to be asked.
      session.setWatchesScreens(*model.settings().popupAutoSaveEnabled && !model.prompts().queue->empty());
    }
  });

  QuillmereApp quillmere(model, thumbnails, services.systemEvents);
  app = &quillmere;
  terminate = [&quillmere] { quillmere.quitWithoutAsking(); };
  quillmere.didFinishLaunching({.isLoginLaunch = QApplication::arguments().contains(QStringLiteral("--autostart"))});
  const int status = QApplication::exec();
  quillmere.willTerminate();
  app = nullptr;
  terminate = nullptr;
  return status;
}
