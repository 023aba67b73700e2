#include "model/AnalysisPipeline.h"

#include <QtCore/QScopeGuard>
#include <algorithm>

namespace quillmere {
namespace {

constexpr double kUsualWait = 5;
constexpr double kShortestWait = 1;
constexpr double kLongestWait = 30;

/// A place in a gate, given back on every way out. The gate goes with its pipeline.
class Place {
 public:
  Place(Weak<AnalysisPipeline> owner, AsyncGate& gate) : owner_(std::move(owner)), gate_(gate) {}
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    if (owner_) gate_.leave();
  }

 private:
  Weak<AnalysisPipeline> owner_;
  AsyncGate& gate_;
};

}  // namespace

AnalysisPipeline::AnalysisPipeline(ScreenshotAnalyzing& analyzer, Executor& executor, std::function<Date()> now,
                                   AnalysisRecords& records)
    : analyzer_(analyzer), executor_(executor), now_(std::move(now)), records_(records) {}

AnalysisPipeline::~AnalysisPipeline() {
  dropAll();
}

bool AnalysisPipeline::needsAnalysis(const ScreenshotItem& item) {
  return !item.imageDescription && (!item.analysisFailure || item.analysisRetryable.value_or(false));
}

// --- Jobs ---

void AnalysisPipeline::start(const std::vector<UUID>& ids) {
  std::vector<std::pair<UUID, UUID>> begun;
  for (const UUID& id : ids) {
    if (jobs_.contains(id)) continue;
    const UUID token = UUID::createUuid();
    jobs_[id] = Job{token, {}, {}};
    begun.emplace_back(id, token);
  }
  if (begun.empty()) return;
  if (begun.size() == 1) {
    records_.analyzingChanged(begun.front().first, true);
  } else {
    tellAnalyzing();
  }
  for (const auto& [id, token] : begun) {
    if (!isCurrent(id, token)) continue;
    const Task<> task = run(lifetime_.weak(this), id, token);
    // It may have run to its end, and another one may have begun.
    if (isCurrent(id, token)) jobs_[id].task = task;
  }
}

void AnalysisPipeline::cancel(const UUID& id) {
  // Taken out first: what is cancelled runs on and looks whether it is still wanted.
  const auto job = jobs_.extract(id);
  const auto recognition = recognitions_.extract(id);
  if (job) {
    job.mapped().task.cancel();
    job.mapped().attempt.cancel();
    if (!jobs_.contains(id)) records_.analyzingChanged(id, false);
  }
  if (recognition) {
    recognition.mapped().task.cancel();
    recognition.mapped().reading.cancel();
  }
}

void AnalysisPipeline::cancelAll() {
  const bool wasAnalyzing = !jobs_.empty();
  dropAll();
  if (wasAnalyzing) tellAnalyzing();
}

void AnalysisPipeline::dropAll() {
  const auto jobs = std::exchange(jobs_, {});
  const auto recognitions = std::exchange(recognitions_, {});
  for (const auto& [id, job] : jobs) {
    job.task.cancel();
    job.attempt.cancel();
  }
  for (const auto& [id, recognition] : recognitions) {
    recognition.task.cancel();
    recognition.reading.cancel();
  }
}

bool AnalysisPipeline::isCurrent(const UUID& id, const UUID& token) const {
  const auto job = jobs_.find(id);
  return job != jobs_.end() && job->second.token == token;
}

void AnalysisPipeline::finish(const UUID& id, const UUID& token) {
  if (!isCurrent(id, token)) return;
  jobs_.erase(id);
  records_.analyzingChanged(id, false);
}

void AnalysisPipeline::tellAnalyzing() {
  UUIDSet ids;
  for (const auto& [id, job] : jobs_) ids.insert(id);
  records_.analyzingChanged(ids);
}

/// It ends at the first wait after which it is not wanted any more.
Task<> AnalysisPipeline::run(Weak<AnalysisPipeline> self, UUID id, UUID token) {
  // On every way out, after the place in the gate has been left.
  const auto cleanUp = qScopeGuard([&] {
    if (self) self->finish(id, token);
  });
  const ScreenshotItem* item = self->records_.find(id);
  if (!item) co_return;
  if (!item->recognizedText) {
    const auto recognition = self->recognizedText(id);
    co_await recognition;
    if (!self || !self->isCurrent(id, token)) co_return;
  }
  auto entering = self->modelGate_.enter();
  const bool isIn = co_await entering;
  if (!isIn || !self) co_return;
  const Place place(self, self->modelGate_);
  if (!self->isCurrent(id, token)) co_return;

  const auto first = attempt(self, id, token);
  DescribeOutcome outcome = co_await first;
  if (!self || !self->isCurrent(id, token)) co_return;
  const auto* error = std::get_if<AnalysisError>(&outcome);
  if (error && error->kind == AnalysisError::Kind::busy) {
    auto pause = self->executor_.sleep(seconds(self->waitSeconds(*error)));
    const bool waited = co_await pause;
    if (!waited || !self || !self->isCurrent(id, token)) co_return;
    const auto second = attempt(self, id, token);
    outcome = co_await second;
    if (!self || !self->isCurrent(id, token)) co_return;
  }
  if (self->records_.find(id)) self->apply(id, outcome);
}

