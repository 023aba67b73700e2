#pragma once

#include <map>
#include <memory>

#include "hotkeys/HotKeySystem.h"

namespace quillmere {

class DesktopShortcuts;
class PortalHotKeys;
class XkbKeyboardLayout;

/// The shortcuts of whatever desktop this is: by the portal where one has them, else by the X server, if there is one.
/// Main thread.
class DesktopHotKeys final : public HotKeySystem {
 public:
  struct Parts {
    const XkbKeyboardLayout& layout;                     ///< outlives it
    std::unique_ptr<HotKeySystem> display{};             ///< none without an X server
    HotKeyReach displayReach = HotKeyReach::everywhere;  ///< how far the X server's keys reach
    std::unique_ptr<PortalHotKeys> portal{};             ///< none where the X server is the whole desktop
    std::unique_ptr<DesktopShortcuts> desktop{};         ///< who else answers to keys
  };
  explicit DesktopHotKeys(Parts parts);
  ~DesktopHotKeys() override;

  qint32 installHandler(Handler handler) override;
  void removeHandler() override;
  Answer registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) override;
  void unregisterHotKey(Reference reference) override;
  HotKeyReach reach() const override;
  QString chosenByDesktop() const override;

 private:
  struct Wanted {
    HotKeyShortcut shortcut;
    HotKeyID key;
    HotKeySystem* system = nullptr;  ///< where it is registered
    Reference reference = 0;         ///< and as what
  };

  HotKeySystem* system() const;
  bool hasPortal() const;
  qint32 enter(Reference reference, Wanted& wanted);
  void leave(Reference reference, Wanted& wanted);
  void settle();
  void watch(Reference reference, const Wanted& wanted);
  void watchKeyless(Reference portalReference);

  Parts parts_;
  std::map<Reference, Wanted> wanted_;
  Reference lastReference_ = 0;
  bool usesPortal_ = false;
  std::vector<Connection> observers_;
};

}  // namespace quillmere
