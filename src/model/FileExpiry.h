#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "model/FileServices.h"
#include "records/UUID.h"

namespace quillmere {

/// A Temporary record whose time is up.
struct ExpiryJob {
  UUID id;
  FileURL url;
  std::optional<FileIdentity> identity;
  std::optional<QByteArray> bookmark;
  std::optional<WatchFolderPaths> watchFolder;  ///< none: no access to one
  bool deletes = false;                         ///< for good, instead of moving it to Trash
  /// Set on the main thread, until the last moment: the person keeps it, or has it open.
  std::shared_ptr<std::atomic<bool>> isPutOff = std::make_shared<std::atomic<bool>>(false);
};

/// What became of its file.
struct ExpiryReport {
  enum class Outcome {
    removed,      ///< it is in Trash, or deleted
    refused,      ///< the file system refused
    inTrash,      ///< the person had thrown it away
    replaced,     ///< another file has its name, and it is nowhere
    moved,        ///< it has another place
    absent,       ///< it is not in its folder, which can be seen
    unseen,       ///< it is not there, but may be
    unreachable,  ///< nothing can be told
    elsewhere,    ///< it lies outside the watched folder
    untold,       ///< whether it is the file cannot be told
    putOff,       ///< nothing was done
  };
  Outcome outcome = Outcome::unreachable;
  std::optional<ResolvedBookmark> place = std::nullopt;  ///< where it is, when it has moved
};

/// Throws the file away if it is the record's and lies in the watched folder. Any thread.
ExpiryReport expireFile(const ExpiryJob& job, const FileServices& services);

}  // namespace quillmere
