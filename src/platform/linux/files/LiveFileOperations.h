#pragma once

#include <functional>
#include <initializer_list>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "model/AppModelDependencies.h"
#include "platform/linux/files/MountTable.h"

namespace quillmere {

/// The freedesktop Trash by way of GIO, and moves that never replace anything. Any thread.
class LiveFileOperations final : public FileOperations {
 public:
  using FileOperations::move;
  using FileOperations::trash;
  /// `left` is told of each place that a file has left, right after that and on the same thread.
  explicit LiveFileOperations(std::function<void(const FileURL& place)> left = [](const FileURL&) {})
      : left_(std::move(left)) {}
  FileOutcome trash(const FileURL& url, TrashReport& report) override;
  FileOutcome restore(const FileURL& place, const FileURL& url) override;
  FileOutcome move(const FileURL& from, const FileURL& to, QString& reason) override;
  void finishMove(const FileURL& from, const FileURL& to) override;
  FileOutcome remove(const FileURL& url) override;
  void flush() override;

 private:
  void touch(std::initializer_list<FileURL> folders);

  std::function<void(const FileURL&)> left_;
  std::mutex touching_;
  std::set<FileURL> touched_;  // folders with names that came or went since they were last flushed
  std::mutex flushing_;        // whoever finds nothing to flush must not go on before it is flushed
};

/// The folders into which a file of this place goes when it is put in the Trash, whether or not they exist.
std::vector<FileURL> trashFolders(const FileURL& file, const MountTable& mounts);
/// Whether the path, symbolic links resolved, lies below the `files` folder of the home Trash or of the Trash of its
/// file system, in either of that one's forms.
bool isInTrash(const FileURL& url, const MountTable& mounts);

}  // namespace quillmere
