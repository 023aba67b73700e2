#pragma once

#include <QtCore/QTimeZone>
#include <functional>
#include <optional>

#include "foundation/Executor.h"
#include "foundation/SystemEvents.h"
#include "foundation/UserDefaults.h"
#include "model/HotKeys.h"
#include "model/LoginItem.h"
#include "model/Messages.h"
#include "model/ScreenshotAnalyzing.h"
#include "model/ScreenshotLocationProviding.h"
#include "model/ScreenshotTransfer.h"
#include "monitor/ScreenshotMonitoring.h"
#include "records/ScreenshotItem.h"
#include "records/ScreenshotRecordStore.h"

namespace quillmere {

class AppModel;

/// How an operation on one file ended.
enum class FileOutcome {
  done,
  missing,            ///< there is no such file
  destinationExists,  ///< nothing is ever replaced
  failed,             ///< the file system refused
};
/// What more there is to say of a move to Trash.
struct TrashReport {
  std::optional<FileURL> place;  ///< where the file lies now, if that is known
  QString reason;                ///< the system's own words for a failure
};
/// Any thread.
class FileOperations {
 public:
  virtual ~FileOperations() = default;
  virtual FileOutcome trash(const FileURL& url, TrashReport& report) = 0;
  FileOutcome trash(const FileURL& url) {
    TrashReport unread;
    return trash(url, unread);
  }
  /// Takes a file back out of Trash, from where it lies there.
  virtual FileOutcome restore(const FileURL& place, const FileURL& url) = 0;
  /// Also to another disk. `reason` becomes the system's own words for a failure.
  virtual FileOutcome move(const FileURL& from, const FileURL& to, QString& reason) = 0;
  FileOutcome move(const FileURL& from, const FileURL& to) {
    QString unread;
    return move(from, to, unread);
  }
  /// After a `move` that was cut off: if only the old file's going is left it goes, and nothing unfinished stays. None
  /// may be under way.
  virtual void finishMove(const FileURL& /*from*/, const FileURL& /*to*/) {}
  virtual FileOutcome remove(const FileURL& url) = 0;
  /// Makes all of the above survive a power cut. Called before anything is written that tells of it. Any thread, also
  /// during the above.
  virtual void flush() {}
};

/// Bookmarks, which find a file again after it was renamed or moved, and counted access to places. `makeBookmark` and
/// `resolve` may be called from any thread.
class SecurityScopeAccess {
 public:
  struct Resolution {
    FileURL url;
    bool isStale = false;                            ///< make a new bookmark
    std::optional<FileURL> previous = std::nullopt;  ///< where the bookmark says, when the file is in another place now
  };
  virtual ~SecurityScopeAccess() = default;
  virtual bool start(const FileURL& url) = 0;
  /// Once for each successful `start`.
  virtual void stop(const FileURL& url) = 0;
  virtual std::optional<QByteArray> makeBookmark(const FileURL& url) = 0;
  virtual std::optional<Resolution> resolve(const QByteArray& bookmark) = 0;
  /// A file of ours is, or was, there: another one may have gone to the same folder. Any thread.
  virtual void rememberPlace(const FileURL&) {}
};

/// Keeps the bookmark of the chosen folder.
class WatchFolderStore {
 public:
  virtual ~WatchFolderStore() = default;
  virtual std::optional<QByteArray> bookmark() = 0;
  /// Answers whether it is stored.
  virtual bool setBookmark(const QByteArray& bookmark) = 0;
};

/// The popup, as the model drives it.
class CapturePromptPresenting {
 public:
  virtual ~CapturePromptPresenting() = default;
  virtual void present(const ScreenshotItem& item, AppModel& model) = 0;
  virtual void hide() = 0;
  /// This file may be presented in a moment: what its popup takes can be made ready.
  virtual void expect(const FileURL& url, AppModel& model) = 0;
  /// Gives the popup the keyboard.
  virtual void focusForReview() = 0;
  /// The pointer is on the popup, or it has the keyboard.
  virtual bool isPointerEngaged() const = 0;
};

/// What the folder panel opens with.
struct FolderPanelStart {
  std::optional<FileURL> directory;
  QString message;
  bool isMacOSScreenshotFolder = false;  ///< the directory is where the desktop saves screenshots
};
/// What the save panel of Move and Rename opens with.
struct SavePanelStart {
  FileURL directory;
  std::string name;           ///< the present name, extension included
  std::string pathExtension;  ///< of the one type of file that is offered; empty for any
};
/// The desktop's own dialogs. Both run modally and give none when the person cancelled.
class FileChoosing {
 public:
  virtual ~FileChoosing() = default;
  virtual std::optional<FileURL> chooseFolder(const FolderPanelStart& start) = 0;
  virtual std::optional<FileURL> chooseDestination(const SavePanelStart& start) = 0;
};

class Announcing {
 public:
  virtual ~Announcing() = default;
  virtual void announce(const QString& text, AnnouncementPriority priority) = 0;
};

/// All that the model knows of the world. The services are not owned and outlive the model; every closure that may run
/// off the main thread says so.
struct AppModelDependencies {
  ScreenshotRecordStore recordStore;
  Executor* executor = nullptr;
  Executor* disk = nullptr;  ///< saves the list, so that nothing else waits for it; `executor` where there is none
  UserDefaults* defaults = nullptr;
  FileOperations* fileOperations = nullptr;
  SecurityScopeAccess* securityScope = nullptr;
  WatchFolderStore* watchFolderStore = nullptr;
  CapturePromptPresenting* promptPresenter = nullptr;
  ScreenshotMonitoring* monitor = nullptr;
  FileChoosing* fileChooser = nullptr;
  ScreenshotLocationProviding* screenshotLocation = nullptr;
  Announcing* announcer = nullptr;
  Pasteboard* pasteboard = nullptr;
  ScreenshotAnalyzing* analyzer = nullptr;
  SystemEvents* systemEvents = nullptr;
  HotKeyRegistering* hotKeys = nullptr;
  LoginItemService* loginItems = nullptr;

