#pragma once

#include <QtCore/QRect>
#include <vector>

#include "reading/DetectedWindow.h"
#include "records/UUID.h"

namespace quillmere {

/// A detected window as the crop editor offers it.
struct WindowCandidate {
  UUID id;
  int number = 0;  ///< its position in the menu, from 1
  QRect rect;      ///< the detected frame, inside the picture and in its pixels
  WindowShadowMargin shadow;
  bool operator==(const WindowCandidate&) const = default;
};

/// In their order, each with a new id.
std::vector<WindowCandidate> windowCandidates(const std::vector<ImageOperations::DetectedWindow>& windows);

/// The one to begin with; none of none, or where all are enclosed in others. `candidates` are of `windows`.
const WindowCandidate* primaryCandidate(const std::vector<WindowCandidate>& candidates,
                                        const std::vector<ImageOperations::DetectedWindow>& windows);

}  // namespace quillmere
