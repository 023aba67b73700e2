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
#include "model/DecisionsUnderWay.h"
#include "model/FileDisposal.h"
#include "model/FileRenaming.h"
#include "model/FileReplacement.h"
#include "model/FileStamp.h"
#include "model/FileWorker.h"
#include "model/FolderAccess.h"
#include "model/ListSaver.h"
#include "model/Messages.h"
#include "model/PictureTransfers.h"
#include "model/PopupAutoSaveScheduler.h"
#include "model/PromptQueue.h"
#include "model/Published.h"
#include "model/ReconciliationRuns.h"
#include "model/RecordIndex.h"
#include "model/ScreenshotExpiry.h"
#include "model/ScreenshotFolderMatch.h"
#include "model/Settings.h"
#include "model/WindowExtractionRun.h"
#include "model/WindowKnowledge.h"
#include "records/MoveJournal.h"
#include "records/ScreenshotList.h"
#include "records/ScreenshotNaming.h"

namespace quillmere {

/// All state of Quillmere, and every decision. Main thread only. Views follow the published fields and call the
/// operations; they decide nothing about files. Each group of operations stands in a file of its own, named in the
/// comment above it.
class AppModel : private AnalysisRecords,
                 private CaptureRecords,
                 private DecidedRecords,
                 private ExpiringRecords,
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
  /// Has the list written in the background, as it is now or later. A failure is the banner, and is tried again with
  /// growing pauses.
  void saveNow() override;
  /// The same for what may come in thousands; all of it together about once a second.
  void saveInStream();
  /// Writes the list soon; for streams of small changes.
  void scheduleSave();
  /// Awaited by whoever must not go on before the list of now is on the disk: false when that failed.
  Task<bool> whenSaved();
  bool hasPendingSave() const { return saver_.isPending(); }
  /// False after a save that failed, until one succeeds.
  bool isSaved() const { return saver_.isSaved(); }
  /// The disk has not answered for seconds. Followed by `ModelField::unsavedWork`.
  bool isDiskSlow() const { return saver_.isSlow(); }
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
  Field<UUIDSet> leavingPrompts{changed, ModelField::leavingPrompts};
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
  void setDeletesExpiredImmediately(bool isOn);
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
  /// Decided, and in the popup only until that is saved, or for a moment. Followed by `ModelField::leavingPrompts`.
  bool isLeavingPrompt(const UUID& id) const { return leavingPrompts->contains(id); }
  /// Gives the popup the keyboard, filling the queue first if it is empty.
  void reviewPending(FocusNews news);

  // --- Reconciliation: AppModelReconciliation.cpp ---
  void reconcile(ReconcileRequest request) { reconciliations_.request(std::move(request)); }
  bool isReconciling() const { return reconciliations_.isRunning(); }

  // --- Decisions: AppModelDecisions.cpp ---
  /// Both decide at once, unless an extracted window must take the screenshot's place first, where nothing is decided
  /// if that fails, or the file must get its name.
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
  enum class ChosenDisposal { done, declined, refused };
  /// What the person chose on any surface. Where that deletes, it asks first; until the answer the record can neither
  /// expire nor be disposed of from elsewhere. A refusal is shown in `scope`.
  Task<ChosenDisposal> disposeChosen(UUID id, ErrorScope scope);
  /// Done when the files are thrown away and that is saved. A file that is not any more what it was when it was `asked`
  /// about, by its stamp where there is one, stays, and that is shown.
  Task<> disposeItem(ScreenshotItem item, ErrorScope scope, DisposalReason reason, UUIDMap<FileStamp> asked = {});
  Task<> disposeBatch(std::vector<ScreenshotItem> items, ErrorScope scope, DisposalReason reason,
                      UUIDMap<FileStamp> asked = {});
  /// What the person confirmed in the Inbox.
  Task<> disposeConfirmed(std::vector<ScreenshotItem> items, UUIDMap<FileStamp> asked, DisposalReason reason) {
    return disposeBatch(std::move(items), ErrorScope::inbox, reason, std::move(asked));
  }
  /// While a record's file is open in the program it cannot be disposed of, and its time does not run out: until it was
  /// unprotected as often as it was protected.
  void protect(const UUID& id) override;
  void unprotect(const UUID& id) override;
  /// Forgets records; their files stay. The caller saves.
  void removeRecords(const UUIDSet& ids) override;
  /// Forgets every record, on disk too; all files stay.
  void clearRecords();

  // --- Renaming: AppModelRenaming.cpp ---
  enum class RenameOutcome { renamed, unchanged, unavailable, failed, unknown };
  /// Answers false when there is no such record and when the file system refused, which is shown in `scope`.
  Task<bool> rename(UUID id, QString name, ErrorScope scope);
  /// Gives each the name suggested from its image, where it has one. Failures are told together.
  Task<> applySuggestedNames(std::vector<UUID> ids, ErrorScope scope);

