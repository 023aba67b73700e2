#include "shell/QuillmereApp.h"

#include <QtCore/QThread>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

#include "controls/Symbol.h"
#include "inbox/InboxWindow.h"
#include "settings/SettingsWindow.h"

namespace quillmere {
namespace {

/// The sheet or question that is open over it, which has the keyboard as long as it holds the window up.
QWidget& foremostOver(QWidget& window) {
  for (QDialog* dialog : window.findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly)) {
    if (dialog->isModal() && dialog->isVisible()) return foremostOver(*dialog);
  }
  return window;
}

void bringForward(QWidget& window) {
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  QWidget& foremost = foremostOver(window);
  foremost.raise();
  foremost.activateWindow();
}

/// A menu, a drag or a question runs the events itself, and returns into the window that it was opened from.
bool isInsideOfAWindow() {
  return QThread::currentThread()->loopLevel() > 1 || QApplication::activeModalWidget();
}

}  // namespace

QuillmereApp::QuillmereApp(AppModel& model, const InboxServices& inboxServices, SystemEvents& systemEvents)
    : confirmQuit(&Confirmations::quit),
      model_(model),
      inboxServices_(inboxServices),
      menuBarExtra_({[this] { openInbox(); }, [this] { model_.reviewPending(FocusNews::silent); },
                     [this] { openSettings(); }, [this] { quit(); }}) {
  // It stays and watches when the last window closes.
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(applicationIcon());
  menuBarExtra_.setShown(*model_.settings().menuBarEnabled);
  changes_ = model_.changed.connect([this](const ModelChange& change) {
    if (change.field == ModelField::menuBarEnabled) menuBarExtra_.setShown(*model_.settings().menuBarEnabled);
  });
  QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &observer_, [&systemEvents](auto state) {
    if (state == Qt::ApplicationActive) systemEvents.didBecomeActive();
  });
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, &observer_, [this] { willTerminate(); });
}

QuillmereApp::~QuillmereApp() = default;

void QuillmereApp::didFinishLaunching(const Launch& launch) {
  model_.start();
  // Started with the session and with a folder chosen, it stays silent; started for something else, it does that.
  const bool hasErrand = launch.isLoginLaunch || !launch.action.isEmpty();
  if (!*model_.watchFolderURL || !hasErrand) openInbox();
  perform(launch.action);
}

void QuillmereApp::reopen() {
  openInbox();
}

void QuillmereApp::perform(const QString& action) {
  if (action == QLatin1String("inbox")) {
    openInbox();
  } else if (action == QLatin1String("review")) {
    model_.reviewPending(FocusNews::silent);
  } else if (action == QLatin1String("settings")) {
    openSettings();
  } else if (action == QLatin1String("quit")) {
    quit();
  }
}

void QuillmereApp::openInbox() {
  // One that could not go when it was closed; what was sought in it is over.
  if (inbox_ && !isInboxShown() && !isInsideOfAWindow()) inbox_.reset();
  if (!inbox_) {
    inbox_ = std::make_unique<InboxWindow>(model_, inboxServices_);
    inbox_->onOpenSettings = [this] { openSettings(); };
    inbox_->onQuit = [this] { quit(); };
    inbox_->takeKeyboard();
    // Later: the window is still in the middle of closing.
    inbox_->onClosed = [this] {
      QMetaObject::invokeMethod(
          &observer_,
          [this] {
            if (!isInboxShown() && !isInsideOfAWindow()) inbox_.reset();
          },
          Qt::QueuedConnection);
    };
  }
  bringForward(*inbox_);
}

void QuillmereApp::openSettings() {
  if (!settings_) {
    SettingsServices services;
    services.defaults = inboxServices_.defaults;
    services.openHelp = inboxServices_.openHelp;
    services.confirmSavingHere = &Confirmations::savingScreenshotsIn;
    services.confirmClearingRecords = &Confirmations::clearingRecords;
    settings_ = std::make_unique<SettingsWindow>(model_, std::move(services));
  }
  bringForward(*settings_);
}

bool QuillmereApp::isInboxShown() const {
  return inbox_ && inbox_->isVisible();
}

void QuillmereApp::quit() {
  if (isAskingToQuit_) return;
  if (!model_.isSaved()) model_.saveNow();
  const Confirmations::QuitConcerns concerns{static_cast<int>(model_.prompts().queue->size()), !model_.isSaved()};
  if (concerns.waitingScreenshots > 0 || concerns.isNotSaved) {
    isAskingToQuit_ = true;
    const bool confirmed = confirmQuit(concerns);
    isAskingToQuit_ = false;
    if (!confirmed) return;
  }
  quitWithoutAsking();
}

/// A crop that is being written comes first, as far as somebody who asks twice can wait.
void QuillmereApp::quitWithoutAsking() {
  if (!model_.isWritingCrops() || std::exchange(isQuitting_, true)) return QApplication::exit(0);
  model_.onCropsWritten = [] { QApplication::exit(0); };
}

void QuillmereApp::willTerminate() {
  if (model_.hasPendingSave()) model_.saveNow();
}

}  // namespace quillmere
