#pragma once

#include <functional>
#include <optional>

#include "foundation/Weak.h"
#include "model/AppModelDependencies.h"
#include "records/ScreenshotList.h"

namespace quillmere {

/// Why a picture could not be copied.
enum class CopyFailure { unavailable, evicted, unreadable };

/// The model as transfers need it.
class TransferSource {
 public:
  virtual ~TransferSource() = default;
  /// The window that stands for the whole screenshot, if there is one.
  virtual std::optional<PromptPreviewTransfer::Crop> extractedWindow(const UUID& id) const = 0;
  /// Why there is nothing to be read, as far as that is known without a look at the disk.
  virtual std::optional<CopyFailure> knownObstacle(const UUID& id) const = 0;
  virtual void showTransferFailure(ErrorScope scope, const UUID& id, const QString& title, const QString& message) = 0;
};

/// Hands pictures to other applications: copied to the clipboard, or as a file that can be dragged or shared. All
/// reading is done in the background. Main thread.
class PictureTransfers {
 public:
  /// All of them outlive this.
  PictureTransfers(const AppModelDependencies& dependencies, const ScreenshotList& items, TransferSource& source)
      : dependencies_(dependencies), items_(items), source_(source) {}

  /// Of several that are under way at once the last one counts, whichever is read first.
  Task<bool> copy(ScreenshotItem item, ErrorScope scope);
  /// The same of a part of a picture in memory. A failure is the caller's to show; a copy that a later one overtook has
  /// none to show.
  Task<bool> copyCrop(QImage image, QRectF rect);
  /// Nothing when it failed, which is shown.
  Task<std::optional<PreparedTransfer>> prepare(ScreenshotItem item, std::optional<QString> name);

  /// Copies that were made of a picture go when its record goes, and all of them at the start and the end.
  void forget(const UUIDSet& records);
  void removeLeftCopies();
  void removeCopies() { dependencies_.transferFiles.removeAll(); }

 private:
  void removeCopies(const UUID& id);
  static Task<bool> runCropCopy(Weak<PictureTransfers> self, QImage image, QRectF rect);
  static Task<bool> runCopy(Weak<PictureTransfers> self, ScreenshotItem item, ErrorScope scope);
  static Task<std::optional<PreparedTransfer>> runPreparation(Weak<PictureTransfers> self, ScreenshotItem item,
                                                              std::optional<QString> name);
  PromptPreviewTransfer transfer(const ScreenshotItem& item, const std::optional<QString>& name) const;
  std::function<Result<ScreenshotPasteboardItem, CopyFailure>()> reading(const PromptPreviewTransfer& transfer) const;

  const AppModelDependencies& dependencies_;
  const ScreenshotList& items_;
  TransferSource& source_;
  int copies_ = 0;
  UUIDSet prepared_;  ///< pictures of which there may be copies
  Lifetime lifetime_;
};

}  // namespace quillmere
