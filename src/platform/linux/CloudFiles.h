#pragma once

#include "foundation/FileURL.h"

namespace quillmere {

/// The placeholders of the sync clients whose placeholders can be told; every other file has its data. Any thread.
namespace CloudFiles {

/// The file stands here, but its data does not.
bool isDataless(const FileURL& url);
/// The folder, or one above it, is kept in step by a sync client that makes placeholders.
bool isSynced(const FileURL& folder);

}  // namespace CloudFiles
}  // namespace quillmere
