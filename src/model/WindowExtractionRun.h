#pragma once

#include <optional>

#include "foundation/Weak.h"
#include "model/FileStamp.h"
#include "model/PromptQueue.h"
#include "model/PromptWindowExtraction.h"

namespace quillmere {

/// Extract Window for the screenshot in the popup: how far it has come, and the picture that was looked through, so
/// that neither copying nor saving reads it again. Main thread.
class WindowExtractionRun {
 public:
  using Crop = PromptPreviewTransfer::Crop;

  /// All of them outlive this.
  WindowExtractionRun(const AppModelDependencies& dependencies, const PromptQueue& prompts,
                      Signal<const ModelChange&>& changed);

  /// None while the whole screenshot is shown.
  Published<std::optional<PromptWindowExtraction>, WindowExtractionRun> state;

  enum class Sought {
    found,
    nothing,
    overtaken,  ///< it was turned off, or the popup has gone on
  };
  using Scan = Task<Result<ImageOperations::WindowScan, ImageOperations::OperationError>>;
  /// Shows the window of the screenshot in the popup, which `scan` looks for in the file at `url`. Where there is none
  /// and where that failed, the whole screenshot is shown again.
  Task<Result<Sought, ImageOperations::OperationError>> seek(UUID id, FileURL url, Scan scan);
  bool isSeeking(const UUID& id) const;

  /// The window that was found in the screenshot, also while it is being saved.
  std::optional<Crop> window(const UUID& id) const;
  /// The file as it was when its window was sought.
  const FileStamp& readFrom() const { return readFrom_; }

  void beginSaving(const UUID& id);
  bool isSaving(const UUID& id) const;
  /// The window is shown as before, so that it can be tried again.
  void returnFromSaving();

  /// Shows the whole screenshot; a search that is under way ends.
  void clear();

 private:
  static Task<Result<Sought, ImageOperations::OperationError>> runSeek(Weak<WindowExtractionRun> self, UUID id,
                                                                       FileURL url, Scan scan);
  template <typename Phase>
  bool isIn(const UUID& id) const;

  const AppModelDependencies& dependencies_;
  const PromptQueue& prompts_;
  Scan scan_;
  QImage image_;
  FileStamp readFrom_;
  Lifetime lifetime_;
};

}  // namespace quillmere
