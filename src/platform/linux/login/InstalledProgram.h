#pragma once

#include <optional>
#include <string>

#include "foundation/FileURL.h"

namespace quillmere {

/// Where programs are found on this computer, and which of them runs.
struct ProgramPlaces {
  std::string running;                ///< the file of this process, as the system names it
  std::vector<FileURL> launchers;     ///< folders of launcher entries, the person's own first
  std::vector<std::string> searched;  ///< folders in which a program without a path is sought

  static ProgramPlaces live();
};

/// The file that a name or a path stands for, if it can be started.
std::optional<std::string> startable(const std::string& program, const ProgramPlaces& places);

/// The place by which a login can start the running program: that in its launcher entry, which an update of the program
/// leaves where it is. None for a copy that was never installed, such as one in a build folder, and for one whose file
/// is gone.
std::optional<std::string> installedProgram(const ProgramPlaces& places);

}  // namespace quillmere