  // --- Moving: AppModelMoving.cpp ---
  /// Asks where to, and moves the file there. Moving keeps it.
  void moveAndRename(UUID id);
  Task<> move(UUID id, FileURL destination);

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
  /// A crop is being written that would be lost with the program, or files are being thrown away, renamed or moved.
  bool isWritingFiles() const { return cropsBeingWritten_ > 0 || fileWorker_.isBusy(); }
  /// Something would be lost with the program. Followed by `ModelField::unsavedWork`.
  bool hasUnsavedWork() const { return hasPendingSave() || isWritingFiles(); }
  /// Nothing of that is under way any more.
  std::function<void()> onFilesWritten;
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
  void expire(const UUID& id) { expiry_.expire(id); }
  const ExpirationScheduler& expirationScheduler() const { return expiry_.scheduler(); }

 private:
  // AppModel.cpp
  ListSaver::Services saverServices() const;
  std::optional<Date> awaitedSince() const;
  void wireMonitor();
  void observeSystem();
  void finishStart();
  void updateSystemPause();
  bool canSave();
  static Task<bool> runWhenSaved(Weak<AppModel> self);
  void saveEnded(bool isSaved, ListSaver::Cause cause);
  void followSaving();
  /// The only way to change a record; answers whether it became another.
  bool updateItem(size_t index, const std::function<void(ScreenshotItem&)>& change);
  /// `changes` only changes records; followers are told of all of them at once, so that nobody follows ten thousand
  /// decisions one by one.
  void changeTogether(const std::function<void()>& changes);
  void insertNewest(ScreenshotItem item);
  void forgetInIndex(const ScreenshotItem& item);
  static void setMember(Field<UUIDSet>& set, const UUID& id, bool isMember);
  template <typename IDs>
  static void setMembers(Field<UUIDSet>& set, const IDs& ids, bool isMember);

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
  static Task<> leavePrompt(Weak<AppModel> self, UUID id);
  /// A decision about it is being carried out that takes time.
  bool isBeingDecided(const UUID& id) const;
  bool isInPopups(const UUID& id) const override;
  void leavePopup(const UUID& id) override { resolvePrompts({id}); }
  void decisionEnded(const UUID& id, Ended ended) override;
  void makeTemporary(size_t index, TemporaryDuration duration, Date moment);
  void keepItem(size_t index);

  // AppModelTimeout.cpp
  void beginCountdown(const UUID& id);
  void restartCountdown();
  void popupTimedOut(const UUID& id);
  static Task<> keepAfterTimeout(Weak<AppModel> self, UUID id);
  std::optional<QString> timeoutName(const ScreenshotItem& item) const;

  // AppModelDisposal.cpp
  bool deletes(DisposalReason reason) const;
  static Task<ChosenDisposal> runChosenDisposal(Weak<AppModel> self, UUID id, ErrorScope scope);
  static Task<> runItemDisposal(Weak<AppModel> self, ScreenshotItem item, ErrorScope scope, DisposalReason reason,
                                UUIDMap<FileStamp> asked);
  static Task<TrashOutcome> runDisposal(Weak<AppModel> self, ScreenshotItem item, ErrorScope scope,
                                        DisposalReason reason, UUIDMap<FileStamp> asked);
  static Task<> runBatchDisposal(Weak<AppModel> self, std::vector<ScreenshotItem> items, ErrorScope scope,
                                 DisposalReason reason, UUIDMap<FileStamp> asked);
  static Task<std::vector<TrashOutcome>> runDisposals(Weak<AppModel> self, std::vector<UUID> ids, bool deletes,
                                                      UUIDMap<FileStamp> asked);
  TrashOutcome prepareDisposal(const UUID& id, bool deletes, const UUIDMap<FileStamp>& asked,
                               std::vector<DisposalJob>& jobs);
  void adoptDisposals(const std::vector<DisposalJob>& jobs, const std::vector<TrashOutcome>& done,
                      const std::vector<UUID>& ids, std::vector<TrashOutcome>& outcomes);
  void tellOf(TrashOutcome outcome, const ScreenshotItem& item, ErrorScope scope, bool isDeleting);
  void tellOfAll(const std::vector<TrashOutcome>& outcomes, ErrorScope scope, bool isDeleting);
  void adoptReplacement(const UUID& id);
  void showReplaced(ErrorScope scope, const FileURL& url);

  // AppModelRenaming.cpp
  struct Renamed {
    RenameOutcome outcome = RenameOutcome::unknown;
    FileURL before;
    bool hasMoved = false;  ///< its file has another place
  };
  static Task<Renamed> renameItem(Weak<AppModel> self, UUID id, QString name);
  static Task<bool> runRename(Weak<AppModel> self, UUID id, QString name, ErrorScope scope);
  static Task<> renameBeforeDecision(Weak<AppModel> self, UUID id, QString name);
  static Task<> runSuggestedNames(Weak<AppModel> self, std::vector<UUID> ids, ErrorScope scope);
  std::optional<QString> suggestedStem(const UUID& id) const;
  bool isOfARecord(const FileIdentity& identity);
  void adoptName(size_t index, const RenameReport& report, bool isAnother);
  void adoptMovedPlace(size_t index, const ResolvedBookmark& place);

