#pragma once

#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "foundation/ManualExecutor.h"
#include "monitor/ScreenshotInboxMonitor.h"
#include "support/FakeFolderEventSource.h"
#include "support/FakeScanServices.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// A monitor of a temporary folder with real files, fake services and a time that the test moves; the wall clock goes
/// along with it.
class MonitorTest : public ::testing::Test {
 protected:
  double clockShift = 0;  ///< seconds by which somebody set the wall clock
  static constexpr Date kStart{725857445.0};

  MonitorTest() {
    services->anyFile.dates.created = kStart;
    monitor = std::make_unique<ScreenshotInboxMonitor>(executor, systemEvents, events, services.services(),
                                                       [this] { return now(); });
    monitor->onScreenshot = [this](const FileURL& url) { note("captured " + url.lastPathComponent()); };
    monitor->onArrivedScreenshot = [this](const FileURL& url) { note("arrived " + url.lastPathComponent()); };
    monitor->onRemoval = [this](const std::vector<FileURL>& urls) {
      std::string text = "removed";
      for (const auto& url : urls) text += " " + url.lastPathComponent();
      note(text);
    };
    monitor->onStatusChange = [this](WatcherStatus status) { statuses.push_back(status); };
  }

  Date now() const {
    return kStart + (clockShift + std::chrono::duration<double>(executor.instant().time_since_epoch()).count());
  }
  void advance(double bySeconds) { executor.advance(seconds(bySeconds)); }

  /// A file that is written now.
  FileURL make(const std::string& name, std::string_view bytes = "bytes") { return makeDated(name, now(), bytes); }
  FileURL makeDated(const std::string& name, Date modified, std::string_view bytes = "bytes") {
    const FileURL url = folder.file(name);
    writeFile(url, bytes);
    setModified(url, modified);
    services->file(name).dates.created = now();
    return url;
  }
  void remove(const FileURL& url) { ASSERT_EQ(::unlink(url.c_str()), 0); }

  /// Watches the folder and has the baseline made.
  void begin() {
    monitor->watch(folder.url());
    monitor->start();
    executor.drain();
    log.clear();
    statuses.clear();
  }
  /// The event source tells of a change, and what follows at once happens: the first look.
  void tellChange() {
    events.tell(FolderEvent::changed);
    advance(0.05);
  }

  void note(const std::string& text) { log.push_back(text); }
  /// What was told since the last question.
  std::vector<std::string> told() { return std::exchange(log, {}); }
  std::vector<WatcherStatus> toldStatuses() { return std::exchange(statuses, {}); }

  TemporaryFolder folder;
  FakeScanServices services;
  FakeFolderEventSource events;
  SystemEvents systemEvents;
  ManualExecutor executor;
  std::unique_ptr<ScreenshotInboxMonitor> monitor;
  std::vector<std::string> log;
  std::vector<WatcherStatus> statuses;
};

}  // namespace quillmere::testing
