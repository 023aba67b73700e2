#pragma once

#include "controls/HelpAnchor.h"
#include "foundation/Executor.h"
#include "foundation/UserDefaults.h"
#include "model/Sharing.h"
#include "reading/ThumbnailLoader.h"

namespace quillmere {

/// Shows files where the person keeps them.
class FileRevealing {
 public:
  virtual ~FileRevealing() = default;
  /// Opens the file manager at the file, which it selects; at its folder where it cannot.
  virtual void reveal(const FileURL& file) = 0;
};

/// What the Inbox needs besides the model. All of them outlive it.
struct InboxServices {
  ThumbnailLoader* thumbnails = nullptr;
  Executor* executor = nullptr;
  Sharing* sharing = nullptr;
  FileRevealing* fileManager = nullptr;
  UserDefaults* defaults = nullptr;  ///< what the window remembers
  OpenHelp openHelp = [](HelpAnchor) {};
};

}  // namespace quillmere
