#include "inbox/InboxListModel.h"

#include <QtCore/QLocale>
#include <algorithm>

#include "foundation/Localized.h"
#include "foundation/OnCancel.h"
#include "inbox/ScreenshotStatus.h"

namespace quillmere {
namespace {

/// Beyond this many places at which rows come or go in one change the views are better told that all may be different.
constexpr size_t kMostRanges = 32;

QString captureTime(const ScreenshotItem& item) {
  return QLocale().toString(item.createdAt.toDateTime().toLocalTime(), QLocale::ShortFormat);
}

/// A run of neighbours among ascending numbers.
struct Range {
  size_t first = 0;
  size_t count = 0;
};
std::vector<Range> rangesOf(const std::vector<size_t>& ascending) {
  std::vector<Range> ranges;
  for (const size_t number : ascending) {
    if (ranges.empty() || number != ranges.back().first + ranges.back().count) ranges.push_back({number, 0});
    ++ranges.back().count;
  }
  return ranges;
}

}  // namespace

InboxListModel::InboxListModel(InboxPresentation& presentation)
    : model_(presentation.model()),
      presentation_(presentation),
      search_(model_, *presentation.services().executor),
      thumbnails_(*presentation.services().thumbnails, kThumbnailPixels),
      unavailable_(*model_.unavailableItemIDs),
      evicted_(*model_.evictedItemIDs) {
  thumbnails_.onLoaded = [this](const UUID& id) {
    const auto loaded = row(id);
    if (!loaded) return;
    const QModelIndex changed = index(*loaded);
    Q_EMIT dataChanged(changed, changed, {thumbnailRole});
  };
  changes_ = model_.changed.connect([this](const ModelChange& change) { follow(change); });
  presentationChanges_ = presentation.changed.connect([this](const InboxChange& change) {
    if (change.field == InboxField::filter) refilter();
  });
  refilter();
}

InboxListModel::~InboxListModel() {
  searching_.cancel();
}

// --- What a row says ---

int InboxListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows();
}

const ScreenshotItem* InboxListModel::item(const QModelIndex& index) const {
  // Between the removal of several rows the views may ask for one that is gone already.
  return index.isValid() && index.row() < rows() ? model_.items().find(id(index.row())) : nullptr;
}

/// A view drags no row that does not say so.
Qt::ItemFlags InboxListModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractListModel::flags(index);
  return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

QVariant InboxListModel::data(const QModelIndex& index, int role) const {
  const ScreenshotItem* found = item(index);
  if (!found) return {};
  const bool unavailable = isUnavailable(*found);
  switch (role) {
    case nameRole:
    case Qt::AccessibleTextRole:
      return found->url.displayName();
    case statusRole:
      return localized("%@ · %@", {screenshotStatus(*found, unavailable), captureTime(*found)});
    case symbolRole:
      return statusSymbol(*found, unavailable);
    case thumbnailRole: {
      if (unavailable || model_.evictedItemIDs->contains(found->id)) return {};
      const QImage image = thumbnails_.image(*found);
      return image.isNull() ? QVariant() : QVariant(image);
    }
    case idRole:
      return found->id;
    case unavailableRole:
      return unavailable;
    case Qt::AccessibleDescriptionRole:
      if (!unavailable && found->state == ScreenshotItem::State::temporary && found->expiresAt) {
        const QString expiry = QLocale().toString(found->expiresAt->toDateTime().toLocalTime(), QLocale::ShortFormat);
        return localized("Temporary until %@, %@", {expiry, captureTime(*found)});
      }
      return localized("%@, %@", {screenshotStatus(*found, unavailable), captureTime(*found)});
    default:
      return {};
  }
}

// --- Which rows there are ---

std::optional<int> InboxListModel::row(const UUID& sought) const {
  const auto index = model_.items().indexOf(sought);
  if (!index) return std::nullopt;
  const int row = rowFor(*index);
  return row < rows() && id(row) == sought ? std::optional(row) : std::nullopt;
}

int InboxListModel::rowFor(size_t index) const {
  if (filter_.isOff()) return static_cast<int>(index);
  int first = 0;
  int end = rows();
  while (first < end) {
    const int middle = first + (end - first) / 2;
    const auto place = model_.items().indexOf(id(middle));
    if (place && *place >= index) {
      end = middle;
    } else {
      first = middle + 1;
    }
  }
  return first;
}

bool InboxListModel::passes(const ScreenshotItem& item) const {
  return filter_.passesScope(item, isUnavailable(item)) &&
         (filter_.trimmedText().isEmpty() || search_.contains(item, filter_.trimmedText()));
}

void InboxListModel::follow(const ModelChange& change) {
  switch (change.field) {
    case ModelField::items:
      followItems(change);
      return;
    case ModelField::unavailableItemIDs:
      followSet(unavailable_, *model_.unavailableItemIDs);
      return;
    case ModelField::evictedItemIDs:
      followSet(evicted_, *model_.evictedItemIDs);
      return;
    default:
      return;
  }
}

