#pragma once

#include "foundation/FileURL.h"

namespace quillmere {

/// Opens a new message with a file in the person's mail program. Both wait for other programs and are not for the main
/// thread.
namespace EmailComposer {

bool isAvailable();
/// Whether a mail program took it.
bool compose(const FileURL& attachment);

}  // namespace EmailComposer
}  // namespace quillmere
