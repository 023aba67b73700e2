#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FileURL.h"

namespace quillmere {

/// What of a person's desktop decides which capture tool is used and where that one saves. Only names are kept: what
/// stands behind them is looked at anew by every question.
struct CaptureEnvironment {
  FileURL home;
  FileURL configHome;
  std::vector<FileURL> dataFolders;  ///< where installed programs describe themselves
  std::string searchPath;            ///< as in PATH
  std::string currentDesktop;        ///< as in XDG_CURRENT_DESKTOP

  static CaptureEnvironment live();

  /// The first executable of this name in the search path.
  std::optional<FileURL> installed(std::string_view program) const;
  bool isInstalled(std::string_view program) const { return installed(program).has_value(); }
  /// Whether the desktop goes by this name, among others.
  bool isDesktop(std::string_view name) const;
  /// The folder that the person's own list names, "PICTURES" for one; none where the list has no such entry.
  std::optional<FileURL> userFolder(std::string_view name) const;
};

}  // namespace quillmere
