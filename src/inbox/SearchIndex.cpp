#include "inbox/SearchIndex.h"

#include <QtCore/QThread>
#include <algorithm>

#include "foundation/OnCancel.h"

namespace quillmere {
namespace {

/// Folded at once: a millisecond or two of work.
constexpr size_t kRecordsAtOnce = 64;
/// What is folded later joins a part that is no larger, so that there are few.
constexpr size_t kSmallPart = 64 * 1024;

SearchRun::Hits merged(const SearchRun::Hits& some, const SearchRun::Hits& others) {
  SearchRun::Hits all;
  const auto take = [&all](const SearchRun::Hits& from, size_t place) {
    all.numbers.push_back(from.numbers[place]);
    all.ids.push_back(from.ids[place]);
  };
  size_t other = 0;
  for (size_t one = 0; one < some.numbers.size(); ++one) {
    while (other < others.numbers.size() && others.numbers[other] > some.numbers[one]) take(others, other++);
    take(some, one);
  }
  while (other < others.numbers.size()) take(others, other++);
  return all;
}

/// Those of a few records that contain the text.
SearchRun::Hits hitsAmong(const std::vector<FoldedBlock::Record>& records, const TextFolding& folding,
                          const QString& text) {
  const auto block = std::make_shared<const FoldedBlock>(folding, FoldedBlock(), FoldedBlock::Dead(), records);
  SearchRun run({{block, nullptr}}, folding, text);
  run.help();
  return run.takeHits();
}

}  // namespace

SearchIndex::SearchIndex(AppModel& model, Executor& executor) : model_(model), executor_(executor) {}

SearchIndex::~SearchIndex() {
  if (isPrepared_) letGo();
}

// --- Following the model ---

void SearchIndex::prepare() {
  if (isPrepared_) return;
  isPrepared_ = true;
  changes_ = model_.changed.connect([this](const ModelChange& change) { follow(change); });
  begin();
}

void SearchIndex::release() {
  if (!isPrepared_) return;
  isPrepared_ = false;
  ++releases_;
  changes_.reset();
  letGo();
}

void SearchIndex::begin() {
  slots_.reserve(model_.items().size());
  for (size_t row = model_.items().size(); row-- > 0;) addSlot(model_.items()[row].id);
  foldWaiting();
}

void SearchIndex::letGo() {
  ++beginnings_;
  ++generation_;
  // Freeing so much takes a while.
  executor_.runInBackground([parts = std::move(parts_), last = std::move(last_), folding = std::move(folding_)] {},
                            [] {});
  // An empty list assigned would keep its memory.
  parts_ = std::vector<SearchRun::Part>();
  slots_ = std::vector<Slot>();
  sparse_ = std::vector<uint32_t>();
  waiting_ = std::deque<uint32_t>();
  last_ = nullptr;
  folding_ = nullptr;
  nextNumber_ = 0;
  foldTask_ = {};
  asking_ = nullptr;
}

void SearchIndex::follow(const ModelChange& change) {
  if (change.field != ModelField::items) return;
  if (followRows(change)) {
    foldWaiting();
    return;
  }
  // Somebody else who follows the model changed it again before this change was told here.
  letGo();
  begin();
}

bool SearchIndex::followRows(const ModelChange& change) {
  const ScreenshotList& items = model_.items();
  switch (change.rows) {
    case ModelChange::Rows::none:
      break;
    case ModelChange::Rows::inserted:
      if (slots_.size() + change.indices.size() != items.size()) return false;
      for (auto row = change.indices.rbegin(); row != change.indices.rend(); ++row) addSlot(items[*row].id);
      break;
    case ModelChange::Rows::changed:
      if (slots_.size() != items.size()) return false;
      for (const size_t row : change.indices) {
        if (slotOfRow(row).id != items[row].id) return false;
        this->change(slotOfRow(row));
      }
      break;
    case ModelChange::Rows::removed:
      if (slots_.size() != items.size() + change.indices.size()) return false;
      remove(change.indices);
      break;
  }
  return slots_.size() == items.size() && (slots_.empty() || slots_.back().id == items[0].id);
}

void SearchIndex::change(Slot& slot) {
  const size_t before = slot.texts;
  if (!slot.isWaiting && record(slot) && slot.texts == before) return;
  touch(slot);
  kill(slot);
  wait(slot);
}

void SearchIndex::remove(const std::vector<size_t>& rows) {
  for (const size_t row : rows) {
    Slot& gone = slotOfRow(row);
    touch(gone);
    kill(gone);
  }
  const size_t last = slots_.size() - 1;
  size_t place = 0;
  std::erase_if(slots_, [&](const Slot&) { return std::binary_search(rows.begin(), rows.end(), last - place++); });
}

// --- Slots ---

SearchIndex::Slot* SearchIndex::slot(uint32_t number) {
  const auto found = std::lower_bound(slots_.begin(), slots_.end(), number,
                                      [](const Slot& slot, uint32_t wanted) { return slot.number < wanted; });
  return found == slots_.end() || found->number != number ? nullptr : &*found;
}

void SearchIndex::addSlot(const UUID& id) {
  slots_.push_back({.id = id, .number = nextNumber_++});
  touch(slots_.back());
  wait(slots_.back());
}

void SearchIndex::wait(Slot& slot) {
  ++slot.version;
  if (slot.isWaiting) return;
  slot.isWaiting = true;
  waiting_.push_back(slot.number);
}

void SearchIndex::kill(Slot& slot) {
  if (slot.part == Slot::kNone) return;
  SearchRun::Part& part = parts_[slot.part];
  const size_t count = part.block->entries().size();
  // A search may be looking at the one that is there.
  auto dead = part.dead ? *part.dead : FoldedBlock::Dead(count);
  dead[slot.entry] = true;
  const auto deadCount = static_cast<size_t>(std::count(dead.begin(), dead.end(), true));
  if (deadCount == count) {
    part = {};
  } else {
    part.dead = std::make_shared<const FoldedBlock::Dead>(std::move(dead));
    const bool isSparse = deadCount * 2 > count;
    if (isSparse && std::find(sparse_.begin(), sparse_.end(), slot.part) == sparse_.end()) sparse_.push_back(slot.part);
  }
  slot.part = Slot::kNone;
  partsChanged();
}

void SearchIndex::partsChanged() {
  ++generation_;
  last_ = nullptr;
}

void SearchIndex::touch(const Slot& slot) {
  std::erase_if(searches_, [](const auto& search) { return search.expired(); });
  for (const auto& search : searches_) search.lock()->push_back(slot.number);
}

std::optional<FoldedBlock::Record> SearchIndex::record(Slot& slot) const {
  const ScreenshotItem* item = model_.items().find(slot.id);
  if (!item) return std::nullopt;
  FoldedBlock::Record record{slot.number, slot.version, slot.id, searchedTexts(*item)};
  slot.texts = qHashRange(record.texts.begin(), record.texts.end());
  return record;
}

// --- Folding ---

void SearchIndex::foldWaiting() {
  if (foldTask_ && !foldTask_.isDone()) return;
  if (!folding_ || !waiting_.empty() || !sparse_.empty()) foldTask_ = fold(lifetime_.weak(this));
}

Task<> SearchIndex::fold(Weak<SearchIndex> self) {
  Executor& executor = self->executor_;
  const int beginning = self->beginnings_;
  if (!self->folding_) {
    std::function<std::shared_ptr<const TextFolding>()> learn = [locale = searchLocale()] {
      return std::make_shared<const TextFolding>(locale);
    };
    auto learning = executor.background(learn);
    auto folding = co_await learning;
    if (!self || self->beginnings_ != beginning) co_return;
    self->folding_ = std::move(folding);
  }
  while (!self->waiting_.empty() || !self->sparse_.empty()) {
    auto job = std::make_shared<const FoldJob>(self->nextFoldJob());
    std::function<std::shared_ptr<const FoldedBlock>()> work = [job] {
      return std::make_shared<const FoldedBlock>(*job->folding, job->before.block ? *job->before.block : FoldedBlock(),
                                                 job->before.dead ? *job->before.dead : FoldedBlock::Dead(),
                                                 job->records);
    };
    auto working = executor.background(work);
    auto block = co_await working;
    work = nullptr;
    if (!self || self->beginnings_ != beginning) co_return;
    self->put(*job, std::move(block));
  }
}

SearchIndex::FoldJob SearchIndex::nextFoldJob() {
  FoldJob job;
  job.folding = folding_;
  for (; !sparse_.empty() && job.part == Slot::kNone; sparse_.pop_back()) {
    // It may have lost all its records.
    if (sparse_.back() < parts_.size() && parts_[sparse_.back()].block) job.part = sparse_.back();
  }
  if (job.part == Slot::kNone && !parts_.empty() && parts_.back().block &&
      parts_.back().block->bytes().size() < kSmallPart) {
    job.part = static_cast<uint32_t>(parts_.size() - 1);
  }
  if (job.part != Slot::kNone) job.before = parts_[job.part];
  while (!waiting_.empty() && job.records.size() < kRecordsAtOnce) {
    Slot* next = slot(waiting_.front());
    waiting_.pop_front();
    if (!next) continue;
    next->isWaiting = false;
    if (auto taken = record(*next)) job.records.push_back(std::move(*taken));
  }
  return job;
}

void SearchIndex::put(const FoldJob& job, std::shared_ptr<const FoldedBlock> block) {
  const auto place = job.part != Slot::kNone ? job.part : static_cast<uint32_t>(parts_.size());
  if (place == parts_.size()) parts_.emplace_back();
  FoldedBlock::Dead dead(block->entries().size());
  for (uint32_t entry = 0; entry < dead.size(); ++entry) {
    // It may have changed or gone while it was folded.
    Slot* found = slot(block->entries()[entry].number);
    dead[entry] = !found || found->version != block->entries()[entry].version;
    if (dead[entry]) continue;
    found->part = place;
    found->entry = entry;
  }
  const bool hasDead = std::find(dead.begin(), dead.end(), true) != dead.end();
  const bool isEmpty = std::find(dead.begin(), dead.end(), false) == dead.end();
  parts_[place] = {isEmpty ? nullptr : std::move(block),
                   hasDead && !isEmpty ? std::make_shared<const FoldedBlock::Dead>(std::move(dead)) : nullptr};
  while (!parts_.empty() && !parts_.back().block) parts_.pop_back();
  partsChanged();
}

// --- Searching ---

Task<std::optional<std::vector<UUID>>> SearchIndex::find(QString text) {
  return search(lifetime_.weak(this), std::move(text).trimmed());
}

Task<> SearchIndex::help(Executor& executor, std::shared_ptr<SearchRun> run) {
  std::function<bool()> work = [run] {
    run->help();
    return true;
  };
  auto working = executor.background(work);
  co_await working;
}

Task<std::optional<std::vector<UUID>>> SearchIndex::search(Weak<SearchIndex> self, QString text) {
  if (text.isEmpty()) co_return self->everyRecord();
  Executor& executor = self->executor_;
  self->prepare();
  const int releases = self->releases_;
  const auto isReleased = [self, releases] { return !self || self->releases_ != releases; };
  while (true) {
    while (self->foldTask_ && !self->foldTask_.isDone()) {
      const Task<> folding = self->foldTask_;
      co_await folding;
      const bool isOver = co_await isCancelled;
      if (isOver || isReleased()) co_return std::nullopt;
    }
    const int beginning = self->beginnings_;
    const auto generation = self->generation_;
    const auto folding = self->folding_;
    const auto run = self->makeRun(text);
    // Nothing in it has a weight.
    if (run->soughtBytes().empty() && folding->collator()) co_return self->everyRecord();
    const auto touched = std::make_shared<Touched>();
    self->searches_.push_back(touched);
    OnCancel stopping([run] { run->cancel(); });
    co_await stopping;
    std::vector<Task<>> helpers;
    const size_t threads = std::min(run->parts(), static_cast<size_t>(std::max(QThread::idealThreadCount(), 1)));
    for (size_t i = 0; i < threads; ++i) helpers.push_back(help(executor, run));
    for (const Task<>& helper : helpers) {
      // One that has not begun when the others are done is not waited for.
      if (!run->isFinished()) co_await helper;
    }
    const bool isOver = co_await isCancelled;
    if (isOver || isReleased()) co_return std::nullopt;
    SearchRun::Hits hits = run->takeHits();
    if (self->generation_ == generation) self->last_ = run;
    while (!touched->empty() && self->beginnings_ == beginning) {
      auto records = self->take(*touched, hits);
      if (records.empty()) break;
      std::function<SearchRun::Hits()> judge = [records = std::move(records), folding, text] {
        return hitsAmong(records, *folding, text);
      };
      auto judging = executor.background(judge);
      const SearchRun::Hits more = co_await judging;
      judge = nullptr;
      const bool isOverNow = co_await isCancelled;
      if (isOverNow || isReleased()) co_return std::nullopt;
      hits = merged(hits, more);
    }
    if (self->beginnings_ == beginning) co_return std::move(hits.ids);
  }
}

std::shared_ptr<SearchRun> SearchIndex::makeRun(const QString& text) const {
  std::vector<SearchRun::Part> parts;
  parts.reserve(parts_.size());
  std::copy_if(parts_.begin(), parts_.end(), std::back_inserter(parts), [](const auto& part) { return part.block; });
  auto run = std::make_shared<SearchRun>(std::move(parts), *folding_, text);
  if (last_) run->narrow(last_);
  return run;
}

std::vector<FoldedBlock::Record> SearchIndex::take(Touched& touched, SearchRun::Hits& hits) {
  std::sort(touched.begin(), touched.end());
  touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
  SearchRun::Hits rest;
  for (size_t i = 0; i < hits.numbers.size(); ++i) {
    if (std::binary_search(touched.begin(), touched.end(), hits.numbers[i])) continue;
    rest.numbers.push_back(hits.numbers[i]);
    rest.ids.push_back(hits.ids[i]);
  }
  hits = std::move(rest);
  std::vector<FoldedBlock::Record> records;
  for (const uint32_t number : touched) {
    Slot* still = slot(number);
    if (!still) continue;
    // Not what is folded: the hash stays that of the other.
    Slot copy = *still;
    if (auto now = record(copy)) records.push_back(std::move(*now));
  }
  touched.clear();
  return records;
}

std::vector<UUID> SearchIndex::everyRecord() const {
  std::vector<UUID> ids;
  ids.reserve(model_.items().size());
  model_.items().forEach([&](const ScreenshotItem& item) { ids.push_back(item.id); });
  return ids;
}

bool SearchIndex::contains(const ScreenshotItem& item, const QString& text) const {
  const QString sought = text.trimmed();
  if (sought.isEmpty()) return true;
  if (!asking_ || asked_ != sought) {
    asked_ = sought;
    asking_ = std::make_unique<TextSearch>(folding_ ? folding_->collator() : searchCollator(searchLocale()), sought);
  }
  return isIn(*asking_, searchedTexts(item));
}

size_t SearchIndex::memory() const {
  size_t bytes = slots_.capacity() * sizeof(Slot) + parts_.capacity() * sizeof(SearchRun::Part);
  for (const SearchRun::Part& part : parts_) bytes += part.block ? part.block->memory() : 0;
  return bytes;
}

}  // namespace quillmere
