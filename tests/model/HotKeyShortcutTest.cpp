#include "model/HotKeyShortcut.h"

#include <gmock/gmock.h>
#include <map>
#include <set>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

using Issue = HotKeyShortcut::Issue;

constexpr quint64 kShift = HotKeyShortcut::shift;
constexpr quint64 kControl = HotKeyShortcut::control;
constexpr quint64 kOption = HotKeyShortcut::option;
constexpr quint64 kCommand = HotKeyShortcut::command;
constexpr quint64 kAll = kShift | kControl | kOption | kCommand;

constexpr quint32 kB = 11;
constexpr quint32 kF5 = 96;
const std::vector<quint32> kFunctionKeys{122, 120, 99,  118, 96,  97,  98, 100, 101, 109,
                                         103, 111, 105, 107, 113, 106, 64, 79,  80,  90};

/// Every choice of modifiers.
std::vector<quint64> modifierSets() {
  std::vector<quint64> sets;
  for (unsigned choice = 0; choice < 16; ++choice) sets.push_back(quint64{choice} << 17U);
  return sets;
}

std::optional<Issue> issueOf(quint32 key, quint64 modifiers) {
  return HotKeyShortcut{key, modifiers}.validate();
}

class Layout final : public KeyboardLayout {
 public:
  QStringList texts(quint32 keyCode) const override {
    const auto found = named.find(keyCode);
    return found == named.end() ? QStringList() : found->second;
  }
  std::optional<quint32> keyCode(quint32) const override { return std::nullopt; }
  std::map<quint32, QStringList> named{{kB, {"b"}}};
};

// --- What may be a shortcut ---

TEST(HotKeyShortcutTest, TheModifiersAreTheStoredBits) {
  EXPECT_EQ(kShift, 0x20000u);
  EXPECT_EQ(kControl, 0x40000u);
  EXPECT_EQ(kOption, 0x80000u);
  EXPECT_EQ(kCommand, 0x100000u);
  EXPECT_EQ(HotKeyShortcut::kModifierMask, 0x1E0000u);
  EXPECT_EQ(HotKeyShortcut::standard(), (HotKeyShortcut{11, 0x160000}));
}

TEST(HotKeyShortcutTest, ExamplesOfEachRule) {
  EXPECT_EQ(issueOf(kB, 0), Issue::needsModifier);
  EXPECT_EQ(issueOf(kB, kShift), Issue::needsModifier);
  EXPECT_EQ(issueOf(kF5, kShift), Issue::needsModifier) << "a function key too";
  EXPECT_EQ(issueOf(kB, kOption), Issue::typesCharacter);
  EXPECT_EQ(issueOf(kB, kOption | kShift), Issue::typesCharacter);
  EXPECT_EQ(issueOf(kF5, kOption), std::nullopt);
  EXPECT_EQ(issueOf(kB, kControl | kOption), std::nullopt);
  EXPECT_EQ(issueOf(kF5, kCommand), Issue::reserved);
  EXPECT_EQ(issueOf(kF5, kOption | kCommand), Issue::reserved);
  EXPECT_EQ(HotKeyShortcut::standard().validate(), std::nullopt);
  for (const quint32 digit : {20U, 21U, 23U, 22U}) {
    EXPECT_EQ(issueOf(digit, kControl | kShift | kCommand), Issue::reserved);
  }
}

TEST(HotKeyShortcutTest, WithoutSuperControlOrAltEveryKeyNeedsOne) {
  for (quint32 key = 0; key < 128; ++key) {
    EXPECT_EQ(issueOf(key, 0), Issue::needsModifier) << key;
    EXPECT_EQ(issueOf(key, kShift), Issue::needsModifier) << key;
  }
}

TEST(HotKeyShortcutTest, WithAltAloneOnlyFunctionKeysDo) {
  const std::set<quint32> functionKeys(kFunctionKeys.begin(), kFunctionKeys.end());
  EXPECT_EQ(functionKeys.size(), 20u);
  for (quint32 key = 0; key < 128; ++key) {
    const auto expected = functionKeys.contains(key) ? std::nullopt : std::optional(Issue::typesCharacter);
    EXPECT_EQ(issueOf(key, kOption), expected) << key;
    EXPECT_EQ(issueOf(key, kOption | kShift), expected) << key;
  }
}

