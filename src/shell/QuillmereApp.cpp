#include "shell/QuillmereApp.h"

#include <QtCore/QEventLoop>
#include <QtCore/QScopeGuard>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtGui/QSessionManager>
#include <QtWidgets/QApplication>

#include "controls/Symbol.h"
#include "inbox/InboxWindow.h"
#include "settings/SettingsWindow.h"
#include "shell/Endpoints.h"

namespace quillmere {
namespace {

const std::map<QString, AppWindow>& windowNames() {
  static const std::map<QString, AppWindow> kNames{{QStringLiteral("inbox"), AppWindow::inbox},
                                                   {QStringLiteral("settings"), AppWindow::settings},
                                                   {QStringLiteral("about"), AppWindow::about},
                                                   {QStringLiteral("welcome"), AppWindow::welcome}};
  return kNames;
}

/// A menu, a drag or a question runs the events itself, and returns into the window that it was opened from.
bool isInsideOfAWindow() {
  return QThread::currentThread()->loopLevel() > 1 || QApplication::activeModalWidget();
}

Task<> endWhenSaved(Task<bool> saving, std::shared_ptr<QEventLoop> loop) {
  co_await saving;
  loop->quit();
}

/// The session's word to end, by which Qt would close window after window and give up where one stays.
class QuitRequests final : public QObject {
 public:
  explicit QuitRequests(std::function<void()> quit) : quit_(std::move(quit)) { qApp->installEventFilter(this); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched != qApp || event->type() != QEvent::Quit) return false;
    quit_();
    return true;
  }

 private:
  std::function<void()> quit_;
};

}  // namespace

QuillmereApp::QuillmereApp(AppModel& model, const Services& services)
    : makers{{AppWindow::inbox, [this] { return makeInbox(); }},
             {AppWindow::settings, [this] { return makeSettings(); }}},
      model_(model),
      services_(services),
      menuBarExtra_(model, services.updates, services.tray,
                    {.openInbox = [this] { open(AppWindow::inbox); },
                     .openAbout = [this] { open(AppWindow::about); },
                     .openSettings = [this] { open(AppWindow::settings); },
                     .quit = [this] { quit(); }}),
      quitRequests_(std::make_unique<QuitRequests>([this] { quitWithoutAsking(); })) {
  confirmQuit = [this](const Confirmations::QuitConcerns& concerns) {
    return Confirmations::quit(concerns, table_.placeForQuestion());
  };
  // It stays and watches when the last window closes.
  QApplication::setQuitOnLastWindowClosed(false);
  menuBarExtra_.setShown(*model_.settings().menuBarEnabled);
  changes_ = model_.changed.connect([this](const ModelChange& change) {
    if (change.field == ModelField::menuBarEnabled) menuBarExtra_.setShown(*model_.settings().menuBarEnabled);
  });
  updateChanges_ = services_.updates.changed.connect([this] {
    const auto inbox = windows_.find(AppWindow::inbox);
    if (inbox == windows_.end()) return;
    if (auto* window = dynamic_cast<InboxWindow*>(inbox->second.get())) window->refreshMenus();
  });
  QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &observer_, [this](auto state) {
    if (state == Qt::ApplicationActive) services_.systemEvents.didBecomeActive();
  });
  policyChanges_ = table_.policyChanged.connect([] {
    // Not before something of the program stands in the task bar: the icon has to be read.
    if (QApplication::windowIcon().isNull()) QApplication::setWindowIcon(applicationIcon());
  });
  closings_ = table_.closed.connect([this] {
    // Later: the window is still in the middle of closing.
    QMetaObject::invokeMethod(
        &observer_, [this] { letGoOfClosed(); }, Qt::QueuedConnection);
  });
  followSession();
}

QuillmereApp::~QuillmereApp() = default;

// --- Launch ---

void QuillmereApp::didFinishLaunching(const Launch& launch) {
  model_.start();
  const bool hasFolder = model_.watchFolderURL->has_value();
  // Started with the session and with a folder chosen, it stays silent; started for something else, it does that.
  const bool hasErrand = launch.isLoginLaunch || !launch.action.isEmpty();
  if (!hasFolder || !hasErrand) open(AppWindow::inbox);
  // A silent start leaves the welcome for when the person opens the program.
  if (!launch.isLoginLaunch || !hasFolder) showWelcomeIfDue();
  perform(launch.action);
}

void QuillmereApp::showWelcomeIfDue() {
  if (*model_.settings().hasSeenWelcome || !makers.contains(AppWindow::welcome)) return;
  model_.setHasSeenWelcome(true);
  open(AppWindow::welcome);
}

/// With one of its windows shown that one comes to the front, as the desktop does it where it can.
void QuillmereApp::reopen() {
  if (QWidget* shown = table_.front()) {
    table_.open(*shown);
  } else {
    open(AppWindow::inbox);
  }
}

void QuillmereApp::perform(const QString& action) {
  const auto window = windowNames().find(action);
  if (window != windowNames().end()) {
    open(window->second);
  } else if (action == QLatin1String("review")) {
    model_.reviewPending(FocusNews::silent);
  } else if (action == QLatin1String("close-window")) {
    table_.closeFront();
  } else if (action == QLatin1String("quit")) {
    quit();
  }
}

// --- Windows ---

void QuillmereApp::open(AppWindow kind) {
  // One that could not go when it was closed; what was begun in it is over.
  letGoOfClosed();
  std::unique_ptr<QWidget>& window = windows_[kind];
  if (!window) {
    const auto maker = makers.find(kind);
    if (maker == makers.end()) return;
    window = maker->second();
  }
  table_.open(*window);
}

