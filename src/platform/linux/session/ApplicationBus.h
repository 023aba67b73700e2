#pragma once

#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtDBus/QDBusVirtualObject>
#include <functional>
#include <memory>

namespace quillmere {

/// What other processes ask of the running application.
struct ApplicationRequests {
  std::function<void()> activate;
  std::function<void(const QString& action)> activateAction;
};

/// The application on the session bus: org.freedesktop.Application under the application's own name. When the bus is
/// restarted the name is taken on the new one.
class ApplicationBus final : public QDBusVirtualObject {
  Q_OBJECT

 public:
  explicit ApplicationBus(ApplicationRequests requests);

  /// Takes the name. False when another process holds it; true also where there is no bus at all.
  bool registerOnBus();
  /// Asks the process that holds the name to perform the action, or without one to come to the front. False when there
  /// is none, or it does not answer.
  static bool askOther(const QString& action);

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  QString introspect(const QString& path) const override;

 private Q_SLOTS:
  void loseBus();

 private:
  bool join(const QDBusConnection& bus);
  void rejoin();

  ApplicationRequests requests_;
  QTimer rejoining_;
  int connections_ = 0;  ///< made after the first was lost
};

}  // namespace quillmere