TEST(HotKeyShortcutTest, ExactlyTheCombinationsOfTheTableAreReserved) {
  const std::map<quint64, std::set<quint32>> table{
      {kCommand, {12, 13, 4, 46, 45, 31, 35, 1, 0, 8, 9, 7, 6, 3, 17, 43, 50, 48, 49, 96, 123, 124, 126, 125}},
      {kCommand | kShift, {48, 6, 12, 20, 21, 23, 22, 44, 123, 124, 126, 125}},
      {kControl | kCommand | kShift, {20, 21, 23, 22}},
      {kControl | kCommand, {12, 3, 49}},
      {kOption | kCommand, {53, 49, 4, 2, 28, 24, 27, 96}},
      {kOption | kShift | kCommand, {12}},
      {kControl | kOption | kCommand, {28, 47, 43}},
      {kControl,
       {49, 122, 120, 99, 118, 96, 97, 98, 100, 123, 124, 126, 125, 0, 11, 2, 14, 3, 4, 40, 45, 31, 35, 17, 9, 16}},
  };
  size_t reserved = 0;
  for (const quint64 modifiers : modifierSets()) {
    if ((modifiers & (kControl | kCommand)) == 0) continue;  // another rule comes first
    const auto row = table.find(modifiers);
    for (quint32 key = 0; key < 256; ++key) {
      const bool isReserved = row != table.end() && row->second.contains(key);
      EXPECT_EQ(issueOf(key, modifiers), isReserved ? std::optional(Issue::reserved) : std::nullopt)
          << key << " with " << std::hex << modifiers;
      reserved += isReserved;
    }
  }
  EXPECT_EQ(reserved, 24u + 12 + 4 + 3 + 8 + 1 + 3 + 26);
}

TEST(HotKeyShortcutTest, ControlWithAltOrShiftIsNowhereReserved) {
  for (quint32 key = 0; key < 256; ++key) {
    EXPECT_EQ(issueOf(key, kControl | kOption), std::nullopt) << key;
    EXPECT_EQ(issueOf(key, kControl | kShift), std::nullopt) << key;
  }
}

TEST(HotKeyShortcutTest, EachIssueHasItsWords) {
  EXPECT_EQ(message(Issue::needsModifier), localized("Include Command, Control, or Option."));
  EXPECT_EQ(message(Issue::needsModifier), "Include Super, Ctrl, or Alt.");
  EXPECT_EQ(message(Issue::typesCharacter),
            localized("Option shortcuts type special characters. Add Command or Control."));
  EXPECT_EQ(message(Issue::reserved),
            localized("macOS or most apps already use this shortcut. Choose a different shortcut."));
  for (const Issue issue : {Issue::needsModifier, Issue::typesCharacter, Issue::reserved}) {
    for (const char* foreign : {"macOS", "Command", "Option"}) EXPECT_FALSE(message(issue).contains(foreign));
  }
}

// --- How it is written ---

TEST(HotKeyShortcutTest, ModifiersStandInOneOrder) {
  const Layout layout;
  EXPECT_EQ((HotKeyShortcut{kB, kAll}.symbols(layout)), "Ctrl+Alt+Shift+Super+B");
  EXPECT_EQ((HotKeyShortcut{kB, kAll}.spelledOut(layout)), "Ctrl+Alt+Shift+Super+B");
  EXPECT_EQ(HotKeyShortcut::standard().symbols(layout), "Ctrl+Shift+Super+B");
  EXPECT_EQ(HotKeyShortcut::standard().spelledOut(layout), "Ctrl+Shift+Super+B");
  EXPECT_EQ((HotKeyShortcut{51, kOption | kCommand}.symbols(layout)), "Alt+Super+Backspace");
  EXPECT_EQ((HotKeyShortcut{123, kShift | kCommand}.symbols(layout)), "Shift+Super+←");
  EXPECT_EQ((HotKeyShortcut{123, kShift | kCommand}.spelledOut(layout)), "Shift+Super+Left Arrow");
  EXPECT_EQ((HotKeyShortcut{kB, 0}.symbols(layout)), "B");
  EXPECT_EQ((HotKeyShortcut{kB, 0}.spelledOut(layout)), "B");
}

TEST(HotKeyShortcutTest, FixedKeysHaveNamesThatNoLayoutChanges) {
  struct Row {
    quint32 key;
    const char* symbol;
    const char* spelled;
  };
  const Row rows[]{{36, "Return", "Return"},       {48, "Tab", "Tab"},        {49, "Space", "Space"},
                   {51, "Backspace", "Backspace"}, {53, "Escape", "Escape"},  {76, "Enter", "Enter"},
                   {114, "Insert", "Insert"},      {115, "Home", "Home"},     {116, "Page Up", "Page Up"},
                   {117, "Delete", "Delete"},      {119, "End", "End"},       {121, "Page Down", "Page Down"},
                   {123, "←", "Left Arrow"},       {124, "→", "Right Arrow"}, {125, "↓", "Down Arrow"},
                   {126, "↑", "Up Arrow"}};
  Layout layout;
  for (const Row& row : rows) {
    layout.named[row.key] = {"wrong"};
    EXPECT_EQ((HotKeyShortcut{row.key, 0}.symbols(layout)), row.symbol);
    EXPECT_EQ((HotKeyShortcut{row.key, 0}.spelledOut(layout)), row.spelled);
  }
}