void QuillmereApp::letGoOfClosed() {
  if (isInsideOfAWindow()) return;
  std::erase_if(windows_, [](const auto& entry) { return !entry.second || !entry.second->isVisible(); });
}

bool QuillmereApp::isShown(AppWindow window) const {
  const auto found = windows_.find(window);
  return found != windows_.end() && found->second && found->second->isVisible();
}

std::unique_ptr<QWidget> QuillmereApp::makeInbox() {
  auto inbox = std::make_unique<InboxWindow>(model_, services_.inbox);
  inbox->setProgram({
      .openSettings = [this] { open(AppWindow::settings); },
      .openAbout = [this] { open(AppWindow::about); },
      .openWelcome = [this] { open(AppWindow::welcome); },
      .checkForUpdates = [this] { services_.updates.checkForUpdates(); },
      .canCheckForUpdates = [this] { return services_.updates.canCheckForUpdates(); },
      .openHelp = [this] { services_.inbox.openHelp(HelpAnchor::contents); },
      .openSupport = [] { Endpoints::open(Endpoints::support()); },
      .writeToSupport = [] { Endpoints::open(Endpoints::supportMail()); },
      .quit = [this] { quit(); },
  });
  inbox->takeKeyboard();
  return inbox;
}

std::unique_ptr<QWidget> QuillmereApp::makeSettings() {
  SettingsServices services;
  services.defaults = services_.inbox.defaults;
  services.openHelp = services_.inbox.openHelp;
  if (services_.openScreenshotOptions) services.openScreenshotOptions = services_.openScreenshotOptions();
  services.updates = &services_.updates;
  services.tray = &services_.tray;
  services.events = &services_.systemEvents;
  services.confirmSavingHere = &Confirmations::savingScreenshotsIn;
  services.confirmClearingRecords = &Confirmations::clearingRecords;
  return std::make_unique<SettingsWindow>(model_, std::move(services));
}

// --- The end ---

int QuillmereApp::waitingScreenshots() const {
  // The program comes back at once after an update, and so do the screenshots that wait.
  const bool comesBack = services_.updates.isInstallingUpdate();
  return comesBack ? 0 : static_cast<int>(model_.prompts().queue->size());
}

bool QuillmereApp::quit() {
  if (std::exchange(isAskingToQuit_, true)) return false;
  const auto isOver = qScopeGuard([this] { isAskingToQuit_ = false; });
  const bool isSaved = finishSaving(longestSave);
  const Confirmations::QuitConcerns concerns{waitingScreenshots(), !isSaved};
  if (concerns.waitingScreenshots > 0 || concerns.isNotSaved) {
    ActivationPolicyLoan place(table_);
    place.borrow();
    if (!confirmQuit(concerns)) return false;
  }
  quitWithoutAsking();
  return true;
}

/// Files that are being written, thrown away, renamed or moved come first, as far as somebody who asks twice can wait.
void QuillmereApp::quitWithoutAsking() {
  if (!model_.isWritingFiles() || std::exchange(isQuitting_, true)) return QApplication::exit(0);
  model_.onFilesWritten = [] { QApplication::exit(0); };
}

void QuillmereApp::save() {
  if (model_.hasPendingSave()) model_.saveNow();
}

/// Whether all is on the disk. The windows are painted meanwhile.
bool QuillmereApp::finishSaving(std::chrono::milliseconds longest) {
  save();
  const Task<bool> saving = model_.whenSaved();
  if (!saving.isDone()) {
    const auto loop = std::make_shared<QEventLoop>();
    endWhenSaved(saving, loop).detach();
    QTimer::singleShot(longest, loop.get(), &QEventLoop::quit);
    loop->exec(QEventLoop::ExcludeUserInputEvents);
  }
  // A list that may not be written is no news at the end.
  return model_.isRecordsReadOnly() || (saving.isDone() && saving.await_resume());
}

// --- The session ---

void QuillmereApp::followSession() {
  // Before Qt sees to its windows: the session ends or may end, and nobody is asked.
  QObject::connect(
      qApp, &QGuiApplication::commitDataRequest, &observer_, [this] { commitToSession(); }, Qt::DirectConnection);
  QObject::connect(
      qApp, &QGuiApplication::saveStateRequest, &observer_,
      [this](QSessionManager& session) { tellHowToRestart(session); }, Qt::DirectConnection);
}

/// The session waits for this, so files that are being worked on are waited for.
void QuillmereApp::commitToSession() {
  finishSaving(longestCommit);
  if (!model_.isWritingFiles()) return;
  QEventLoop writing;
  const Connection changes = model_.changed.connect([&](const ModelChange& change) {
    if (change.field == ModelField::unsavedWork && !model_.isWritingFiles()) writing.quit();
  });
  QTimer::singleShot(longestCommit, &writing, &QEventLoop::quit);
  writing.exec(QEventLoop::ExcludeUserInputEvents);
  finishSaving(longestCommit);
}

/// A session manager that starts again what ran would start it a second time beside its login item, and not silently.
void QuillmereApp::tellHowToRestart(QSessionManager& session) {
  model_.refreshLoginItemStatus();
  if (*model_.loginItemStatus == LoginItemStatus::enabled) {
    session.setRestartHint(QSessionManager::RestartNever);
    return;
  }
  QStringList command{QApplication::applicationFilePath()};
  if (table_.policy() == ActivationPolicy::accessory) command << QStringLiteral("--autostart");
  command << QStringLiteral("-session") << session.sessionId() + QLatin1Char('_') + session.sessionKey();
  session.setRestartHint(QSessionManager::RestartIfRunning);
  session.setRestartCommand(command);
}

}  // namespace quillmere
