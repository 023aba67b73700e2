#include "inbox/InboxPresentation.h"

#include <QtCore/QStringList>

#include "foundation/Localized.h"
#include "foundation/OnCancel.h"

namespace quillmere {
namespace {

template <typename Items>
std::vector<UUID> idsOf(const Items& items) {
  std::vector<UUID> ids;
  ids.reserve(items.size());
  for (const ScreenshotItem& item : items) ids.push_back(item.id);
  return ids;
}

}  // namespace

InboxPresentation::InboxPresentation(AppModel& model, const InboxServices& services)
    : model_(model), services_(services) {}

InboxPresentation::~InboxPresentation() {
  close();
}

void InboxPresentation::close() {
  textExtractionTask_.cancel();
  cancelRename();
  cancelDeletion();
  closeRecognizedText();
  closeEditor();
}

bool InboxPresentation::isShowingModal() const {
  return *deletionCandidate || *batchDeletion || *editor || *recognizedText;
}

void InboxPresentation::find() {
  if (!isShowingModal()) findRequest.set(*findRequest + 1);
}

void InboxPresentation::edit(const ScreenshotItem& item, bool detectWindow) {
  if (!isShowingModal()) editor.set(EditorRequest{item, detectWindow});
}

void InboxPresentation::select(const UUID& id) {
  const ScreenshotItem* item = model_.items().find(id);
  if (!item) return;
  // A screenshot that is asked for by name is shown, whatever the list was narrowed to.
  if (!filter->apply({item}, *model_.unavailableItemIDs).size()) setFilter({});
  model_.setSelectedItemIDs({id});
}

// --- Renaming in place ---

void InboxPresentation::beginRename(const ScreenshotItem& item) {
  const QString name = item.url.displayStem();
  if (placeForRename) renamePlace_ = placeForRename(item.id);
  renameSession.set(RenameSession{item.id, name, item.url, UUID::createUuid(), name});
}

void InboxPresentation::setRenameText(const QString& text) {
  if (!*renameSession) return;
  RenameSession session = **renameSession;
  session.text = text;
  renameSession.set(std::move(session));
}

/// Whether its file is still the one that it began with, and can be reached.
bool InboxPresentation::isSubject(const RenameSession& session) const {
  const ScreenshotItem* item = model_.items().find(session.id);
  return item && item->url == session.url && !model_.unavailableItemIDs->contains(session.id);
}

Task<bool> InboxPresentation::commitRename(const RenameSession& session) {
  const bool isOpen = *renameSession && (*renameSession)->token == session.token;
  if (isOpen) cancelRename();
  // A name that is not text is shown with signs that are not in it: left as it was shown, it stays as it is.
  const bool isWanted = isOpen && isSubject(session) && session.text != session.name;
  return rename(model_.weak(), session, isWanted);
}

Task<bool> InboxPresentation::rename(Weak<AppModel> model, RenameSession session, bool isWanted) {
  if (!isWanted) co_return false;
  const auto renaming = model->rename(session.id, session.text, ErrorScope::inbox);
  const bool isRenamed = co_await renaming;
  if (!isRenamed || !model) co_return false;
  const ScreenshotItem* renamed = model->items().find(session.id);
  if (!renamed || renamed->url.displayStem() == session.name) co_return false;
  model->announce(localized("Renamed to %@.", {renamed->url.displayStem()}), AnnouncementPriority::low);
  co_return true;
}

// --- Deletion ---

void InboxPresentation::requestDeletion(const std::vector<ScreenshotItem>& items, AppModel::DisposalReason reason) {
  if (items.empty() || isShowingModal()) return;
  cancelRename();
  deletionReason.set(reason);
  isAskedForGood_ = isDeletingForGood();
  for (const ScreenshotItem& item : items) {
    model_.protect(item.id);
    // Out of Trash everything can be had back; what is deleted must be what was looked at.
    if (isAskedForGood_ || items.size() == 1) stamps_[item.id] = model_.stampOf(item.url);
  }
  if (items.size() == 1) {
    deletionCandidate.set(items.front());
  } else {
    batchDeletion.set(BatchDeletionRequest{UUID::createUuid(), items});
  }
}

bool InboxPresentation::isDeletingForGood() const {
  return *deletionReason == AppModel::DisposalReason::deleteImmediately || *model_.settings().deletesChosenImmediately;
}

std::vector<ScreenshotItem> InboxPresentation::itemsInQuestion() const {
  if (*deletionCandidate) return {**deletionCandidate};
  return *batchDeletion ? (*batchDeletion)->items : std::vector<ScreenshotItem>();
}

void InboxPresentation::confirmDeletion() {
  const auto items = itemsInQuestion();
  const auto stamps = stamps_;
  const auto reason = *deletionReason;
  cancelDeletion();
  if (items.empty()) return;
  // Agreed to was what the question said, and Settings can be changed under it.
  if (isDeletingForGood() != isAskedForGood_) {
    requestDeletion(items, reason);
    return;
  }
  model_.disposeConfirmed(items, stamps, reason).detach();
}

void InboxPresentation::cancelDeletion() {
  for (const ScreenshotItem& item : itemsInQuestion()) model_.unprotect(item.id);
  stamps_.clear();
  deletionCandidate.set(std::nullopt);
  batchDeletion.set(std::nullopt);
}

// --- Extract Text ---

void InboxPresentation::setExtracting(const UUID& id, bool isExtracting) {
  UUIDSet ids = *extractingTextIDs;
  if (isExtracting) {
    ids.insert(id);
  } else {
    ids.erase(id);
  }
  extractingTextIDs.set(std::move(ids));
}

void InboxPresentation::showRecognizedText(const ScreenshotItem& item) {
  const ScreenshotItem* present = model_.items().find(item.id);
  if (!present || isShowingModal()) return;
  if (present->recognizedText) {
    recognizedText.set(RecognizedTextRequest{item.id});
    return;
  }
  if (extractingTextIDs->contains(item.id)) return;
  setExtracting(item.id, true);
  readOne(lifetime_.weak(this), item.id).detach();
}

Task<> InboxPresentation::readOne(Weak<InboxPresentation> self, UUID id) {
  const auto reading = self->model_.recognizedText(id);
  const auto text = co_await reading;
  if (!self) co_return;
  self->setExtracting(id, false);
  // Not over a sheet that has come up meanwhile: the text stands in the record.
  if (text && !self->isShowingModal()) self->recognizedText.set(RecognizedTextRequest{id});
}

void InboxPresentation::extractText(const std::vector<ScreenshotItem>& items) {
  if (*textExtraction) return;
  std::vector<UUID> ids;
  std::map<TextExtractionSkip, int> skips;
  UUIDSet extracting = *extractingTextIDs;
  for (const UUID& id : idsOf(items)) {
    const ScreenshotItem* item = model_.items().find(id);
    if (!item || item->recognizedText) continue;
    if (model_.unavailableItemIDs->contains(id)) {
      ++skips[TextExtractionSkip::unavailable];
    } else if (model_.evictedItemIDs->contains(id)) {
      ++skips[TextExtractionSkip::notDownloaded];
    } else {
      ids.push_back(id);
      extracting.insert(id);
    }
  }
  if (!skips.empty()) reportSkips(skips);
  if (ids.empty()) return;
  textExtraction.set(TextExtractionBatch{static_cast<int>(ids.size()), 0});
  extractingTextIDs.set(std::move(extracting));
  textExtractionTask_ = readAll(lifetime_.weak(this), std::move(ids));
}

Task<> InboxPresentation::readAll(Weak<InboxPresentation> self, std::vector<UUID> ids) {
  AppModel& model = self->model_;
  for (const UUID& id : ids) {
    // With the window nothing goes on reading, unless the text is wanted for the description as well.
    OnCancel stopping([&model, id] {
      if (!model.analyzingIDs->contains(id)) model.cancelAnalysis(id);
    });
    co_await stopping;
    const auto reading = model.recognizedText(id);
    co_await reading;
    if (!self) co_return;
    self->setExtracting(id, false);
    const bool isStopped = co_await isCancelled;
    if (isStopped) break;
    TextExtractionBatch batch = **self->textExtraction;
    ++batch.completed;
    self->textExtraction.set(batch);
  }
  const bool isWhole = (*self->textExtraction)->completed == (*self->textExtraction)->total;
  UUIDSet extracting = *self->extractingTextIDs;
  for (const UUID& id : ids) extracting.erase(id);
  self->extractingTextIDs.set(std::move(extracting));
  self->textExtraction.set(std::nullopt);
  self->textExtractionTask_ = {};
  if (!isWhole) co_return;
  model.announce(localized("Read the text in %lld screenshots.", {static_cast<int>(ids.size())}),
                 AnnouncementPriority::low);
}

void InboxPresentation::reportSkips(const std::map<TextExtractionSkip, int>& skips) {
  QStringList sentences;
  const auto count = [&](TextExtractionSkip skip) {
    const auto found = skips.find(skip);
    return found == skips.end() ? 0 : found->second;
  };
  if (const int skipped = count(TextExtractionSkip::notDownloaded)) {
    sentences << localized("%lld screenshots have images that are in iCloud rather than on this Mac.", {skipped});
  }
  if (const int skipped = count(TextExtractionSkip::unavailable)) {
    sentences << localized("%lld screenshots are on a disk or in a folder that isn’t available.", {skipped});
  }
  sentences << localized("Their text wasn’t read.");
  model_.show(ErrorScope::inbox, localized("Couldn’t Read Every Screenshot"), sentences.join(QLatin1Char(' ')));
}

}  // namespace quillmere
