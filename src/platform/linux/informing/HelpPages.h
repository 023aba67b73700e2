#pragma once

#include <optional>

#include "controls/HelpAnchor.h"
#include "foundation/FileURL.h"

namespace quillmere {

/// The pages of the help that came with the program: a file each, so that no browser has to find a place in one.
class HelpPages {
 public:
  /// `program`: the folder that the program stands in. The pages lie beside it in the folder of a build, and below the
  /// same prefix where it is installed.
  static HelpPages besides(const FileURL& program);
  explicit HelpPages(std::vector<FileURL> folders) : folders_(std::move(folders)) {}

  /// None where the help is not there. Asks the disk.
  std::optional<FileURL> page(HelpAnchor anchor) const;

 private:
  std::vector<FileURL> folders_;
};

}  // namespace quillmere
