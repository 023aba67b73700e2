#include "inbox/InboxWindow.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Alert.h"
#include "controls/Metrics.h"
#include "foundation/Localized.h"
#include "inbox/InboxDetail.h"
#include "inbox/InboxPlace.h"
#include "inbox/InboxSheets.h"
#include "inbox/InboxSidebar.h"
#include "inbox/MessageView.h"
#include "inbox/QuickLookPresenter.h"
#include "inbox/RenameSessionGuard.h"
#include "inbox/ScreenshotDrag.h"
#include "inbox/ScreenshotNameEditor.h"
#include "inbox/ScreenshotSelectionView.h"
#include "inbox/SearchField.h"

namespace quillmere {
namespace {

constexpr QSize kWindowSize(1040, 680);
constexpr QSize kSmallestSize(640, 420);
constexpr int kSidebarWidth = 360;
constexpr int kSmallestSidebar = 240;
constexpr int kSmallestDetail = 360;

std::vector<InboxPlace::Screen> screens() {
  std::vector<InboxPlace::Screen> screens;
  for (const QScreen* screen : QGuiApplication::screens()) {
    screens.push_back({screen->name(), screen->availableGeometry()});
  }
  return screens;
}

}  // namespace

InboxWindow::InboxWindow(AppModel& model, const InboxServices& services)
    : model_(model), presentation_(model, services), sharing_(presentation_) {
  setWindowTitle(localized("Quillmere"));
  setMinimumSize(kSmallestSize);
  split_ = new QSplitter(this);
  split_->setHandleWidth(1);
  split_->setChildrenCollapsible(false);
  sidebar_ = new InboxSidebar(presentation_, split_);
  sidebar_->setMinimumWidth(kSmallestSidebar);
  QWidget* detail = makeDetail();
  detail->setMinimumWidth(kSmallestDetail);
  split_->setStretchFactor(0, 0);
  split_->setStretchFactor(1, 1);
  makeMenus();
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->setMenuBar(&menus_->bar());
  column->addWidget(split_, 1);

  InboxListView& list = sidebar_->list();
  list.onOpen = [this] { perform(ScreenshotCommand::quickLook); };
  list.onContextMenu = [this](const std::vector<UUID>& ids, QPoint global) { openContextMenu(ids, global); };
  list.onDrag = [this](const std::vector<UUID>& ids) { drag(ids); };
  selected_->onDrag = [this](const UUID& id) { drag({id}); };
  selected_->name().onRename = [this] { renameInHeader(); };
  presentation_.placeForRename = [this](const UUID& id) { return placeForRename(id); };
  quickLook_ = std::make_unique<QuickLookPresenter>(presentation_, *this);
  quickLook_->onStep = [&list](int step) { list.step(step); };
  quickLook_->picture = [this](const ScreenshotItem& item) { return selected_->picture(item); };
  sheets_ = std::make_unique<InboxSheets>(presentation_, *this);
  renameGuard_ = std::make_unique<RenameSessionGuard>(presentation_, *this);
  connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, [this] { sidebar_->escape(); });

  changes_ = model.changed.connect([this](const ModelChange& change) { follow(change); });
  presentationChanges_ =
      presentation_.changed.connect([this](const InboxChange& change) { followPresentation(change); });
  restorePlace();
  refresh();
}

InboxWindow::~InboxWindow() {
  // Its parts tell of themselves while they go.
  changes_.reset();
  presentationChanges_.reset();
}

// --- The parts ---

