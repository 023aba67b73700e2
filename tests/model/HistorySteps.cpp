#include <cmath>

#include "model/HistoryPlayer.h"

namespace quillmere::testing {
namespace {

using State = ScreenshotItem::State;

constexpr double kDay = 86400.0;

std::string quoted(const FileURL& url) {
  return "\"" + url.lastPathComponent() + "\"";
}
std::string quoted(const ScreenshotItem& item) {
  return quoted(item.url) + " (" + std::string(codedValue(item.state)) + ")";
}

}  // namespace

// --- A person in a file manager, and a capture tool ---

void HistoryPlayer::capture(const HistoryStep& step) {
  if (!world_.isMounted) return;
  const FileURL url = world_.folder.appending("shot " + std::to_string(++captures_) + ".png");
  oracle_.appeared(world_.create(url), true);
  say("the capture tool saves " + quoted(url));
  tellChange(step);
}

void HistoryPlayer::captureUnderAnOldName(const HistoryStep& step) {
  if (!world_.isMounted || captures_ == 0) return;
  const FileURL url = world_.folder.appending("shot " + std::to_string(step.which % captures_ + 1) + ".png");
  if (const File* old = world_.at(url)) oracle_.left(*old);
  const bool wasFree = world_.isKnownToBeFree(url);
  oracle_.appeared(world_.create(url), wasFree);
  say("the capture tool saves " + quoted(url) + " once more");
  tellChange(step);
}

void HistoryPlayer::captureSlowly(const HistoryStep& step) {
  if (!world_.isMounted) return;
  const FileURL url = world_.folder.appending("shot " + std::to_string(++captures_) + ".png");
  File& file = world_.create(url);
  file.isWhole = false;
  oracle_.appeared(file, true);
  say("the capture tool begins to save " + quoted(url));
  tellChange(step);
}

void HistoryPlayer::finishWriting(const HistoryStep& step) {
  if (!world_.isMounted) return;
  for (File* file : world_.filesIn(world_.folder)) {
    if (file->isWhole) continue;
    world_.finishWriting(*file);
    say("the capture tool has saved " + quoted(file->url));
  }
  tellChange(step);
}

void HistoryPlayer::copyFromElsewhere(const HistoryStep& step) {
  if (!world_.isMounted) return;
  const FileURL url = world_.folder.appending("old shot " + std::to_string(++captures_) + ".png");
  File& file = world_.create(url, kDay);
  oracle_.appeared(file, true);
  say("a screenshot of yesterday comes in as " + quoted(url));
  tellChange(step);
}

void HistoryPlayer::moveByPerson(File& file, const FileURL& to, const HistoryStep& step, const std::string& verb) {
  const FileURL from = file.url;
  if (const File* old = world_.at(to)) oracle_.left(*old);
  const bool wasFree = world_.isKnownToBeFree(to);
  const bool wasWatched = from.parent() == world_.folder;
  world_.move(file, to);
  if (to.parent() != world_.folder) {
    oracle_.left(file);
  } else if (wasWatched) {
    oracle_.renamed(file, wasFree);
  } else {
    oracle_.appeared(file, wasFree);
  }
  say("the person " + verb + " " + quoted(from) +
      (from.lastPathComponent() == to.lastPathComponent() ? "" : " to " + quoted(to)));
  tellChange(step);
}

void HistoryPlayer::renameFile(const HistoryStep& step) {
  File* file = pickWatched(step);
  if (!file) return;
  const bool takesOldName = step.how % 4 == 1 && captures_ > 0;
  const std::string name =
      takesOldName ? "shot " + std::to_string(step.how % captures_ + 1) : "renamed " + std::to_string(++renames_);
  const FileURL to = world_.folder.appending(name + ".png");
  if (!world_.at(to)) moveByPerson(*file, to, step, "renames");
}

void HistoryPlayer::renameUnseen(const HistoryStep& step) {
  File* file = pickWatched(step);
  if (!file) return;
  // Without its bookmark a file is known by its size too.
  if (!file->isResized) ++file->bookmarkSeries;
  oracle_.renamedUnfollowed(*file, file->url);
  moveByPerson(*file, world_.folder.appending("unseen " + std::to_string(++renames_) + ".png"), step,
               file->isResized ? "renames" : "renames, which no bookmark follows,");
}

void HistoryPlayer::swapNames(const HistoryStep& step) {
  const auto files = world_.filesIn(world_.folder);
  if (files.size() < 2) return;
  File& a = *files[step.which % files.size()];
  File& b = *files[(step.which + 1) % files.size()];
  say("the person swaps the names of " + quoted(a.url) + " and " + quoted(b.url));
  world_.swap(a, b);
  oracle_.swapped(a, b);
  tellChange(step);
}

void HistoryPlayer::moveOut(const HistoryStep& step) {
  File* file = world_.isMounted ? pickWatched(step) : nullptr;
  if (file) moveByPerson(*file, world_.freeName(world_.elsewhere, file->url), step, "moves elsewhere");
}

void HistoryPlayer::moveBack(const HistoryStep& step) {
  File* file = world_.isMounted ? pickFile(step, world_.elsewhere) : nullptr;
  if (file) moveByPerson(*file, world_.freeName(world_.folder, file->url), step, "moves into the watched folder");
}

void HistoryPlayer::trashOutside(const HistoryStep& step) {
  const bool isElsewhere = step.how % 8 == 1;
  File* file = pickFile(step, isElsewhere ? world_.elsewhere : world_.folder);
  if (!file || !world_.isMounted) return;
  moveByPerson(*file, world_.freeName(world_.trash, file->url), step, "trashes in a file manager");
}

void HistoryPlayer::restoreFromTrash(const HistoryStep& step) {
  File* file = world_.isMounted ? pickFile(step, world_.trash) : nullptr;
  if (file) moveByPerson(*file, world_.freeName(world_.folder, file->url), step, "restores from Trash");
}

void HistoryPlayer::deleteFile(const HistoryStep& step) {
  File* file = step.how % 8 == 1 ? pickFile(step, world_.elsewhere) : pickWatched(step);
  if (!file) return;
  say("the person deletes " + quoted(file->url));
  oracle_.left(*file);
  world_.erase(*file);
  tellChange(step);
}

void HistoryPlayer::replaceFile(const HistoryStep& step) {
  File* old = pickWatched(step);
  if (!old) return;
  const FileURL url = old->url;
  oracle_.left(*old);
  world_.create(url);
  say("another file takes the place of " + quoted(url));
  tellChange(step);
}

void HistoryPlayer::reuseInode(const HistoryStep& step) {
  File* old = pickWatched(step);
  if (!old) return;
  oracle_.left(*old);
  const FileURL url = old->url;
  world_.createWithTheInodeOf(*old);
  say(quoted(url) + " is deleted, and another file gets its name and its inode");
  tellChange(step);
}

void HistoryPlayer::editInPlace(const HistoryStep& step) {
  File* file = pickWatched(step);
  if (!file) return;
  const bool resizes = step.how % 2 == 1 && file->bookmarkSeries == 0;
  world_.edit(*file, resizes);
  if (resizes) oracle_.resized(*file);
  say("the person edits " + quoted(file->url) + (resizes ? ", which gets longer" : ""));
  tellChange(step);
}

void HistoryPlayer::evict(const HistoryStep& step) {
  File* file = pickWatched(step);
  if (!file) return;
  file->isEvicted = true;
  say("the data of " + quoted(file->url) + " leave");
}

void HistoryPlayer::bringBack(const HistoryStep&) {
  for (File& file : world_.files()) file.isEvicted = false;
  say("all data are here");
}

void HistoryPlayer::eject(const HistoryStep& step) {
  if (!world_.isMounted) return;
  const FileURL from = world_.folder;
  world_.eject(step.how % 2 == 1);
  oracle_.movedFolder(from, world_.folder);
  say(step.how % 2 == 1 ? "the disk leaves, and an empty folder stands where it was" : "the disk leaves");
  program_.folderEvents.tell(FolderEvent::lost);
  program_.systemEvents.volumesDidChange();
}

void HistoryPlayer::connect(const HistoryStep&) {
  if (world_.isMounted) return;
  const FileURL from = world_.folder;
  world_.connect();
  oracle_.movedFolder(from, world_.folder);
  say("the disk returns");
  program_.systemEvents.volumesDidChange();
}

void HistoryPlayer::renameFolder(const HistoryStep&) {
  if (!world_.isMounted) return;
  const FileURL from = world_.folder;
  const FileURL to = world_.home.file("shots " + std::to_string(++renames_));
  world_.moveFolder(to);
  oracle_.movedFolder(from, to);
  say("the person renames the watched folder to " + quoted(to));
  program_.folderEvents.tell(FolderEvent::lost);
}

// --- A person in the program ---

void HistoryPlayer::noteTemporary(const ScreenshotItem& item, TemporaryDuration duration) {
  const double now = world_.now().seconds;
  const double endOfDay = (std::floor(now / kDay) + 1) * kDay - 1;
  oracle_.choseTemporary(
      item, Date{duration == TemporaryDuration::endOfDay ? endOfDay : now + static_cast<double>(duration)});
}

void HistoryPlayer::makeTemporary(const HistoryStep& step) {
  const auto item = pickRecord(step, State::pending);
  if (!item) return;
  const TemporaryDuration duration = kTemporaryDurations[step.how % kTemporaryDurations.size()];
  std::optional<QString> name;
  if (step.how % 5 == 0) name = QStringLiteral("Temporary %1").arg(++renames_);
  say("the person makes " + quoted(*item) + " Temporary: " + menuText(duration).toStdString() +
      (name ? ", named " + name->toStdString() : ""));
  noteTemporary(*item, duration);
  program_.model->markTemporary(item->id, duration, name).detach();
}

void HistoryPlayer::makeTemporaryBatch(const HistoryStep& step) {
  const TemporaryDuration duration = kTemporaryDurations[step.how % kTemporaryDurations.size()];
  std::vector<UUID> ids;
  for (const ScreenshotItem& item : pickRecords(step)) {
    ids.push_back(item.id);
    if (item.state != State::pending || program_.model->unavailableItemIDs->contains(item.id)) continue;
    say("the person makes " + quoted(item) + " Temporary: " + menuText(duration).toStdString());
    noteTemporary(item, duration);
  }
  if (program_.isRunning()) program_.model->markTemporaryBatch(ids, duration);
}

void HistoryPlayer::keep(const HistoryStep& step) {
  const auto item = pickRecord(step, State::pending);
  if (!item) return;
  std::optional<QString> name;
  if (step.how % 2 == 0) name = QStringLiteral("Kept %1").arg(++renames_);
  say("the person keeps " + quoted(*item) + (name ? " as " + name->toStdString() : ""));
  program_.model->keepPrompt(item->id, name).detach();
}

void HistoryPlayer::keepBatch(const HistoryStep& step) {
  std::vector<UUID> ids;
  for (const ScreenshotItem& item : pickRecords(step)) {
    ids.push_back(item.id);
    if (program_.model->unavailableItemIDs->contains(item.id)) continue;
    say("the person keeps " + quoted(item));
    oracle_.choseToKeep(item);
  }
  if (program_.isRunning()) program_.model->keepBatch(ids);
}

void HistoryPlayer::disposing(const std::vector<ScreenshotItem>& items, const std::function<Task<>()>& work) {
  for (const ScreenshotItem& item : items) say("the person throws away " + quoted(item));
  auto chosen = oracle_.choosesForTrash(items);
  disposals_.push_back({work(), std::move(chosen)});
}

void HistoryPlayer::moveToTrash(const HistoryStep& step) {
  const auto item = pickRecord(step);
  if (!item) return;
  disposing({*item},
            [&] { return program_.model->disposeItem(*item, ErrorScope::inbox, AppModel::DisposalReason::chosen); });
}

void HistoryPlayer::deleteImmediately(const HistoryStep& step) {
  const auto item = pickRecord(step);
  if (!item) return;
  disposing({*item}, [&] {
    return program_.model->disposeItem(*item, ErrorScope::inbox, AppModel::DisposalReason::deleteImmediately);
  });
}

void HistoryPlayer::trashBatch(const HistoryStep& step) {
  const auto items = pickRecords(step);
  if (items.empty()) return;
  disposing(items,
            [&] { return program_.model->disposeBatch(items, ErrorScope::inbox, AppModel::DisposalReason::chosen); });
}

void HistoryPlayer::closePopup(const HistoryStep&) {
  if (!program_.isRunning() || program_.model->prompts().queue->empty()) return;
  say("the person closes the popup");
  program_.model->dismissPrompt();
}

void HistoryPlayer::review(const HistoryStep&) {
  if (!program_.isRunning()) return;
  say("the person asks for the review");
  program_.model->reviewPending(FocusNews::silent);
}

void HistoryPlayer::renameInProgram(const HistoryStep& step) {
  const auto item = pickRecord(step);
  if (!item) return;
  const bool takesOldName = step.how % 4 == 1 && captures_ > 0;
  const QString name = takesOldName ? QStringLiteral("shot %1").arg(step.how % captures_ + 1)
                                    : QStringLiteral("named %1").arg(++renames_);
  say("the person renames " + quoted(*item) + " in the program to " + name.toStdString());
  program_.model->rename(item->id, name, ErrorScope::inbox).detach();
}

void HistoryPlayer::openEditor(const HistoryStep& step) {
  const auto item = pickRecord(step);
  if (!item || !openEditors_.insert(item->id).second) return;
  say("the editor opens " + quoted(*item));
  program_.model->protect(item->id);
}

void HistoryPlayer::closeEditor(const HistoryStep&) {
  if (!program_.isRunning()) return;
  say("all editors close");
  closeEditors();
}

void HistoryPlayer::dismissBanner(const HistoryStep&) {
  if (!program_.isRunning() || !*program_.model->backgroundIssue) return;
  say("the person dismisses the banner");
  program_.model->dismissBackgroundIssue();
}

void HistoryPlayer::switchAutoSave(const HistoryStep&) {
  if (!program_.isRunning()) return;
  const bool isOn = !*program_.model->settings().popupAutoSaveEnabled;
  say(isOn ? "unanswered popups keep after 3 s" : "unanswered popups stay");
  program_.model->setPopupAutoSaveSeconds(3);
  program_.model->setPopupAutoSaveEnabled(isOn);
}

// --- The machine ---

void HistoryPlayer::refuseTrash(const HistoryStep&) {
  say("files cannot be changed");
  program_.files.refuses = true;
}

void HistoryPlayer::allowTrash(const HistoryStep&) {
  if (program_.files.refuses) say("files can be changed again");
  program_.files.refuses = false;
}

void HistoryPlayer::passMoments(const HistoryStep& step) {
  constexpr std::array kMoments{0.03, 0.06, 0.12, 0.2, 0.3, 1.0, 1.0, 3.5};
  const double length = kMoments[step.how % kMoments.size()];
  say("time passes");
  pass(length);
}

void HistoryPlayer::passMinutes(const HistoryStep& step) {
  constexpr std::array kLengths{9.5, 31.0, 61.0, 130.0, 310.0};
  say("minutes pass");
  pass(kLengths[step.how % kLengths.size()]);
}

void HistoryPlayer::passHours(const HistoryStep&) {
  say("two hours pass");
  pass(7200);
}

void HistoryPlayer::sleepAndWake(const HistoryStep& step) {
  constexpr std::array kLengths{600.0, 4000.0, kDay};
  say("the machine sleeps and wakes");
  world_.clockOffset += kLengths[step.how % kLengths.size()];
  program_.systemEvents.didWake();
}

void HistoryPlayer::setClock(const HistoryStep& step) {
  constexpr std::array kChanges{-4000.0, -90.0, 90.0, 4000.0, kDay};
  say("the clock is set");
  oracle_.setClock();
  world_.clockOffset += kChanges[step.how % kChanges.size()];
}

void HistoryPlayer::comeToFront(const HistoryStep&) {
  say("the program comes to the front");
  program_.systemEvents.didBecomeActive();
}

void HistoryPlayer::reconcile(const HistoryStep& step) {
  if (!program_.isRunning()) return;
  ReconcileRequest request;
  if (step.how % 2 == 0) {
    request.ids.emplace();
    for (const ScreenshotItem& item : pickRecords(step)) request.ids->insert(item.id);
  }
  request.polite = step.how % 3 == 0;
  request.dropsUnavailableFromQueue = step.how % 5 == 0;
  say(request.ids ? "some records are reconciled" : "all records are reconciled");
  program_.model->reconcile(std::move(request));
}

void HistoryPlayer::holdWork(const HistoryStep&) {
  if (world_.executor.isHeld()) return;
  say("background work is held");
  world_.executor.hold();
}

void HistoryPlayer::runWork(const HistoryStep&) {
  if (!world_.executor.hasWorkToRun()) return;
  say("background work runs");
  world_.executor.runWork();
}

void HistoryPlayer::deliverResult(const HistoryStep& step) {
  if (!world_.executor.hasResults()) return;
  say("a result of background work is delivered");
  world_.executor.deliver(step.which);
}

void HistoryPlayer::releaseWork(const HistoryStep&) {
  if (!world_.executor.isHeld()) return;
  say("background work goes on");
  world_.executor.release();
}

void HistoryPlayer::quit(const HistoryStep&) {
  if (!program_.isRunning()) return;
  say("the program quits");
  endProgram(false);
}

void HistoryPlayer::kill(const HistoryStep&) {
  if (!program_.isRunning()) return;
  say("the program is killed");
  endProgram(true);
}

void HistoryPlayer::killDuringNextFileOperation(const HistoryStep&) {
  killsDuringFileOperation_ = program_.isRunning();
}

void HistoryPlayer::start(const HistoryStep&) {
  if (program_.isRunning()) return;
  say("the program starts");
  startProgram();
}

}  // namespace quillmere::testing
