#include "platform/linux/signs/BusCaptureSigns.h"

#include <gio/gio.h>
#include <QtCore/QByteArrayList>
#include <atomic>
#include <functional>
#include <string_view>

#include "platform/linux/signs/CaptureToolTable.h"

namespace quillmere {
namespace {

constexpr int kLongestWaitMilliseconds = 1000;

QByteArrayList rules() {
  QByteArrayList all;
  for (const char* name : CaptureToolTable::kBusNames) {
    all << "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + QByteArray(name) + '\'';
  }
  for (const char* interface : CaptureToolTable::kRequestInterfaces) {
    all << "type='method_call',interface='" + QByteArray(interface) + '\'';
  }
  all << "type='method_call',interface='" + QByteArray(CaptureToolTable::kPortalInterface) + "',member='" +
             CaptureToolTable::kPortalMethod + '\'';
  return all;
}

/// Whether the message tells of a name that someone took; any other that is heard is a request.
bool isOfInterest(GDBusMessage* message) {
  if (g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL) return true;
  const char* member = g_dbus_message_get_member(message);
  GVariant* body = g_dbus_message_get_body(message);
  if (!member || std::string_view(member) != "NameOwnerChanged" || !body) return false;
  if (!g_variant_is_of_type(body, G_VARIANT_TYPE("(sss)"))) return false;
  const char* newOwner = nullptr;
  g_variant_get_child(body, 2, "&s", &newOwner);
  return newOwner && *newOwner;
}

}  // namespace

struct BusCaptureSigns::Watch {
  GDBusConnection* connection = nullptr;
  std::function<void()> onSign;
  std::atomic<bool> isMonitor = false;

  /// On a thread of GIO's. A monitor answers nothing, so the message ends here.
  static GDBusMessage* hear(GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer self) {
    const auto& watch = *static_cast<std::shared_ptr<Watch>*>(self);
    // The first may come before the bus has said that it is a monitor; a call that got an answer would end that.
    const bool isCall = g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
    if (!isIncoming || (!watch->isMonitor && !isCall)) return message;
    if (isOfInterest(message)) watch->onSign();
    g_object_unref(message);
    return nullptr;
  }
  static void letGo(gpointer self) { delete static_cast<std::shared_ptr<Watch>*>(self); }
};

BusCaptureSigns::BusCaptureSigns(Executor& executor) {
  char* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  if (!address) return;
  const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                       G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  GDBusConnection* connection = g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, nullptr);
  g_free(address);
  if (!connection) return;
  watch_ = std::make_shared<Watch>();
  watch_->connection = connection;
  watch_->onSign = [&executor, self = lifetime_.weak(this)] {
    executor.post([self] {
      if (self) self->seen(Sign::request);
    });
  };
  g_dbus_connection_add_filter(connection, &Watch::hear, new std::shared_ptr<Watch>(watch_), &Watch::letGo);
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("as"));
  for (const QByteArray& rule : rules()) g_variant_builder_add(&builder, "s", rule.constData());
  GVariant* reply = g_dbus_connection_call_sync(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus.Monitoring", "BecomeMonitor",
                                                g_variant_new("(asu)", &builder, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE,
                                                kLongestWaitMilliseconds, nullptr, nullptr);
  watch_->isMonitor = reply != nullptr;
  if (reply) g_variant_unref(reply);
}

BusCaptureSigns::~BusCaptureSigns() {
  if (!watch_) return;
  g_dbus_connection_close_sync(watch_->connection, nullptr, nullptr);
  g_object_unref(watch_->connection);
}

}  // namespace quillmere
