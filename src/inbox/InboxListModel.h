#pragma once

#include <QtCore/QAbstractListModel>
#include <QtGui/QImage>
#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "formats/ThumbnailLoader.h"
#include "foundation/Weak.h"
#include "model/AppModel.h"

namespace quillmere {

/// The Inbox's rows: the model's records, newest first. It follows the model row by row, so that a long list is never
/// built anew for one change.
class InboxListModel final : public QAbstractListModel {
 public:
  enum Role {
    nameRole = Qt::DisplayRole,
    statusRole = Qt::UserRole,
    symbolRole,
    thumbnailRole,
    idRole,
    unavailableRole
  };

  InboxListModel(AppModel& model, ThumbnailLoader& thumbnails);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  /// Of a row's picture, in pixels.
  static constexpr int kThumbnailPixels = 128;

 private:
  void follow(const ModelChange& change);
  int rows() const { return static_cast<int>(ids_.size()); }
  std::vector<UUID>::iterator place(size_t row) { return ids_.end() - static_cast<std::ptrdiff_t>(row); }
  bool isUnavailable(const ScreenshotItem& item) const { return model_.unavailableItemIDs->contains(item.id); }
  QVariant thumbnail(const ScreenshotItem& item) const;
  static Task<> load(Weak<InboxListModel> self, UUID id, FileURL url);

  AppModel& model_;
  ThumbnailLoader& thumbnails_;
  Connection changes_;
  struct Picture {
    FileURL url;
    std::optional<FileIdentity> identity;
    QImage image;
  };
  mutable UUIDMap<Picture> pictures_;
  // The rows as the views know them while they are told of a change. Oldest first, so that an arrival moves nothing.
  std::vector<UUID> ids_;
  Lifetime lifetime_;
};

}  // namespace quillmere
