#pragma once

#include <optional>
#include <string_view>

#include "reading/WindowStack.h"

namespace quillmere {

/// What sway shows, by its answers to GET_TREE and GET_OUTPUTS, as sway-ipc(7) describes them. It tells of places in
/// points over all outputs; the stack's are pixels of the finest output, as capture tools write pictures of several.
/// Windows of the process `own` are left out, and bars are not told of: what a workspace leaves free may be gaps. None
/// where the answers are no such thing. `since` is not filled in.
std::optional<WindowStack> swayStack(std::string_view tree, std::string_view outputs, int64_t own);

}  // namespace quillmere
