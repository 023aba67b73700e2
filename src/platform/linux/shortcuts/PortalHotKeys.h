#pragma once

#include <map>
#include <set>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "hotkeys/HotKeySystem.h"
#include "platform/linux/common/BusService.h"

namespace quillmere {

/// Keys that the desktop's portal hears for programs, in whatever window. The desktop asks the person and has the last
/// word; its answers come later, or never, and nothing waits for them. What is registered while no portal runs goes to
/// the next one. Main thread.
class PortalHotKeys final : public HotKeySystem {
 public:
  /// A shortcut in the portal's words, and in those that are shown to people.
  struct Words {
    std::function<QString(const HotKeyShortcut&)> trigger;
    std::function<QString(const HotKeyShortcut&)> symbols;
  };
  /// `bus`: a connection that no other question to the portal was asked over; the first has to be who is asking.
  PortalHotKeys(const QDBusConnection& bus, Executor& executor, Words words);

  qint32 installHandler(Handler handler) override;
  void removeHandler() override;
  Answer registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) override;
  void unregisterHotKey(Reference reference) override;
  HotKeyReach reach() const override { return isAvailable_ ? HotKeyReach::everywhere : HotKeyReach::nowhere; }
  QString chosenByDesktop() const override { return chosen_; }

  /// Of a shortcut that the desktop has taken without giving it any keys.
  Signal<Reference> leftWithoutKeys;

 private:
  struct Wanted {
    HotKeyShortcut shortcut;
    HotKeyID key;
  };
  using Answered = std::function<void(uint response, const QVariantMap& results)>;

  void find(BusService& portal);
  void askForVersion();
  void lose();
  void bindSoon();
  void bindAnew();
  void bind(const QString& session);
  void request(const QString& method, QVariantList arguments, QVariantMap options, const Answered& answered);
  void take(const QVariantMap& results);
  void readTriggers(const QVariant& shortcuts);
  void closeSession(const QString& session);
  void endSession();
  void refuseAll(qint32 status);
  void press(const QString& name) const;
  void setChosen(const QString& chosen);
  QString nameOf(const HotKeyShortcut& shortcut) const;

  Executor& executor_;
  Words words_;
  QString busName_;  ///< ours, as it stands in the paths of requests
  Handler handler_;
  std::map<Reference, Wanted> wanted_;
  Reference lastReference_ = 0;
  std::set<QString> declined_;  ///< by the person, who is not asked again
  bool isAvailable_ = false;
  bool isBindingDue_ = false;
  int attempt_ = 0;  ///< answers to earlier ones come too late
  int requests_ = 0;
  QString session_;
  QString chosen_;
  BusService* running_ = nullptr;
  Lifetime lifetime_;
  BusService portal_;
};

}  // namespace quillmere
