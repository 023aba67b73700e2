#pragma once

#include <QtCore/QObject>
#include <QtCore/QVariant>
#include <QtDBus/QDBusConnection>
#include <functional>
#include <memory>
#include <vector>

class QDBusMessage;

namespace quillmere {

/// One service of a bus, which may come, go and come again at any time. Nothing here waits for an answer, and nothing
/// has the bus start the service. Main thread.
class BusService final : public QObject {
  Q_OBJECT

 public:
  using Heard = std::function<void(const QVariantList& arguments)>;
  struct Presence {
    std::function<void(BusService&)> appeared;  ///< the moment to say what shall be heard of it
    std::function<void()> vanished;
  };
  /// Does nothing where there is no bus.
  BusService(const QDBusConnection& bus, const QString& name, Presence presence);

  // What is asked for here is forgotten when the service vanishes.
  void hear(const QString& path, const QString& interface, const QString& signal, Heard heard);
  void call(const QString& path, const QString& interface, const QString& method, const QVariantList& arguments,
            Heard answered, std::function<void()> failed = nullptr);
  /// Tells the property's value now and at each change; not at all where it does not exist.
  void followProperty(const QString& path, const QString& interface, const QString& property,
                      const std::function<void(const QVariant& value)>& heard);

 private Q_SLOTS:
  void receive(const QDBusMessage& message);
  void receiveOwner(const QDBusMessage& message);
  void loseBus();

 private:
  void askForOwner();
  void setOwner(const QString& owner);

  struct Subscription {
    QString path, interface, signal;
    Heard heard;
  };
  QDBusConnection bus_;
  QString name_;
  Presence presence_;
  QString owner_;  ///< the unique name of the connection that has the name; empty without any
  std::vector<Subscription> subscriptions_;
  std::unique_ptr<QObject> calls_;  ///< parent of the calls that are under way
};

}  // namespace quillmere
