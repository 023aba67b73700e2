#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/linux/capture/CaptureEnvironment.h"

namespace quillmere {

/// The folders that capture tools name in their configuration, and those they use where it names none.
namespace CaptureFolders {

/// Where a configured value points: a "file:" URL, an absolute path, or the home by a tilde. None when it is empty or
/// anything else. Nothing is looked up on disk.
std::optional<FileURL> named(const std::string& value, const FileURL& home);

bool isFolder(const FileURL& url);
/// The folder that this is or, for an image that a tool remembers as its last one, its folder.
std::optional<FileURL> holding(const FileURL& url);
std::optional<FileURL> firstExisting(const std::vector<FileURL>& folders);

/// In the order in which they are tried; the home comes last. Toolkits disagree about a person without a list of user
/// folders: one library takes the home for pictures, the other its folder "Pictures".
std::vector<FileURL> homePictures(const CaptureEnvironment& environment);
std::vector<FileURL> pictures(const CaptureEnvironment& environment);
/// The first one's folder "Screenshots", in any language that it is known to be named in, comes before them.
std::vector<FileURL> withScreenshots(const std::vector<FileURL>& folders);

}  // namespace CaptureFolders

}  // namespace quillmere