QWidget* InboxWindow::makeToolbar() {
  toolbar_ = new QWidget(split_);
  share_ = new ActionButton(ActionButton::Role::icon, QStringLiteral("square.and.arrow.up"), {}, toolbar_);
  share_->setAccessibleName(localized("Share"));
  connect(share_, &QPushButton::clicked, this, [this] { sharing_.openMenu(*share_); });
  more_ = new ActionButton(ActionButton::Role::icon, QStringLiteral("ellipsis.circle"), {}, toolbar_);
  more_->setAccessibleName(localized("More"));
  more_->setToolTip(localized("Everything that can be done with the selected screenshots"));
  connect(more_, &QPushButton::clicked, this, [this] {
    QMenu menu(more_);
    new ScreenshotMenuItems(
        menu, [this] { return ScreenshotActionsMenu::ofSelection(presentation_); }, sharing_,
        ScreenshotMenuItems::Keys::shown);
    menu.exec(more_->mapToGlobal(QPoint(0, more_->height() + 4)));
  });
  auto* row = new QHBoxLayout(toolbar_);
  // In line with the search field, and with the picture's edge below.
  row->setContentsMargins(12, 12, 12, 0);
  toolbar_->setFixedHeight(12 + Metrics::kControlHeight);
  row->setSpacing(0);
  row->addStretch();
  row->addWidget(share_);
  row->addSpacing(8);
  row->addWidget(more_);
  row->addSpacing(8);
  return toolbar_;
}

QWidget* InboxWindow::makeDetail() {
  auto* side = new QWidget(split_);
  makeToolbar();
  detail_ = new QStackedWidget(side);
  setup_ = new MessageView({QStringLiteral("folder.badge.gearshape"), localized("Choose Your Screenshot Folder"),
                            localized("Quillmere watches the folder where macOS saves screenshots. Your normal "
                                      "screenshot shortcuts stay unchanged."),
                            localized("Choose Screenshot Folder…")},
                           detail_);
  setup_->onAction = [this] { model_.chooseWatchFolder(); };
  noScreenshots_ = new MessageView({QStringLiteral("viewfinder"),
                                    localized("No Screenshots Yet"),
                                    localized("Take a screenshot with Shift-Command-3, 4, or 5. It will appear here."),
                                    {}},
                                   detail_);
  noSelection_ = new MessageView({QStringLiteral("rectangle.dashed"),
                                  localized("No Screenshot Selected"),
                                  localized("Select a screenshot to review, extract, or save it."),
                                  {}},
                                 detail_);
  selected_ = new InboxDetail(model_, presentation_, detail_);
  several_ = new ScreenshotSelectionView(model_, presentation_, detail_);
  for (QWidget* page :
       {static_cast<QWidget*>(setup_), static_cast<QWidget*>(noScreenshots_), static_cast<QWidget*>(noSelection_),
        static_cast<QWidget*>(selected_), static_cast<QWidget*>(several_)}) {
    detail_->addWidget(page);
  }
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(toolbar_);
  column->addWidget(detail_, 1);
  return side;
}

void InboxWindow::makeMenus() {
  const auto program = [this](std::function<void()> ProgramActions::*action) {
    return [this, action] {
      if (const auto& perform = program_.*action) perform();
    };
  };
  const auto selectAll = [this] {
    auto* field = dynamic_cast<QLineEdit*>(focusWidget());
    field ? field->selectAll() : sidebar_->list().selectAll();
  };
  menus_ = std::make_unique<InboxMenuBar>(
      presentation_, sharing_,
      InboxMenuBar::Actions{
          .chooseFolder = [this] { model_.chooseWatchFolder(); },
          .openSettings = program(&ProgramActions::openSettings),
          .openAbout = program(&ProgramActions::openAbout),
          .checkForUpdates = program(&ProgramActions::checkForUpdates),
          .canCheckForUpdates = [this] { return program_.canCheckForUpdates && program_.canCheckForUpdates(); },
          .close = [this] { close(); },
          .quit = program(&ProgramActions::quit),
          .openWelcome = program(&ProgramActions::openWelcome),
          .openHelp = program(&ProgramActions::openHelp),
          .openSupport = program(&ProgramActions::openSupport),
          .writeToSupport = program(&ProgramActions::writeToSupport),
          .selectAll = selectAll,
          .showKeys = [this] { showKeys(); },
      },
      *this);
}

