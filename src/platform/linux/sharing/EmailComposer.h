#pragma once

#include <QtDBus/QDBusConnection>
#include <vector>

#include "foundation/FileURL.h"

namespace quillmere {

/// Opens a new message with files in the person's mail program. Both wait for other programs and are not for the main
/// thread.
namespace EmailComposer {

bool isAvailable(const QDBusConnection& bus);
/// One message with all of them. Whether a mail program took it.
bool compose(const QDBusConnection& bus, const std::vector<FileURL>& attachments);

}  // namespace EmailComposer
}  // namespace quillmere
