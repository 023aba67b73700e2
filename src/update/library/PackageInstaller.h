#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <functional>
#include <memory>

#include "foundation/Executor.h"
#include "update/library/UpdateInstaller.h"

namespace quillmere {

/// Hands the package to the desktop's installer, PackageKit, which asks the person for the right to install. Nothing
/// here waits for it.
class PackageInstaller final : public QObject, public UpdateInstaller {
  Q_OBJECT

 public:
  /// `bus` is called on a background thread.
  PackageInstaller(Executor& executor, FileURL program, std::function<QDBusConnection()> bus);
  ~PackageInstaller() override;

  void install(std::shared_ptr<PackageFile> package, Ended ended) override;
  FileURL programToStart() const override { return program_; }

 private Q_SLOTS:
  void receive(const QDBusMessage& message);
  void receiveOwner(const QDBusMessage& message);

 private:
  enum class Trust { only, any };
  void begin(Trust trust);
  void installFiles(const QString& transaction, Trust trust);
  void call(const QString& path, const QString& interface, const QString& method, const QVariantList& arguments,
            const std::function<void(const QDBusMessage& answer)>& answered);
  void finish(uint exit);
  void end(std::optional<UpdateFailure> failure);

  Executor& executor_;
  FileURL program_;
  std::function<QDBusConnection()> connect_;
  std::unique_ptr<QDBusConnection> bus_;
  std::shared_ptr<PackageFile> package_;
  Ended ended_;
  QString owner_;        ///< the connection that answered for the service
  QString transaction_;  ///< its object
  Trust trust_ = Trust::only;
  bool lacksSignature_ = false;
  std::shared_ptr<void> life_ = std::make_shared<char>();
};

}  // namespace quillmere
