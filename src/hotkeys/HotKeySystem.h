#pragma once

#include "model/HotKeys.h"

namespace quillmere {

// What a system answers, and what it is answered; other statuses are its own.
enum HotKeyStatus : qint32 {
  hotKeyDone = 0,
  hotKeyNotHandled = -9874,  ///< somebody else may have the press
  hotKeyExists = -9878,      ///< another program has the keys
  hotKeyInvalid = -9879,     ///< this keyboard has no such keys
};

/// "QLMR", which tells our presses from those of other registrations of the same kind.
constexpr quint32 kHotKeySignature = 0x514C4D52;
struct HotKeyID {
  quint32 signature = kHotKeySignature;
  quint32 id = 0;
};

/// A press as the system tells it, if it can tell whose it is.
struct HotKeyPress {
  qint32 status = hotKeyDone;
  HotKeyID key;
};

/// What listens for keys on behalf of a `GlobalHotKeyCenter`. Main thread.
class HotKeySystem {
 public:
  using Reference = quint64;
  struct Answer {
    qint32 status = hotKeyDone;
    std::optional<Reference> reference;
  };
  /// Gives `hotKeyDone` or why the press isn't its.
  using Handler = std::function<qint32(const HotKeyPress* press)>;

  virtual ~HotKeySystem() = default;
  virtual qint32 installHandler(Handler handler) = 0;
  virtual void removeHandler() = 0;
  /// Nobody else hears the keys then.
  virtual Answer registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) = 0;
  virtual void unregisterHotKey(Reference reference) = 0;

  virtual HotKeyReach reach() const { return HotKeyReach::everywhere; }
  virtual QString chosenByDesktop() const { return {}; }

  Signal<quint32, qint32> refusedLater;  ///< the id of a registration that had seemed to be done, and the status
  Signal<> changed;                      ///< the reach, or what the desktop chose
};

}  // namespace quillmere
