#pragma once

#include <map>
#include <optional>
#include <vector>

#include "foundation/Weak.h"
#include "inbox/InboxFilter.h"
#include "inbox/InboxServices.h"
#include "model/AppModel.h"

namespace quillmere {

/// The fields of a presentation that observers can follow.
enum class InboxField {
  renameSession,
  deletionCandidate,
  batchDeletion,
  editor,
  recognizedText,
  extractingTextIDs,
  quickLookURL,
  filter,
  findRequest,
  deletionReason,
  textExtraction,
};

/// What changed. It is told after the change.
struct InboxChange {
  InboxField field;
};

/// What belongs to one open Inbox and not to the screenshots: what is being renamed, which sheet is up, what is sought.
/// It lives as long as its window. Main thread only.
class InboxPresentation {
  template <typename T>
  using Field = Published<T, InboxPresentation, InboxChange>;

 public:
  InboxPresentation(AppModel& model, const InboxServices& services);
  ~InboxPresentation();

  struct RenameSession {
    UUID id;
    QString name;  ///< the stem when the session began
    FileURL url;   ///< the file when the session began
    UUID token;    ///< new for each session
    QString text;  ///< what the field holds
    bool operator==(const RenameSession&) const = default;
  };
  struct EditorRequest {
    ScreenshotItem item;
    bool detectWindow = false;  ///< the editor starts by looking for windows
    bool operator==(const EditorRequest&) const = default;
  };
  struct BatchDeletionRequest {
    UUID id;  ///< new for each request
    std::vector<ScreenshotItem> items;
    bool operator==(const BatchDeletionRequest&) const = default;
  };
  struct RecognizedTextRequest {
    UUID itemID;
    bool operator==(const RecognizedTextRequest&) const = default;
  };
  /// How far the reading of several screenshots has got.
  struct TextExtractionBatch {
    int total = 0;
    int completed = 0;
    bool operator==(const TextExtractionBatch&) const = default;
  };
  /// Why a screenshot of several was not read.
  enum class TextExtractionSkip { unavailable, notDownloaded };

  Signal<const InboxChange&> changed;

  Field<std::optional<RenameSession>> renameSession{changed, InboxField::renameSession};
  Field<std::optional<ScreenshotItem>> deletionCandidate{changed, InboxField::deletionCandidate};
  Field<std::optional<BatchDeletionRequest>> batchDeletion{changed, InboxField::batchDeletion};
  Field<std::optional<EditorRequest>> editor{changed, InboxField::editor};
  Field<std::optional<RecognizedTextRequest>> recognizedText{changed, InboxField::recognizedText};
  Field<UUIDSet> extractingTextIDs{changed, InboxField::extractingTextIDs};
  Field<std::optional<FileURL>> quickLookURL{changed, InboxField::quickLookURL};
  Field<InboxFilter> filter{changed, InboxField::filter};
  Field<int> findRequest{changed, InboxField::findRequest};
  Field<AppModel::DisposalReason> deletionReason{changed, InboxField::deletionReason, AppModel::DisposalReason::chosen};
  Field<std::optional<TextExtractionBatch>> textExtraction{changed, InboxField::textExtraction};

  AppModel& model() const { return model_; }
  const InboxServices& services() const { return services_; }
  /// The window closes: what was begun in it ends.
  void close();
  /// A sheet is up, and the commands wait for it.
  bool isShowingModal() const;

  void setFilter(InboxFilter next) { filter.set(std::move(next)); }
  /// Moves the keyboard to the search field, unless a sheet is up.
  void find();
  /// Shows a record and nothing else selected, if need be without the filter that hides it.
  void select(const UUID& id);
  void setQuickLookURL(std::optional<FileURL> url) { quickLookURL.set(std::move(url)); }

  // --- Renaming in place ---
  /// The name stands in two places; the field is where the person looks.
  enum class RenamePlace { list, header };
  RenamePlace renamePlace() const { return renamePlace_; }
  /// Set by the window: where a rename of this record would be seen.
  std::function<RenamePlace(const UUID& id)> placeForRename;
  void beginRename(const ScreenshotItem& item);
  void setRenameText(const QString& text);
  /// Renames, if `session` is the one that is open and its file still the one that it began with. Answers whether the
  /// file has another name now.
  Task<bool> commitRename(const RenameSession& session);
  void cancelRename() { renameSession.set(std::nullopt); }

  // --- Deletion ---
  /// Asks first. Until the answer the files are protected.
  void requestDeletion(const std::vector<ScreenshotItem>& items, AppModel::DisposalReason reason);
  /// Whether what is being asked about would be gone for good.
  bool isDeletingForGood() const;
  /// Disposes of what was asked about; asks anew if Settings have changed what would become of it.
  void confirmDeletion();
  void cancelDeletion();

  // --- Extract Text ---
  /// Opens the sheet with the text, which is read first if it was not yet.
  void showRecognizedText(const ScreenshotItem& item);
  void closeRecognizedText() { recognizedText.set(std::nullopt); }
  /// Reads the text of those that have none yet, one after another.
  void extractText(const std::vector<ScreenshotItem>& items);

  // --- The crop editor ---
  /// Opens it, unless another sheet is up.
  void edit(const ScreenshotItem& item, bool detectWindow);
  void closeEditor() { editor.set(std::nullopt); }

 private:
  bool isSubject(const RenameSession& session) const;
  static Task<bool> rename(Weak<AppModel> model, RenameSession session, bool isWanted);
  std::vector<ScreenshotItem> itemsInQuestion() const;
  void setExtracting(const UUID& id, bool isExtracting);
  void reportSkips(const std::map<TextExtractionSkip, int>& skips);
  static Task<> readOne(Weak<InboxPresentation> self, UUID id);
  static Task<> readAll(Weak<InboxPresentation> self, std::vector<UUID> ids);

  AppModel& model_;
  const InboxServices services_;
  RenamePlace renamePlace_ = RenamePlace::list;
  UUIDMap<FileStamp> stamps_;  ///< of the files in question, as they were when it was asked
  bool isAskedForGood_ = false;
  Task<> textExtractionTask_;
  Lifetime lifetime_;
};

}  // namespace quillmere
