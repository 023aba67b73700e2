#include "platform/linux/login/PortalLoginItem.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>
#include <utility>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kBackground = QStringLiteral("org.freedesktop.portal.Background");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
// As they are kept.
const QString kAllowed = QStringLiteral("allowed");
const QString kAsked = QStringLiteral("asked");

}  // namespace

PortalLoginItem::PortalLoginItem(const QDBusConnection& bus, UserDefaults& defaults, LoginSettings settings)
    : busName_(bus.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'))),
      defaults_(defaults),
      settings_(std::move(settings)),
      portal_(bus, kName, {[this](BusService& portal) { running_ = &portal; }, [this] { lose(); }}) {
  // A sandbox may talk to the portal without one being there yet.
  QDBusMessage start =
      QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                     QStringLiteral("org.freedesktop.DBus"), QStringLiteral("StartServiceByName"));
  start << kName << 0U;
  QDBusConnection(bus).send(start);
}

LoginItemStatus PortalLoginItem::status() const {
  const QString kept = defaults_.text(QLatin1String(kKey)).value_or(QString());
  if (kept == kAllowed) return LoginItemStatus::enabled;
  return kept == kAsked ? LoginItemStatus::requiresApproval : LoginItemStatus::notRegistered;
}

void PortalLoginItem::keep(LoginItemStatus status) {
  const QString key = QLatin1String(kKey);
  if (status == LoginItemStatus::notRegistered) {
    defaults_.remove(key);
  } else {
    defaults_.set(key, status == LoginItemStatus::enabled ? kAllowed : kAsked);
  }
}

std::optional<QString> PortalLoginItem::request(bool opensAtLogin) {
  if (!running_) return localized("Your desktop doesn’t answer.");
  const int number = ++request_;
  if (!before_) before_ = status();
  keep(opensAtLogin ? LoginItemStatus::requiresApproval : LoginItemStatus::notRegistered);
  const QString token = QStringLiteral("quillmere_login%1").arg(number);
  const auto hear = [this, number, opensAtLogin](const QString& handle) {
    running_->hear(
        handle, kRequest, QStringLiteral("Response"),
        [this, number, opensAtLogin](const QVariantList& arguments) { take(number, opensAtLogin, arguments); });
  };
  // The answer may come before that of the call, and so is listened for first.
  const QString expected = QStringLiteral("%1/request/%2/%3").arg(kPath, busName_, token);
  hear(expected);
  const QVariantMap options{
      {QStringLiteral("handle_token"), token},
      {QStringLiteral("reason"), localized("Quillmere opens when you log in, to ask about new screenshots.")},
      {QStringLiteral("autostart"), opensAtLogin},
      {QStringLiteral("commandline"), QStringList{QStringLiteral("quillmere"), QStringLiteral("--autostart")}},
      {QStringLiteral("dbus-activatable"), false}};
  running_->call(
      kPath, kBackground, QStringLiteral("RequestBackground"), {QString(), options},
      [hear, expected](const QVariantList& arguments) {
        const QString handle = arguments.value(0).value<QDBusObjectPath>().path();
        // Portals older than 0.9 take a path of their own.
        if (handle != expected) hear(handle);
      },
      [this, number] { fail(number); });
  return std::nullopt;
}

void PortalLoginItem::take(int request, bool opensAtLogin, const QVariantList& arguments) {
  if (request != request_ || !before_) return;
  const bool isDone = !arguments.isEmpty() && arguments.value(0).toUInt() == 0;
  if (!opensAtLogin && !isDone) return fail(request);  // it still starts
  before_.reset();
  if (opensAtLogin) {
    const bool starts =
        isDone && qdbus_cast<QVariantMap>(arguments.value(1)).value(QStringLiteral("autostart")).toBool();
    keep(starts ? LoginItemStatus::enabled : LoginItemStatus::requiresApproval);
  }
  changed();
}

/// Nobody was asked, or nobody answers: nothing has become different.
void PortalLoginItem::fail(int request) {
  if (request != request_ || !before_) return;
  keep(*std::exchange(before_, std::nullopt));
  changed();
}

void PortalLoginItem::lose() {
  running_ = nullptr;
  fail(request_);
}

}  // namespace quillmere
