#pragma once

#include <memory>

#include "controls/HeldKeys.h"
#include "platform/linux/LiveServices.h"
#include "platform/linux/appearance/DesktopAppearance.h"
#include "platform/linux/choosing/PortalFileDialogs.h"
#include "platform/linux/panel/X11PanelWindowSystem.h"
#include "platform/linux/session/ApplicationBus.h"
#include "platform/linux/session/RunMarker.h"
#include "platform/linux/session/SessionEvents.h"
#include "platform/linux/session/ShutdownDelay.h"
#include "platform/linux/session/TerminationSignals.h"
#include "platform/linux/signs/BusCaptureSigns.h"
#include "platform/linux/signs/X11CaptureSigns.h"
#include "platform/linux/tray/LiveTray.h"
#include "shell/Platform.h"

namespace quillmere {

/// This process among the others of its person: how it is reached, how it is ended, and whether it is the only one.
class LinuxProcess {
 public:
  explicit LinuxProcess(PlatformRequests requests);

  bool isOnly() const { return isNameOurs_ && !runMarker_.isTaken(); }
  const ApplicationPaths& paths() const { return paths_; }
  const std::optional<Date>& interruptedSince() const { return runMarker_.interruptedSince(); }
  const std::function<void()>& save() const { return save_; }

 private:
  std::function<void()> save_;
  TerminationSignals terminationSignals_;
  ApplicationBus bus_;
  ApplicationPaths paths_ = ApplicationPaths::standard();
  bool isNameOurs_ = bus_.registerOnBus();
  RunMarker runMarker_{paths_.runMarker, paths_.recordList, systemNow()};
};

/// The Linux desktop: freedesktop's services, and X11 for the popup.
class LinuxPlatform final : public Platform {
 public:
  explicit LinuxPlatform(std::unique_ptr<LinuxProcess> process);

  Executor& executor() override { return services_.executor; }
  SystemEvents& systemEvents() override { return services_.systemEvents; }
  DesktopTray& tray() override { return tray_; }
  bool isDataless(const FileURL& url) const override;
  std::shared_ptr<PictureReading> pictures() override { return services_.pictures; }
  std::shared_ptr<SharedThumbnails> sharedThumbnails() override { return services_.thumbnails; }
  AppModelDependencies modelDependencies() override;
  CapturePromptPanelController::Services popupServices() override;
  InboxServices inboxServices() override;
  void followAppearance(std::function<void(const Appearance&)> show) override;
  void follow(AppModel& model) override;
  DesktopFileDialogs* fileDialogs() override { return &fileDialogs_; }
  OpenHelp help() override;
  std::function<void()> openScreenshotOptions() override;
  std::vector<LinkedLibrary> linkedLibraries() override;

 private:
  std::unique_ptr<LinuxProcess> process_;
  LiveServices services_;
  std::unique_ptr<DesktopAppearance> appearance_;
  X11PanelWindowSystem windowSystem_;
  X11CaptureSigns displaySigns_;
  BusCaptureSigns busSigns_;
  HeldKeys heldKeys_;
  SessionEvents session_;
  ShutdownDelay shutdownDelay_;
  LiveTray tray_{QDBusConnection::sessionBus()};
  PortalFileDialogs fileDialogs_{QDBusConnection::sessionBus()};
  Connection modelFollower_;
};

}  // namespace quillmere
