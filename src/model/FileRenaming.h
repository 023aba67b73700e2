#pragma once

#include <QtCore/QString>
#include <optional>

#include "model/FileServices.h"

namespace quillmere {

struct RenameJob {
  FileURL url;
  QString stem;                          ///< cleaned
  std::optional<FileIdentity> identity;  ///< of the record's file
  std::optional<QByteArray> bookmark;
  std::optional<FileIdentity> accepted = std::nullopt;  ///< of another file that is to have the name all the same
  std::optional<WatchFolderPaths> watchFolder;
};

/// How giving a file another name ended.
struct RenameReport {
  enum class Outcome {
    renamed,
    unchanged,  ///< it has the name
    another,    ///< another file stands in its place
    failed,
  };
  Outcome outcome = Outcome::failed;
  FileURL url = {};                                      ///< the new place, when renamed
  std::optional<FileIdentity> identity = std::nullopt;   ///< of the file there; of the other one
  std::optional<QByteArray> bookmark = std::nullopt;     ///< of the new place
  std::optional<ResolvedBookmark> moved = std::nullopt;  ///< where the record's own file is, when another stands there
};

/// Gives the file the stem, or a numbered one where that is taken, unless another file stands in its place. Any thread.
RenameReport renameFile(const RenameJob& job, const FileServices& services);

}  // namespace quillmere
