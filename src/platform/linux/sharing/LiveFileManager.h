#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <chrono>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "inbox/InboxServices.h"

namespace quillmere {

/// The desktop's file manager by org.freedesktop.FileManager1
/// (https://www.freedesktop.org/wiki/Specifications/file-manager-interface/), which the bus starts where it does not
/// run yet. Where none answers, the program for folders opens the folder, and nothing is selected. Main thread, which
/// waits for none of them.
class LiveFileManager final : public FileRevealing {
 public:
  /// A file manager that starts may take seconds until it answers.
  static constexpr std::chrono::milliseconds kPatience{15'000};

  LiveFileManager(Executor& executor, const QDBusConnection& bus, std::chrono::milliseconds patience = kPatience)
      : executor_(executor), bus_(bus), patience_(patience) {}
  void reveal(const FileURL& file) override;

 private:
  /// What can be shown of a file.
  struct Place {
    FileURL url;
    bool isFolder = false;  ///< the nearest one that is left of the file's path
  };
  static Place placeOf(const FileURL& file);
  static Task<> reveal(Weak<LiveFileManager> self, FileURL file);
  void ask(const Place& place);
  void openFolder(const FileURL& folder);

  Executor& executor_;
  QDBusConnection bus_;
  std::chrono::milliseconds patience_;
  QObject calls_;  ///< parent of the calls that are under way
  Lifetime lifetime_;
};

}  // namespace quillmere
