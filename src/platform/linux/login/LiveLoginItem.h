#pragma once

#include <QtDBus/QDBusConnection>
#include <memory>

#include "foundation/UserDefaults.h"
#include "model/LoginItem.h"

namespace quillmere {

/// The login item of this desktop. Bus and settings outlive it.
std::unique_ptr<LoginItemService> liveLoginItem(const QDBusConnection& bus, UserDefaults& defaults);

}  // namespace quillmere
