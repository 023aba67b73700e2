#pragma once

#include <QtCore/QString>
#include <functional>
#include <optional>
#include <vector>

#include "foundation/Date.h"
#include "foundation/Executor.h"
#include "foundation/FileURL.h"

namespace quillmere {

enum class WatcherStatus {
  notChosen,
  watching,
  notFound,            ///< the volume is there: choosing the folder again is what helps
  volumeNotConnected,  ///< a disk or network share is away: connecting it is what helps
};
QString statusText(WatcherStatus status);

/// What a scan looks at: the files that may still become screenshots, or all of the folder.
enum class ScanScope { partial, full };

/// Watches one folder and tells what happens to the screenshots in it. Everything on the main thread.
class ScreenshotMonitoring {
 public:
  virtual ~ScreenshotMonitoring() = default;

  std::function<void(const FileURL&)> onScreenshot;         ///< captured here, just now
  std::function<void(const FileURL&)> onArrivedScreenshot;  ///< came from elsewhere
  /// A single file with the mark of a capture was seen, and is a screenshot if it holds still.
  std::function<void(const FileURL&)> onNewcomer;
  std::function<void(const std::vector<FileURL>&)> onRemoval;  ///< known files left the folder, by path
  std::function<void(WatcherStatus)> onStatusChange;

  /// Sets or, with none, clears the folder.
  virtual void watch(std::optional<FileURL> directory) = 0;
  /// The watched folder has another name now; what is known of its files stays known.
  virtual void follow(const FileURL& directory) { watch(directory); }
  virtual void start() = 0;
  virtual void scheduleScan(Duration after, ScanScope scope) = 0;
  virtual bool includesNonCaptureImages() const = 0;
  /// A change while the monitor runs asks for a full scan at once.
  virtual void setIncludesNonCaptureImages(bool includes) = 0;
  /// The next baseline takes only files older than this for known, instead of older than its own start: the files that
  /// came since then are heard, as those of a run that ended without notice must be.
  /// None: the next baseline is an ordinary one.
  virtual void expectArrivalsSince(std::optional<Date> moment) = 0;
  /// A file of the folder has a record already, under a name that need not tell what it is: only its leaving is news.
  virtual void noteKnown(const FileURL& url) = 0;
  /// No record has this name any more: a file that stands there is news.
  virtual void noteUnknown(const FileURL&) {}
  /// Whether the file under this name was moved out of the folder while it was watched, and not deleted.
  virtual bool hasMovedOut(const FileURL&) const { return false; }
  /// When the oldest file was first seen that may still become a screenshot; none while there is none.
  virtual std::optional<Date> awaitedSince() const { return std::nullopt; }
  /// Opens a lost folder again, if it is there, and looks at all of it.
  virtual void refresh() = 0;
};

}  // namespace quillmere
