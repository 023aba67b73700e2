#include <QtWidgets/QApplication>

#include "controls/ApplicationAppearance.h"
#include "controls/KeyNames.h"
#include "model/AppModel.h"
#include "popup/CapturePromptPanelController.h"
#include "popup/LivePanelScreens.h"
#include "reading/ThumbnailLoader.h"
#include "shell/AboutWindow.h"
#include "shell/CommandLine.h"
#include "shell/Confirmations.h"
#include "shell/Endpoints.h"
#include "shell/FilePanels.h"
#include "shell/FolderChoice.h"
#include "shell/Platform.h"
#include "shell/QuillmereApp.h"
#include "shell/UpdateServices.h"
#include "shell/WelcomeWindow.h"
#include "update/UpdateLibrary.h"

using namespace quillmere;

int main(int argc, char** argv) {
  const auto request = CommandLine::read(argc, argv);
  if (const auto* answer = std::get_if<CommandLine::Answer>(&request)) return answer->print();

  const auto& asked = std::get<CommandLine::Start>(request);
  const auto start = startPlatform();
  QApplication application(argc, argv);
  if (asked.isForRunning) {
    start->askRunning(asked.action);
    return 0;
  }
  QApplication::setApplicationName(QStringLiteral("Quillmere"));
  QApplication::setApplicationVersion(QStringLiteral(QUILLMERE_VERSION));
  QGuiApplication::setDesktopFileName(QStringLiteral("com.quillmere.app"));
  // The C locale's own forms of dates are made for machines.
  if (QLocale().language() == QLocale::C) QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));

  KeyNames keyNames;
  QCoreApplication::installTranslator(&keyNames);
  ApplicationAppearance look;
  QuillmereApp* app = nullptr;
  const auto platform = start->begin({
                                         .reopen =
                                             [&app] {
                                               if (app) app->reopen();
                                             },
                                         .perform =
                                             [&app](const QString& action) {
                                               if (app) app->perform(action);
                                             },
                                         .terminate =
                                             [&app] {
                                               if (app) app->quitWithoutAsking();
                                             },
                                         .save =
                                             [&app] {
                                               if (app) app->save();
                                             },
                                     },
                                     asked.action);
  if (!platform) return 0;

  platform->followAppearance([&look](const Appearance& appearance) { look.show(appearance); });
  FilePanels filePanels(platform->fileDialogs());
  ThumbnailLoader thumbnails(
      platform->executor(), platform->pictures(), [&](const FileURL& url) { return platform->isDataless(url); },
      platform->sharedThumbnails());
  CapturePromptPanelController::Services popupServices = platform->popupServices();
  look.setCompositing([windows = popupServices.windowSystem] { return windows->isCompositing(); });
  LivePanelScreens screens(popupServices.windowSystem);
  popupServices.screens = &screens;
  popupServices.thumbnails = &thumbnails;
  CapturePromptPanelController popup(std::move(popupServices));

  AppModelDependencies dependencies = platform->modelDependencies();
  dependencies.promptPresenter = &popup;
  dependencies.fileChooser = &filePanels;
  dependencies.confirmDeletion = &Confirmations::deletion;
  const auto confirmWatching = [](const FileURL& folder) {
    return Confirmations::watching(folder, FileURL::fromPath(qgetenv("HOME").constData()));
  };
  dependencies.confirmWatching = confirmWatching;
  AppModel model(std::move(dependencies));
  const auto chooseFolder = [&] { return chooseFolderToWatch(model, filePanels, confirmWatching); };
  platform->follow(model);

  InboxServices inboxServices = platform->inboxServices();
  inboxServices.thumbnails = &thumbnails;
  SoftwareUpdateModel updates;
  QuillmereApp quillmere(model, {inboxServices, platform->systemEvents(), updates, platform->tray(),
                                 [&platform] { return platform->openScreenshotOptions(); }});
  quillmere.makers[AppWindow::about] = [&platform] {
    return std::make_unique<AboutWindow>(
        AboutInformation{.version = QApplication::applicationVersion(),
                         .build = QStringLiteral(QUILLMERE_BUILD_NUMBER),
                         .libraries = platform->linkedLibraries()},
        AboutWindow::Actions{.openWebsite = [] { Endpoints::open(Endpoints::website()); },
                             .openSupport = [] { Endpoints::open(Endpoints::support()); },
                             .openPrivacyPolicy = [] { Endpoints::open(Endpoints::privacyPolicy()); }});
  };
  quillmere.makers[AppWindow::welcome] = [&] {
    return std::make_unique<WelcomeWindow>(
        WelcomeWindow::Actions{.chooseFolder = chooseFolder,
                               .openScreenshotOptions = platform->openScreenshotOptions(),
                               .openHelp = platform->help()},
        platform->tray());
  };
  ActivationPolicyLoan updateLoan(quillmere.windows());
  UpdateLibrary updater(updates, *inboxServices.defaults, updateServices(updateLoan, [&] { return quillmere.quit(); }));
  app = &quillmere;
  quillmere.didFinishLaunching({.isLoginLaunch = asked.isLoginLaunch, .action = asked.action});
  updater.load(UpdateConfiguration::ofProgram(FileURL::fromPath(QApplication::applicationFilePath())));
  const int status = QApplication::exec();
  quillmere.willTerminate();
  app = nullptr;
  return status;
}
