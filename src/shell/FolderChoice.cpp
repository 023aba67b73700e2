#include "shell/FolderChoice.h"

namespace quillmere {

bool chooseFolderToWatch(AppModel& model, FileChoosing& panels, const std::function<bool(const FileURL&)>& confirm) {
  const auto folder = panels.chooseFolder(model.folderPanelStart({}));
  if (!folder || !confirm(*folder)) return false;
  const auto toldBefore = *model.inboxError;
  model.adoptWatchFolder(*folder, ErrorScope::inbox);
  // The folder alone does not tell: it may be the one of before, whose access could not be saved anew.
  return *model.watchFolderURL == folder && *model.inboxError == toldBefore;
}

}  // namespace quillmere
