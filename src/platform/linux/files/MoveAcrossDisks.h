#pragma once

#include "foundation/FileURL.h"

namespace quillmere {

/// Renames without replacing anything, in one step where the file system can do that. Gives 0 or the error number;
/// EEXIST where the name is taken.
int renameWithoutReplacing(const FileURL& from, const FileURL& to);

/// Moves a regular file to another file system: a complete copy with its dates and tags takes the new name, then the
/// old file goes. Nothing is replaced; a failure leaves the old file alone and nothing beside it. Gives 0 or the error
/// number.
int moveAcrossDisks(const FileURL& from, const FileURL& to);
/// After such a move was cut off: removes what was to become the copy. Where the copy is whole the old file goes. No
/// move may be under way.
void finishMove(const FileURL& from, const FileURL& to);

}  // namespace quillmere
