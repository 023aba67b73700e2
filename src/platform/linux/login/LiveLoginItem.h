#pragma once

#include <QtDBus/QDBusConnection>
#include <memory>

#include "foundation/UserDefaults.h"
#include "model/LoginItem.h"

namespace quillmere {

/// Whether the program runs apart from the session that it belongs to, and cannot write the session's files.
bool isSandboxed();

/// The login item of this desktop. Bus and settings outlive it.
std::unique_ptr<LoginItemService> liveLoginItem(const QDBusConnection& bus, UserDefaults& defaults);

}  // namespace quillmere
