#include "inbox/InboxListView.h"

#include <QtGui/QContextMenuEvent>
#include <QtWidgets/QScrollBar>

#include "foundation/Localized.h"
#include "inbox/NameField.h"
#include "inbox/ScreenshotRowDelegate.h"

namespace quillmere {
namespace {

/// While it lives what changes in one of two selections is not told to the other.
class Following {
 public:
  explicit Following(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~Following() { flag_ = before_; }
  Following(const Following&) = delete;
  Following& operator=(const Following&) = delete;

 private:
  bool& flag_;
  bool before_;
};

}  // namespace

InboxListView::InboxListView(InboxPresentation& presentation, InboxListModel& list, QWidget* parent)
    : QListView(parent),
      presentation_(presentation),
      model_(presentation.model()),
      list_(list),
      delegate_(new ScreenshotRowDelegate(this)) {
  setItemDelegate(delegate_);
  setModel(&list);
  setUniformItemSizes(true);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setDragDropMode(DragOnly);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Its place stays, so that rows end where the fields above them do; nothing is drawn there while nothing scrolls.
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setFrameShape(QFrame::NoFrame);
  setMouseTracking(true);
  setAccessibleName(localized("Screenshots"));
  setAccessibleDescription(
      localized("Drag this screenshot into another app to put its file there. Command-C copies it."));

  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &InboxListView::tellSelection);
  connect(&list, &QAbstractItemModel::modelAboutToBeReset, this, &InboxListView::beforeReset);
  connect(&list, &QAbstractItemModel::modelReset, this, &InboxListView::afterReset);
  connect(this, &QAbstractItemView::doubleClicked, this, [this] { onOpen(); });
  changes_ = model_.changed.connect([this](const ModelChange& change) {
    if (change.field == ModelField::selectedItemIDs && !isFollowing_) showSelection();
  });
  presentationChanges_ = presentation.changed.connect([this](const InboxChange& change) {
    if (change.field == InboxField::renameSession) followRename();
  });
  showSelection();
}

InboxListView::~InboxListView() {
  // Before the list goes, whose last selection would be told to the model.
  selectionModel()->disconnect(this);
}

// --- The selection ---

void InboxListView::tellSelection(const QItemSelection& selected, const QItemSelection& deselected) {
  if (isFollowing_) return;
  const Following following(isFollowing_);
  UUIDSet ids = *model_.selectedItemIDs;
  for (const QItemSelectionRange& range : deselected) {
    for (int row = range.top(); row <= range.bottom(); ++row) ids.erase(list_.id(row));
  }
  for (const QItemSelectionRange& range : selected) {
    for (int row = range.top(); row <= range.bottom(); ++row) ids.insert(list_.id(row));
  }
  model_.setSelectedItemIDs(std::move(ids));
}

void InboxListView::showSelection() {
  dropHiddenSelection();
  const Following following(isFollowing_);
  std::vector<int> rows;
  for (const UUID& id : *model_.selectedItemIDs) {
    if (const auto row = list_.row(id)) rows.push_back(*row);
  }
  std::sort(rows.begin(), rows.end());
  QItemSelection selection;
  for (size_t i = 0; i < rows.size();) {
    size_t end = i + 1;
    while (end < rows.size() && rows[end] == rows[end - 1] + 1) ++end;
    selection.append(QItemSelectionRange(list_.index(rows[i]), list_.index(rows[end - 1])));
    i = end;
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  if (rows.size() != 1) return;
  selectionModel()->setCurrentIndex(list_.index(rows.front()), QItemSelectionModel::NoUpdate);
  scrollTo(list_.index(rows.front()));
}

/// What the filter hides is not selected: commands act on what is seen.
void InboxListView::dropHiddenSelection() {
  // What is being sought may be seen when it is found.
  if (list_.filter() != *presentation_.filter) return;
  UUIDSet shown;
  for (const UUID& id : *model_.selectedItemIDs) {
    if (list_.row(id)) shown.insert(id);
  }
  const Following following(isFollowing_);
  model_.setSelectedItemIDs(std::move(shown));
}

void InboxListView::beforeReset() {
  currentID_ = {};
  // The record under the keyboard, or the next one that there still is.
  for (int row = currentIndex().row(); row >= 0 && row < list_.rowCount(); ++row) {
    if (!model_.items().find(list_.id(row))) continue;
    currentID_ = list_.id(row);
    break;
  }
}

void InboxListView::afterReset() {
  showSelection();
  if (list_.rowCount() == 0 || selectionModel()->hasSelection()) return;
  const auto row = list_.row(currentID_);
  selectionModel()->setCurrentIndex(list_.index(row.value_or(0)), QItemSelectionModel::NoUpdate);
  scrollTo(currentIndex());
}

void InboxListView::rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end) {
  const int current = currentIndex().row();
  if (current >= start && current <= end) {
    const int next = end + 1 < list_.rowCount() ? end + 1 : start - 1;
    selectionModel()->setCurrentIndex(next < 0 ? QModelIndex() : list_.index(next), QItemSelectionModel::NoUpdate);
  }
  // A row can go while its record stays, when the filter does not let it through any more.
  std::vector<UUID> going;
  for (int row = start; row <= end; ++row) {
    if (model_.selectedItemIDs->contains(list_.id(row))) going.push_back(list_.id(row));
  }
  if (!going.empty()) {
    UUIDSet ids = *model_.selectedItemIDs;
    for (const UUID& id : going) ids.erase(id);
    const Following following(isFollowing_);
    selectionModel()->select(QItemSelection(list_.index(start), list_.index(end)), QItemSelectionModel::Deselect);
    model_.setSelectedItemIDs(std::move(ids));
  }
  QListView::rowsAboutToBeRemoved(parent, start, end);
}

std::vector<UUID> InboxListView::idsAt(const QModelIndex& index) const {
  std::vector<UUID> ids;
  if (index.isValid() && !selectionModel()->isSelected(index)) return {list_.id(index.row())};
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) ids.push_back(list_.id(row));
  }
  std::sort(ids.begin(), ids.end(),
            [this](const UUID& a, const UUID& b) { return model_.items().indexOf(a) < model_.items().indexOf(b); });
  return ids;
}

