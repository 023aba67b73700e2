#include "platform/linux/common/BusService.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusVariant>
#include <algorithm>

namespace quillmere {
namespace {

const QString kBusName = QStringLiteral("org.freedesktop.DBus");
const QString kBusPath = QStringLiteral("/org/freedesktop/DBus");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

}  // namespace

BusService::BusService(const QDBusConnection& bus, const QString& name, Presence presence)
    : bus_(bus), name_(name), presence_(std::move(presence)), calls_(std::make_unique<QObject>()) {
  if (!bus_.isConnected()) return;
  // No sender is named, here and below: Qt would ask the bus who that is, and wait for the answer. The receivers look.
  bus_.connect(QString(), kBusPath, kBusName, QStringLiteral("NameOwnerChanged"), {name_}, QString(), this,
               SLOT(receiveOwner(QDBusMessage)));
  bus_.connect(QString(), QString(), kBusName + QStringLiteral(".Local"), QStringLiteral("Disconnected"), this,
               SLOT(loseBus()));
  askForOwner();
}

void BusService::askForOwner() {
  QDBusMessage question = QDBusMessage::createMethodCall(kBusName, kBusPath, kBusName, QStringLiteral("GetNameOwner"));
  question << name_;
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusMessage answer = watcher->reply();
    watcher->deleteLater();
    if (answer.type() == QDBusMessage::ReplyMessage) setOwner(answer.arguments().value(0).toString());
  });
}

void BusService::receiveOwner(const QDBusMessage& message) {
  // Anyone may send a signal of this name.
  if (message.service() == kBusName && message.arguments().value(0) == name_) {
    setOwner(message.arguments().value(2).toString());
  }
}

void BusService::loseBus() {
  setOwner(QString());
}

void BusService::setOwner(const QString& owner) {
  if (owner == owner_) return;
  if (!owner_.isEmpty()) {
    for (const Subscription& gone : subscriptions_) {
      bus_.disconnect(QString(), gone.path, gone.interface, gone.signal, this, SLOT(receive(QDBusMessage)));
    }
    subscriptions_.clear();
    calls_ = std::make_unique<QObject>();
    owner_.clear();
    presence_.vanished();
  }
  owner_ = owner;
  if (!owner_.isEmpty()) presence_.appeared(*this);
}

void BusService::hear(const QString& path, const QString& interface, const QString& signal, Heard heard) {
  const bool isHeard = std::any_of(subscriptions_.begin(), subscriptions_.end(), [&](const Subscription& known) {
    return known.path == path && known.interface == interface && known.signal == signal;
  });
  subscriptions_.push_back({path, interface, signal, std::move(heard)});
  // Once for all who want to hear the same: each connection brings the signal once more.
  if (!isHeard) bus_.connect(QString(), path, interface, signal, this, SLOT(receive(QDBusMessage)));
}

void BusService::receive(const QDBusMessage& message) {
  if (message.service() != owner_) return;
  const auto present = subscriptions_;
  for (const Subscription& subscription : present) {
    if (subscription.path == message.path() && subscription.interface == message.interface() &&
        subscription.signal == message.member()) {
      subscription.heard(message.arguments());
    }
  }
}

void BusService::call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments, Heard answered, std::function<void()> failed) {
  QDBusMessage message = QDBusMessage::createMethodCall(owner_, path, interface, method);
  message.setArguments(arguments);
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message), calls_.get());
  connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
          [watcher, answered = std::move(answered), failed = std::move(failed)] {
            const QDBusMessage answer = watcher->reply();
            watcher->deleteLater();
            if (answer.type() == QDBusMessage::ReplyMessage) {
              answered(answer.arguments());
            } else if (failed) {
              failed();
            }
          });
}

void BusService::followProperty(const QString& path, const QString& interface, const QString& property,
                                const std::function<void(const QVariant& value)>& heard) {
  const auto ask = [=, this] {
    call(path, kProperties, QStringLiteral("Get"), {interface, property},
         [heard](const QVariantList& arguments) { heard(arguments.value(0).value<QDBusVariant>().variant()); });
  };
  hear(path, kProperties, QStringLiteral("PropertiesChanged"), [=](const QVariantList& arguments) {
    if (arguments.value(0) != interface) return;
    const auto changed = qdbus_cast<QVariantMap>(arguments.value(1));
    if (changed.contains(property)) {
      heard(changed.value(property));
    } else if (arguments.value(2).toStringList().contains(property)) {
      ask();  // told as changed without its value
    }
  });
  ask();
}

}  // namespace quillmere
