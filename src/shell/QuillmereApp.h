#pragma once

#include <QtCore/QObject>
#include <functional>
#include <memory>

#include "inbox/InboxServices.h"
#include "model/AppModel.h"
#include "shell/Confirmations.h"
#include "shell/MenuBarExtra.h"

namespace quillmere {

class InboxWindow;
class SettingsWindow;

/// The application around the model: its windows, its tray icon, and when it starts, comes to the front and ends. It
/// lives on without a window.
class QuillmereApp {
 public:
  struct Launch {
    bool isLoginLaunch = false;  ///< started with the session, not by the person
    QString action = {};         ///< for `perform`; empty without one
  };
  QuillmereApp(AppModel& model, const InboxServices& inboxServices, SystemEvents& systemEvents);
  ~QuillmereApp();

  void didFinishLaunching(const Launch& launch);
  /// The person opened the application again.
  void reopen();
  /// What the launcher's menu and the session bus can ask for: "inbox", "review", "settings", "quit".
  void perform(const QString& action);
  void openInbox();
  void openSettings();
  bool isInboxShown() const;
  /// Asks first while screenshots wait, or when the list cannot be saved.
  void quit();
  /// The session ends: nothing is asked.
  void quitWithoutAsking();
  /// The last thing: a change that is not yet saved is saved now.
  void willTerminate();

  std::function<bool(const Confirmations::QuitConcerns&)> confirmQuit;

 private:
  AppModel& model_;
  InboxServices inboxServices_;
  std::unique_ptr<InboxWindow> inbox_;
  std::unique_ptr<SettingsWindow> settings_;
  MenuBarExtra menuBarExtra_;
  Connection changes_;
  QObject observer_;
  bool isAskingToQuit_ = false;
  bool isQuitting_ = false;
};

}  // namespace quillmere
