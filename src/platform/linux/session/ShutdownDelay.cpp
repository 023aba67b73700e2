#include "platform/linux/session/ShutdownDelay.h"

#include <utility>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kPath = QStringLiteral("/org/freedesktop/login1");
const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");

}  // namespace

ShutdownDelay::ShutdownDelay(Executor& executor, std::function<QDBusConnection()> bus, std::function<void()> save)
    : save_(std::move(save)) {
  // Connecting waits for the bus; so not on the main thread.
  auto connection = std::make_shared<std::optional<QDBusConnection>>();
  executor.runInBackground([connection, bus = std::move(bus)] { connection->emplace(bus()); },
                           [connection, self = lifetime_.weak(this)] {
                             if (self) self->follow(**connection);
                           });
}

void ShutdownDelay::follow(const QDBusConnection& bus) {
  const auto vanished = [this] {
    logind_ = nullptr;
    isAsked_ = false;
    hold_.reset();
  };
  service_ = std::make_unique<BusService>(
      bus, kLogind, BusService::Presence{[this](BusService& logind) { appear(logind); }, vanished});
}

void ShutdownDelay::appear(BusService& logind) {
  logind_ = &logind;
  logind.hear(kPath, kManager, QStringLiteral("PrepareForShutdown"), [this](const QVariantList& arguments) {
    const bool isBefore = arguments.value(0).toBool();
    if (isBefore) save_();
  });
  ask();
}

void ShutdownDelay::setNeeded(bool isNeeded) {
  isNeeded_ = isNeeded;
  if (!isNeeded_) hold_.reset();
  ask();
}

void ShutdownDelay::ask() {
  if (!isNeeded_ || !logind_ || hold_ || std::exchange(isAsked_, true)) return;
  const auto answered = [this](const QVariantList& answer) {
    isAsked_ = false;
    // A slow answer may come when all is saved: then it is let go of here.
    if (isNeeded_) hold_ = answer.value(0).value<QDBusUnixFileDescriptor>();
  };
  logind_->call(kPath, kManager, QStringLiteral("Inhibit"),
                {QStringLiteral("shutdown"), localized("Quillmere"), localized("Saving your screenshots"),
                 QStringLiteral("delay")},
                answered, [this] { isAsked_ = false; });
}

}  // namespace quillmere
