#pragma once

#include <QtCore/QAbstractListModel>
#include <vector>

#include "inbox/InboxPresentation.h"
#include "inbox/RowThumbnails.h"
#include "inbox/SearchIndex.h"

namespace quillmere {

/// The Inbox's rows: the records that the filter lets through, newest first. It follows the model and the filter row by
/// row, so that a long list is never built anew for one change. What is typed is sought in the background; until that
/// is done the rows stay as they are.
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

  explicit InboxListModel(InboxPresentation& presentation);
  ~InboxListModel() override;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  UUID id(int row) const { return ids_[ids_.size() - 1 - static_cast<size_t>(row)]; }
  const ScreenshotItem* item(const QModelIndex& index) const;
  /// None where the record is not shown.
  std::optional<int> row(const UUID& id) const;
  /// What the rows are of; the presentation's filter may be ahead of it.
  const InboxFilter& filter() const { return filter_; }
  /// The rows are those of the presentation's filter now.
  std::function<void()> onFiltered;
  /// Reading texts for the first search takes a moment: it can begin before the first key.
  void prepareSearch() { search_.prepare(); }
  void releaseSearch() { search_.release(); }

  /// Of a row's picture, in pixels.
  static constexpr int kThumbnailPixels = 128;

 private:
  using IDs = std::vector<UUID>;
  void follow(const ModelChange& change);
  void followItems(const ModelChange& change);
  void followSet(UUIDSet& known, const UUIDSet& present);
  void insertRecords(const std::vector<size_t>& indices);
  void changeRecords(const std::vector<size_t>& indices);
  void removeRecords(const std::vector<size_t>& indices);
  /// A record that may be shown or not from now on.
  void judge(const UUID& id);
  void refilter();
  static Task<> search(Weak<InboxListModel> self, InboxFilter filter);
  void showRecords(InboxFilter filter, IDs newestFirst);

  int rows() const { return static_cast<int>(ids_.size()); }
  IDs::iterator place(int row) { return ids_.end() - row; }
  /// The row at which the record at `index` of the model stands or would stand.
  int rowFor(size_t index) const;
  bool passes(const ScreenshotItem& item) const;
  void addRows(int row, const IDs& newestFirst);
  void dropRows(int first, int count);
  void repaint(int row);
  bool isUnavailable(const ScreenshotItem& item) const { return model_.unavailableItemIDs->contains(item.id); }

  AppModel& model_;
  InboxPresentation& presentation_;
  SearchIndex search_;
  mutable RowThumbnails thumbnails_;
  // The rows as the views know them while they are told of a change. Oldest first, so that an arrival moves nothing.
  IDs ids_;
  InboxFilter filter_;
  Task<> searching_;
  UUIDSet unavailable_;
  UUIDSet evicted_;
  Connection changes_;
  Connection presentationChanges_;
  Lifetime lifetime_;
};

}  // namespace quillmere
