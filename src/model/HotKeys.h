#pragma once

#include <functional>

#include "foundation/Result.h"
#include "foundation/Signal.h"
#include "model/HotKeyShortcut.h"

namespace quillmere {

/// Why a shortcut is not heard.
struct GlobalHotKeyError {
  enum class Kind {
    invalidShortcut,            ///< by its own rules
    unavailable,                ///< somebody else has it
    registrationFailed,         ///< for another reason
    handlerInstallationFailed,  ///< no shortcut can be heard
  };
  Kind kind;
  std::optional<HotKeyShortcut::Issue> issue = std::nullopt;  ///< of an invalid one
  QString shortcut = {};                                      ///< in symbols; of the two kinds in the middle
  qint32 status = 0;                                          ///< the system's number for a failure; not shown

  bool operator==(const GlobalHotKeyError&) const = default;
};
QString message(const GlobalHotKeyError& error);

/// How far shortcuts reach on this desktop.
enum class HotKeyReach {
  everywhere,
  windowsOfX11,  ///< a Wayland session that gives programs no shortcuts: heard only where an X11 program has the
                 ///< keyboard
  nowhere,
};

/// Listens for shortcuts whichever program has the keyboard. Main thread.
class HotKeyRegistering {
 public:
  /// What unregisters a shortcut again; never used twice in a run.
  using Token = quint32;

  virtual ~HotKeyRegistering() = default;
  virtual Result<Token, GlobalHotKeyError> registerShortcut(const HotKeyShortcut& shortcut,
                                                            std::function<void()> action) = 0;
  /// An unknown token is ignored.
  virtual void unregister(Token token) = 0;
  /// While suspended nothing is heard, and the keys are free to be recorded. Gives the first failure of a resume.
  virtual std::optional<GlobalHotKeyError> setSuspended(bool isSuspended) = 0;

  virtual const KeyboardLayout& layout() const = 0;
  virtual HotKeyReach reach() const { return HotKeyReach::everywhere; }
  /// The keys that the desktop gave instead, in its own words, where it has the last word; else empty.
  virtual QString chosenByDesktop() const { return {}; }

  Signal<> changed;                                           ///< the layout, the reach, or what the desktop chose
  Signal<Token, const GlobalHotKeyError&> refusedAfterwards;  ///< by a desktop that answers later
};

}  // namespace quillmere
