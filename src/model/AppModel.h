#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/Result.h"
#include "foundation/Weak.h"
#include "model/AnalysisPipeline.h"
#include "model/AnalysisStatus.h"
#include "model/AppModelDependencies.h"
#include "model/CloudDownloads.h"
#include "model/ExpirationScheduler.h"
#include "model/ExpiryRetries.h"
#include "model/FileReplacement.h"
#include "model/FileStamp.h"
#include "model/FolderAccess.h"
#include "model/Messages.h"
#include "model/PictureTransfers.h"
#include "model/PopupAutoSaveScheduler.h"
#include "model/PromptQueue.h"
#include "model/Published.h"
#include "model/ReconciliationRuns.h"
#include "model/RecordIndex.h"
#include "model/ScreenshotFolderMatch.h"
#include "model/Settings.h"
#include "model/WindowExtractionRun.h"
#include "records/MoveJournal.h"
#include "records/ScreenshotList.h"
#include "records/ScreenshotListWriter.h"
#include "records/ScreenshotNaming.h"

namespace quillmere {

/// All state of Quillmere, and every decision. Main thread only. Views follow the published fields and call the
/// operations; they decide nothing about files. Each group of operations stands in a file of its own, named in the
/// comment above it.
class AppModel : private AnalysisRecords,
                 private PromptStage,
                 private ReconciledRecords,
                 private TransferSource,
                 private ReplacedRecords {
  template <typename T>
  using Field = Published<T, AppModel>;

 public:
  explicit AppModel(AppModelDependencies dependencies);
  ~AppModel();
  /// For tasks that outlive whoever began them.
  Weak<AppModel> weak() { return lifetime_.weak(this); }

  /// What a change was; told after it.
  Signal<const ModelChange&> changed;

  // --- Frame, messages, saving: AppModel.cpp ---
  void start();
  /// Writes the list now. A failure is the banner, and is tried again with growing pauses.
  void saveNow();
  /// Writes the list soon; for streams of small changes.
  void scheduleSave();
  bool hasPendingSave() const { return static_cast<bool>(saveTask_); }
  /// False after a save that failed, until one succeeds.
  bool isSaved() const { return failedSaves_ == 0; }
  bool isRecordsReadOnly() const { return recordsReadOnly_; }

  const ScreenshotList& items() const { return items_; }
  Field<UUIDSet> selectedItemIDs{changed, ModelField::selectedItemIDs};
  Field<std::optional<ScopedError>> promptError{changed, ModelField::promptError};
  Field<std::optional<ScopedError>> inboxError{changed, ModelField::inboxError};
  Field<std::optional<ScopedError>> settingsError{changed, ModelField::settingsError};
  Field<std::optional<BackgroundIssue>> backgroundIssue{changed, ModelField::backgroundIssue};
  Field<std::optional<FileURL>> watchFolderURL{changed, ModelField::watchFolderURL};
  Field<WatcherStatus> watcherStatus{changed, ModelField::watcherStatus, WatcherStatus::notChosen};
  Field<std::optional<FileURL>> macOSScreenshotFolder{changed, ModelField::macOSScreenshotFolder};
  Field<std::optional<ScreenshotLocationChange>> lastScreenshotLocationChange{changed,
                                                                              ModelField::lastScreenshotLocationChange};
  Field<UUIDSet> unavailableItemIDs{changed, ModelField::unavailableItemIDs};
  Field<UUIDSet> evictedItemIDs{changed, ModelField::evictedItemIDs};
  Field<UUIDSet> iCloudItemIDs{changed, ModelField::iCloudItemIDs};
  Field<UUIDMap<DownloadState>> downloadStates{changed, ModelField::downloadStates};
  Field<UUIDSet> analyzingIDs{changed, ModelField::analyzingIDs};
  Field<std::optional<AnalysisError>> intelligenceUnavailability{changed, ModelField::intelligenceUnavailability};
  /// Another person's model server that is used, or that could be if it were allowed.
  Field<std::optional<ForeignModelServer>> foreignModelServer{changed, ModelField::foreignModelServer};

  void setSelectedItemIDs(UUIDSet ids) { selectedItemIDs.set(std::move(ids)); }
  void show(ErrorScope scope, const QString& title, const QString& message);
  void dismissError(ErrorScope scope);
  void dismissBackgroundIssue();
  void announce(const QString& text, AnnouncementPriority priority) const;
  Date now() const { return dependencies_.now(); }

  // --- Settings: AppModelSettings.cpp ---
  const Settings& settings() const { return settings_; }
  void setMenuBarEnabled(bool isOn) { settings_.menuBarEnabled.change(isOn); }
  void setShowPopupThumbnail(bool isOn);
  void setAnalyzeScreenshots(bool isOn);
  void setModelAddress(const QString& address);
  /// Whether another person's model server may see screenshots.
  void setAllowed(const ForeignModelServer& server, bool isAllowed);
  bool isAllowed(const ForeignModelServer& server) const;
  /// False where the disk of the folder keeps too little of its files to find one that was renamed or moved.
  bool canFollowWatchFolder() const;
  void refreshModelAvailability();
  void setShowsDeleteImmediately(bool isOn) { settings_.showsDeleteImmediately.change(isOn); }
  void setDeletesChosenImmediately(bool isOn) { settings_.deletesChosenImmediately.change(isOn); }
  void setDeletesExpiredImmediately(bool isOn) { settings_.deletesExpiredImmediately.change(isOn); }
  void setPopupAutoSaveEnabled(bool isOn);
  void setPopupAutoSaveSeconds(int seconds);
  void setPopupWaitsForPause(bool isOn);
  void setPopupPauseSeconds(int seconds);
  void setPopupGathersSeries(bool isOn);
  void setScreenshotNaming(ScreenshotNaming naming) { settings_.screenshotNaming.change(naming); }
  void setIncludesNonCaptureImages(bool includes);
  void setHasSeenWelcome(bool hasSeen) { settings_.hasSeenWelcome.change(hasSeen); }

  // --- The review shortcut: AppModelShortcut.cpp ---
  /// Why the shortcut is not heard, in words.
  Field<std::optional<QString>> hotKeyError{changed, ModelField::hotKeyError};
  /// The same shortcut again is a new try after a failure; none clears it for good.
  void setHotKeyShortcut(const std::optional<HotKeyShortcut>& shortcut);
  /// While a shortcut is recorded none is heard.
  void setHotKeysSuspended(bool isSuspended);
  HotKeyRegistering& hotKeys() const { return *dependencies_.hotKeys; }

  // --- Opening with the session: AppModelLoginItem.cpp ---
  Field<LoginItemStatus> loginItemStatus{changed, ModelField::loginItemStatus, LoginItemStatus::notRegistered};
  void refreshLoginItemStatus();
  void setOpensAtLogin(bool opens);
  void openLoginItemSettings();
  bool canOpenLoginItemSettings() const { return dependencies_.loginItems->hasSystemSettings(); }

  // --- Arrival: AppModelArrival.cpp ---
  enum class Origin { capturedHere, elsewhere };
  void record(const FileURL& url, Origin origin);
  bool hasLeft(const UUID& id, const std::optional<FileIdentity>& identity) const;
  const RecordIndex& recordIndex();

  // --- The popup's queue: AppModelPrompts.cpp ---
  const PromptQueue& prompts() const { return prompts_; }
  /// The screenshot in the popup.
  const ScreenshotItem* promptedItem() const;
  void enqueuePrompt(const UUID& id) { prompts_.enqueue(id); }
  void showNextPrompt() { prompts_.showNext(); }
  /// Takes ids out of the queue, and ends their time.
  void resolvePrompts(const UUIDSet& ids);
  /// The popup's close button: the record stays pending, and the next screenshot comes up.
  void dismissPrompt();
  /// Gives the popup the keyboard, filling the queue first if it is empty.
  void reviewPending(FocusNews news);

  // --- Reconciliation: AppModelReconciliation.cpp ---
  void reconcile(ReconcileRequest request) { reconciliations_.request(std::move(request)); }
  bool isReconciling() const { return reconciliations_.isRunning(); }

  // --- Decisions: AppModelDecisions.cpp ---
  /// Both decide at once, unless an extracted window must take the screenshot's place first; where that fails nothing
  /// is decided.
  Task<> markTemporary(UUID id, TemporaryDuration duration, std::optional<QString> name = {});
  Task<> keepPrompt(UUID id, std::optional<QString> name = {});
  void markTemporaryBatch(const std::vector<UUID>& ids, TemporaryDuration duration);
  void keepBatch(const std::vector<UUID>& ids);

  // --- Popup timeout: AppModelTimeout.cpp ---
  /// What stands in the popup's name field.
  struct PromptNameEdit {
    UUID id;
    QString text;
    bool isEdited = false;
    bool isFocused = false;
    bool operator==(const PromptNameEdit&) const = default;
  };
  void setPromptNameEdit(std::optional<PromptNameEdit> edit) { promptNameEdit_ = std::move(edit); }
  const std::optional<PromptNameEdit>& promptNameEdit() const { return promptNameEdit_; }
  bool isPopupPaused(const UUID& id) const;
  const PopupAutoSaveScheduler& popupAutoSaveScheduler() const { return popupAutoSaveScheduler_; }

  // --- Disposal: AppModelDisposal.cpp ---
  enum class DisposalReason { chosen, expired, deleteImmediately };
  enum class TrashOutcome { removed, notTracked, inUse, replaced, failed, unreachable };
  enum class ChosenDisposal { done, declined, refused };
  /// What the person chose on any surface. Where that deletes, it asks first; until the answer the record can neither
  /// expire nor be disposed of from elsewhere. A refusal is shown in `scope`.
  ChosenDisposal disposeChosen(const UUID& id, ErrorScope scope);
  /// A file that is not any more what it was when it was `asked` about, by its stamp where there is one, stays, and
  /// that is shown.
  void disposeItem(const ScreenshotItem& item, ErrorScope scope, DisposalReason reason,
                   const UUIDMap<FileStamp>& asked = {});
  void disposeBatch(const std::vector<ScreenshotItem>& items, ErrorScope scope, DisposalReason reason,
                    const UUIDMap<FileStamp>& asked = {});
  /// What the person confirmed in the Inbox.
  void disposeConfirmed(const std::vector<ScreenshotItem>& items, const UUIDMap<FileStamp>& asked,
                        DisposalReason reason) {
    disposeBatch(items, ErrorScope::inbox, reason, asked);
  }
  /// While a record's file is open in the program it cannot be disposed of, and its time does not run out: until it was
  /// unprotected as often as it was protected.
  void protect(const UUID& id) override { ++protectedItems_[id]; }
  void unprotect(const UUID& id) override;
  /// Forgets records; their files stay. The caller saves.
  void removeRecords(const UUIDSet& ids);
  /// Forgets every record, on disk too; all files stay.
  void clearRecords();

  // --- Renaming: AppModelRenaming.cpp ---
  enum class RenameOutcome { renamed, unchanged, unavailable, failed };
  /// Answers false when there is no such record and when the file system refused, which is shown in `scope`.
  bool rename(const UUID& id, const QString& name, ErrorScope scope);
  /// Gives each the name suggested from its image, where it has one. Failures are told together.
  void applySuggestedNames(const std::vector<UUID>& ids, ErrorScope scope);

  // --- Moving: AppModelMoving.cpp ---
  /// Asks where to, and moves the file there. Moving keeps it.
  void moveAndRename(UUID id);
  void move(const UUID& id, const FileURL& destination);

  // --- Crops: AppModelCrops.cpp ---
  FileStamp stampOf(const FileURL& url) const { return fileStamp(url, dependencies_.fileIdentity); }
  /// A picture that was read to take a part of it.
  struct OpenedPicture {
    QImage image;                                          ///< at full size and upright
    std::vector<ImageOperations::DetectedWindow> windows;  ///< largest first; none unless they were asked for
    FileStamp readFrom;                                    ///< the file as it was when it was read
  };
  /// Reads the record's file in the background, and finds the windows in it if `detectsWindows`. A dataless file is not
  /// read.
  Task<Result<OpenedPicture, ImageOperations::OperationError>> openPicture(ScreenshotItem item, bool detectsWindows);
  /// Whether the record is still in the list, at the file that was opened, and that file is here and still the
  /// same.
  Task<bool> isReplaceable(UUID id, FileURL opened, FileStamp readFrom);
  /// The same without a look at the disk.
  bool isReplaceableAsFarAsKnown(const UUID& id, const FileURL& opened) const;
  /// Puts the part of `image` inside `rect` in the place of the record's file, which goes to Trash; not if that is no
  /// longer the file that the picture was `readFrom`, or as it is now. Gives why it failed, in words; nothing has
  /// changed then.
  Task<std::optional<QString>> replaceOriginal(UUID id, QImage image, QRectF rect,
                                               std::optional<FileStamp> readFrom = {});
  /// Writes that part as a new file into the watched folder, with a record of its own, also when the record of its
  /// `source` is gone. Gives why it failed, in words.
  Task<Result<UUID, QString>> saveAsNew(ScreenshotItem source, QImage image, QRectF rect);
  /// A crop is being written that would be lost with the program.
  bool isWritingCrops() const { return cropsBeingWritten_ > 0; }
  /// Something would be lost with the program. Followed by `ModelField::unsavedWork`.
  bool hasUnsavedWork() const { return hasPendingSave() || isWritingCrops(); }
  /// None is being written any more.
  std::function<void()> onCropsWritten;
  /// Puts that part on the clipboard as a PNG; answers whether it could.
  Task<bool> copyCrop(QImage image, QRectF rect) { return transfers_.copyCrop(std::move(image), rect); }

  // --- Extract Window: AppModelExtraction.cpp ---
  const WindowExtractionRun& windowExtraction() const { return extraction_; }
  /// Turns it on or off for the screenshot in the popup; gives what the popup is to tell.
  Task<std::optional<PromptPreviewNotice>> setPromptWindowExtraction(ScreenshotItem item, bool enabled);
  /// Puts the extracted window in the screenshot's place, if there is one. Gives why it failed, in words.
  Task<std::optional<QString>> saveExtractedWindow(UUID id);
  /// The same before a decision; false when the decision must not be made, which is shown.
  Task<bool> commitPromptExtraction(UUID id);

  // --- Copy, drag and share: AppModelTransfer.cpp ---
  /// Puts the picture, or the extracted window, on the clipboard. A failure is shown in `scope`.
  Task<bool> copy(ScreenshotItem item, ErrorScope scope) { return transfers_.copy(std::move(item), scope); }
  /// Puts the text in the screenshot on the clipboard; gives what the popup is to tell.
  Task<std::optional<PromptPreviewNotice>> copyRecognizedText(ScreenshotItem item);
  /// Puts a text on the clipboard.
  void copyText(const QString& text) const;
  /// The file, or a copy of it under another name, or the extracted window. Nothing when that failed, which is shown.
  Task<std::optional<PreparedTransfer>> prepareTransfer(ScreenshotItem item, std::optional<QString> name) {
    return transfers_.prepare(std::move(item), std::move(name));
  }

  // --- Analysis: AppModelAnalysis.cpp ---
  /// Describes the screenshot anew or for the first time, unless that is being done.
  void startAnalysis(const UUID& id);
  void cancelAnalysis(const UUID& id);
  void cancelAllAnalysis();
  AnalysisAvailability analysisAvailability() const;
  /// The text in the screenshot, recognised if need be. Nothing when that failed or was cancelled.
  Task<std::optional<QString>> recognizedText(const UUID& id);

  // --- Watch folder: AppModelWatchFolder.cpp ---
  FolderPanelStart folderPanelStart(const std::optional<FileURL>& preferred);
  void chooseWatchFolder(const std::optional<FileURL>& preferred = {}, ErrorScope scope = ErrorScope::inbox);
  void adoptWatchFolder(const FileURL& url, ErrorScope scope);

  // --- Where the desktop saves screenshots: AppModelScreenshotLocation.cpp ---
  ScreenshotFolderMatch screenshotFolderMatch() const {
    return ScreenshotFolderMatch::of(*watchFolderURL, *macOSScreenshotFolder);
  }
  /// Nothing has arrived and the desktop saves elsewhere, which the person has not waved away for that folder.
  bool showsLocationMismatch() const;
  bool canPointMacOSAtWatchFolder() const;
  void pointMacOSAtWatchFolder();
  void undoScreenshotLocationChange();
  /// The change stands, and its undo is not offered any more.
  void dismissScreenshotLocationChange() { lastScreenshotLocationChange.set(std::nullopt); }
  void dismissLocationMismatch();
  void refreshScreenshotLocation();

  // --- Evicted files: AppModelCloud.cpp ---
  bool canDownload(const UUID& id) const;
  /// Asks the sync client for the file's data. Never done unasked.
  void download(const UUID& id);

  // --- Expiry: AppModelExpiry.cpp ---
  void expire(const UUID& id);
  const ExpirationScheduler& expirationScheduler() const { return expirationScheduler_; }

 private:
  // AppModel.cpp
  void wireMonitor();
  void observeSystem();
  void finishStart();
  void updateSystemPause();
  void setSaveTask(Task<> task);
  static Task<> saveLater(Weak<AppModel> self);
  static Task<> saveAgain(Weak<AppModel> self, Duration pause);
  bool trySaving();
  /// The only way to change a record; answers whether it became another.
  bool updateItem(size_t index, const std::function<void(ScreenshotItem&)>& change);
  /// `changes` only changes records; followers are told of all of them at once, so that nobody follows ten thousand
  /// decisions one by one.
  void changeTogether(const std::function<void()>& changes);
  void insertNewest(ScreenshotItem item);
  void forgetInIndex(const ScreenshotItem& item);
  static void setMember(Field<UUIDSet>& set, const UUID& id, bool isMember);

  // AppModelPrompts.cpp
  std::vector<UUID> pendingPrompts() const;
  /// The popup shows nothing about a screenshot that it has gone on from.
  ErrorScope scopeNow(ErrorScope scope, const UUID& id) const;
  void promptIsComing() override { promptError.set(std::nullopt); }
  void promptIsLeft() override;
  void showPrompt(const ScreenshotItem& item) override;
  std::optional<QString> spokenReviewShortcut() const override;

  // AppModelShortcut.cpp
  void registerHotKey();
  void observeHotKeys();
  void tryHotKeyAgain();

  // AppModelReconciliation.cpp
  void handleRemoval(const std::vector<FileURL>& urls);
  void handleStatus(WatcherStatus status);
  ReconcileRun prepareRun(const std::optional<UUIDSet>& ids) override;
  void applyRun(const ReconcileRun& run, const ReconcileRequest& request) override;
  std::optional<UUID> otherRecordOf(size_t index, const FilePresent& present);
  bool noteMovedAway(size_t index);
  bool applyPresent(size_t index, const FilePresent& present);

  // AppModelDecisions.cpp
  static Task<> runMarkTemporary(Weak<AppModel> self, UUID id, TemporaryDuration duration, std::optional<QString> name);
  static Task<> runKeepPrompt(Weak<AppModel> self, UUID id, std::optional<QString> name);
  bool isUndecided(const UUID& id) const;
  void renameBeforeDecision(const UUID& id, const QString& name);
  void makeTemporary(size_t index, TemporaryDuration duration, Date moment);
  void keepItem(size_t index);

  // AppModelTimeout.cpp
  void beginCountdown(const UUID& id);
  void restartCountdown();
  void popupTimedOut(const UUID& id);
  static Task<> keepAfterTimeout(Weak<AppModel> self, UUID id);
  std::optional<QString> timeoutName(const ScreenshotItem& item) const;

  // AppModelDisposal.cpp
  TrashOutcome dispose(const UUID& id, bool deletes, const UUIDMap<FileStamp>& asked = {});
  bool deletes(DisposalReason reason) const;
  bool isReplaced(const ScreenshotItem& item) const;
  bool hasChanged(const ScreenshotItem& item, const UUIDMap<FileStamp>& asked) const;
  void adoptReplacement(const UUID& id);
  void showReplaced(ErrorScope scope, const FileURL& url);

  // AppModelRenaming.cpp
  RenameOutcome renameItem(size_t index, const QString& name);
  bool isOfARecord(const FileIdentity& identity);
  NumberedSearchResult moveToStem(const FileURL& url, const QString& stem);

  // AppModelMoving.cpp
  bool adoptMove(size_t index, const FileURL& url);
  void finishMoves();
  static bool isMovedFile(const ScreenshotItem& item, const FileURL& url);

  // AppModelCrops.cpp
  static Task<Result<OpenedPicture, ImageOperations::OperationError>> runOpening(Weak<AppModel> self,
                                                                                 ScreenshotItem item,
                                                                                 bool detectsWindows);
  static Task<bool> runReplaceable(Weak<AppModel> self, UUID id, FileURL opened, FileStamp readFrom);
  static Task<Result<UUID, QString>> runSaveAsNew(Weak<AppModel> self, ScreenshotItem source, QImage image,
                                                  QRectF rect);
  static Task<std::optional<QString>> runReplacing(Weak<AppModel> self, UUID id, QImage image, QRectF rect,
                                                   FileStamp readFrom);
  static Task<Result<UUID, QString>> runWriting(Weak<AppModel> self, ScreenshotItem source, QImage image, QRectF rect);
  void beginWritingCrop();
  void endWritingCrop();
  void fileWasReplaced(const UUID& id) override;
  void fileWasPutAt(const UUID& id, const FileURL& url) override;
  UUID addDerived(const FileURL& url, const UUID& source);

  // AppModelExtraction.cpp
  static Task<std::optional<PromptPreviewNotice>> runWindowExtraction(Weak<AppModel> self, ScreenshotItem item,
                                                                      bool enabled);
  static Task<std::optional<QString>> runWindowSaving(Weak<AppModel> self, UUID id);
  static Task<bool> runPromptCommit(Weak<AppModel> self, UUID id);
  std::optional<PromptPreviewTransfer::Crop> extractedWindow(const UUID& id) const override;
  PromptPreviewNotice tell(PromptPreviewNotice notice) const;

  // AppModelTransfer.cpp
  std::optional<CopyFailure> knownObstacle(const UUID& id) const override;
  void showTransferFailure(ErrorScope scope, const UUID& id, const QString& title, const QString& message) override;
  static Task<std::optional<PromptPreviewNotice>> runTextCopy(Weak<AppModel> self, ScreenshotItem item);

  // AppModelAnalysis.cpp
  void startMissingAnalysis();
  const ScreenshotItem* find(const UUID& id) const override { return items_.find(id); }
  void change(const UUID& id, const std::function<void(ScreenshotItem&)>& change) override;
  void saveRecords() override { saveNow(); }
  void saveRecordsSoon() override { scheduleSave(); }
  void analyzingChanged(const UUIDSet& ids) override { analyzingIDs.set(ids); }
  void analyzingChanged(const UUID& id, bool isAnalyzing) override { setMember(analyzingIDs, id, isAnalyzing); }
  void foreignServerChanged(const std::optional<ForeignModelServer>& server) override {
    foreignModelServer.set(server);
  }
  void unavailabilityChanged(const std::optional<AnalysisError>& error) override {
    intelligenceUnavailability.set(error);
  }

  // AppModelWatchFolder.cpp
  void restoreWatchFolder();
  bool retryWatchFolder();
  void followMovedFolder(const FileURL& folder);
  void setWatchFolder(const std::optional<FileURL>& url);
  std::string pathKeyOf(const FileURL& url) const { return pathKey(url, watchFolderPaths_); }

  // AppModelFileAccess.cpp
  void refreshBookmark(size_t index, const std::optional<QByteArray>& oldBookmark);
  void refreshItemAccess(size_t index, const std::optional<FileURL>& resolved);
  static Task<> refreshEveryItemAccess(Weak<AppModel> self);
  void openItemAccess(size_t index, const std::optional<ResolvedBookmark>& bookmarked);

  // Files that are elsewhere now: AppModelFollowing.cpp
  bool followRename(const FileURL& url, const FileIdentity& identity);
  void updateLocation(size_t index, const FileURL& url, const std::optional<FileURL>& scopedURL);
  std::optional<FileURL> relocateByBookmark(size_t index);
  void moveRecords(const FileURL& from, const FileURL& to);

  // AppModelScreenshotLocation.cpp
  void checkLocationRegularly();
  static Task<> checkLocation(Weak<AppModel> self);

  // AppModelCloud.cpp
  void refreshCloudMembership(const UUID& id, const FileURL& url);
  void endDownload(const UUID& id);
  void setDownloadState(const UUID& id, std::optional<DownloadState> state);
  void refreshAfterDownload(const UUID& id);

  // AppModelExpiry.cpp
  void expireOne(const UUID& id);
  void saveAfterExpiry();
  void expireMissing(size_t index);
  void expirePresent(size_t index);
  void retryUnreachable(const UUID& id);
  void recordExpirationFailure(const UUID& id);
  void tellOfKept();
  void forget(const UUID& id);
  void refreshExpirationBanner();

  AppModelDependencies dependencies_;
  Settings settings_;
  ScreenshotList items_;
  std::vector<size_t>* gathered_ = nullptr;  ///< the records that are being changed together
  PromptQueue prompts_;
  WindowExtractionRun extraction_;
  ScreenshotListWriter listWriter_;
  FileReplacement replacement_{dependencies_, items_, *this};
  int cropsBeingWritten_ = 0;
  MoveJournal moveJournal_{dependencies_.recordStore.fileURL.parent().appending("moving.json")};
  std::vector<BegunMove> waitingMoves_;  ///< for a disk, or for the list to be saved
  bool recordsReadOnly_ = false;
  bool didStart_ = false;
  bool isRecovering_ = false;  ///< arrivals wait, so that the lost run's screenshots come back oldest first
  Task<> saveTask_;
  int failedSaves_ = 0;  ///< since one succeeded
  std::optional<HotKeyRegistering::Token> hotKeyToken_;
  bool hotKeysSuspended_ = false;
  std::vector<Connection> observers_;
  bool screensAsleep_ = false;
  bool sessionLocked_ = false;

  ExpirationScheduler expirationScheduler_;
  PopupAutoSaveScheduler popupAutoSaveScheduler_;
  FolderAccess access_;
  ReconciliationRuns reconciliations_;
  Task<> itemAccessTask_;
  std::optional<WatchFolderPaths> watchFolderPaths_;
  std::optional<RecordIndex> recordIndexCache_;

  std::optional<PromptNameEdit> promptNameEdit_;
  std::optional<std::pair<UUID, FileStamp>> shownFile_;  ///< the file in the popup as it was when it came up
  std::set<UUID> inQuestion_;                            ///< whether to delete them is being asked

  Task<> locationCheckTask_;
  CloudDownloads downloads_;
  PictureTransfers transfers_{dependencies_, items_, *this};

  UUIDMap<int> protectedItems_;
  ExpiryRetries expiryRetries_{dependencies_.unavailableRetryDelay};
  bool expiryChangedRecords_ = false;

  AnalysisPipeline analysis_;

  Lifetime lifetime_;
};

}  // namespace quillmere