  // AppModelMoving.cpp
  static Task<> runMove(Weak<AppModel> self, UUID id, FileURL destination);
  void adoptMove(size_t index, const FileURL& url, const std::optional<FileIdentity>& identity,
                 const std::optional<QByteArray>& bookmark);
  void finishMoves();
  static Task<> forgetFinishedMoves(Weak<AppModel> self, std::vector<BegunMove> moves);
  static Task<> forgetMoves(Weak<AppModel> self, std::vector<BegunMove> moves);
  static bool isMovedFile(const ScreenshotItem& item, const FileURL& url);

  // AppModelCrops.cpp
  static Task<Result<OpenedPicture, ImageOperations::OperationError>> runOpening(Weak<AppModel> self,
                                                                                 ScreenshotItem item,
                                                                                 bool detectsWindows);
  static Task<Result<ImageOperations::WindowScan, ImageOperations::OperationError>> scanWindows(Weak<AppModel> self,
                                                                                                ScreenshotItem item);
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
  Task<bool> whenReplacedIsSaved() override { return whenSaved(); }
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
  void saveRecordsSoon() override { scheduleSave(); }
  void analyzingChanged(const std::vector<UUID>& ids, bool isAnalyzing) override {
    setMembers(analyzingIDs, ids, isAnalyzing);
  }
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

  // Work on files in the background: AppModelFileWork.cpp
  static Task<FileWorker::Hold> claimFiles(Weak<AppModel> self, std::vector<UUID> ids, std::set<FileURL> places = {},
                                           std::optional<QString> stem = {});
  Task<FileWorker::Hold> claimFiles(std::vector<UUID> ids) override {
    return claimFiles(lifetime_.weak(this), std::move(ids));
  }
  FileClaim claimOf(const std::vector<UUID>& ids, const std::set<FileURL>& places,
                    const std::optional<QString>& stem) const;
  bool isInWork(const FileURL& url, const std::optional<FileIdentity>& identity);
  void fileWorkEnded();
  void noteWriting();

  // Files that are elsewhere now: AppModelFollowing.cpp
  bool followRename(const FileURL& url, const FileIdentity& identity);
  void updateLocation(size_t index, const FileURL& url, const std::optional<FileURL>& scopedURL);
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
  std::optional<WatchFolderPaths> accessibleWatchFolder() const override;
  bool hasAccess(const UUID& id) const override;
  bool deletesExpired() const override { return deletes(DisposalReason::expired); }
  void keepExpired(const UUID& id) override { keepItem(*items_.indexOf(id)); }
  void expiredHasMoved(const UUID& id, const ResolvedBookmark& place) override {
    adoptMovedPlace(*items_.indexOf(id), place);
  }
  bool noteExpiredLeft(const UUID& id) override;
  void expiredIsUnavailable(const UUID& id) override { setMember(unavailableItemIDs, id, true); }
  void tellOfKept() override;
  void tellOfRefused(int count) override;

  AppModelDependencies dependencies_;
  Settings settings_;
  ScreenshotList items_;
  std::vector<size_t>* gathered_ = nullptr;  ///< the records that are being changed together
  PromptQueue prompts_;
  WindowExtractionRun extraction_;
  ListSaver saver_{saverServices(), items_};
  FileReplacement replacement_{dependencies_, items_, *this};
  int cropsBeingWritten_ = 0;
  MoveJournal moveJournal_{dependencies_.recordStore.fileURL.parent().appending("moving.json")};
  std::vector<BegunMove> waitingMoves_;  ///< for a disk, or for the list to be saved
  bool recordsReadOnly_ = false;
  bool didStart_ = false;
  bool isRecovering_ = false;  ///< arrivals wait, so that the lost run's screenshots come back oldest first
  std::optional<HotKeyRegistering::Token> hotKeyToken_;
  bool hotKeysSuspended_ = false;
  std::vector<Connection> observers_;
  bool screensAsleep_ = false;
  bool sessionLocked_ = false;

  PopupAutoSaveScheduler popupAutoSaveScheduler_;
  FolderAccess access_;
  ReconciliationRuns reconciliations_;
  Task<> itemAccessTask_;
  std::optional<WatchFolderPaths> watchFolderPaths_;
  std::optional<RecordIndex> recordIndexCache_;

  std::optional<PromptNameEdit> promptNameEdit_;
  std::optional<std::pair<UUID, FileStamp>> shownFile_;  ///< the file in the popup as it was when it came up

  Task<> locationCheckTask_;
  CloudDownloads downloads_;
  PictureTransfers transfers_{dependencies_, items_, *this};

  FileWorker fileWorker_{*dependencies_.executor, [this] { fileWorkEnded(); }};
  std::vector<std::pair<FileURL, Origin>> laterArrivals_;  ///< of files that are being worked on
  Date laterArrivalsSince_;                                ///< of the first of them
  UUIDSet laterLooks_;                                     ///< were looked at while they were being worked on
  bool isToldWriting_ = false;
  ScreenshotExpiry expiry_{dependencies_, items_, decisions_, fileWorker_, *this};

  AnalysisPipeline analysis_;
  WindowKnowledge windowKnowledge_{dependencies_, *this};

  DecisionsUnderWay decisions_{*dependencies_.executor, *this};
  Lifetime lifetime_;
};

}  // namespace quillmere
