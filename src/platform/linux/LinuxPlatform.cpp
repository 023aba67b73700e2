#include "platform/linux/LinuxPlatform.h"

#include <cstdio>

#include "controls/Alert.h"
#include "foundation/Localized.h"
#include "model/AppModel.h"
#include "platform/linux/capture/ScreenCaptureAttributes.h"
#include "platform/linux/files/CloudFiles.h"
#include "platform/linux/informing/LinkedLibraries.h"
#include "platform/linux/panel/X11Keyboard.h"
#include "platform/linux/session/WindowPlatform.h"

namespace quillmere {
namespace {

/// Qt asks once whether a screen reader runs, when the accessibility bus appears, and never again; but one may start
/// later. Being on that bus costs little while nobody listens there. For good, since the bus may appear at any time.
void beAlwaysAccessible() {
  constexpr const char* kAlwaysOn = "QT_LINUX_ACCESSIBILITY_ALWAYS_ON";
  if (!qEnvironmentVariableIsSet(kAlwaysOn)) qputenv(kAlwaysOn, "1");
}

/// Another process holds the marker, and cannot be asked: in another session of this person, on a bus that was
/// restarted, or no Quillmere at all.
void tellThatItIsTaken(const FileURL& marker) {
  const QString title = localized("Quillmere Is Already Open");
  const QString message =
      localized("It runs in another session, or another program uses “%@”. Close that, then open Quillmere again.",
                {marker.displayPath()});
  std::fprintf(stderr, "quillmere: %s. %s\n", title.toLocal8Bit().constData(), message.toLocal8Bit().constData());
  showAlert(nullptr, title, message);
}

class LinuxPlatformStart final : public PlatformStart {
 public:
  LinuxPlatformStart() {
    beAlwaysAccessible();
    TerminationSignals::listen();
  }

  std::unique_ptr<Platform> begin(PlatformRequests requests, const QString& action) override {
    windowPlatform_.settle();
    auto process = std::make_unique<LinuxProcess>(std::move(requests));
    if (process->isOnly()) return std::make_unique<LinuxPlatform>(std::move(process));
    if (!ApplicationBus::askOther(action)) tellThatItIsTaken(process->paths().runMarker);
    return nullptr;
  }
  void askRunning(const QString& action) override {
    windowPlatform_.settle();
    ApplicationBus::askOther(action);
  }

 private:
  WindowPlatform windowPlatform_;
};

}  // namespace

std::unique_ptr<PlatformStart> startPlatform() {
  return std::make_unique<LinuxPlatformStart>();
}

LinuxProcess::LinuxProcess(PlatformRequests requests)
    : save_(std::move(requests.save)),
      terminationSignals_(std::move(requests.terminate)),
      bus_({std::move(requests.reopen), std::move(requests.perform)}) {}

LinuxPlatform::LinuxPlatform(std::unique_ptr<LinuxProcess> process)
    : process_(std::move(process)),
      services_(process_->paths()),
      busSigns_(services_.executor),
      heldKeys_(&X11Keyboard::downKeys),
      session_(services_.executor, services_.systemEvents),
      shutdownDelay_(services_.executor, &QDBusConnection::systemBus, process_->save()) {
  X11Keyboard::askForRealReleases();
}

bool LinuxPlatform::isDataless(const FileURL& url) const {
  return CloudFiles::isDataless(url);
}

AppModelDependencies LinuxPlatform::modelDependencies() {
  AppModelDependencies dependencies = services_.dependencies(process_->paths());
  dependencies.interruptedSince = process_->interruptedSince();
  return dependencies;
}

CapturePromptPanelController::Services LinuxPlatform::popupServices() {
  CapturePromptPanelController::Services services;
  services.executor = &services_.executor;
  services.sharing = &services_.sharing;
  services.windowSystem = &windowSystem_;
  services.captureSigns = {&displaySigns_, &busSigns_};
  services.captureRect = &ScreenCaptureAttributes::globalRect;
  return services;
}

InboxServices LinuxPlatform::inboxServices() {
  InboxServices services;
  services.executor = &services_.executor;
  services.sharing = &services_.sharing;
  services.fileManager = &services_.fileManager;
  services.defaults = &services_.defaults;
  services.openHelp = help();
  return services;
}

OpenHelp LinuxPlatform::help() {
  return [this](HelpAnchor anchor) { services_.help.open(anchor); };
}

std::function<void()> LinuxPlatform::openScreenshotOptions() {
  if (!services_.screenshotOptions.canOpen()) return nullptr;
  return [this] { services_.screenshotOptions.open(); };
}

std::vector<LinkedLibrary> LinuxPlatform::linkedLibraries() {
  return LinkedLibraries::describe(LinkedLibraries::sonames() + LinkedLibraries::sonamesOfReader());
}

void LinuxPlatform::followAppearance(std::function<void(const Appearance&)> show) {
  appearance_ = std::make_unique<DesktopAppearance>(services_.executor, AppearanceSources::live(), std::move(show));
}

void LinuxPlatform::follow(AppModel& model) {
  services_.holdUndecided(model);
  modelFollower_ = model.changed.connect([this, &model](const ModelChange& change) {
    if (change.field == ModelField::items) services_.holdUndecided(model);
    if (change.field == ModelField::unsavedWork) shutdownDelay_.setNeeded(model.hasUnsavedWork());
    if (change.field == ModelField::watchFolderURL) {
      services_.securityScope.setWatchedFolder(*model.watchFolderURL);
    } else if (change.field == ModelField::promptQueue || change.field == ModelField::popupAutoSaveEnabled) {
      // A countdown stands still while the displays are off, which on X11 has to be asked.
      session_.setWatchesScreens(*model.settings().popupAutoSaveEnabled && !model.prompts().queue->empty());
    }
  });
}

}  // namespace quillmere