bool InboxListView::isInSight(const UUID& id) const {
  const auto row = list_.row(id);
  return row && viewport()->rect().intersects(visualRect(list_.index(*row)));
}

QImage InboxListView::picture(const UUID& id) const {
  const auto row = list_.row(id);
  return row ? list_.index(*row).data(InboxListModel::thumbnailRole).value<QImage>() : QImage();
}

// --- The keyboard ---

void InboxListView::takeKeyboard() {
  setFocus(Qt::OtherFocusReason);
  if (currentIndex().isValid() || list_.rowCount() == 0) return;
  selectionModel()->setCurrentIndex(list_.index(0), QItemSelectionModel::NoUpdate);
}

void InboxListView::step(int rows) {
  if (list_.rowCount() == 0) return;
  const int row = std::clamp(currentIndex().row() + rows, 0, list_.rowCount() - 1);
  selectionModel()->setCurrentIndex(list_.index(row), QItemSelectionModel::ClearAndSelect);
}

void InboxListView::keyPressEvent(QKeyEvent* event) {
  const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
  const bool isArrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
  if (isPlain && isArrow && !selectionModel()->hasSelection() && currentIndex().isValid()) {
    // The row that the keyboard is on comes first.
    selectionModel()->setCurrentIndex(currentIndex(), QItemSelectionModel::ClearAndSelect);
    scrollTo(currentIndex());
    return;
  }
  switch (event->key()) {
    case Qt::Key_Space:
      if (!isPlain) break;
      if (!event->isAutoRepeat()) onOpen();
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (isPlain && !event->isAutoRepeat()) onOpen();
      return;
    default:
      break;
  }
  // The base class would copy the text of a row, in the place of the screenshot that was copied before.
  if (event->matches(QKeySequence::Copy)) {
    event->ignore();
    return;
  }
  QListView::keyPressEvent(event);
  // Where the way ends at the row that the keyboard is on already, nothing was moved, and so nothing selected.
  const bool isToAnEnd = event->key() == Qt::Key_Home || event->key() == Qt::Key_End ||
                         event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
  if (isPlain && isToAnEnd && !selectionModel()->hasSelection() && currentIndex().isValid()) {
    selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect);
  }
}

void InboxListView::contextMenuEvent(QContextMenuEvent* event) {
  const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
  const QModelIndex index = isByKey ? currentIndex() : indexAt(event->pos());
  if (!index.isValid()) return;
  const QPoint place = isByKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos();
  onContextMenu(idsAt(index), place);
}

void InboxListView::startDrag(Qt::DropActions) {
  const auto ids = idsAt({});
  if (!ids.empty()) onDrag(ids);
}

// --- The name in a field ---

void InboxListView::followRename() {
  const auto& session = *presentation_.renameSession;
  const auto row = session ? list_.row(session->id) : std::nullopt;
  const bool isHere = row && presentation_.renamePlace() == InboxPresentation::RenamePlace::list;
  delegate_->setRenamed(isHere ? std::optional(session->id) : std::nullopt);
  if (nameField_ && (!isHere || session->token != nameToken_)) {
    const bool hadKeyboard = nameField_->hasFocus();
    nameField_->hide();
    nameField_->deleteLater();
    nameField_ = nullptr;
    if (hadKeyboard) setFocus(Qt::OtherFocusReason);
  }
  if (isHere && !nameField_) {
    scrollTo(list_.index(*row));
    nameToken_ = session->token;
    nameField_ = new NameField(presentation_, *session, viewport());
    placeNameField();
    nameField_->show();
    nameField_->setFocus(Qt::OtherFocusReason);
  }
  viewport()->update();
}

void InboxListView::placeNameField() {
  if (!nameField_ || !*presentation_.renameSession) return;
  const auto row = list_.row((*presentation_.renameSession)->id);
  if (!row) return;
  const QStyleOptionViewItem option = optionAt(list_.index(*row));
  nameField_->setFont(ScreenshotRowDelegate::nameFont(option));
  nameField_->placeOver(ScreenshotRowDelegate::nameRect(option));
}

QStyleOptionViewItem InboxListView::optionAt(const QModelIndex& index) const {
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  option.rect = visualRect(index);
  return option;
}

void InboxListView::resizeEvent(QResizeEvent* event) {
  QListView::resizeEvent(event);
  placeNameField();
}

void InboxListView::scrollContentsBy(int dx, int dy) {
  QListView::scrollContentsBy(dx, dy);
  placeNameField();
}

/// Past the list view, which would lay out all of its rows anew, and they are all of one size.
void InboxListView::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles) {
  QAbstractItemView::dataChanged(topLeft, bottomRight, roles);  // NOLINT(bugprone-parent-virtual-call)
}

void InboxListView::rowsInserted(const QModelIndex& parent, int start, int end) {
  QListView::rowsInserted(parent, start, end);
  if (nameField_)
    QMetaObject::invokeMethod(
        this, [this] { placeNameField(); }, Qt::QueuedConnection);
}

void InboxListView::changeEvent(QEvent* event) {
  QListView::changeEvent(event);
  if (event->type() == QEvent::FontChange) doItemsLayout();
}

}  // namespace quillmere
