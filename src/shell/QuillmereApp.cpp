#include "shell/QuillmereApp.h"

#include <QtWidgets/QApplication>

#include "controls/Symbol.h"
#include "inbox/InboxWindow.h"
#include "shell/SettingsWindow.h"

namespace quillmere {
namespace {

void bringForward(QWidget& window) {
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace

QuillmereApp::QuillmereApp(AppModel& model, ThumbnailLoader& thumbnails, SystemEvents& systemEvents)
    : confirmQuit(&Confirmations::quit),
      model_(model),
      thumbnails_(thumbnails),
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

void QuillmereApp::didFinishLaunching(Launch launch) {
  model_.start();
  // Started with the session and with a folder chosen, it stays silent.
  if (!*model_.watchFolderURL || !launch.isLoginLaunch) openInbox();
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
  if (!inbox_) {
    inbox_ = std::make_unique<InboxWindow>(model_, thumbnails_);
    // Later: the window is still in the middle of closing.
    inbox_->onClosed = [this] {
      QMetaObject::invokeMethod(
          &observer_,
          [this] {
            if (!isInboxShown() && !QApplication::activeModalWidget()) inbox_.reset();
          },
          Qt::QueuedConnection);
    };
  }
  bringForward(*inbox_);
}

void QuillmereApp::openSettings() {
  if (!settings_) {
    settings_ = std::make_unique<SettingsWindow>(model_);
    settings_->confirmSavingHere = &Confirmations::savingScreenshotsIn;
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

void QuillmereApp::quitWithoutAsking() {
  QApplication::exit(0);
}

void QuillmereApp::willTerminate() {
  if (model_.hasPendingSave()) model_.saveNow();
}

}  // namespace quillmere
