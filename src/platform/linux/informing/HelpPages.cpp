#include "platform/linux/informing/HelpPages.h"

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

const char* fileOf(HelpAnchor anchor) {
  switch (anchor) {
    case HelpAnchor::contents:
      return "index.html";
    case HelpAnchor::troubleshooting:
      return "qm-troubleshooting.html";
    case HelpAnchor::folderMismatch:
      return "qm-folder-mismatch.html";
  }
  return "index.html";
}

}  // namespace

HelpPages HelpPages::besides(const FileURL& program) {
  return HelpPages({program.parent().appending("share/quillmere/help"), program.appending("help")});
}

std::optional<FileURL> HelpPages::page(HelpAnchor anchor) const {
  for (const FileURL& folder : folders_) {
    const FileURL file = folder.appending(fileOf(anchor));
    if (fileStatus(file)) return file;
  }
  return std::nullopt;
}

}  // namespace quillmere
