#pragma once

#include <QtCore/QString>
#include <QtDBus/QDBusVirtualObject>
#include <functional>
#include <memory>

namespace quillmere {

/// What other processes ask of the running application.
struct ApplicationRequests {
  std::function<void()> activate;
  std::function<void(const QString& action)> activateAction;
};

/// The application on the session bus: org.freedesktop.Application under the application's own name.
class ApplicationBus final : public QDBusVirtualObject {
 public:
  explicit ApplicationBus(ApplicationRequests requests) : requests_(std::move(requests)) {}

  /// Takes the name. False when another process holds it; true also where there is no bus at all.
  bool registerOnBus();
  /// Asks the process that holds the name to come to the front.
  static void activateOther();

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  QString introspect(const QString& path) const override;

 private:
  ApplicationRequests requests_;
};

}  // namespace quillmere
