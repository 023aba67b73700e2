#include <QtWidgets/QApplication>

#include "controls/ApplicationAppearance.h"
#include "formats/ThumbnailLoader.h"
#include "model/AppModel.h"
#include "platform/linux/LiveServices.h"
#include "platform/linux/appearance/DesktopAppearance.h"
#include "platform/linux/capture/ScreenCaptureAttributes.h"
#include "platform/linux/files/CloudFiles.h"
#include "platform/linux/panel/X11PanelWindowSystem.h"
#include "platform/linux/session/ApplicationBus.h"
#include "platform/linux/session/RunMarker.h"
#include "platform/linux/session/SessionEvents.h"
#include "platform/linux/session/TerminationSignals.h"
#include "popup/CapturePromptPanelController.h"
#include "popup/LivePanelScreens.h"
#include "shell/CommandLine.h"
#include "shell/Confirmations.h"
#include "shell/FilePanels.h"
#include "shell/QuillmereApp.h"
#include "shell/WindowPlatform.h"

using namespace quillmere;

namespace {

/// Qt asks once whether a screen reader runs, when the accessibility bus appears, and never again; but one may start
/// later. Being on that bus costs little while nobody listens there. For good, since the bus may appear at any time.
void beAlwaysAccessible() {
  constexpr const char* kAlwaysOn = "QT_LINUX_ACCESSIBILITY_ALWAYS_ON";
  if (!qEnvironmentVariableIsSet(kAlwaysOn)) qputenv(kAlwaysOn, "1");
}

}  // namespace

int main(int argc, char** argv) {
  const auto request = CommandLine::read(argc, argv);
  if (const auto* answer = std::get_if<CommandLine::Answer>(&request)) return answer->print();

  WindowPlatform platform;
  beAlwaysAccessible();
  TerminationSignals::block();
  std::function<void()> terminate;
  QApplication application(argc, argv);
  platform.settle();
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
  quillmere.didFinishLaunching({.isLoginLaunch = std::get<CommandLine::Start>(request).isLoginLaunch});
  const int status = QApplication::exec();
  quillmere.willTerminate();
  app = nullptr;
  terminate = nullptr;
  return status;
}
