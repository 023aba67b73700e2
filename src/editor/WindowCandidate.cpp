#include "editor/WindowCandidate.h"

#include <algorithm>

namespace quillmere {

std::vector<WindowCandidate> windowCandidates(const std::vector<ImageOperations::DetectedWindow>& windows) {
  std::vector<WindowCandidate> candidates;
  candidates.reserve(windows.size());
  int number = 0;
  for (const auto& window : windows) {
    candidates.push_back({UUID::createUuid(), ++number, window.frame.toRect(), window.shadow});
  }
  return candidates;
}

const WindowCandidate* primaryCandidate(const std::vector<WindowCandidate>& candidates,
                                        const std::vector<ImageOperations::DetectedWindow>& windows) {
  const auto primary = ImageOperations::primaryWindow(windows);
  if (!primary) return nullptr;
  const auto found = std::find(windows.begin(), windows.end(), *primary);
  return &candidates[static_cast<size_t>(found - windows.begin())];
}

}  // namespace quillmere
