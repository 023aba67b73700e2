#include "inbox/InboxSidebar.h"

#include <QtGui/QActionGroup>
#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/Theme.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"
#include "inbox/InboxBanners.h"
#include "inbox/MessageView.h"
#include "inbox/ScreenshotRowDelegate.h"
#include "inbox/SearchField.h"

namespace quillmere {
namespace {

constexpr int kMargin = ScreenshotRowDelegate::kMargin;

/// What stands where no row does.
MessageView::Content noMatches(const InboxFilter& filter) {
  if (!filter.trimmedText().isEmpty()) {
    return {QStringLiteral("magnifyingglass"),
            localized("No Results for “%@”", {filter.trimmedText()}),
            localized("Check the spelling or try a new search."),
            {}};
  }
  return {QStringLiteral("line.3.horizontal.decrease.circle"),
          localized("No Screenshots"),
          localized("No screenshot has the status you’re filtering by."),
          {}};
}

}  // namespace

InboxSidebar::InboxSidebar(InboxPresentation& presentation, QWidget* parent)
    : QWidget(parent),
      presentation_(presentation),
      model_(presentation.model()),
      rows_(new InboxListModel(presentation)) {
  QWidget* searchRow = makeSearchRow();
  banners_ = new InboxBanners(model_, presentation.services().openHelp, this);
  pages_ = new QStackedWidget(this);
  list_ = new InboxListView(presentation, *rows_, pages_);
  rows_->setParent(list_);
  noMatches_ = new MessageView(noMatches({}), pages_);
  // It takes no room from the banners while the list is shown.
  noMatches_->setMinimumHeight(1);
  pages_->addWidget(list_);
  pages_->addWidget(noMatches_);
  count_ = new ThemedLabel(Ink::secondary, this);
  count_->setTextSize(0.92);
  count_->setContentsMargins(kMargin + 8, 8, kMargin + 8, 8);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(searchRow);
  column->addWidget(banners_);
  column->addSpacing(8);
  column->addWidget(pages_, 1);
  column->addWidget(count_);

  rows_->onFiltered = [this] { showRows(); };
  connect(rows_, &QAbstractItemModel::rowsInserted, this, &InboxSidebar::showRows);
  connect(rows_, &QAbstractItemModel::rowsRemoved, this, &InboxSidebar::showRows);
  changes_ = presentation.changed.connect([this](const InboxChange& change) { follow(change); });
  showFilter();
  showRows();
}

QWidget* InboxSidebar::makeSearchRow() {
  auto* row = new QWidget(this);
  search_ = new SearchField(row);
  search_->onLeave = [this] { leaveSearch(); };
  search_->onFocus = [this] { rows_->prepareSearch(); };
  connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
    InboxFilter filter = *presentation_.filter;
    filter.text = text;
    presentation_.setFilter(filter);
  });
  scope_ = new ActionButton(ActionButton::Role::icon, {}, {}, row);
  scope_->setAccessibleName(localized("Filter"));
  scope_->setToolTip(localized("Show only screenshots with one status"));
  connect(scope_, &QPushButton::clicked, this, &InboxSidebar::chooseScope);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(kMargin, kMargin, kMargin, 0);
  layout->setSpacing(8);
  layout->addWidget(search_, 1);
  layout->addWidget(scope_);
  return row;
}

void InboxSidebar::chooseScope() {
  QMenu menu(this);
  menu.setTitle(localized("Filter"));
  auto* group = new QActionGroup(&menu);
  for (const InboxFilter::Scope scope : InboxFilter::kScopes) {
    QAction* action = menu.addAction(title(scope));
    action->setCheckable(true);
    action->setChecked(scope == presentation_.filter->scope);
    action->setData(static_cast<int>(scope));
    group->addAction(action);
  }
  const QAction* chosen = menu.exec(scope_->mapToGlobal(QPoint(0, scope_->height() + 4)));
  if (!chosen) return;
  InboxFilter filter = *presentation_.filter;
  filter.scope = static_cast<InboxFilter::Scope>(chosen->data().toInt());
  presentation_.setFilter(filter);
}

void InboxSidebar::follow(const InboxChange& change) {
  if (change.field == InboxField::filter) showFilter();
  if (change.field == InboxField::findRequest) {
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
  }
}

void InboxSidebar::showFilter() {
  const InboxFilter& filter = *presentation_.filter;
  if (search_->text() != filter.text) search_->setText(filter.text);
  const bool isNarrowed = filter.scope != InboxFilter::Scope::all;
  scope_->setSymbol(isNarrowed ? QStringLiteral("line.3.horizontal.decrease.circle.fill")
                               : QStringLiteral("line.3.horizontal.decrease.circle"));
  scope_->setAccessibleDescription(title(filter.scope));
}

void InboxSidebar::showRows() {
  const int rows = rows_->rowCount();
  const bool isEmpty = rows == 0 && !model_.items().empty();
  if (isEmpty) noMatches_->say(noMatches(rows_->filter()));
  pages_->setCurrentIndex(isEmpty ? 1 : 0);
  // Its place stays, so that the list does not jump with a selection.
  count_->setVisible(!model_.items().empty());
  const bool isCounted = model_.selectedItemIDs->empty() && !model_.items().empty();
  count_->setText(isCounted ? localized("%lld screenshots", {static_cast<qsizetype>(rows)}) : QStringLiteral(" "));
  if (isLeavingSearch_ && rows_->filter() == *presentation_.filter) leaveSearch();
}

void InboxSidebar::refresh(bool showsFolderBanner) {
  banners_->update(showsFolderBanner);
  showRows();
}

void InboxSidebar::escape() {
  if (!presentation_.filter->text.isEmpty()) {
    search_->clear();
  } else {
    model_.setSelectedItemIDs({});
    if (search_->hasFocus()) list_->takeKeyboard();
  }
}

/// The keyboard goes to what was found. Fast typists press Return before it is.
void InboxSidebar::leaveSearch() {
  isLeavingSearch_ = rows_->filter() != *presentation_.filter;
  if (isLeavingSearch_ || rows_->rowCount() == 0) return;
  list_->takeKeyboard();
  if (model_.selectedItemIDs->empty()) list_->selectFirst();
}

void InboxSidebar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  // Where the rows go on below what is seen of them.
  if (count_->isVisible()) painter.fillRect(0, count_->y(), width(), 1, Theme(palette()).hairline);
}

}  // namespace quillmere
