#include "model/HotKeys.h"

#include "foundation/Localized.h"

namespace quillmere {

QString message(const GlobalHotKeyError& error) {
  switch (error.kind) {
    case GlobalHotKeyError::Kind::invalidShortcut:
      return error.issue ? message(*error.issue) : QString();
    case GlobalHotKeyError::Kind::unavailable:
      return localized("%@ is already in use. Choose a different shortcut.", {error.shortcut});
    case GlobalHotKeyError::Kind::registrationFailed:
      return localized("Quillmere couldn’t use %@. Choose a different shortcut.", {error.shortcut});
    case GlobalHotKeyError::Kind::handlerInstallationFailed:
      return localized("Quillmere couldn’t set up keyboard shortcuts. Quit and reopen Quillmere, then try again.");
  }
  return {};
}

}  // namespace quillmere
