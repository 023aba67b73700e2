#pragma once

#include "foundation/FileURL.h"

namespace quillmere {

/// Whether nobody can change what stands at `file` who could not change the program itself: the file and all folders
/// above it belong to root or to the program's owner, and nobody else may write there. In a folder in which everybody
/// may write but remove only what is theirs, as in /tmp, an entry is its owner's. A link is none of these.
bool isAsSafeAsTheProgram(const FileURL& file, const FileURL& program);

}  // namespace quillmere
