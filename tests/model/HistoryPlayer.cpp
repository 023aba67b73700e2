#include "model/HistoryPlayer.h"

#include <cstdio>

namespace quillmere::testing {
namespace {

using State = ScreenshotItem::State;

/// As the next run knows it: from before the last sign of life.
constexpr double kArrivalMargin = 5.0;
/// Longer than any Temporary screenshot is kept.
constexpr double kTwoDays = 2 * 86400.0;

}  // namespace

const std::vector<HistoryPlayer::Rule>& HistoryPlayer::rules() {
  using Self = HistoryPlayer;
  static const std::vector<Rule> all{
      {"capture", 12, &Self::capture, true},
      {"captureUnderAnOldName", 4, &Self::captureUnderAnOldName, true},
      {"captureSlowly", 1, &Self::captureSlowly},
      {"finishWriting", 2, &Self::finishWriting},
      {"copyFromElsewhere", 2, &Self::copyFromElsewhere, true},
      {"renameFile", 6, &Self::renameFile, true},
      {"renameUnseen", 3, &Self::renameUnseen, true},
      {"swapNames", 1, &Self::swapNames, true},
      {"moveOut", 3, &Self::moveOut, true},
      {"moveBack", 3, &Self::moveBack, true},
      {"trashOutside", 3, &Self::trashOutside, true},
      {"restoreFromTrash", 2, &Self::restoreFromTrash, true},
      {"deleteFile", 4, &Self::deleteFile, true},
      {"replaceFile", 2, &Self::replaceFile, true},
      {"reuseInode", 2, &Self::reuseInode, true},
      {"editInPlace", 2, &Self::editInPlace, true},
      {"evict", 1, &Self::evict},
      {"bringBack", 1, &Self::bringBack},
      {"eject", 3, &Self::eject, true},
      {"connect", 5, &Self::connect, true},
      {"renameFolder", 2, &Self::renameFolder, true},
      {"makeTemporary", 12, &Self::makeTemporary, true},
      {"makeTemporaryBatch", 2, &Self::makeTemporaryBatch, true},
      {"keep", 4, &Self::keep, true},
      {"keepBatch", 1, &Self::keepBatch, true},
      {"moveToTrash", 3, &Self::moveToTrash, true},
      {"deleteImmediately", 1, &Self::deleteImmediately, true},
      {"trashBatch", 1, &Self::trashBatch, true},
      {"closePopup", 2, &Self::closePopup, true},
      {"review", 1, &Self::review, true},
      {"renameInProgram", 4, &Self::renameInProgram, true},
      {"openEditor", 2, &Self::openEditor},
      {"closeEditor", 3, &Self::closeEditor},
      {"dismissBanner", 1, &Self::dismissBanner},
      {"switchAutoSave", 1, &Self::switchAutoSave},
      {"refuseTrash", 1, &Self::refuseTrash},
      {"allowTrash", 2, &Self::allowTrash},
      {"passMoments", 16, &Self::passMoments},
      {"passMinutes", 10, &Self::passMinutes},
      {"passHours", 1, &Self::passHours},
      {"sleepAndWake", 3, &Self::sleepAndWake},
      {"setClock", 2, &Self::setClock},
      {"comeToFront", 1, &Self::comeToFront},
      {"reconcile", 3, &Self::reconcile, true},
      {"holdWork", 5, &Self::holdWork},
      {"runWork", 4, &Self::runWork},
      {"deliverResult", 4, &Self::deliverResult},
      {"releaseWork", 3, &Self::releaseWork},
      {"quit", 2, &Self::quit},
      {"kill", 2, &Self::kill},
      {"killDuringNextFileOperation", 1, &Self::killDuringNextFileOperation},
      {"start", 8, &Self::start},
  };
  return all;
}

HistoryPlayer::HistoryPlayer(HistoryWorld::BookmarkReach reach) {
  world_.reach = reach;
  world_.onQuestion = [this] { interrupt(); };
  program_.files.didChange = [this] {
    if (!killsDuringFileOperation_ || death_) return;
    const bool hasList = fileExists(world_.listFile);
    death_ = Death{hasList ? std::optional(readBytes(world_.listFile)) : std::nullopt, lastSave_};
  };
}

HistoryPlayer::~HistoryPlayer() {
  program_.end();
}

// --- The course of a history ---

void HistoryPlayer::play(const std::vector<HistoryStep>& steps) {
  startProgram();
  for (const HistoryStep& step : steps) {
    if (failure()) return;
    if (step.atQuestion == 0) {
      perform(step);
      continue;
    }
    if (waiting_) perform(*std::exchange(waiting_, std::nullopt));
    waiting_ = step;
    questionsLeft_ = step.atQuestion;
  }
  if (!failure()) settle();
}

void HistoryPlayer::perform(const HistoryStep& step) {
  (this->*rules()[step.rule].perform)(step);
  finishStep();
}

void HistoryPlayer::interrupt() {
  if (!waiting_ || --questionsLeft_ > 0) return;
  const HistoryStep step = *std::exchange(waiting_, std::nullopt);
  say("while background work runs:");
  (this->*rules()[step.rule].perform)(step);
}

void HistoryPlayer::finishStep() {
  world_.executor.drain();
  std::erase_if(disposals_, [&](const Disposal& disposal) {
    if (disposal.task.isDone()) oracle_.hasChosenForTrash(disposal.files);
    return disposal.task.isDone();
  });
  const auto list = fileStatus(world_.listFile);
  const bool wasSaved = list && (!list_ || list->inode != list_->inode || list->modified != list_->modified);
  if (wasSaved) lastSave_ = world_.now();
  list_ = list;
  if (death_) {
    const Death death = *std::exchange(death_, std::nullopt);
    say("the program is killed before it saves what it did to the file");
    lastSave_ = death.lastSave;
    endProgram(true);
    if (death.list) {
      writeFile(world_.listFile, *death.list);
    } else {
      std::filesystem::remove(world_.listFile.path());
    }
    list_ = fileStatus(world_.listFile);
  }
  oracle_.judgeNow();
}

void HistoryPlayer::pass(double bySeconds) {
  constexpr int kMostTurns = 100000;
  int turns = 0;
  for (Duration left = seconds(bySeconds); left > Duration::zero() && !failure();) {
    left = world_.executor.advanceOnce(left);
    finishStep();
    if (++turns > kMostTurns) oracle_.fail("time passes", "something runs without end");
  }
}

void HistoryPlayer::closeEditors() {
  for (const UUID& id : openEditors_) program_.model->unprotect(id);
  openEditors_.clear();
}

void HistoryPlayer::startProgram() {
  std::optional<Date> interruptedSince;
  if (aliveUntil_) interruptedSince = *aliveUntil_ + -kArrivalMargin;
  oracle_.restarts(interruptedSince);
  const bool wasWaiting = waiting_.has_value();
  openEditors_.clear();
  program_.start(interruptedSince);
  finishStep();
  // What happens during the first reconciliation may bring back files that it could not reach.
  const bool isUndisturbed = wasWaiting == waiting_.has_value();
  if (isUndisturbed && !program_.model->isReconciling()) oracle_.judgeStart();
}

void HistoryPlayer::endProgram(bool isKilled) {
  // Whoever quits waits for what is being done to files.
  if (!isKilled && program_.model->isWritingFiles()) {
    world_.executor.release();
    finishStep();
  }
  if (!isKilled && program_.model->hasPendingSave()) program_.model->saveNow();
  aliveUntil_ = isKilled ? std::optional(std::max(program_.startedAt, lastSave_)) : std::nullopt;
  killsDuringFileOperation_ = false;
  program_.end();
  for (const Disposal& disposal : std::exchange(disposals_, {})) oracle_.hasChosenForTrash(disposal.files);
  oracle_.judgeEnd();
}

/// The disk returns, every file is whole and here, nothing is refused, and there is time.
void HistoryPlayer::settle() {
  say("everything settles");
  waiting_.reset();
  killsDuringFileOperation_ = false;
  HistoryStep step;
  connect(step);
  program_.files.refuses = false;
  for (File& file : world_.files()) {
    file.isEvicted = false;
    if (!file.isWhole && !file.url.isEmpty()) world_.finishWriting(file);
  }
  world_.executor.release();
  if (!program_.isRunning()) startProgram();
  closeEditors();
  pass(130);
  program_.model->reconcile({});
  finishStep();
  world_.clockOffset += kTwoDays;
  program_.systemEvents.didWake();
  program_.model->dismissBackgroundIssue();
  pass(40);
  program_.systemEvents.didWake();
  pass(70);
  if (!failure()) oracle_.judgeSettled();
  if (failure()) return;
  endProgram(false);
  say("and the program starts once more");
  startProgram();
  pass(1);
  if (!failure()) oracle_.judgeSettled();
  endProgram(false);
}

void HistoryPlayer::say(const std::string& line) {
  char moment[32];
  std::snprintf(moment, sizeof(moment), "%9.2f s  ", world_.now().seconds - HistoryWorld::kStart);
  story_.push_back(moment + line);
}

/// Events come at once; now and then one is missed, as on a share that another machine writes to.
void HistoryPlayer::tellChange(const HistoryStep& step) {
  if (step.how % 16 == 0) {
    say("  (and no event tells of it)");
  } else if (world_.isMounted) {
    program_.folderEvents.tell(FolderEvent::changed);
  }
}

HistoryPlayer::File* HistoryPlayer::pickFile(const HistoryStep& step, const FileURL& place) {
  const auto files = world_.filesIn(place);
  return files.empty() ? nullptr : files[step.which % files.size()];
}

HistoryPlayer::File* HistoryPlayer::pickWatched(const HistoryStep& step) {
  return pickFile(step, world_.folder);
}

std::optional<ScreenshotItem> HistoryPlayer::pickRecord(const HistoryStep& step, std::optional<State> state) {
  if (!program_.isRunning()) return std::nullopt;
  auto records = program_.records();
  if (state) std::erase_if(records, [&](const ScreenshotItem& item) { return item.state != *state; });
  if (records.empty()) return std::nullopt;
  return records[step.which % records.size()];
}

std::vector<ScreenshotItem> HistoryPlayer::pickRecords(const HistoryStep& step) {
  if (!program_.isRunning()) return {};
  auto records = program_.records();
  size_t place = 0;
  std::erase_if(records, [&](const ScreenshotItem&) { return (step.which >> (place++ % 32) & 1) == 0; });
  return records;
}

}  // namespace quillmere::testing
