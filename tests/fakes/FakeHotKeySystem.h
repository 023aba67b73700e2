#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "hotkeys/LiveHotKeys.h"

namespace quillmere::testing {

/// A system that answers what the test says, and keeps what it was told in order.
class FakeHotKeySystem final : public HotKeySystem {
 public:
  ~FakeHotKeySystem() override {
    if (onEnd) onEnd();
  }
  qint32 installHandler(Handler given) override {
    calls.push_back("install");
    if (handlerStatus == hotKeyDone) handler = std::move(given);
    return handlerStatus;
  }
  void removeHandler() override {
    calls.push_back("remove");
    handler = nullptr;
  }
  Answer registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) override {
    calls.push_back("register " + std::to_string(key.id));
    signatures.push_back(key.signature);
    if (const auto answer = answers.find(key.id); answer != answers.end()) return answer->second;
    registered[++lastReference] = {shortcut, key.id};
    return {hotKeyDone, lastReference};
  }
  void unregisterHotKey(Reference reference) override {
    calls.push_back("unregister " + std::to_string(registered.at(reference).second));
    registered.erase(reference);
  }
  HotKeyReach reach() const override { return reaches; }
  QString chosenByDesktop() const override { return chosen; }

  qint32 press(quint32 id) const {
    const HotKeyPress told{.key = {.id = id}};
    return handler(&told);
  }
  std::vector<std::string> told() { return std::exchange(calls, {}); }

  Handler handler;
  qint32 handlerStatus = hotKeyDone;
  std::map<quint32, Answer> answers;  ///< by id, instead of registering
  std::map<Reference, std::pair<HotKeyShortcut, quint32>> registered;
  Reference lastReference = 100;
  std::vector<std::string> calls;
  std::vector<quint32> signatures;
  HotKeyReach reaches = HotKeyReach::everywhere;
  QString chosen;
  std::function<void()> onEnd;
};

}  // namespace quillmere::testing