Task<DescribeOutcome> AnalysisPipeline::attempt(Weak<AnalysisPipeline> self, UUID id, UUID token) {
  const ScreenshotItem* item = self->records_.find(id);
  if (!item) co_return AnalysisCancelled();
  std::optional<QString> text;
  if (item->recognizedText) text = QString::fromUtf8(*item->recognizedText);
  const auto asked = self->analyzer_.describe(item->url, text);
  if (self->isCurrent(id, token)) self->jobs_[id].attempt = asked;
  DescribeOutcome outcome = co_await asked;
  co_return outcome;
}

/// Seconds until the second try.
double AnalysisPipeline::waitSeconds(const AnalysisError& busy) const {
  const double wait = busy.retryAfter ? busy.retryAfter->seconds - now_().seconds : kUsualWait;
  return std::clamp(wait, kShortestWait, kLongestWait);
}

void AnalysisPipeline::apply(const UUID& id, const DescribeOutcome& outcome) {
  const auto* result = std::get_if<ScreenshotAnalysisResult>(&outcome);
  const auto* error = std::get_if<AnalysisError>(&outcome);
  if (!result && !error) return;
  // A state that passes is no failure of the record: it simply has no description yet.
  const bool isPassing = error && error->kind == AnalysisError::Kind::unavailable;
  records_.change(id, [&](ScreenshotItem& item) {
    item.analysisFailure.reset();
    item.analysisRetryable.reset();
    if (result) {
      item.imageDescription = result->description.toUtf8();
      item.suggestedName = result->filename.toUtf8();
    } else if (!isPassing) {
      item.analysisFailure = error->code();
      item.analysisRetryable = error->isRetryable();
    }
  });
  records_.saveRecordsSoon();
  if (isPassing) {
    ++looks_;
    modelWasUnavailable_ = true;
    setUnavailability(*error);
  } else if (result) {
    ++looks_;
    setUnavailability(std::nullopt);
  }
}

// --- Text ---

Task<std::optional<QString>> AnalysisPipeline::recognizedText(const UUID& id) {
  if (const auto running = recognitions_.find(id); running != recognitions_.end()) return running->second.task;
  const ScreenshotItem* item = records_.find(id);
  const UUID token = UUID::createUuid();
  if (item && !item->recognizedText) recognitions_[id] = Recognition{token, {}, {}};
  auto task = recognize(lifetime_.weak(this), id, token, item ? item->url : FileURL());
  const auto running = recognitions_.find(id);
  if (running != recognitions_.end() && running->second.token == token) running->second.task = task;
  return task;
}

Task<std::optional<QString>> AnalysisPipeline::recognize(Weak<AnalysisPipeline> self, UUID id, UUID token,
                                                         FileURL url) {
  const ScreenshotItem* item = self->records_.find(id);
  if (!item) co_return std::nullopt;
  if (item->recognizedText) co_return QString::fromUtf8(*item->recognizedText);
  const auto entry = [&]() -> Recognition* {
    if (!self) return nullptr;
    const auto found = self->recognitions_.find(id);
    return found != self->recognitions_.end() && found->second.token == token ? &found->second : nullptr;
  };
  std::optional<QString> text;
  {
    auto entering = self->ocrGate_.enter();
    const bool isIn = co_await entering;
    if (!isIn || !self) co_return std::nullopt;
    const Place place(self, self->ocrGate_);
    if (!entry()) co_return std::nullopt;
    const auto reading = self->analyzer_.recognizeText(url);
    if (Recognition* own = entry()) own->reading = reading;
    text = co_await reading;
  }
  // Cancelled, or begun anew for another picture.
  if (!entry()) co_return std::nullopt;
  self->recognitions_.erase(id);
  if (text && self->records_.find(id)) {
    self->records_.change(id, [&](ScreenshotItem& record) { record.recognizedText = text->toUtf8(); });
    self->records_.saveRecords();
  }
  co_return text;
}

// --- The model's comings and goings ---

void AnalysisPipeline::refreshAvailability(std::function<void()> becameAvailable) {
  refresh(lifetime_.weak(this), std::move(becameAvailable)).detach();
}

Task<> AnalysisPipeline::refresh(Weak<AnalysisPipeline> self, std::function<void()> becameAvailable) {
  const uint64_t generation = ++self->looks_;
  const auto asked = self->analyzer_.availability();
  const auto reason = co_await asked;
  // A slow look must not overwrite what was seen later.
  if (!self || generation != self->looks_) co_return;
  std::optional<AnalysisError> error;
  if (reason) error = AnalysisError::unavailable(*reason);
  self->setUnavailability(error);
  if (const auto server = self->analyzer_.foreignServer(); server != self->foreignServer_) {
    self->foreignServer_ = server;
    self->records_.foreignServerChanged(server);
  }
  const bool wasUnavailable = std::exchange(self->modelWasUnavailable_, reason.has_value());
  if (wasUnavailable && !reason) becameAvailable();
}

void AnalysisPipeline::setUnavailability(const std::optional<AnalysisError>& error) {
  if (unavailability_ == error) return;
  unavailability_ = error;
  records_.unavailabilityChanged(error);
}

}  // namespace quillmere
