#pragma once

#include <map>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "platform/linux/common/BusService.h"
#include "platform/linux/shortcuts/KeyCombination.h"

namespace quillmere {

/// Whether the desktop itself answers to keys: one that does would take them without a word. Asks in the background,
/// and again when a service of the desktop comes later. Main thread.
class DesktopShortcuts {
 public:
  /// `desktops`: as XDG_CURRENT_DESKTOP names them; GNOME's settings lie around on others too.
  DesktopShortcuts(const QDBusConnection& bus, Executor& executor, const QString& desktops);

  /// Watches over the keys, under a number of the caller's; `isTaken` is called once, and never at once.
  void watch(quint64 number, KeyCombination keys, std::function<void()> isTaken);
  void forget(quint64 number);

 private:
  struct Question {
    KeyCombination keys;
    std::function<void()> isTaken;
  };
  void askKde(quint64 number);
  void askXfce(quint64 number);
  void askGnome(quint64 number);
  void takeXfce(quint64 number, const QVariantMap& properties);
  void takeGnome(quint64 number, const QStringList& accelerators);
  void end(quint64 number);

  Executor& executor_;
  bool isGnome_;
  std::map<quint64, Question> questions_;
  Lifetime lifetime_;
  BusService* kde_ = nullptr;
  BusService* xfce_ = nullptr;
  BusService kdeService_;
  BusService xfceService_;
};

}  // namespace quillmere
