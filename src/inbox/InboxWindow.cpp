#include "inbox/InboxWindow.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListView>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QVBoxLayout>

#include "controls/Alert.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"
#include "inbox/InboxBanners.h"
#include "inbox/InboxDetail.h"
#include "inbox/InboxListModel.h"
#include "inbox/MessageView.h"
#include "inbox/ScreenshotRowDelegate.h"

namespace quillmere {
namespace {

constexpr QSize kWindowSize(960, 620);
constexpr int kSidebarWidth = 340;

}  // namespace

InboxWindow::InboxWindow(AppModel& model, ThumbnailLoader& thumbnails) : model_(model) {
  setWindowTitle(localized("Quillmere"));
  resize(kWindowSize);
  auto* split = new QHBoxLayout(this);
  split->setContentsMargins(0, 0, 0, 0);
  split->setSpacing(0);
  sidebar_ = makeSidebar(thumbnails);
  split->addWidget(sidebar_);
  split->addWidget(makeDetail(thumbnails), 1);
  changes_ = model.changed.connect([this](const ModelChange& change) { follow(change); });
  refresh();
}

InboxWindow::~InboxWindow() {
  // Before the list goes, whose last selection would be told to the model.
  listView_->selectionModel()->disconnect(this);
}

QWidget* InboxWindow::makeSidebar(ThumbnailLoader& thumbnails) {
  auto* sidebar = new QWidget(this);
  sidebar->setFixedWidth(kSidebarWidth);
  sidebar->setAutoFillBackground(true);
  sidebar->setBackgroundRole(QPalette::Base);
  banners_ = new InboxBanners(model_, sidebar);
  list_ = new InboxListModel(model_, thumbnails);
  listView_ = new QListView(sidebar);
  list_->setParent(listView_);
  listView_->setModel(list_);
  listView_->setItemDelegate(new ScreenshotRowDelegate(listView_));
  listView_->setUniformItemSizes(true);
  listView_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  listView_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  listView_->setFrameShape(QFrame::NoFrame);
  listView_->setMouseTracking(true);
  listView_->setAccessibleName(localized("Screenshots"));
  connect(listView_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    UUIDSet ids;
    for (const QModelIndex& row : listView_->selectionModel()->selectedIndexes()) {
      ids.insert(row.data(InboxListModel::idRole).value<QUuid>());
    }
    model_.setSelectedItemIDs(std::move(ids));
  });
  count_ = new ThemedLabel(Ink::secondary, sidebar);
  count_->setTextSize(0.92);
  count_->setContentsMargins(16, 8, 16, 10);

  auto* column = new QVBoxLayout(sidebar);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(6);
  column->addWidget(banners_);
  column->addWidget(listView_, 1);
  column->addWidget(count_);
  return sidebar;
}

QWidget* InboxWindow::makeDetail(ThumbnailLoader& thumbnails) {
  detail_ = new QStackedWidget(this);
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
  selected_ = new InboxDetail(model_, thumbnails, detail_);
  for (QWidget* page : {static_cast<QWidget*>(setup_), static_cast<QWidget*>(noScreenshots_),
                        static_cast<QWidget*>(noSelection_), static_cast<QWidget*>(selected_)}) {
    detail_->addWidget(page);
  }
  return detail_;
}

void InboxWindow::follow(const ModelChange& change) {
  switch (change.field) {
    case ModelField::inboxError:
      // In a later turn: the failing operation must be over before its message waits for an answer.
      if (*model_.inboxError)
        QMetaObject::invokeMethod(
            this, [this] { showInboxError(); }, Qt::QueuedConnection);
      return;
    case ModelField::items:
    case ModelField::selectedItemIDs:
    case ModelField::unavailableItemIDs:
    case ModelField::evictedItemIDs:
    case ModelField::iCloudItemIDs:
    case ModelField::downloadStates:
    case ModelField::analyzingIDs:
    case ModelField::analyzeScreenshots:
    case ModelField::intelligenceUnavailability:
    case ModelField::deletesChosenImmediately:
    case ModelField::macOSScreenshotFolder:
    case ModelField::watchFolderHasReceivedScreenshot:
    case ModelField::dismissedLocationMismatchPath:
    case ModelField::watchFolderURL:
    case ModelField::watcherStatus:
    case ModelField::backgroundIssue:
      refresh();
      return;
    default:
      return;
  }
}

void InboxWindow::refresh() {
  const bool isSettingUp = !*model_.watchFolderURL;
  const bool isEmpty = model_.items().empty();
  // Before the first folder there is nothing to list.
  sidebar_->setVisible(!isSettingUp || !isEmpty);
  banners_->update(!isSettingUp);
  count_->setText(localized("%lld screenshots", {static_cast<qsizetype>(model_.items().size())}));
  count_->setVisible(!isEmpty && model_.selectedItemIDs->empty());
  const ScreenshotItem* only =
      model_.selectedItemIDs->size() == 1 ? model_.items().find(*model_.selectedItemIDs->begin()) : nullptr;
  if (isSettingUp) {
    detail_->setCurrentWidget(setup_);
  } else if (isEmpty) {
    detail_->setCurrentWidget(noScreenshots_);
  } else if (only) {
    selected_->show(*only);
    detail_->setCurrentWidget(selected_);
  } else {
    detail_->setCurrentWidget(noSelection_);
  }
}

void InboxWindow::showInboxError() {
  const auto error = *model_.inboxError;
  if (!error) return;
  model_.dismissError(ErrorScope::inbox);
  showAlert(this, error->title, error->message);
}

void InboxWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  if (onClosed) onClosed();
}

}  // namespace quillmere
