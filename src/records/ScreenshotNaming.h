#pragma once

#include <QtCore/QString>
#include <functional>
#include <optional>

#include "foundation/FileURL.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// Which name a new screenshot starts with: the one its capture tool gave, or the one suggested from the image.
enum class ScreenshotNaming { original, suggested };

/// Cleans a name that came from a person or from a model. The result is a file stem without extension, at most 160
/// bytes of UTF-8; none when nothing is left. Every name passes here before it reaches the file system.
std::optional<QString> sanitizedFileStem(const QString& name);

/// The suggested name where `naming` asks for it and it can be used, otherwise the file's name without extension.
QString displayName(const ScreenshotItem& item, ScreenshotNaming naming);

/// How moving one file ended.
enum class MoveResult { done, destinationExists, failed };

struct NumberedSearchResult {
  enum class Outcome { moved, alreadyNamed, destinationExists, failed };
  Outcome outcome = Outcome::failed;
  FileURL url;  ///< the new place, when moved
};
/// Gives a file the stem, or "stem (1)" to "stem (999)" where that name is taken. The extension stays the file's own,
/// so that a rename cannot change its type.
NumberedSearchResult renameAvoidingCollision(const FileURL& url, const QString& stem,
                                             const std::function<MoveResult(const FileURL&, const FileURL&)>& perform);

}  // namespace quillmere
