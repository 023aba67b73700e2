#pragma once

#include <QtCore/QString>
#include <optional>

#include "editor/CropSelection.h"

namespace quillmere {

/// What came of looking for windows.
enum class WindowDetection { noneFound, found };

/// What a crop editor knows besides the selection.
struct CropSituation {
  bool isLoading = false;
  std::optional<WindowDetection> detection = std::nullopt;  ///< none where nobody asked for it
  bool offersKeep = false;                                  ///< the record awaits its decision
  bool isReplaceable = true;  ///< the record is still in the Inbox, at the file that was opened
  bool isWorking = false;     ///< one of the actions is under way
};

/// The texts below the picture and what can be done, as functions of the selection and the situation.
namespace CropNotes {

/// Below the picture: how far what was detected can be trusted, or the general help.
QString detectionNote(const CropSituation& situation);
/// Beside the box: that a shadow in the selection is a typical one; none elsewhere.
std::optional<QString> shadowNote(const CropSelection& selection);
/// Why the shadow can't be included; none where it can.
std::optional<QString> shadowObstacle(const CropSelection& selection);

bool canSave(const CropSelection& selection, const CropSituation& situation);
bool canReplace(const CropSelection& selection, const CropSituation& situation);
/// Why the original can't be replaced by any crop; none where it can.
std::optional<QString> replaceObstacle(const CropSituation& situation);

QString saveFailure(const QString& reason);
QString replaceFailure(const QString& reason);
QString loadFailure();

}  // namespace CropNotes
}  // namespace quillmere