void InboxWindow::setProgram(ProgramActions program) {
  program_ = std::move(program);
  menus_->refresh();
}

void InboxWindow::takeKeyboard() {
  sidebar_->list().takeKeyboard();
}

InboxPresentation::RenamePlace InboxWindow::placeForRename(const UUID& id) {
  using Place = InboxPresentation::RenamePlace;
  const QWidget* keyboard = QApplication::focusWidget();
  const bool isInDetail = isHeaderClicked_ || (keyboard && selected_->isAncestorOf(keyboard));
  const Place place = sidebar_->list().isInSight(id) && !isInDetail ? Place::list : Place::header;
  selected_->name().setEditable(place == Place::header);
  return place;
}

void InboxWindow::renameInHeader() {
  isHeaderClicked_ = true;
  perform(ScreenshotCommand::rename);
  isHeaderClicked_ = false;
}

// --- Its place ---

void InboxWindow::restorePlace() {
  const auto& defaults = *presentation_.services().defaults;
  const auto place = InboxPlace::read(defaults).place(screens(), kWindowSize);
  setGeometry(place.frame);
  if (place.isMaximized) setWindowState(Qt::WindowMaximized);
  const int sidebar = place.sidebarWidth > 0 ? place.sidebarWidth : kSidebarWidth;
  split_->setSizes({sidebar, std::max(1, place.frame.width() - sidebar)});
}

void InboxWindow::savePlace() {
  auto& defaults = *presentation_.services().defaults;
  InboxPlace places = InboxPlace::read(defaults);
  const bool isMaximized = windowState().testFlag(Qt::WindowMaximized);
  const QRect frame = isMaximized ? normalGeometry() : geometry();
  places.note(screen()->name(), {frame, isMaximized, sidebar_->isVisible() ? sidebar_->width() : 0});
  places.write(defaults);
}

// --- What it follows ---

void InboxWindow::follow(const ModelChange& change) {
  switch (change.field) {
    case ModelField::inboxError:
      // In a later turn: the failing operation must be over before its message waits for an answer.
      if (*model_.inboxError)
        QMetaObject::invokeMethod(
            this, [this] { showInboxError(); }, Qt::QueuedConnection);
      return;
    case ModelField::selectedItemIDs:
      // What is selected and what is shown never differ.
      showDetail();
      refreshSoon();
      return;
    case ModelField::items:
    case ModelField::unavailableItemIDs:
    case ModelField::evictedItemIDs:
    case ModelField::iCloudItemIDs:
    case ModelField::downloadStates:
    case ModelField::analyzingIDs:
    case ModelField::analyzeScreenshots:
    case ModelField::intelligenceUnavailability:
    case ModelField::showsDeleteImmediately:
    case ModelField::deletesChosenImmediately:
    case ModelField::macOSScreenshotFolder:
    case ModelField::watchFolderHasReceivedScreenshot:
    case ModelField::dismissedLocationMismatchPath:
    case ModelField::watchFolderURL:
    case ModelField::watcherStatus:
    case ModelField::backgroundIssue:
      refreshSoon();
      return;
    default:
      return;
  }
}

void InboxWindow::followPresentation(const InboxChange& change) {
  switch (change.field) {
    case InboxField::quickLookURL:
      quickLook_->follow();
      return;
    case InboxField::filter:
      return;
    default:
      refreshSoon();
      return;
  }
}

/// A thousand changes of one turn are shown once.
void InboxWindow::refreshSoon() {
  if (isRefreshing_) return;
  isRefreshing_ = true;
  QMetaObject::invokeMethod(
      this,
      [this] {
        isRefreshing_ = false;
        refresh();
      },
      Qt::QueuedConnection);
}

