#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "foundation/Weak.h"
#include "model/AppModelDependencies.h"
#include "model/FileExchange.h"
#include "model/FileStamp.h"
#include "model/FileWorker.h"
#include "records/ReplacementJournal.h"
#include "records/ScreenshotList.h"

namespace quillmere {

/// The model as replacements need it.
class ReplacedRecords {
 public:
  virtual ~ReplacedRecords() = default;
  /// The record's file stays where it is until as many calls of `unprotect`.
  virtual void protect(const UUID& id) = 0;
  virtual void unprotect(const UUID& id) = 0;
  /// Nothing else is done to these records' files as long as the hold is held.
  virtual Task<FileWorker::Hold> claimFiles(std::vector<UUID> ids) = 0;
  /// Another picture stands in the place of the record's file, of which nothing is known yet.
  virtual void fileWasReplaced(const UUID& id) = 0;
  /// The record's file has another name now.
  virtual void fileWasPutAt(const UUID& id, const FileURL& url) = 0;
  /// Whether what was told above is on the disk; awaited by whoever forgets a note of it.
  virtual Task<bool> whenReplacedIsSaved() = 0;
};

/// Puts a crop in the place of its original, which goes to Trash. Between the original's leaving and the crop's coming
/// nothing stands in the place, so each replacement is noted on disk until it is over. Main thread.
class FileReplacement {
 public:
  /// All of them outlive this.
  FileReplacement(const AppModelDependencies& dependencies, const ScreenshotList& items, ReplacedRecords& records);

  /// Replaces the record's file by the part of `image` inside `rect`, unless it is no longer the file that the picture
  /// was `readFrom`. Gives why it failed, in words; nothing has changed then.
  Task<std::optional<QString>> replace(UUID id, QImage image, QRectF rect, FileStamp readFrom);
  /// Done when nothing that an earlier run left will be removed any more.
  Task<> swept() const { return sweep_; }
  /// Brings to their end what an earlier run had begun, and removes what it had not finished writing.
  void finishBegun(const std::optional<FileURL>& watchFolder);

 private:
  static Task<std::optional<QString>> run(Weak<FileReplacement> self, UUID id, QImage image, QRectF rect,
                                          FileStamp readFrom);
  static Task<> sweep(Executor& executor, std::set<FileURL> folders, std::vector<Replacement> awaited);
  static Task<std::optional<QString>> exchange(Weak<FileReplacement> self, ExchangeJob job);
  bool finish(const Replacement& one);
  static Task<> forget(Weak<FileReplacement> self, std::vector<Replacement> over);

  const AppModelDependencies& dependencies_;
  const ScreenshotList& items_;
  ReplacedRecords& records_;
  const std::shared_ptr<ReplacementJournal> journal_;
  Task<> sweep_;
  Lifetime lifetime_;
};

}  // namespace quillmere
