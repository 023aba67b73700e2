#include "model/HotKeys.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using Kind = GlobalHotKeyError::Kind;
using Issue = HotKeyShortcut::Issue;

TEST(HotKeysTest, EachFailureHasItsWords) {
  struct Row {
    GlobalHotKeyError error;
    const char* text;
  };
  const QString shortcut = "Ctrl+Shift+Super+B";
  const Row rows[]{
      {{.kind = Kind::invalidShortcut, .issue = Issue::needsModifier}, "Include Super, Ctrl, or Alt."},
      {{.kind = Kind::invalidShortcut}, ""},
      {{.kind = Kind::unavailable, .shortcut = shortcut},
       "Ctrl+Shift+Super+B is already in use. Choose a different shortcut."},
      {{.kind = Kind::registrationFailed, .shortcut = shortcut, .status = -50},
       "Quillmere couldn’t use Ctrl+Shift+Super+B. Choose a different shortcut."},
      {{.kind = Kind::handlerInstallationFailed, .status = -50},
       "Quillmere couldn’t set up keyboard shortcuts. Quit and reopen Quillmere, then try again."},
  };
  for (const Row& row : rows) EXPECT_EQ(message(row.error), row.text);
}

TEST(HotKeysTest, AnInvalidShortcutIsToldByItsIssue) {
  for (const Issue issue : {Issue::needsModifier, Issue::typesCharacter, Issue::reserved}) {
    EXPECT_EQ(message(GlobalHotKeyError{.kind = Kind::invalidShortcut, .issue = issue}), message(issue));
  }
}

TEST(HotKeysTest, TheStatusIsNotShown) {
  const GlobalHotKeyError one{.kind = Kind::registrationFailed, .shortcut = "Ctrl+B", .status = 1};
  const GlobalHotKeyError other{.kind = Kind::registrationFailed, .shortcut = "Ctrl+B", .status = 2};
  EXPECT_EQ(message(one), message(other));
  EXPECT_NE(one, other);
}

}  // namespace
}  // namespace quillmere
