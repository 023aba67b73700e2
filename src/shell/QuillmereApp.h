#pragma once

#include <QtCore/QObject>
#include <chrono>
#include <functional>
#include <map>
#include <memory>

#include "inbox/InboxServices.h"
#include "model/AppModel.h"
#include "settings/DesktopTray.h"
#include "shell/ApplicationWindows.h"
#include "shell/Confirmations.h"
#include "shell/MenuBarExtra.h"
#include "update/SoftwareUpdateModel.h"

class QSessionManager;

namespace quillmere {

/// The program's own windows.
enum class AppWindow { inbox, settings, about, welcome };

/// The application around the model: its windows, its tray icon, and when it starts, comes to the front and ends. It
/// lives on without a window.
class QuillmereApp {
 public:
  struct Launch {
    bool isLoginLaunch = false;  ///< started with the session, not by the person
    QString action = {};         ///< for `perform`; empty without one
  };
  struct Services {
    InboxServices inbox;
    SystemEvents& systemEvents;
    SoftwareUpdateModel& updates;
    DesktopTray& tray;
    /// Gives what opens the capture tool's options, or nothing; asked for each window, since tools come and go.
    std::function<std::function<void()>()> openScreenshotOptions = nullptr;
  };
  /// Makes a window when it is opened; it is let go of after it was closed.
  using Maker = std::function<std::unique_ptr<QWidget>()>;

  QuillmereApp(AppModel& model, const Services& services);
  ~QuillmereApp();

  void didFinishLaunching(const Launch& launch);
  /// The person opened the application again.
  void reopen();
  /// What the launcher's menu and the session bus can ask for: a window by its name, "review", "close-window", "quit".
  void perform(const QString& action);
  void open(AppWindow window);
  bool isShown(AppWindow window) const;
  ApplicationWindows& windows() { return table_; }
  /// Whether the tray can show the icon at all.
  bool hasTray() const { return menuBarExtra_.hasTray(); }

  /// Saves, and asks first while screenshots wait, or when the list cannot be saved. False when the program goes on
  /// after all.
  bool quit();
  /// The session ends: nothing is asked.
  void quitWithoutAsking();
  /// The machine may end at any moment: what is not yet saved is on its way to the disk from now on. Whoever can hold
  /// the end up follows `AppModel::hasUnsavedWork`.
  void save();
  /// The session is about to end, and waits: the list is waited for, and a crop that is being written, each within
  /// `longestCommit`. Nobody is asked.
  void commitToSession();
  /// The last thing.
  void willTerminate() { finishSaving(longestCommit); }

  std::map<AppWindow, Maker> makers;
  std::function<bool(const Confirmations::QuitConcerns&)> confirmQuit;
  /// A disk that doesn't answer must not keep the person in the session, and a picture takes a moment.
  std::chrono::milliseconds longestCommit = std::chrono::seconds(10);
  /// Before the person who quits is asked whether to wait no longer.
  std::chrono::milliseconds longestSave = std::chrono::seconds(4);

 private:
  std::unique_ptr<QWidget> makeInbox();
  std::unique_ptr<QWidget> makeSettings();
  void showWelcomeIfDue();
  void letGoOfClosed();
  void followSession();
  void tellHowToRestart(QSessionManager& session);
  bool finishSaving(std::chrono::milliseconds longest);
  int waitingScreenshots() const;

  AppModel& model_;
  Services services_;
  std::map<AppWindow, std::unique_ptr<QWidget>> windows_;
  ApplicationWindows table_;  ///< goes before its windows, which close then
  MenuBarExtra menuBarExtra_;
  Connection changes_;
  Connection updateChanges_;
  Connection policyChanges_;
  Connection closings_;
  std::unique_ptr<QObject> quitRequests_;
  QObject observer_;
  bool isAskingToQuit_ = false;
  bool isQuitting_ = false;
};

}  // namespace quillmere