TEST(HotKeyShortcutTest, FunctionKeysAreCalledByTheirNumbers) {
  const Layout layout;
  for (size_t i = 0; i < kFunctionKeys.size(); ++i) {
    const QString name = "F" + QString::number(i + 1);
    EXPECT_EQ((HotKeyShortcut{kFunctionKeys[i], 0}.symbols(layout)), name);
    EXPECT_EQ((HotKeyShortcut{kFunctionKeys[i], 0}.spelledOut(layout)), name);
  }
}

TEST(HotKeyShortcutTest, TheLayoutsTextIsTrimmedAndInCapitals) {
  Layout layout;
  for (const auto& [text, name] : std::map<QString, QString>{{"b", "B"},
                                                             {" b\n", "B"},
                                                             {"\t\x01 b \x7f", "B"},
                                                             {"й", "Й"},
                                                             {"ß", "SS"},
                                                             {"é", "É"},
                                                             {";", ";"},
                                                             {"a b", "A B"}}) {
    layout.named[kB] = {text};
    EXPECT_EQ((HotKeyShortcut{kB, kControl}.symbols(layout)), "Ctrl+" + name);
    EXPECT_EQ((HotKeyShortcut{kB, kControl}.spelledOut(layout)), "Ctrl+" + name);
  }
}

TEST(HotKeyShortcutTest, WhereTheFirstLayoutHasNoTextTheLatinOneNamesTheKey) {
  Layout layout;
  for (const char* empty : {"", " ", "\n", "\x1b"}) {
    layout.named[kB] = {empty, "b"};
    EXPECT_EQ((HotKeyShortcut{kB, kControl}.symbols(layout)), "Ctrl+B");
  }
  layout.named[kB] = {"и", "b"};
  EXPECT_EQ((HotKeyShortcut{kB, kControl}.symbols(layout)), "Ctrl+И");
}

TEST(HotKeyShortcutTest, AKeyThatNoLayoutNamesIsCalledByItsCode) {
  Layout layout;
  layout.named[kB] = {" ", ""};
  EXPECT_EQ((HotKeyShortcut{kB, kControl | kCommand}.symbols(layout)), "Ctrl+Super+Key 11");
  EXPECT_EQ((HotKeyShortcut{71, kControl}.symbols(layout)), "Ctrl+Key 71");
  EXPECT_EQ((HotKeyShortcut{4294967295, kControl}.spelledOut(layout)), "Ctrl+Key 4294967295");
}

// --- How it is stored ---

TEST(StoredShortcutTest, AShortcutComesBackAsItWas) {
  for (const quint64 modifiers : modifierSets()) {
    const HotKeyShortcut shortcut{96, modifiers};
    EXPECT_EQ(StoredShortcut::decode(StoredShortcut::encode(shortcut)), std::optional(std::optional(shortcut)));
  }
  EXPECT_EQ(StoredShortcut::encode(HotKeyShortcut::standard()), R"({"keyCode":11,"modifiers":1441792})");
}

TEST(StoredShortcutTest, TheChoiceOfNoneIsNull) {
  EXPECT_EQ(StoredShortcut::encode(std::nullopt), "null");
  for (const char* null : {"null", " null\n"}) {
    const auto decoded = StoredShortcut::decode(null);
    ASSERT_TRUE(decoded.has_value()) << null;
    EXPECT_EQ(*decoded, std::nullopt);
  }
}

TEST(StoredShortcutTest, StrayFlagsHaveNoEffect) {
  const auto decoded = StoredShortcut::decode(R"({"modifiers":1441792,"keyCode":11})");
  EXPECT_EQ(decoded, std::optional(std::optional(HotKeyShortcut::standard())));
  // With caps lock, the keypad's flag and what a device adds.
  EXPECT_EQ(StoredShortcut::decode(R"({"keyCode":11,"modifiers":3735816,"more":"x"})"),
            std::optional(std::optional(HotKeyShortcut{11, 3735816 & 0x1E0000})));
  EXPECT_EQ(StoredShortcut::decode(R"({"keyCode":11,"modifiers":18014398510923775})"),
            std::optional(std::optional(HotKeyShortcut{11, 18014398510923775U & 0x1E0000U})));
}

TEST(StoredShortcutTest, WhatCannotBeReadIsNothing) {
  for (const char* corrupt : {"", "nul", "11", "[]", "{}", "\"null\"", R"({"keyCode":11})", R"({"modifiers":1441792})",
                              R"({"keyCode":"11","modifiers":1441792})", R"({"keyCode":-1,"modifiers":1441792})",
                              R"({"keyCode":4294967296,"modifiers":1441792})", R"({"keyCode":11,"modifiers":-1})",
                              R"({"keyCode":11.5,"modifiers":1441792})", R"({"keyCode":null,"modifiers":1441792})",
                              R"({"keyCode":11,"modifiers":1441792)", "\xff\xfe"}) {
    EXPECT_EQ(StoredShortcut::decode(corrupt), std::nullopt) << corrupt;
  }
  EXPECT_TRUE(StoredShortcut::decode(R"({"keyCode":4294967295,"modifiers":0})").has_value());
}

}  // namespace
}  // namespace quillmere
