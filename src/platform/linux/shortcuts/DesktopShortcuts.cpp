#include "platform/linux/shortcuts/DesktopShortcuts.h"

#include <QtDBus/QDBusArgument>
#include <algorithm>
#include <utility>

#include "platform/linux/shortcuts/GnomeShortcuts.h"

namespace quillmere {
namespace {

/// Under which our own keys are no one else's.
const QString kOwnComponent = QStringLiteral("com.quillmere.app");

bool isGnomeLike(const QString& desktops) {
  const QStringList names = desktops.split(QLatin1Char(':'));
  return names.contains(QLatin1String("GNOME")) || names.contains(QLatin1String("Unity"));
}

}  // namespace

DesktopShortcuts::DesktopShortcuts(const QDBusConnection& bus, Executor& executor, const QString& desktops)
    : executor_(executor),
      isGnome_(isGnomeLike(desktops)),
      kdeService_(bus, QStringLiteral("org.kde.kglobalaccel"),
                  {[this](BusService& service) {
                     kde_ = &service;
                     for (const auto& [number, question] : questions_) askKde(number);
                   },
                   [this] { kde_ = nullptr; }}),
      xfceService_(bus, QStringLiteral("org.xfce.Xfconf"),
                   {[this](BusService& service) {
                      xfce_ = &service;
                      for (const auto& [number, question] : questions_) askXfce(number);
                    },
                    [this] { xfce_ = nullptr; }}) {}

void DesktopShortcuts::watch(quint64 number, KeyCombination keys, std::function<void()> isTaken) {
  questions_[number] = {std::move(keys), std::move(isTaken)};
  if (kde_) askKde(number);
  if (xfce_) askXfce(number);
  if (isGnome_) askGnome(number);
}

void DesktopShortcuts::forget(quint64 number) {
  questions_.erase(number);
}

void DesktopShortcuts::end(quint64 number) {
  const auto question = questions_.extract(number);
  if (question) question.mapped().isTaken();
}

void DesktopShortcuts::askKde(quint64 number) {
  for (const int key : questions_.at(number).keys.qtKeys()) {
    kde_->call(QStringLiteral("/kglobalaccel"), QStringLiteral("org.kde.KGlobalAccel"),
               QStringLiteral("isGlobalShortcutAvailable"), {key, kOwnComponent},
               [this, number](const QVariantList& arguments) {
                 if (arguments.value(0) == QVariant(false)) end(number);
               });
  }
}

void DesktopShortcuts::askXfce(quint64 number) {
  xfce_->call(
      QStringLiteral("/org/xfce/Xfconf"), QStringLiteral("org.xfce.Xfconf"), QStringLiteral("GetAllProperties"),
      {QStringLiteral("xfce4-keyboard-shortcuts"), QStringLiteral("/")},
      [this, number](const QVariantList& arguments) { takeXfce(number, qdbus_cast<QVariantMap>(arguments.value(0))); });
}

/// Properties are called "/commands/custom/<Primary><Alt>t"; the standard ones count where no person has set any.
void DesktopShortcuts::takeXfce(quint64 number, const QVariantMap& properties) {
  const auto question = questions_.find(number);
  if (question == questions_.end()) return;
  for (const QString& group : {QStringLiteral("/commands/"), QStringLiteral("/xfwm4/")}) {
    const bool isCustom = properties.value(group + QStringLiteral("custom/override")).toBool();
    const QString prefix = group + (isCustom ? QStringLiteral("custom/") : QStringLiteral("default/"));
    for (auto property = properties.begin(); property != properties.end(); ++property) {
      if (!property.key().startsWith(prefix) || property.value().toString().isEmpty()) continue;
      if (question->second.keys.isAccelerator(property.key().mid(prefix.size()))) return end(number);
    }
  }
}

void DesktopShortcuts::askGnome(quint64 number) {
  const auto found = std::make_shared<QStringList>();
  executor_.runInBackground([found] { *found = gnomeShortcuts(); },
                            [found, number, self = lifetime_.weak(this)] {
                              if (self) self->takeGnome(number, *found);
                            });
}

void DesktopShortcuts::takeGnome(quint64 number, const QStringList& accelerators) {
  const auto question = questions_.find(number);
  if (question == questions_.end()) return;
  const KeyCombination& keys = question->second.keys;
  const bool isTaken = std::any_of(accelerators.begin(), accelerators.end(),
                                   [&](const QString& accelerator) { return keys.isAccelerator(accelerator); });
  if (isTaken) end(number);
}

}  // namespace quillmere
