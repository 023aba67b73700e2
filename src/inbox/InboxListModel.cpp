#include "inbox/InboxListModel.h"

#include <QtCore/QLocale>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// Beyond this many, pictures that scrolled away are let go; the loader's cache has them still.
constexpr size_t kMostPictures = 400;

QString captureTime(const ScreenshotItem& item) {
  return QLocale().toString(item.createdAt.toDateTime().toLocalTime(), QLocale::ShortFormat);
}

QString symbolOf(const ScreenshotItem& item, bool isUnavailable) {
  if (isUnavailable) return QStringLiteral("exclamationmark.triangle.fill");
  switch (item.state) {
    case ScreenshotItem::State::pending:
      return QStringLiteral("circle.dashed");
    case ScreenshotItem::State::temporary:
      return QStringLiteral("clock");
    case ScreenshotItem::State::permanent:
      return QStringLiteral("checkmark.circle");
  }
  return {};
}

}  // namespace

InboxListModel::InboxListModel(AppModel& model, ThumbnailLoader& thumbnails) : model_(model), thumbnails_(thumbnails) {
  ids_.reserve(model.items().size());
  for (size_t row = model.items().size(); row-- > 0;) ids_.push_back(model.items()[row].id);
  changes_ = model.changed.connect([this](const ModelChange& change) { follow(change); });
}

int InboxListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows();
}

QVariant InboxListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rows()) return {};
  const ScreenshotItem* found = model_.items().find(ids_[static_cast<size_t>(rows() - 1 - index.row())]);
  // Between the removal of several rows the views may ask for one that is gone already.
  if (!found) return {};
  const ScreenshotItem& item = *found;
  const bool unavailable = isUnavailable(item);
  const QString status = unavailable ? localized("Unavailable") : statusText(item.state);
  switch (role) {
    case nameRole:
      return item.url.displayName();
    case statusRole:
      return localized("%@ · %@", {status, captureTime(item)});
    case symbolRole:
      return symbolOf(item, unavailable);
    case thumbnailRole:
      return thumbnail(item);
    case idRole:
      return item.id;
    case unavailableRole:
      return unavailable;
    case Qt::AccessibleTextRole:
      return item.url.displayName();
    case Qt::AccessibleDescriptionRole:
      if (!unavailable && item.state == ScreenshotItem::State::temporary && item.expiresAt) {
        const QString expiry = QLocale().toString(item.expiresAt->toDateTime().toLocalTime(), QLocale::ShortFormat);
        return localized("Temporary until %@, %@", {expiry, captureTime(item)});
      }
      return localized("%@, %@", {status, captureTime(item)});
    default:
      return {};
  }
}

void InboxListModel::follow(const ModelChange& change) {
  const bool isAboutAvailability =
      change.field == ModelField::unavailableItemIDs || change.field == ModelField::evictedItemIDs;
  if (isAboutAvailability && rows() > 0) {
    Q_EMIT dataChanged(index(0), index(rows() - 1));
    return;
  }
  if (change.field != ModelField::items) return;
  switch (change.rows) {
    case ModelChange::Rows::none:
      return;
    case ModelChange::Rows::inserted:
      for (const size_t row : change.indices) {
        beginInsertRows({}, static_cast<int>(row), static_cast<int>(row));
        ids_.insert(place(row), model_.items()[row].id);
        endInsertRows();
      }
      return;
    case ModelChange::Rows::changed:
      for (const size_t row : change.indices) {
        const QModelIndex changed = index(static_cast<int>(row));
        Q_EMIT dataChanged(changed, changed);
      }
      return;
    case ModelChange::Rows::removed:
      // From the last on, so that the indices before it stay true.
      for (auto row = change.indices.rbegin(); row != change.indices.rend(); ++row) {
        beginRemoveRows({}, static_cast<int>(*row), static_cast<int>(*row));
        ids_.erase(place(*row) - 1);
        endRemoveRows();
      }
      return;
  }
}

QVariant InboxListModel::thumbnail(const ScreenshotItem& item) const {
  if (isUnavailable(item) || model_.evictedItemIDs->contains(item.id)) return {};
  const auto known = pictures_.find(item.id);
  if (known != pictures_.end() && known->second.url == item.url && known->second.identity == item.fileIdentity) {
    return known->second.image.isNull() ? QVariant() : QVariant(known->second.image);
  }
  if (pictures_.size() > kMostPictures) pictures_.clear();
  pictures_.insert_or_assign(item.id, Picture{item.url, item.fileIdentity, {}});
  auto* self = const_cast<InboxListModel*>(this);
  load(lifetime_.weak(self), item.id, item.url).detach();
  return {};
}

Task<> InboxListModel::load(Weak<InboxListModel> self, UUID id, FileURL url) {
  const auto loading = self->thumbnails_.load(url, kThumbnailPixels);
  const auto outcome = co_await loading;
  if (!self) co_return;
  const QImage* image = std::get_if<QImage>(&outcome);
  const auto picture = self->pictures_.find(id);
  const auto row = self->model_.items().indexOf(id);
  if (!image || picture == self->pictures_.end() || picture->second.url != url || !row) co_return;
  picture->second.image = *image;
  const QModelIndex changed = self->index(static_cast<int>(*row));
  Q_EMIT self->dataChanged(changed, changed, {thumbnailRole});
}

}  // namespace quillmere
