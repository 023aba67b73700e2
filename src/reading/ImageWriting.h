#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <string_view>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "reading/OperationError.h"
#include "records/PictureFormat.h"

namespace quillmere::ImageOperations {

/// What a picture is written as under this name: what its extension stands for. A name that says nothing holds a PNG,
/// which loses nothing.
PictureFormat imageType(const FileURL& url);

/// Writes a PNG under the cleaned `stem`, numbered where the name is taken, in the folder of `url`; nothing is ever
/// replaced, and it has its name only when it is whole, where the file system knows links. Gives its place.
Result<FileURL, Failure> writeNewFile(const QByteArray& data, const FileURL& url, const QString& stem);

/// What the names of files begin with that have not got their own yet.
inline constexpr std::string_view kReplacementPrefix = ".quillmere-replacing-";
/// Writes a hidden file of the same extension beside `original`, to take its place in one move. Gives its place.
Result<FileURL, Failure> writeReplacement(const QByteArray& data, const FileURL& original);

}  // namespace quillmere::ImageOperations