void InboxWindow::refresh() {
  const bool isSettingUp = !*model_.watchFolderURL;
  // Before the first folder there is nothing to list.
  sidebar_->setVisible(!isSettingUp || !model_.items().empty());
  sidebar_->refresh(!isSettingUp);
  showDetail();
  menus_->refresh();
  quickLook_->follow();
  const ScreenshotActionsMenu commands = ScreenshotActionsMenu::ofSelection(presentation_);
  const bool canShare = commands.isEnabled(ScreenshotCommand::share);
  share_->setEnabled(canShare);
  const bool isOffered = canShare || commands.ids().empty();
  share_->setToolTip(isOffered ? localized("Send this screenshot with Mail, Messages, AirDrop, or another service")
                               : localized("Quillmere can’t reach this screenshot’s file, so there’s nothing to send"));
  more_->setEnabled(!commands.ids().empty());
}

void InboxWindow::showDetail() {
  const UUIDSet& ids = *model_.selectedItemIDs;
  const ScreenshotItem* only = ids.size() == 1 ? model_.items().find(*ids.begin()) : nullptr;
  QWidget* page = noSelection_;
  if (!*model_.watchFolderURL) {
    page = setup_;
  } else if (model_.items().empty()) {
    page = noScreenshots_;
  } else if (only) {
    selected_->show(*only);
    page = selected_;
  } else if (ids.size() > 1) {
    several_->update();
    page = several_;
  }
  toolbar_->setVisible(page == selected_ || page == several_);
  if (detail_->currentWidget() != page) detail_->setCurrentWidget(page);
}

void InboxWindow::showInboxError() {
  const auto error = *model_.inboxError;
  if (!error) return;
  model_.dismissError(ErrorScope::inbox);
  showAlert(this, error->title, error->message);
}

// --- What is done in it ---

void InboxWindow::perform(ScreenshotCommand command) {
  ScreenshotActionsMenu::ofSelection(presentation_).perform(command);
}

void InboxWindow::openContextMenu(const std::vector<UUID>& ids, QPoint global) {
  if (presentation_.isShowingModal()) return;
  QMenu menu(this);
  new ScreenshotMenuItems(
      menu, [this, ids] { return ScreenshotActionsMenu(ids, model_, presentation_); }, sharing_,
      ScreenshotMenuItems::Keys::shown);
  menu.exec(global);
}

void InboxWindow::drag(const std::vector<UUID>& ids) {
  const ScreenshotItem* first = ids.empty() ? nullptr : model_.items().find(ids.front());
  if (!first) return;
  constexpr int kSide = 160;
  const QImage picture = sidebar_->list().picture(first->id);
  QPixmap shown;
  if (!picture.isNull()) {
    const qreal ratio = devicePixelRatioF();
    const QSize size = picture.size().scaled(QSize(kSide, kSide) * ratio, Qt::KeepAspectRatio);
    shown = QPixmap::fromImage(picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    shown.setDevicePixelRatio(ratio);
  }
  dragScreenshots(*this, model_, ids, shown);
}

void InboxWindow::showKeys() {
  QStringList lines;
  for (const ScreenshotAction& action : ScreenshotActionsMenu::ofSelection(presentation_).actions()) {
    QStringList keys;
    for (const QKeySequence& key : action.keys) keys << key.toString(QKeySequence::NativeText);
    if (action.command == ScreenshotCommand::quickLook) keys << QKeySequence(Qt::Key_Space).toString();
    if (!keys.isEmpty()) lines << action.title + QStringLiteral(": ") + keys.join(QStringLiteral(", "));
  }
  lines << localized("Find") + QStringLiteral(": ") + QKeySequence(Qt::CTRL | Qt::Key_F).toString();
  showAlert(this, localized("Keyboard Shortcuts"), lines.join(QLatin1Char('\n')));
}

void InboxWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && menus_) menus_->refresh();
}

void InboxWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  // A menu does not go with its window by itself, and would act on what is no longer seen.
  for (QWidget* menu : findChildren<QMenu*>()) menu->close();
  savePlace();
  presentation_.close();
  presentation_.setQuickLookURL(std::nullopt);
  sidebar_->releaseSearch();
  if (onClosed) onClosed();
}

}  // namespace quillmere
