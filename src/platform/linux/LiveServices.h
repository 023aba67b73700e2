#pragma once

#include "analysis/LiveLanguageModel.h"
#include "analysis/LiveScreenshotAnalyzer.h"
#include "foundation/SystemEvents.h"
#include "foundation/UserDefaults.h"
#include "model/AppModelDependencies.h"
#include "monitor/ScreenshotInboxMonitor.h"
#include "platform/linux/announcing/LiveAnnouncer.h"
#include "platform/linux/capture/LiveScreenshotLocationProvider.h"
#include "platform/linux/capture/LiveScreenshotOptions.h"
#include "platform/linux/common/QtExecutor.h"
#include "platform/linux/files/LiveFileOperations.h"
#include "platform/linux/files/LiveFolderEventSource.h"
#include "platform/linux/files/LiveSecurityScopeAccess.h"
#include "platform/linux/files/MountTable.h"
#include "platform/linux/informing/LiveHelp.h"
#include "platform/linux/reading/ReaderPool.h"
#include "platform/linux/sharing/LiveFileManager.h"
#include "platform/linux/sharing/LivePasteboard.h"
#include "platform/linux/sharing/LiveSharing.h"
#include "platform/linux/shortcuts/SessionHotKeys.h"
#include "platform/linux/thumbnails/LiveSharedThumbnails.h"
#include "platform/linux/windows/WindowWatch.h"

namespace quillmere {

/// The time of day, which may be set while the program runs.
Date systemNow();

/// Where the application's own files are.
struct ApplicationPaths {
  FileURL support;   ///< the folder of the list
  QString settings;  ///< the settings file
  FileURL recordList;
  FileURL runMarker;
  FileURL transfers;   ///< copies that other applications are given
  FileURL thumbnails;  ///< what the desktop's programs share
  /// By the XDG base directories; makes the data directory, without which nothing can be put in the Trash.
  static ApplicationPaths standard();
};

/// Every service of the running application but its windows.
class LiveServices {
 public:
  explicit LiveServices(const ApplicationPaths& paths);
  /// No picture that is still being read holds up the end, and nothing goes while another thread still uses it.
  ~LiveServices();
  LiveServices(const LiveServices&) = delete;
  LiveServices& operator=(const LiveServices&) = delete;

  /// What the model needs, less what the windows bring.
  AppModelDependencies dependencies(const ApplicationPaths& paths);

  /// Soon, once for many calls, and a few times a second at most: has the files followed whose move would decide about
  /// them. The model outlives the event loop.
  void holdUndecided(const AppModel& model);

  QtExecutor executor;
  SystemEvents systemEvents;
  UserDefaults defaults;
  MountTable mounts;
  const std::shared_ptr<ReaderPool> pictures;
  const std::shared_ptr<LiveSharedThumbnails> thumbnails;
  LiveFileOperations fileOperations;
  LiveSecurityScopeAccess securityScope;
  LiveWatchFolderStore watchFolderStore;
  LiveFolderEventSource folderEvents;
  LiveScreenshotLocationProvider screenshotLocation;
  LiveScreenshotOptions screenshotOptions;
  LiveAnnouncer announcer;
  LivePasteboard pasteboard;
  LiveSharing sharing;
  LiveFileManager fileManager;
  LiveHelp help;
  LiveLanguageModel languageModel;
  LiveScreenshotAnalyzer analyzer;
  ScreenshotInboxMonitor monitor;
  std::unique_ptr<WindowWatch> windows = WindowWatch::ofSession(&systemNow);
  std::unique_ptr<HotKeyRegistering> hotKeys = sessionHotKeys(executor);
  std::unique_ptr<LoginItemService> loginItems;
  QtExecutor disk{1};  ///< last, as what it does uses the above

 private:
  ScanServices scanServices();
  void forgetThumbnails(const FileURL& place);
  bool isFolderReachable(const FileURL& url) const;
  void holdNow(const AppModel& model);
  bool isHolding_ = false;
  bool isHoldDue_ = false;
};

}  // namespace quillmere