  TransferFiles transferFiles;

  std::shared_ptr<PictureReading> pictures;
  std::function<Task<Result<ImageOperations::WindowScan, ImageOperations::OperationError>>(
      const FileURL&, const std::optional<KnownWindows>&)>
      scanWindows;
  /// What the window system showed lately, oldest first; nothing where it cannot be told. Any thread.
  std::function<std::vector<WindowStack>()> windowStates = [] { return std::vector<WindowStack>(); };
  /// Has the window system asked for what it does not tell by itself; `windowStates` has that a moment later.
  std::function<void()> lookAtWindows = [] {};
  std::function<Date()> now;
  std::function<QTimeZone()> timeZone;
  Duration saveCoalescingDelay = std::chrono::milliseconds(750);
  Duration screenshotLocationCheckInterval = std::chrono::seconds(60);
  Duration downloadPollInterval = std::chrono::seconds(2);
  Duration downloadStallTimeout = std::chrono::seconds(120);
  double unavailableRetryDelay = 60.0;  ///< seconds

  /// Asks, modally, whether the file of this name is to be deleted for good.
  std::function<bool(const QString& fileName)> confirmDeletion;
  /// Asks, modally, whether a folder is meant that hardly anybody means; no question about any other.
  std::function<bool(const FileURL& folder)> confirmWatching = [](const FileURL&) { return true; };
  std::function<bool(const FileURL&)> isInTrash;                            ///< any thread
  std::function<std::optional<FileIdentity>(const FileURL&)> fileIdentity;  ///< any thread
  std::function<bool(const FileURL&)> isFolderReachable;                    ///< any thread
  /// Whether the folder's disk keeps of its files what tells them apart for good.
  std::function<bool(const FileURL&)> keepsIdentities = [](const FileURL&) { return true; };
  std::function<bool(const FileURL&)> isDataless;    ///< any thread
  std::function<bool(const FileURL&)> isUbiquitous;  ///< any thread
  /// Asks the sync client for the file's data; answers whether it took the request.
  std::function<bool(const FileURL&)> startDownload;    ///< any thread
  std::function<bool(const FileURL&)> isVolumeMounted;  ///< any thread
  std::function<std::optional<CaptureKind>(const FileURL&)> captureKind;
  /// Where the folder panel opens when nothing better is known.
  std::function<std::optional<FileURL>()> defaultScreenshotFolder;
  /// When the previous run was last known to be alive, if it ended without notice.
  std::optional<Date> interruptedSince;
};

}  // namespace quillmere
