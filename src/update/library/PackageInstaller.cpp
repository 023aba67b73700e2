#include "update/library/PackageInstaller.h"

#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>

namespace quillmere {
namespace {

const QString kName = QStringLiteral("org.freedesktop.PackageKit");
const QString kPath = QStringLiteral("/org/freedesktop/PackageKit");
const QString kTransaction = QStringLiteral("org.freedesktop.PackageKit.Transaction");
const QString kBus = QStringLiteral("org.freedesktop.DBus");
const QString kBusPath = QStringLiteral("/org/freedesktop/DBus");

// As the service numbers them.
constexpr quint64 kOnlyTrusted = quint64{1} << 1;
constexpr uint kSuccess = 1;
constexpr uint kNeedsUntrusted = 8;
constexpr uint kBadSignature = 30;
constexpr uint kMissingSignature = 31;
constexpr uint kRepositoryUnsigned = 50;

}  // namespace

PackageInstaller::PackageInstaller(Executor& executor, FileURL program, std::function<QDBusConnection()> bus)
    : executor_(executor), program_(std::move(program)), connect_(std::move(bus)) {}

PackageInstaller::~PackageInstaller() = default;

void PackageInstaller::install(std::shared_ptr<PackageFile> package, Ended ended) {
  package_ = std::move(package);
  ended_ = std::move(ended);
  // Connecting waits for the bus, and so is done elsewhere.
  auto made = std::make_shared<std::unique_ptr<QDBusConnection>>();
  auto isGenuine = std::make_shared<bool>(false);
  executor_.runInBackground(
      [connect = connect_, package = package_, made, isGenuine] {
        *made = std::make_unique<QDBusConnection>(connect());
        // Looked through once more: hours may have gone by since it came.
        *isGenuine = package->isWholeAndGenuine();
      },
      [this, weak = std::weak_ptr(life_), made, isGenuine] {
        if (weak.expired()) return;
        bus_ = std::move(*made);
        if (!*isGenuine) return end(UpdateFailure::packageNotSigned);
        if (!bus_->isConnected()) return end(UpdateFailure::noInstaller);
        bus_->connect(QString(), kBusPath, kBus, QStringLiteral("NameOwnerChanged"), {kName}, QString(), this,
                      SLOT(receiveOwner(QDBusMessage)));
        for (const char* signal : {"ErrorCode", "Finished"}) {
          bus_->connect(QString(), QString(), kTransaction, QLatin1String(signal), this, SLOT(receive(QDBusMessage)));
        }
        begin(Trust::only);
      });
}

/// The maker's signature was checked already. A package may also have one that the package manager knows; where it has
/// none, the service asks the person with the words for that.
void PackageInstaller::begin(Trust trust) {
  trust_ = trust;
  lacksSignature_ = false;
  call(kPath, kName, QStringLiteral("CreateTransaction"), {}, [this, trust](const QDBusMessage& answer) {
    const QString path = answer.arguments().value(0).value<QDBusObjectPath>().path();
    if (answer.type() != QDBusMessage::ReplyMessage || path.isEmpty()) return end(UpdateFailure::noInstaller);
    owner_ = answer.service();
    installFiles(path, trust);
  });
}

void PackageInstaller::installFiles(const QString& transaction, Trust trust) {
  transaction_ = transaction;
  // Lets it ask for a password.
  call(transaction, kTransaction, QStringLiteral("SetHints"), {QStringList{QStringLiteral("interactive=true")}},
       [](const QDBusMessage&) {});
  const quint64 flags = trust == Trust::only ? kOnlyTrusted : 0;
  const QStringList files{QString::fromStdString(package_->place().path())};
  call(transaction, kTransaction, QStringLiteral("InstallFiles"), {QVariant::fromValue(flags), files},
       [this](const QDBusMessage& answer) {
         if (answer.type() != QDBusMessage::ReplyMessage) end(UpdateFailure::installerRefused);
       });
}

void PackageInstaller::call(const QString& path, const QString& interface, const QString& method,
                            const QVariantList& arguments,
                            const std::function<void(const QDBusMessage& answer)>& answered) {
  QDBusMessage message = QDBusMessage::createMethodCall(kName, path, interface, method);
  message.setArguments(arguments);
  auto* watcher = new QDBusPendingCallWatcher(bus_->asyncCall(message), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, answered] {
    const QDBusMessage answer = watcher->reply();
    watcher->deleteLater();
    if (ended_) answered(answer);
  });
}

void PackageInstaller::receive(const QDBusMessage& message) {
  if (!ended_ || message.service() != owner_ || message.path() != transaction_) return;
  const uint code = message.arguments().value(0).toUInt();
  if (message.member() == QLatin1String("Finished")) return finish(code);
  lacksSignature_ = code == kBadSignature || code == kMissingSignature || code == kRepositoryUnsigned;
}

void PackageInstaller::receiveOwner(const QDBusMessage& message) {
  if (message.service() != kBus || message.arguments().value(0) != kName || transaction_.isEmpty()) return;
  if (message.arguments().value(2) != owner_) end(UpdateFailure::installerRefused);  // it went in the middle
}

void PackageInstaller::finish(uint exit) {
  if (exit == kSuccess) return end(std::nullopt);
  const bool wantsAnyTrust = exit == kNeedsUntrusted || lacksSignature_;
  if (wantsAnyTrust && trust_ == Trust::only) return begin(Trust::any);
  end(UpdateFailure::installerRefused);
}

void PackageInstaller::end(std::optional<UpdateFailure> failure) {
  transaction_.clear();
  package_.reset();
  if (bus_) {
    bus_->disconnect(QString(), kBusPath, kBus, QStringLiteral("NameOwnerChanged"), {kName}, QString(), this,
                     SLOT(receiveOwner(QDBusMessage)));
    for (const char* signal : {"ErrorCode", "Finished"}) {
      bus_->disconnect(QString(), QString(), kTransaction, QLatin1String(signal), this, SLOT(receive(QDBusMessage)));
    }
  }
  if (const auto ended = std::exchange(ended_, nullptr)) ended(failure);
}

}  // namespace quillmere
