#pragma once

#include <functional>

namespace quillmere {

/// The pages of the help that the program itself points to.
enum class HelpAnchor { contents, troubleshooting, folderMismatch };

using OpenHelp = std::function<void(HelpAnchor)>;

}  // namespace quillmere
