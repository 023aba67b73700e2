#pragma once

#include "foundation/FileURL.h"

namespace quillmere {

/// The placeholders of the sync clients whose placeholders can be told; every other file has its data. Any thread.
namespace CloudFiles {

/// The file stands here, or a placeholder in its stead, but its data does not.
bool isDataless(const FileURL& url);
/// The folder, or one above it, is kept in step by a sync client that makes placeholders.
bool isSynced(const FileURL& folder);
/// Asks the sync client for the data; answers whether it took the request. Waits at most some seconds for it.
bool startDownload(const FileURL& url);

}  // namespace CloudFiles
}  // namespace quillmere