void InboxListModel::followItems(const ModelChange& change) {
  const bool isRemoval = change.rows == ModelChange::Rows::removed;
  if (!isRemoval && !change.indices.empty() && change.indices.back() >= model_.items().size()) {
    refilter();
    return;
  }
  switch (change.rows) {
    case ModelChange::Rows::none:
      return;
    case ModelChange::Rows::inserted:
      insertRecords(change.indices);
      break;
    case ModelChange::Rows::changed:
      changeRecords(change.indices);
      break;
    case ModelChange::Rows::removed:
      removeRecords(change.indices);
      break;
  }
  // Who followed before may have changed the list again.
  if (filter_.isOff() && ids_.size() != model_.items().size()) refilter();
}

void InboxListModel::insertRecords(const std::vector<size_t>& indices) {
  if (indices.size() > kMostRanges) {
    refilter();
    return;
  }
  for (const size_t index : indices) {
    const ScreenshotItem& item = model_.items()[index];
    if (!filter_.isOff() && !passes(item)) continue;
    addRows(rowFor(index), {item.id});
  }
}

void InboxListModel::changeRecords(const std::vector<size_t>& indices) {
  if (indices.size() > kMostRanges && !filter_.isOff()) {
    refilter();
    return;
  }
  for (const size_t index : indices) judge(model_.items()[index].id);
}

void InboxListModel::judge(const UUID& judged) {
  const auto index = model_.items().indexOf(judged);
  if (!index) return;
  const auto present = row(judged);
  const bool isShown = filter_.isOff() || passes(model_.items()[*index]);
  if (present && isShown) {
    repaint(*present);
  } else if (present) {
    dropRows(*present, 1);
  } else if (isShown) {
    addRows(rowFor(*index), {judged});
  }
}

void InboxListModel::removeRecords(const std::vector<size_t>& indices) {
  std::vector<size_t> gone;
  if (filter_.isOff()) {
    gone = indices;
  } else {
    for (int row = 0; row < rows(); ++row) {
      if (!model_.items().find(id(row))) gone.push_back(static_cast<size_t>(row));
    }
  }
  const auto ranges = rangesOf(gone);
  if (ranges.size() > kMostRanges) {
    IDs left;
    left.reserve(ids_.size());
    for (int row = 0; row < rows(); ++row) {
      if (model_.items().find(id(row))) left.push_back(id(row));
    }
    showRecords(filter_, std::move(left));
    return;
  }
  // From the last on, so that the rows before it stay true.
  for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
    dropRows(static_cast<int>(range->first), static_cast<int>(range->count));
  }
}

void InboxListModel::followSet(UUIDSet& known, const UUIDSet& present) {
  std::vector<UUID> different;
  for (const UUID& id : known) {
    if (!present.contains(id)) different.push_back(id);
  }
  for (const UUID& id : present) {
    if (!known.contains(id)) different.push_back(id);
  }
  if (&known == &evicted_) {
    for (const UUID& id : different) thumbnails_.forget(id);
  }
  known = present;
  if (different.size() > kMostRanges && !filter_.isOff()) {
    refilter();
    return;
  }
  for (const UUID& id : different) judge(id);
}

// --- The filter ---

void InboxListModel::refilter() {
  searching_.cancel();
  const InboxFilter next = *presentation_.filter;
  if (!next.trimmedText().isEmpty()) {
    searching_ = search(lifetime_.weak(this), next);
    return;
  }
  IDs shown;
  shown.reserve(model_.items().size());
  model_.items().forEach([&](const ScreenshotItem& item) {
    if (next.passesScope(item, isUnavailable(item))) shown.push_back(item.id);
  });
  showRecords(next, std::move(shown));
}

Task<> InboxListModel::search(Weak<InboxListModel> self, InboxFilter filter) {
  const auto finding = self->search_.find(filter.trimmedText());
  OnCancel stopping([finding] { finding.cancel(); });
  co_await stopping;
  const auto found = co_await finding;
  const bool isStopped = co_await isCancelled;
  if (!self || isStopped || !found) co_return;
  IDs shown;
  shown.reserve(found->size());
  for (const UUID& id : *found) {
    const ScreenshotItem* item = self->model_.items().find(id);
    if (item && filter.passesScope(*item, self->isUnavailable(*item))) shown.push_back(id);
  }
  self->showRecords(filter, std::move(shown));
}

void InboxListModel::showRecords(InboxFilter filter, IDs newestFirst) {
  filter_ = std::move(filter);
  if (std::equal(ids_.rbegin(), ids_.rend(), newestFirst.begin(), newestFirst.end())) {
    if (onFiltered) onFiltered();
    return;
  }
  beginResetModel();
  ids_.assign(newestFirst.rbegin(), newestFirst.rend());
  endResetModel();
  if (onFiltered) onFiltered();
}

// --- What the views are told ---

void InboxListModel::addRows(int row, const IDs& newestFirst) {
  beginInsertRows({}, row, row + static_cast<int>(newestFirst.size()) - 1);
  ids_.insert(place(row), newestFirst.rbegin(), newestFirst.rend());
  endInsertRows();
}

void InboxListModel::dropRows(int first, int count) {
  beginRemoveRows({}, first, first + count - 1);
  ids_.erase(place(first + count), place(first));
  endRemoveRows();
}

void InboxListModel::repaint(int row) {
  const QModelIndex changed = index(row);
  Q_EMIT dataChanged(changed, changed);
}

}  // namespace quillmere
