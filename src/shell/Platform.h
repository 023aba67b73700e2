#pragma once

#include <functional>
#include <memory>

#include "controls/Appearance.h"
#include "inbox/InboxServices.h"
#include "model/AppModelDependencies.h"
#include "popup/CapturePromptPanelController.h"
#include "reading/PictureReading.h"
#include "reading/SharedThumbnails.h"
#include "settings/DesktopTray.h"
#include "shell/AboutInformation.h"
#include "shell/DesktopFileDialogs.h"

namespace quillmere {

/// What others may ask of the running program.
struct PlatformRequests {
  std::function<void()> reopen;                        ///< it was started once more
  std::function<void(const QString& action)> perform;  ///< an action of its launcher entry, by name
  std::function<void()> terminate;                     ///< the session or a signal ends it; nobody can be asked
  std::function<void()> save;                          ///< the machine is about to go down, and waits for this
};

/// A desktop, as the program sees it: every service that is not the program's own. One folder of platform/ is built and
/// implements it; nothing else in the tree knows which.
class Platform {
 public:
  virtual ~Platform() = default;

  virtual Executor& executor() = 0;
  virtual SystemEvents& systemEvents() = 0;
  virtual DesktopTray& tray() = 0;
  /// Whether a file is dataless. Any thread.
  virtual bool isDataless(const FileURL& url) const = 0;
  /// The thumbnails that the programs of this desktop share; null where they share none.
  virtual std::shared_ptr<PictureReading> pictures() = 0;
  virtual std::shared_ptr<SharedThumbnails> sharedThumbnails() { return nullptr; }
  /// What the model needs, less what the program's own windows bring.
  virtual AppModelDependencies modelDependencies() = 0;
  /// The same of the popup.
  virtual CapturePromptPanelController::Services popupServices() = 0;
  /// And of the Inbox.
  virtual InboxServices inboxServices() = 0;
  /// Tells how the desktop wants its programs to look, now and at each change.
  virtual void followAppearance(std::function<void(const Appearance&)> show) = 0;
  /// Lets the services follow what the model decides. The model may go first.
  virtual void follow(AppModel& model) = 0;
  /// The desktop's own file dialogs; null where it has none.
  virtual DesktopFileDialogs* fileDialogs() { return nullptr; }
  /// Opens pages of the help; a page that did not come with the program does nothing.
  virtual OpenHelp help() = 0;
  /// Opens the options of the tool that takes screenshots here. None where that has no window for them, which may
  /// change while the program runs.
  virtual std::function<void()> openScreenshotOptions() = 0;
  /// What the running program is built from.
  virtual std::vector<LinkedLibrary> linkedLibraries() = 0;
};

/// The platform before there is an application object.
class PlatformStart {
 public:
  virtual ~PlatformStart() = default;
  /// Once the application object is there. Null when the program runs already for this person; that one has then been
  /// asked to perform the action, or without one to come to the front.
  virtual std::unique_ptr<Platform> begin(PlatformRequests requests, const QString& action) = 0;
  /// Instead of `begin`: has the program that runs already for this person perform the action. Where none does, nothing
  /// happens.
  virtual void askRunning(const QString& action) = 0;
};

/// Before the application object, and while the main thread is the only one. The one function that a folder of
/// platform/ gives to the program.
std::unique_ptr<PlatformStart> startPlatform();

}  // namespace quillmere
